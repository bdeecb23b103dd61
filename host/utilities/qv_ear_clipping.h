#pragma once

#include <vector>

#include "utilities/qv_plane_region.h"

namespace qv::plane {

/// Three points of a region.
struct triangle {
  point corners[3];
};

/// Splits a part into triangles by cutting off ears (G. H. Meisters, Polygons Have Ears, 1975), its
/// holes being joined to the outer contour first. Time grows with the square of the points, which
/// is why it only stands in where the tessellator's areas do not add up. Counter-clockwise; always
/// ends, whatever the contours.
std::vector<triangle> clip_ears(const part& piece);

}  // namespace qv::plane
