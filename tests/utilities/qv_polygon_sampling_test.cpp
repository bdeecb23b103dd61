#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "tests/utilities/qv_polygon_makers.h"
#include "utilities/qv_plane_frame.h"
#include "utilities/qv_polygon.h"

using namespace qv;
using qv_test::contour;
using qv_test::make_polygon;
using qv_test::make_rectangle;

namespace {

// An L of 12 m²: 4 × 4 without its upper right quarter.
const qv_polygon l_shape =
    make_polygon({{{0, 0, 0}, {4, 0, 0}, {4, 2, 0}, {2, 2, 0}, {2, 4, 0}, {0, 4, 0}}});

}  // namespace

TEST(qv_regular_distribution, puts_one_point_into_the_middle_of_each_cell) {
  const auto points = make_polygon({make_rectangle(1, 2, 4, 4)}).regular_distribution(1);
  EXPECT_EQ(points, (qv_list<qv_3dvector>{{1.5f, 2.5f, 0},
                                          {2.5f, 2.5f, 0},
                                          {3.5f, 2.5f, 0},
                                          {1.5f, 3.5f, 0},
                                          {2.5f, 3.5f, 0},
                                          {3.5f, 3.5f, 0}}));
}

TEST(qv_regular_distribution, of_a_rectangle_of_whole_cells_has_area_over_spacing_squared_points) {
  for (const int cells : {1, 2, 3, 7, 20, 59, 100}) {
    for (const float spacing : {0.05f, 0.1f, 0.3f, 0.7f, 1.0f}) {
      const float width = spacing * static_cast<float>(cells), depth = spacing * 13;
      EXPECT_EQ(make_polygon({make_rectangle(0, 0, width, depth)})
                    .regular_distribution(spacing)
                    .get_count(),
                cells * 13)
          << cells << " cells of " << spacing;
      EXPECT_EQ(make_polygon({make_rectangle(-3.3f, 17.1f, -3.3f + width, 17.1f + depth)})
                    .regular_distribution(spacing)
                    .get_count(),
                cells * 13)
          << cells << " cells of " << spacing;
    }
  }
}

TEST(qv_regular_distribution, of_the_floors_that_the_storey_height_is_measured_on) {
  // 0.05 m: 20 × 20 points to the square metre, and holes have none.
  EXPECT_EQ(l_shape.regular_distribution(0.05f).get_count(), 12 * 400);
  EXPECT_EQ(make_polygon({make_rectangle(0, 0, 4, 4), make_rectangle(1, 1, 2, 2)})
                .regular_distribution(0.05f)
                .get_count(),
            15 * 400);
}

TEST(qv_regular_distribution, in_a_wall_follows_the_horizontal) {
  for (const float degrees : {0.0f, 33.0f, 90.0f, 211.0f}) {
    const float turn = degrees * 3.14159265f / 180;
    const qv_test::test_plane wall{{5, 6, 7}, {std::cos(turn), std::sin(turn), 0}, {0, 0, 1}};
    const qv_polygon face = wall.make_polygon({make_rectangle(0, 0, 5, 2.5f)});
    EXPECT_EQ(face.regular_distribution(0.5f).get_count(), 10 * 5) << degrees;
  }
}

TEST(qv_regular_distribution, of_a_slightly_tilted_floor_keeps_its_grid) {
  qv_polygon floor({0, 0, 0}, {1e-6f, -2e-6f, 1});
  floor.add_contour(make_rectangle(0, 0, 3, 2));
  EXPECT_EQ(floor.regular_distribution(0.1f).get_count(), 30 * 20);
}

TEST(qv_regular_distribution, points_are_inside_and_as_many_as_the_area_says) {
  qv_random random(61);
  for (int i = 0; i < 100; ++i) {
    const auto plane = qv_test::make_random_plane(random);
    const qv_polygon polygon = plane.make_polygon(
        {qv_test::make_star(random, 11, 0, 0, 5), qv_test::make_star(random, 5, 0, 0, 1)});
    const float spacing = 0.1f;
    const auto points = polygon.regular_distribution(spacing);
    const double expected = polygon.get_area() / (spacing * spacing);
    // The cells that the border crosses, at most some 2 for each spacing of its 100 m.
    EXPECT_NEAR(points.get_count(), expected, 0.1 * expected + 50) << "seed 61, polygon " << i;
    for (const qv_3dvector& p : points) {
      double a, b;
      plane.get_coordinates(p, a, b);
      EXPECT_TRUE(qv_test::is_inside(polygon, plane, a, b) ||
                  qv_test::get_distance_from_edges(polygon, plane, a, b) < 1e-4)
          << "seed 61, polygon " << i;
    }
  }
}

