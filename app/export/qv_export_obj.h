#pragma once

#include <string>

#include "core/items/qv_scene.h"
#include "core/shapes/qv_double3.h"

namespace qv {

/// The scene as Wavefront OBJ text: a triangle mesh with one group (`g name`) for each item, in
/// metres, Z upwards, and its kind as material name (`usemtl outer_wall`). Names are UTF-8 without
/// blanks; floats in the shortest form that reads back the same. `origin`,
/// what was taken off the corners when the model was read, is added to them. The scene must be
/// precomputed.
std::string qv_export_obj(qv_scene& scene, const qv_double3& origin = {});

}  // namespace qv
