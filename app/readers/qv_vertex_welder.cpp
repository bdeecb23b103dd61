#include "app/readers/qv_vertex_welder.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

// Cells many times the distance wide: most points lie far from every cell's border, so that one
// cell is all there is to look at.
constexpr double cell_width = 64 * qv::qv_vertex_welder::distance;
// Places of an empty table; always a power of two.
constexpr std::size_t first_table_size = 256;

std::int64_t cell_of(double coordinate) {
  return static_cast<std::int64_t>(std::floor(coordinate / cell_width));
}

std::size_t hash_cell(std::int64_t x, std::int64_t y, std::int64_t z) {
  // Odd multipliers spread neighbouring cells over the table.
  std::uint64_t h = static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15U;
  h ^= static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4FU;
  h ^= static_cast<std::uint64_t>(z) * 0x165667B19E3779F9U;
  return static_cast<std::size_t>(h ^ h >> 29U);
}

std::size_t hash_cell_of(const qv::qv_double3& point) {
  return hash_cell(cell_of(point.x), cell_of(point.y), cell_of(point.z));
}

}  // namespace

namespace qv {

// Points of other cells at the same place are none the worse for being looked at.
int qv_vertex_welder::find_in(std::size_t place, const qv_double3& point) const {
  for (int i = table_[place]; i >= 0; i = next_[static_cast<std::size_t>(i)]) {
    const qv_double3 between = points_[static_cast<std::size_t>(i)] - point;
    if (between.dot(between) <= distance * distance) return i;
  }
  return -1;
}

void qv_vertex_welder::grow() {
  table_.assign(std::max(first_table_size, 2 * table_.size()), -1);
  for (std::size_t i = 0; i < points_.size(); ++i) {
    int& last = table_[hash_cell_of(points_[i]) & (table_.size() - 1)];
    next_[i] = last;
    last = static_cast<int>(i);
  }
}

int qv_vertex_welder::weld(const qv_double3& point) {
  if (2 * points_.size() >= table_.size()) grow();
  const std::size_t mask = table_.size() - 1;
  const std::int64_t last_x = cell_of(point.x + distance);
  const std::int64_t last_y = cell_of(point.y + distance);
  const std::int64_t last_z = cell_of(point.z + distance);
  for (std::int64_t x = cell_of(point.x - distance); x <= last_x; ++x)
    for (std::int64_t y = cell_of(point.y - distance); y <= last_y; ++y)
      for (std::int64_t z = cell_of(point.z - distance); z <= last_z; ++z)
        if (const int i = find_in(hash_cell(x, y, z) & mask, point); i >= 0) return i;
  const int number = static_cast<int>(points_.size());
  int& last = table_[hash_cell_of(point) & mask];
  points_.push_back(point);
  next_.push_back(last);
  last = number;
  return number;
}

}  // namespace qv
