#pragma once

#include <string>
#include <vector>

namespace qv {

struct qv_gbxml_model;

/// The axis that points upwards in a file of triangles.
enum class qv_up_axis : int {
  /// Z in OBJ, Y in glTF.
  of_format,
  y,
  z
};

/// What stands around a model: files of triangles, metres.
struct qv_context_options {
  std::vector<std::string> files;
  qv_up_axis up = qv_up_axis::of_format;
};

/// Puts each object of the files (`qv_read_triangle_file`) into the model as a `qvi_bim_object`
/// with source type "context": it casts shadows, is drawn and exported, and takes no part in
/// measuring.
///
/// The files are in the coordinates and axes of the model file: X and Y as there, Z upwards (from Y
/// upwards, (x, y, z) becomes (x, −z, y)). The objects stand below the first campus, so that they
/// turn with it to true north, and what was taken off the model's coordinates to bring it near the
/// origin is taken off theirs. Where a file places a mesh several times, its objects share it
/// (`qvi_mesh_instance`) and bear the "matrix" of their place.
///
/// Each object has an "Object" entry in the ledger with its area. Triangles without area, those
/// with a corner that is not finite or farther than 10,000 km, points and lines are left out, which
/// the entry says; an object of nothing else is dropped. Returns the same, and what the reading
/// library found odd, in lines that name their file, and adds these to the model's warnings. Throws
/// `qv_input_error` for a file that cannot be read, that leaves no triangle at all, or of more than
/// 50 million triangles.
std::vector<std::string> qv_add_context(qv_gbxml_model& model, const qv_context_options& options);

}  // namespace qv
