#include "core/shapes/qv_box_tree.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace qv {

namespace {

/// Narrows the range of parameters [begin, end] of the line `from` + t × `way` to those between two
/// planes of an axis; false when none is left.
bool clip(double from, double way, double low, double high, double& begin, double& end) {
  if (way == 0) return low <= from && from <= high;
  double enter = (low - from) / way;
  double leave = (high - from) / way;
  if (enter > leave) std::swap(enter, leave);
  begin = std::max(begin, enter);
  end = std::min(end, leave);
  return begin <= end;
}

}  // namespace

qv_box_tree::qv_box_tree(std::vector<qv_double_box> boxes) : boxes_(std::move(boxes)) {
  order_.resize(boxes_.size());
  for (std::uint32_t i = 0; i < order_.size(); ++i) order_[i] = i;
  nodes_.reserve(boxes_.size());
  if (!boxes_.empty()) build(0, boxes_.size());
}

void qv_box_tree::build(std::size_t first, std::size_t last) {
  const std::size_t made = nodes_.size();
  nodes_.push_back({boxes_[order_[first]], first, last, 0});
  qv_double_box& around = nodes_[made].box;
  for (std::size_t i = first; i < last; ++i) {
    around.low = min(around.low, boxes_[order_[i]].low);
    around.high = max(around.high, boxes_[order_[i]].high);
  }
  if (last - first <= leaf_size) return;
  const qv_double3 size = around.high - around.low;
  const int axis = size.x >= size.y && size.x >= size.z ? 0 : size.y >= size.z ? 1 : 2;
  const auto place = [&](std::uint32_t i) {
    const qv_double3 sum = boxes_[i].low + boxes_[i].high;
    return std::tuple(axis == 0 ? sum.x : axis == 1 ? sum.y : sum.z, i);
  };
  const std::size_t middle = (first + last) / 2;
  const auto begin = order_.begin();
  std::nth_element(begin + static_cast<std::ptrdiff_t>(first),
                   begin + static_cast<std::ptrdiff_t>(middle),
                   begin + static_cast<std::ptrdiff_t>(last),
                   [&](std::uint32_t a, std::uint32_t b) { return place(a) < place(b); });
  build(first, middle);
  nodes_[made].right = nodes_.size();
  build(middle, last);
}

template <class Touches>
void qv_box_tree::search(std::size_t at, const Touches& touches, std::vector<std::uint32_t>& found,
                         std::size_t limit) const {
  const node& n = nodes_[at];
  if (found.size() >= limit || !touches(n.box)) return;
  if (n.right != 0) {
    search(at + 1, touches, found, limit);
    search(n.right, touches, found, limit);
    return;
  }
  for (std::size_t i = n.first; i < n.last && found.size() < limit; ++i) {
    if (touches(boxes_[order_[i]])) found.push_back(order_[i]);
  }
}

void qv_box_tree::find(const qv_double_box& place, std::vector<std::uint32_t>& found,
                       std::size_t limit) const {
  found.clear();
  if (nodes_.empty()) return;
  search(
      0, [&](const qv_double_box& box) { return box.overlaps(place); }, found, limit);
  std::sort(found.begin(), found.end());
}

void qv_box_tree::find_along(const qv_double3& from, const qv_double3& to, double margin,
                             std::vector<std::uint32_t>& found) const {
  found.clear();
  if (nodes_.empty()) return;
  const qv_double3 way = to - from;
  const auto touches = [&](const qv_double_box& tight) {
    const qv_double_box box = tight.grown(margin);
    double begin = 0;
    double end = 1;
    return clip(from.x, way.x, box.low.x, box.high.x, begin, end) &&
           clip(from.y, way.y, box.low.y, box.high.y, begin, end) &&
           clip(from.z, way.z, box.low.z, box.high.z, begin, end);
  };
  search(0, touches, found, std::numeric_limits<std::size_t>::max());
  std::sort(found.begin(), found.end());
}

}  // namespace qv
