#pragma once

#include <cstddef>
#include <vector>

#include "core/shapes/qv_double3.h"

namespace qv {

/// Numbers points so that points closer than a millimetre to an earlier one get its number.
///
/// Files of building models repeat the corners that surfaces share, each with its own rounding.
class qv_vertex_welder {
 public:
  /// m; below any dimension of a building, above what rounding to three decimals leaves.
  static constexpr double distance = 1e-3;

  /// The number of `point`. Constant time on average.
  int weld(const qv_double3& point);
  /// The points numbered so far, each as it came first.
  const std::vector<qv_double3>& get_points() const { return points_; }

 private:
  int find_in(std::size_t place, const qv_double3& point) const;
  void grow();

  std::vector<qv_double3> points_;
  std::vector<int> next_;   // the point before this one at its place in the table, −1 at the end
  std::vector<int> table_;  // the last point of the cells that share a place; −1 for none
};

}  // namespace qv
