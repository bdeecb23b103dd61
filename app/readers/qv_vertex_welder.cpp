#include "app/readers/qv_vertex_welder.h"

#include <cmath>

namespace {

// Cells many times the distance wide: most points lie far from every cell's border, so that one
// cell is all there is to look at.
constexpr double cell_width = 64 * qv::qv_vertex_welder::distance;

std::int64_t cell_of(double coordinate) {
  return static_cast<std::int64_t>(std::floor(coordinate / cell_width));
}

}  // namespace

namespace qv {

std::size_t qv_vertex_welder::cell_hash::operator()(const cell& c) const {
  // Odd multipliers spread neighbouring cells over the table.
  std::uint64_t h = static_cast<std::uint64_t>(c.x) * 0x9E3779B97F4A7C15U;
  h ^= static_cast<std::uint64_t>(c.y) * 0xC2B2AE3D27D4EB4FU;
  h ^= static_cast<std::uint64_t>(c.z) * 0x165667B19E3779F9U;
  return static_cast<std::size_t>(h ^ h >> 29U);
}

int qv_vertex_welder::find_in(const cell& where, const qv_double3& point) const {
  const auto found = cells_.find(where);
  if (found == cells_.end()) return -1;
  for (int i = found->second; i >= 0; i = next_[static_cast<std::size_t>(i)])
    if ((points_[static_cast<std::size_t>(i)] - point).length() <= distance) return i;
  return -1;
}

int qv_vertex_welder::weld(const qv_double3& point) {
  for (std::int64_t x = cell_of(point.x - distance); x <= cell_of(point.x + distance); ++x)
    for (std::int64_t y = cell_of(point.y - distance); y <= cell_of(point.y + distance); ++y)
      for (std::int64_t z = cell_of(point.z - distance); z <= cell_of(point.z + distance); ++z)
        if (const int i = find_in({x, y, z}, point); i >= 0) return i;
  const int number = static_cast<int>(points_.size());
  const auto [slot, fresh] =
      cells_.try_emplace({cell_of(point.x), cell_of(point.y), cell_of(point.z)}, number);
  points_.push_back(point);
  next_.push_back(fresh ? -1 : slot->second);
  slot->second = number;
  return number;
}

}  // namespace qv
