#pragma once

#include <string>

#include "core/items/qv_scene.h"
#include "core/shapes/qv_double3.h"

namespace qv {

/// The scene as glTF 2.0 (ISO/IEC 12113): one JSON text with its buffer inside (base64). A node for
/// each item bears its name, and in "extras" its id and kind; the material, one for each kind,
/// bears the kind's name and colour. Lengths in metres; a root node turns the model's Z upwards
/// into the format's Y upwards and
/// moves it by `origin`, what was taken off the corners when the model was read. Triangles are seen
/// from both sides, glass and openings through each other. The scene must be precomputed.
std::string qv_export_gltf(qv_scene& scene, const qv_double3& origin = {});

}  // namespace qv
