#pragma once

#include <cstdint>
#include <vector>

#include "utilities/qv_plane_region.h"

namespace qv::plane {

/// Finds the points of a set that lie within `tolerance::vertex_snap` of a place, in constant time:
/// a hash table of square cells a few times as wide. Private to this library.
class point_grid {
 public:
  explicit point_grid(std::vector<point> points);

  /// The nearest point of the set closer than the tolerance, null when there is none; among points
  /// at the same distance the one of the lowest source.
  const point* find_nearest(double a, double b) const;

 private:
  std::size_t get_slot(std::int64_t column, std::int64_t row) const;

  std::vector<point> points_;
  // First point of each slot and the point after each point in its slot; −1 ends the chain.
  std::vector<int> first_;
  std::vector<int> next_;
};

}  // namespace qv::plane
