#include "utilities/qv_box.h"

#include <algorithm>

namespace qv {

qv_box::qv_box(const qv_3dvector& corner, const qv_3dvector& opposite_corner) {
  enlarge(corner);
  enlarge(opposite_corner);
}

void qv_box::enlarge(const qv_box& box) {
  if (box.empty_) return;
  enlarge(box.min_);
  enlarge(box.max_);
}

void qv_box::enlarge(const qv_3dvector& point) {
  if (!point.is_finite()) return;
  if (empty_) {
    empty_ = false;
    min_ = max_ = point;
    return;
  }
  min_ = {std::min(min_.x, point.x), std::min(min_.y, point.y), std::min(min_.z, point.z)};
  max_ = {std::max(max_.x, point.x), std::max(max_.y, point.y), std::max(max_.z, point.z)};
}

}  // namespace qv
