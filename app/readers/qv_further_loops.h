#pragma once

#include <string>
#include <vector>

#include "app/readers/qv_source_polygon.h"

namespace qv {

/// Adds the further loops of a polygon to what the first one became.
///
/// A loop in the plane of what is there already is
/// - nothing new, when it encloses nearly all of it: said twice;
/// - nothing to cut, when it lies within and encloses the same as one of `openings`, the outlines
/// of
///   what pierces the polygon: some programs write the hole as well as what fills it;
/// - a hole, when it lies within otherwise;
/// - a piece of its own, when it lies outside; of one that lies partly outside, that part.
/// A loop in another plane is a piece of its own. A loop that bounds nothing is left out. Each of
/// these is said in `polygon.repairs`; the area of the polygon is that of its parts afterwards.
/// Does nothing for a polygon without parts.
void qv_add_further_loops(qv_source_polygon& polygon, const std::vector<qv_loop>& loops,
                          const std::vector<qv_loop>& openings);

}  // namespace qv
