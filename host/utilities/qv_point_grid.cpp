#include "utilities/qv_point_grid.h"

#include <bit>
#include <cmath>
#include <utility>

#include "utilities/qv_tolerances.h"

namespace qv::plane {

namespace {

constexpr double reach = tolerance::vertex_snap;
// m; wide enough that most places reach into one cell only.
constexpr double cell = 8 * reach;

std::int64_t get_cell(double coordinate) {
  return static_cast<std::int64_t>(std::floor(coordinate / cell));
}

}  // namespace

point_grid::point_grid(std::vector<point> points)
    : points_(std::move(points)),
      first_(std::bit_ceil(2 * points_.size() + 1), -1),
      next_(points_.size(), -1) {
  for (std::size_t i = 0; i < points_.size(); ++i) {
    int& first = first_[get_slot(get_cell(points_[i].a), get_cell(points_[i].b))];
    next_[i] = first;
    first = static_cast<int>(i);
  }
}

const point* point_grid::find_nearest(double a, double b) const {
  const point* nearest = nullptr;
  double least = reach * reach;
  const std::int64_t last_column = get_cell(a + reach), last_row = get_cell(b + reach);
  for (std::int64_t column = get_cell(a - reach); column <= last_column; ++column) {
    for (std::int64_t row = get_cell(b - reach); row <= last_row; ++row) {
      for (int i = first_[get_slot(column, row)]; i >= 0; i = next_[static_cast<std::size_t>(i)]) {
        const point& p = points_[static_cast<std::size_t>(i)];
        const double square = (p.a - a) * (p.a - a) + (p.b - b) * (p.b - b);
        if (square > least || (square == least && (!nearest || p.source >= nearest->source)))
          continue;
        least = square;
        nearest = &p;
      }
    }
  }
  return nearest;
}

std::size_t point_grid::get_slot(std::int64_t column, std::int64_t row) const {
  const std::uint64_t mixed = static_cast<std::uint64_t>(column) * 0x9e3779b97f4a7c15ULL ^
                              static_cast<std::uint64_t>(row) * 0xc2b2ae3d27d4eb4fULL;
  return (mixed ^ (mixed >> 32)) & (first_.size() - 1);
}

}  // namespace qv::plane
