#pragma once

#include "utilities/qv_plane_region.h"

namespace qv::plane {

/// Closes the hairline gaps and overlaps that rounding leaves between two regions that should
/// share a border: a vertex of `right` within `tolerance::vertex_snap` of one of `left` moves onto
/// it, and a vertex of either that lies so close to an edge of the other becomes a vertex of that
/// edge. Both stay normalised; regions that share exact coordinates, or none, stay as they are.
void snap(region& left, region& right);

}  // namespace qv::plane
