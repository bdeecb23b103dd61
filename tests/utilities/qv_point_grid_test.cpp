#include "utilities/qv_point_grid.h"

#include <gtest/gtest.h>

#include <cmath>

#include "utilities/qv_random.h"
#include "utilities/qv_tolerances.h"

using namespace qv;
using plane::point;
using plane::point_grid;

namespace {

constexpr double reach = tolerance::vertex_snap;

}  // namespace

TEST(qv_point_grid, finds_nothing_in_an_empty_set) {
  const point_grid grid({});
  EXPECT_EQ(grid.find_nearest(0, 0), nullptr);
}

TEST(qv_point_grid, finds_a_point_within_reach_only) {
  const point_grid grid({{1, 2, 7}});
  ASSERT_NE(grid.find_nearest(1, 2), nullptr);
  EXPECT_EQ(grid.find_nearest(1, 2)->source, 7);
  EXPECT_NE(grid.find_nearest(1 + 0.9 * reach, 2), nullptr);
  EXPECT_NE(grid.find_nearest(1, 2 - 0.9 * reach), nullptr);
  EXPECT_EQ(grid.find_nearest(1 + 1.1 * reach, 2), nullptr);
  EXPECT_EQ(grid.find_nearest(1 + 0.9 * reach, 2 + 0.9 * reach), nullptr);
}

TEST(qv_point_grid, takes_the_lowest_source_among_points_at_one_place) {
  const point_grid grid({{1, 2, 9}, {1, 2, 3}, {1, 2, 5}});
  EXPECT_EQ(grid.find_nearest(1, 2)->source, 3);
  EXPECT_EQ(grid.find_nearest(1 + reach / 2, 2)->source, 3);
}

TEST(qv_point_grid, agrees_with_a_search_through_all_points) {
  qv_random random(101);
  const auto dice = [&random] { return 20 * reach * (random.dice_double() - 0.5); };
  std::vector<point> points;
  points.reserve(300);
  for (int i = 0; i < 300; ++i) points.push_back({dice() + 1e6, dice() - 1e6, i});
  const point_grid grid(points);
  int found = 0;
  for (int i = 0; i < 2000; ++i) {
    const double a = dice() + 1e6, b = dice() - 1e6;
    const point* expected = nullptr;
    double least = reach;
    for (const point& p : points) {
      const double distance = std::hypot(p.a - a, p.b - b);
      if (distance >= least) continue;
      least = distance;
      expected = &p;
    }
    const point* const nearest = grid.find_nearest(a, b);
    ASSERT_EQ(nearest == nullptr, expected == nullptr) << "seed 101, place " << i;
    if (expected == nullptr) continue;
    EXPECT_EQ(nearest->source, expected->source) << "seed 101, place " << i;
    ++found;
  }
  EXPECT_GT(found, 1000);
}
