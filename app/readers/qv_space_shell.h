#pragma once

#include <span>
#include <vector>

#include "app/readers/qv_source_polygon.h"

namespace qv {

/// A plane piece of a surface with its corners numbered by a `qv_vertex_welder`.
struct qv_shell_polygon {
  const qv_plane_part* part = nullptr;
  /// One number for each corner of each contour of the part.
  std::vector<std::vector<int>> contours;
};

/// A polygon as a face of one space: `side` is +1 when its normal is said to point out of the
/// space, −1 when into it.
struct qv_shell_face {
  const qv_shell_polygon* polygon = nullptr;
  int side = 1;
};

/// How sure the geometry is about a face's direction, from not at all to certain.
enum class qv_shell_evidence : int {
  none,
  /// The faces that share edges with it, which bound most of a volume together.
  patch,
  /// Rays to both of its sides tell inside from outside.
  rays,
  /// It belongs to a part of the shell without any open edge.
  closed
};

struct qv_face_verdict {
  qv_shell_evidence evidence = qv_shell_evidence::none;
  /// False when the face must be turned for its normal to point as `side` says.
  bool right = true;
};

struct qv_shell_verdict {
  std::vector<qv_face_verdict> faces;
  /// True when the faces, turned as the verdicts ask, leave no edge open.
  bool closed = false;
};

/// Finds how the faces of one space must be turned so that they point out of it.
///
/// Strategy: two faces that share an edge run along it in opposite directions when they agree.
/// Edges that only one face has are first split at the corners that lie on them (where one wall
/// meets two). Faces linked by edges form components; the sign of the volume that a component
/// encloses tells which of its two directions is outwards; a component without open edges is
/// certain. Where edges stay open, rays from a face to both sides through the other faces decide by
/// parity, and failing that the component.
///
/// `points` are the welder's. Time n log n in the number of corners for closed shells; quadratic in
/// the number of faces for open ones, and not tried beyond `largest_open_shell` faces.
qv_shell_verdict qv_orient_shell(std::span<const qv_shell_face> faces,
                                 const std::vector<qv_double3>& points);

/// True when the faces, directed as `side` says, leave no edge open.
bool qv_is_shell_closed(std::span<const qv_shell_face> faces,
                        const std::vector<qv_double3>& points);

/// Volume that the faces enclose by the divergence theorem, m³; exact for a closed shell.
double qv_shell_volume(std::span<const qv_shell_face> faces);

/// Faces in an open shell beyond which no rays are cast.
inline constexpr std::size_t largest_open_shell = 2000;

}  // namespace qv
