#pragma once

#include <vector>

#include "utilities/qv_3dvector.h"
#include "utilities/qv_list.h"

namespace qv {

/// For each point the index of the point that stands for it: the first kept point closer than
/// `distance` metres, or itself, which is thereby kept. Points with the same coordinates are always
/// one; a point that is not finite stands for itself alone. A distance that is not positive welds
/// equal points only.
///
/// Kept points lie at least `distance` apart, so a cell of the hash grid holds only a few and the
/// whole takes linear time on average. The result depends on the order of the points alone.
std::vector<int> weld_points(const qv_list<qv_3dvector>& points, float distance);

}  // namespace qv
