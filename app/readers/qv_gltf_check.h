#pragma once

#include <string>
#include <vector>

namespace qv {

/// Looks whether the bytes of a glTF 2.0 file are what its reader relies on: whole, JSON of
/// reasonable depth, version 2, nodes that form trees (the standard's strict trees, section 3.5.2),
/// no required extension that changes the geometry, and corners in single precision. Throws
/// `qv_input_error` (bad input) for what is not so; `path` names the file in it.
///
/// Bytes that are no UTF-8 in a text file (".gltf") are replaced, so that odd names do no harm.
/// Returns the names of the meshes that no node of its scene places.
std::vector<std::string> qv_check_gltf(const std::string& path, std::string& bytes);

}  // namespace qv
