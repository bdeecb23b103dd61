#pragma once

#include "utilities/qv_list.h"

namespace qv {

class qv_polygon;
class qv_3dvector;

/// A set of triangles: vertices and three vertex indices for each triangle.
struct qv_triangulation {
  qv_list<qv_3dvector> vertices;
  qv_list<int> triangles;
};

/// Splits the region of `polygon` into triangles, counter-clockwise about its normal.
///
/// The contours are normalised first (even-odd rule); then the sum of the triangles' areas is the
/// polygon's area to rounding, which is checked: where the tessellator misses it, another method
/// takes over, and a miss that remains is logged. Vertices are the polygon's own, the same three
/// floats, wherever contours do not cross, each once. An empty polygon gives nothing. Every
/// triangle has area.
qv_triangulation qv_triangulate(const qv_polygon& polygon);

}  // namespace qv
