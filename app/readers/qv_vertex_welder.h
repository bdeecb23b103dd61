#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "app/readers/qv_double3.h"

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
  struct cell {
    std::int64_t x, y, z;
    bool operator==(const cell&) const = default;
  };
  struct cell_hash {
    std::size_t operator()(const cell& c) const;
  };

  int find_in(const cell& where, const qv_double3& point) const;

  std::vector<qv_double3> points_;
  std::vector<int> next_;  // the point before this one in its cell, −1 at the end
  std::unordered_map<cell, int, cell_hash> cells_;
};

}  // namespace qv
