#pragma once

#include <array>
#include <vector>

#include "utilities/qv_3dvector.h"

namespace qv {

/// One triangle of a face of a shell. A face (a polygon's many triangles, or a single triangle of a
/// mesh) is turned over as a whole.
struct qv_face_triangle {
  std::array<qv_3dvector, 3> corners;
  /// Index of the face, from 0.
  int face = 0;
  /// Faces of one owner bear one number: where geometry leaves open which of two coincident faces
  /// belongs to a shell, the one of the same owner does.
  int owner = 0;
};

/// True when the corners are finite and span an area; every other triangle is ignored.
bool qv_has_area(const qv_face_triangle& triangle);

/// Two faces that meet at an edge, and whether their present sides disagree there.
struct qv_face_link {
  /// How sure the link is, surest first.
  enum class kind : int {
    same_edge,  ///< both faces have the very same edge and no other one has it
    along,      ///< their edges run along each other within the gap and no other one's does
    crowded,    ///< more than two faces meet, these two are neighbours
    ambiguous   ///< one of them coincides with a third face that would do as well
  };

  int a = 0;
  int b = 0;
  kind sureness = kind::same_edge;
  /// True when one of the two must be turned for them to agree.
  bool disagree = false;
  bool same_owner = false;
  /// Length over which they meet, m.
  double length = 0;
};

/// Width of a gap between edges over which two faces still meet, m: cracks of exported shells are a
/// few millimetres, the thinnest building part that has two faces of its own is thicker. Smaller in
/// small models and along short edges, never below the rounding of the coordinates.
inline constexpr double qv_shell_gap = 0.005;

/// The links between faces that share edges, surest first, in an order that does not depend on
/// which way the faces are turned.
///
/// An edge is shared wherever two faces' boundaries run along each other, be it over a part of
/// their length only (a long wall that meets two short ones). Where more than two faces meet, each
/// is linked with its neighbours in the order in which they stand around the edge. Time
/// n log n.
std::vector<qv_face_link> qv_link_faces(const std::vector<qv_face_triangle>& triangles);

}  // namespace qv
