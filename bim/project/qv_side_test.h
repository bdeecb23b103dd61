#pragma once

#include "utilities/qv_3dvector.h"

namespace qv {

class qv_raytracer;
class qvi_polygon;
class qvi_space;

/// Share of the rays that leave `face` to the side of `direction` (of length 1) and first hit a
/// wall of `space`: what hits a mesh at or below a wall that names the space on either side. A
/// hundred rays from points all over the face, spread over the half space and tilted a little
/// towards `direction`; the same ones each time. 0 for a null face and one without area.
float qv_test_side(qvi_polygon* face, const qv_3dvector& direction, const qvi_space* space,
                   const qv_raytracer& raytracer);

}  // namespace qv
