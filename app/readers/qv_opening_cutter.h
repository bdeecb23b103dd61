#pragma once

#include <vector>

#include "utilities/qv_polygon.h"

namespace qv {

/// What is left of one opening in a face.
struct qv_cut_opening {
  /// Counter-clockwise about the face's normal; empty when nothing is left.
  qv_polygon region;
  /// Area as asked for, that of the region, that of it outside of the face, and that of it which
  /// other openings hold, m². What is left is asked − outside − covered, to rounding.
  double asked = 0;
  double left = 0;
  double outside = 0;
  double covered = 0;
  /// Numbers of these other openings.
  std::vector<int> covered_by;
};

struct qv_cut_face {
  /// The face less all openings; empty when they cover it.
  qv_polygon rest;
  /// One for each opening, in their order.
  std::vector<qv_cut_opening> openings;
};

/// Cuts openings out of a face. All polygons lie in the face's plane.
///
/// - What of an opening lies outside of the face is cut off.
/// - Where openings overlap, the smaller one keeps its place (a pane in a door, a panel in a
///   curtain wall) and the larger one loses it; of two as large, the later one loses.
/// - An opening without area has an empty region.
///
/// The rest of the face and the openings left share their corners: their areas add up to the
/// face's. Time linear in the number of openings apart from a comparison of boxes for each pair;
/// panes that lie clear of each other in a convex face need no overlay at all.
qv_cut_face qv_cut_openings(const qv_polygon& face, std::vector<qv_polygon> openings);

/// True when either region holds at least nine tenths of the other: the same opening said twice,
/// give or take its reveal. Both lie in one plane, roughly.
bool qv_is_same_opening(const qv_polygon& a, const qv_polygon& b);

}  // namespace qv
