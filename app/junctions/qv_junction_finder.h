#pragma once

#include <vector>

#include "core/shapes/qv_double3.h"

namespace qv {

/// The outline of a plane wall, m: its outer contours counter-clockwise about its normal, holes
/// clockwise. Which of the two sides the normal is on makes no difference.
struct qv_wall_outline {
  std::vector<std::vector<qv_double3>> contours;
};

/// A wall that meets others along a junction.
struct qv_junction_branch {
  /// Index of its outline.
  int wall = 0;
  /// Unit direction, perpendicular to the junction, in which the wall leaves it. A wall that
  /// passes, because the junction lies within its face, leaves in two directions: given is the
  /// upper one, and of level ones that towards the larger part of the wall.
  qv_double3 direction;

  friend bool operator==(const qv_junction_branch& a, const qv_junction_branch& b) {
    return a.wall == b.wall && a.direction.x == b.direction.x && a.direction.y == b.direction.y &&
           a.direction.z == b.direction.z;
  }
};

/// A straight segment along which the same two or more walls meet.
struct qv_junction {
  /// The ends; the first one is the lower, of level ones that of smaller x, then y.
  qv_double3 point_0;
  qv_double3 point_1;
  /// Each wall once: those that leave upwards first, then by x and y.
  std::vector<qv_junction_branch> branches;
};

/// Widest gap over which walls still meet, m: cracks of exported models are a few millimetres, no
/// part of a building is so thin.
inline constexpr double qv_junction_gap = 0.005;

/// The junctions of a set of walls, lowest first.
///
/// Walls meet along a segment where edges of two of them run beside each other within the gap, be
/// it over a part of their length, or where an edge of one lies in the face of another. A segment
/// ends where the set of walls changes, or the direction in which one of them leaves. Segments and
/// edges shorter than the gap are none; walls without area or with coordinates that are not finite
/// take no part.
///
/// The result does not depend on the order of the walls, but for their indices. Time n log n where
/// a wall meets a bounded number of others.
std::vector<qv_junction> qv_find_junctions(const std::vector<qv_wall_outline>& walls);

}  // namespace qv
