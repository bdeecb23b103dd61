#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "core/shapes/qv_double3.h"

namespace qv {

/// Triangles as a file has them, in their own frame.
struct qv_file_mesh {
  std::vector<qv_3dvector> vertices;
  /// Three vertex indices for each triangle, all in range.
  std::vector<int> triangles;
  /// Points and lines of the same mesh, which have no surface.
  std::size_t flat_count = 0;
};

/// A mesh at a place, under its name.
struct qv_file_object {
  std::string name;  // UTF-8, one line; never empty
  std::size_t mesh = 0;
  /// Row by row, 3 × 4: from the mesh's frame into that of the file.
  std::array<double, 12> placement = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};

  qv_double3 place(const qv_3dvector& point) const;
};

/// What a file of triangles holds.
struct qv_triangle_file {
  /// True for a format that puts Y upwards (glTF), false for one that says nothing (OBJ).
  bool is_y_up = false;
  std::vector<qv_file_mesh> meshes;
  std::vector<qv_file_object> objects;
  /// Names of meshes that the file places nowhere.
  std::vector<std::string> unplaced;
  /// What the reading library found odd, one line each.
  std::vector<std::string> warnings;
};

/// Reads a Wavefront OBJ (".obj") or glTF 2.0 (".gltf", ".glb") file: polygons as triangles,
/// without colours and textures. An object is a node of glTF or a group or object of OBJ, with all
/// that it holds.
///
/// Buffers that glTF refers to are files beside it; nothing is fetched from elsewhere. Corners are
/// in single precision, those of OBJ about a place near them. Throws `qv_input_error`: no access
/// for a file that is missing, a directory, unreadable or larger than a gigabyte; bad input for
/// another format, a file that is empty, cut off or not sound, one that needs an extension of glTF
/// that changes its geometry, or one without any face.
qv_triangle_file qv_read_triangle_file(const std::string& path);

}  // namespace qv