TEST(qv_regular_distribution, refuses_spacings_that_make_no_sense) {
  for (const float spacing : {0.0f, -1.0f, std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::denorm_min(), 1e-9f, 0.001f})
    EXPECT_TRUE(l_shape.regular_distribution(spacing).is_empty()) << spacing;
  EXPECT_TRUE(qv_polygon().regular_distribution(1).is_empty());
  // Narrow enough to have few points, but of too many rows.
  EXPECT_TRUE(
      make_polygon({make_rectangle(0, 0, 1e-3f, 1e6f)}).regular_distribution(0.01f).is_empty());
}

TEST(qv_random_distribution, is_the_same_for_the_same_seed) {
  const auto points = l_shape.random_distribution(100, 4895);
  EXPECT_EQ(points.get_count(), 100);
  EXPECT_EQ(points, l_shape.random_distribution(100, 4895));
  EXPECT_FALSE(points == l_shape.random_distribution(100, 4896));
  const auto more = l_shape.random_distribution(200, 4895);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(more[i], points[i]);
}

// Worked out in another language: in the triangle (0,0) (4,0) (0,3) no triangle needs choosing but
// one number is drawn for it, and the next two are s = 0.9594 and t = 0.9165, turned back to
// 1 − s and 1 − t.
TEST(qv_random_distribution, first_point_of_a_triangle_by_hand) {
  const auto points = make_polygon({{{0, 0, 0}, {4, 0, 0}, {0, 3, 0}}}).random_distribution(1, 1);
  ASSERT_EQ(points.get_count(), 1);
  EXPECT_EQ(points[0].x, static_cast<float>(4 * (1 - 0x1.eb3cc9a53271ep-1)));
  EXPECT_EQ(points[0].y, static_cast<float>(3 * (1 - 0x1.d53e5ea5f3879p-1)));
  EXPECT_EQ(points[0].z, 0);
}

TEST(qv_random_distribution, points_are_inside_and_in_the_plane) {
  qv_random random(62);
  for (int i = 0; i < 100; ++i) {
    const auto plane = qv_test::make_random_plane(random);
    const qv_polygon polygon = plane.make_polygon(
        {qv_test::make_star(random, 11, 0, 0, 5), qv_test::make_star(random, 5, 0, 0, 1)});
    const qv_plane_frame frame(plane.origin, plane.get_normal());
    for (const qv_3dvector& p : polygon.random_distribution(200, i)) {
      double a, b;
      plane.get_coordinates(p, a, b);
      EXPECT_NEAR(frame.get_height(p), 0, 1e-4);
      EXPECT_TRUE(qv_test::is_inside(polygon, plane, a, b) ||
                  qv_test::get_distance_from_edges(polygon, plane, a, b) < 1e-4)
          << "seed 62, polygon " << i;
    }
  }
}

TEST(qv_random_distribution, is_uniform_over_the_area) {
  constexpr int count = 48'000;
  // 48 squares of half a metre, of which each has the same share.
  std::array<std::array<int, 8>, 8> counts{};
  for (const qv_3dvector& p : l_shape.random_distribution(count, 63)) {
    const auto column = static_cast<std::size_t>(std::min(2 * p.x, 7.0f));
    const auto row = static_cast<std::size_t>(std::min(2 * p.y, 7.0f));
    ++counts[row][column];
  }
  double chi_square = 0;
  for (std::size_t row = 0; row < 8; ++row)
    for (std::size_t column = 0; column < 8; ++column) {
      if (row >= 4 && column >= 4) {
        EXPECT_EQ(counts[row][column], 0);
        continue;
      }
      const double expected = count / 48.0;
      const double off = counts[row][column] - expected;
      chi_square += off * off / expected;
    }
  // 47 degrees of freedom: above 92 in one case of 10,000.
  EXPECT_LT(chi_square, 92);
}

TEST(qv_random_distribution, is_uniform_over_parts_of_different_size) {
  const qv_polygon polygon =
      make_polygon({make_rectangle(0, 0, 3, 3), make_rectangle(10, 0, 11, 1)});
  int in_the_small_one = 0;
  for (const qv_3dvector& p : polygon.random_distribution(20'000, 64)) in_the_small_one += p.x > 5;
  // A tenth, with a standard deviation of 42.
  EXPECT_NEAR(in_the_small_one, 2000, 5 * 42.4);
}

TEST(qv_random_distribution, gives_none_where_there_is_nothing_to_give) {
  EXPECT_TRUE(l_shape.random_distribution(0, 1).is_empty());
  EXPECT_TRUE(l_shape.random_distribution(-5, 1).is_empty());
  EXPECT_TRUE(l_shape.random_distribution(std::numeric_limits<int>::max(), 1).is_empty());
  EXPECT_TRUE(qv_polygon().random_distribution(10, 1).is_empty());
}
