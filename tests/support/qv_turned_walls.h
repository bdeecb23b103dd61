#pragma once

#include <vector>

#include "bim/envelope/qvi_wall.h"
#include "bim/project/qvi_bim_root.h"

namespace qv_test {

/// Which way round a wall stands.
struct wall_sides {
  qv::qvi_wall* wall = nullptr;
  qv::qv_3dvector normal;
  qv::qvi_space* space_0 = nullptr;
  qv::qvi_space* space_1 = nullptr;
  qv::qvi_composition* composition = nullptr;

  /// Compositions with the same layers count as one: a model may have several.
  friend bool operator==(const wall_sides& a, const wall_sides& b);
};

/// Of every wall below `root`, depth first.
std::vector<wall_sides> take_sides(const qv::qvi_bim_root& root);

/// Damages the walls below `root` at random, each in one of four ways: not at all, its normal
/// turned, its spaces swapped (of a wall between two spaces together with its composition, which
/// then runs from the other side), or both. Returns the walls that ended the wrong way round and
/// for which neither the slope of their normal nor a missing space tells: those that only rays can
/// put right.
std::vector<qv::qvi_wall*> turn_walls(qv::qvi_bim_root& root, unsigned int seed);

}  // namespace qv_test
