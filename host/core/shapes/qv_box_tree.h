#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "core/shapes/qv_double3.h"

namespace qv {

/// An axis-parallel box in double precision, by its lowest and highest corner.
struct qv_double_box {
  qv_double3 low;
  qv_double3 high;

  /// The box around a segment.
  static qv_double_box around(const qv_double3& from, const qv_double3& to) {
    return {min(from, to), max(from, to)};
  }
  qv_double_box grown(double margin) const {
    const qv_double3 m(margin, margin, margin);
    return {low - m, high + m};
  }
  /// True when the boxes share at least a point.
  bool overlaps(const qv_double_box& b) const {
    return low.x <= b.high.x && b.low.x <= high.x && low.y <= b.high.y && b.low.y <= high.y &&
           low.z <= b.high.z && b.low.z <= high.z;
  }
};

/// Finds boxes by place: a tree over an array, in which the middle of each range splits it. Built
/// in n log n; a search takes log n plus what it finds where boxes are about as large as their
/// distances.
class qv_box_tree {
 public:
  explicit qv_box_tree(std::vector<qv_double_box> boxes);

  /// Indices of the boxes that overlap `place`, ascending; no more than `limit` of them (which ones
  /// then depends on the boxes alone).
  void find(const qv_double_box& place, std::vector<std::uint32_t>& found,
            std::size_t limit = std::numeric_limits<std::size_t>::max()) const;

  /// Indices of the boxes that the segment, `margin` thick on all sides, may touch, ascending. An
  /// oblique segment finds what lies along it and not all that its own box holds.
  void find_along(const qv_double3& from, const qv_double3& to, double margin,
                  std::vector<std::uint32_t>& found) const;

 private:
  struct node {
    qv_double_box box;
    std::size_t first, last;
    std::size_t right;  // 0 for a leaf; the left child follows its parent
  };
  static constexpr std::size_t leaf_size = 4;

  void build(std::size_t first, std::size_t last);
  template <class Touches>
  void search(std::size_t at, const Touches& touches, std::vector<std::uint32_t>& found,
              std::size_t limit) const;

  std::vector<qv_double_box> boxes_;
  std::vector<std::uint32_t> order_;
  std::vector<node> nodes_;
};

}  // namespace qv
