#pragma once

#include "utilities/qv_3dvector.h"
#include "utilities/qv_list.h"
#include "utilities/qv_polygon.h"

namespace qv {

/// The plane polygons of a surface of triangles: one for each group of triangles that hang together
/// by edges and lie in one plane with their fronts on the same side, in the order of their first
/// triangles. Outer contours come first and run counter-clockwise about the normal, holes
/// clockwise. The caller frees the polygons.
///
/// Groups grow from their largest triangle, whose plane decides, so that a curved surface falls
/// into its facets and does not drift from one to the next. Time O(n log n).
qv_list<qv_polygon*> build_coplanar_polygons(const qv_list<qv_3dvector>& vertices,
                                             const qv_list<int>& triangles);

}  // namespace qv
