#pragma once

#include <optional>

#include "utilities/qv_plane_region.h"

namespace qv::plane {

/// `left` less `right` where that takes no overlay: openings cut out of a wall. Nothing where it is
/// not as simple as that; what comes back is what `overlay` gives, contours and their first points
/// included.
///
/// `left` is a single contour, `right` has contours without holes. Each point of `right` is one of
/// `left`'s, lies exactly on an edge of its along an axis, or lies clear of it on the inner side of
/// all its edges, so that the contours share whole edges or only corners: `left`'s edges and those
/// of `right` the other way round, less those that both have, are the border of what is left. Both
/// regions have been brought together by `snap`.
///
/// Time in proportion to the product of the numbers of points, and not tried for many.
std::optional<region> subtract_plainly(const region& left, const region& right);

}  // namespace qv::plane
