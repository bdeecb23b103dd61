#pragma once

#include <cstddef>
#include <vector>

#include "utilities/qv_plane_region.h"

namespace qv::plane {

/// Whether the contour is convex and goes round once; straight corners are allowed, spikes are not.
bool is_convex(const ring& contour);

/// How many pairs of edges touch or cross, those of neighbouring edges that fold back included; the
/// count stops once it is above `limit`. Two edges whose distance rounding may have decided count
/// as touching, so that 0 means certainly clear of each other.
///
/// A sweep: n log n plus the number of pairs of edges that overlap along the first axis.
std::size_t count_contacts(const std::vector<ring>& contours, std::size_t limit);

}  // namespace qv::plane
