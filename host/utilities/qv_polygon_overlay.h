#pragma once

#include <vector>

#include "utilities/qv_plane_region.h"

/// The overlay library behind the Boolean operations and the offset of polygons. Private to this
/// library. Nothing here throws for geometric reasons; results keep slivers and have no sources.
namespace qv::plane {

enum class boolean_operation { unite, intersect, subtract };

/// `left` and `right` put together, both regions as `normalise` yields them. When the overlay
/// fails on the exact coordinates it is repeated on repaired and then on rounded ones; a failure
/// even then is logged, and gives `left` (nothing for `intersect`).
region overlay(boolean_operation operation, const region& left, const region& right);

/// What arbitrary contours enclose by the even-odd rule.
region overlay_even_odd(const std::vector<ring>& contours);

/// `pieces` grown or shrunk by `distance` (m). Join: 0 square, 1 round, 2 mitre.
region overlay_offset(const region& pieces, double distance, int join);

}  // namespace qv::plane
