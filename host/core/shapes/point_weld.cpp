#include "core/shapes/point_weld.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace qv {
namespace {

// Cell edge over welding distance: most points then look into one cell, and none into more than
// eight.
constexpr double cells_per_distance = 4;
// Cell numbers beyond this are held here, so that they stay integers with a successor. Floats that
// far out differ by far more than a cell, so that only equal ones can weld.
constexpr double largest_cell = 4e18;

struct cell {
  std::int64_t x, y, z;
};

std::uint64_t mixed(std::uint64_t value) {
  // Finalizer of SplitMix64 (Steele, Lea, Flood 2014).
  value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9u;
  value = (value ^ (value >> 27)) * 0x94d049bb133111ebu;
  return value ^ (value >> 31);
}

class point_grid {
 public:
  point_grid(const qv_list<qv_3dvector>& points, float distance)
      : points_(points),
        distance_(distance > 0 ? std::min(distance, std::numeric_limits<float>::max()) : 0),
        heads_(std::bit_ceil(static_cast<std::size_t>(points.get_count()) + 1) * 2, -1),
        next_(static_cast<std::size_t>(points.get_count()), -1) {}

  int find_kept(int index) const {
    const qv_3dvector& point = points_[index];
    const cell low = cell_at(point, -distance_);
    const cell high = cell_at(point, distance_);
    int found = -1;
    for (std::int64_t x = low.x; x <= high.x; ++x)
      for (std::int64_t y = low.y; y <= high.y; ++y)
        for (std::int64_t z = low.z; z <= high.z; ++z)
          for (int kept = heads_[slot({x, y, z})]; kept >= 0; kept = next_[kept])
            if ((found < 0 || kept < found) && are_one(points_[kept], point)) found = kept;
    return found;
  }

  void keep(int index) {
    int& head = heads_[slot(cell_at(points_[index], 0))];
    next_[index] = head;
    head = index;
  }

 private:
  bool are_one(const qv_3dvector& a, const qv_3dvector& b) const {
    const double x = double{a.x} - b.x, y = double{a.y} - b.y, z = double{a.z} - b.z;
    const double squared = x * x + y * y + z * z;
    return squared == 0 || squared < distance_ * distance_;
  }

  std::int64_t cell_number(float coordinate, double shift) const {
    // Without a distance each coordinate is a cell of its own (−0 becomes 0).
    if (distance_ == 0) return std::bit_cast<std::int32_t>(coordinate + 0.0f);
    const double number = std::floor((coordinate + shift) / (distance_ * cells_per_distance));
    return static_cast<std::int64_t>(std::clamp(number, -largest_cell, largest_cell));
  }

  cell cell_at(const qv_3dvector& point, double shift) const {
    return {cell_number(point.x, shift), cell_number(point.y, shift), cell_number(point.z, shift)};
  }

  std::size_t slot(const cell& c) const {
    const auto hash =
        mixed(static_cast<std::uint64_t>(c.x) +
              mixed(static_cast<std::uint64_t>(c.y) + mixed(static_cast<std::uint64_t>(c.z))));
    return static_cast<std::size_t>(hash) & (heads_.size() - 1);
  }

  const qv_list<qv_3dvector>& points_;
  double distance_;
  std::vector<int> heads_;
  std::vector<int> next_;
};

}  // namespace

std::vector<int> weld_points(const qv_list<qv_3dvector>& points, float distance) {
  point_grid grid(points, distance);
  std::vector<int> kept(static_cast<std::size_t>(points.get_count()));
  for (int i = 0; i < points.get_count(); ++i) {
    kept[i] = i;
    if (!points[i].is_finite()) continue;
    if (const int found = grid.find_kept(i); found >= 0) {
      kept[i] = found;
    } else {
      grid.keep(i);
    }
  }
  return kept;
}

}  // namespace qv
