#pragma once

#include "utilities/qv_3dvector.h"

namespace qv {

/// An axis-parallel box: an origin (its lowest corner) and a size, or empty.
class qv_box {
 public:
  /// Empty.
  qv_box() = default;
  /// The box between two opposite corners, in any order; a corner that is not finite is left out.
  qv_box(const qv_3dvector& corner, const qv_3dvector& opposite_corner);

  bool is_empty() const { return empty_; }
  /// Makes the box empty.
  void clear() { *this = qv_box(); }
  /// Grows to hold `box`; an empty box changes nothing.
  void enlarge(const qv_box& box);
  /// Grows to hold `point`; a point that is not finite changes nothing.
  void enlarge(const qv_3dvector& point);

  /// Lowest corner; the zero vector when empty.
  const qv_3dvector& get_min() const { return min_; }
  /// Highest corner; the zero vector when empty.
  const qv_3dvector& get_max() const { return max_; }
  /// Same as `get_min`.
  const qv_3dvector& get_origin() const { return min_; }
  /// Extent along the three axes; the zero vector when empty.
  qv_3dvector get_size() const { return max_ - min_; }
  /// Origin plus half the size.
  qv_3dvector get_center() const { return min_ + get_size() * 0.5f; }

  friend bool operator==(const qv_box& a, const qv_box& b) {
    return a.empty_ == b.empty_ && a.min_ == b.min_ && a.max_ == b.max_;
  }

 private:
  bool empty_ = true;
  qv_3dvector min_;
  qv_3dvector max_;
};

}  // namespace qv
