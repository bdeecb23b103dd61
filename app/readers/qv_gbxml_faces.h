#pragma once

#include "app/readers/qv_source_polygon.h"
#include "core/shapes/qvi_polygon.h"

namespace qv {

/// A new polygon item with the part's contours and normal, seen ("main") and to be picked. Solid
/// ones cast shadows ("simulation"), those that bound a space take part in measuring it ("bim").
qvi_polygon* qv_make_face(const qv_plane_part& part, bool is_solid, bool bounds);

/// Area of a polygon item about the unit normal, from its own single-precision corners, m².
double qv_measure_face(const qvi_polygon& face, const qv_double3& normal);

}  // namespace qv
