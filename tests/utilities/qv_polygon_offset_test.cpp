#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "tests/utilities/qv_polygon_makers.h"
#include "utilities/qv_polygon.h"

using namespace qv;
using qv_test::contour;
using qv_test::make_polygon;
using qv_test::make_rectangle;

namespace {

constexpr int square_join = 0;
constexpr int round_join = 1;
constexpr int mitre_join = 2;

qv_polygon offset(qv_polygon polygon, float distance, int join) {
  polygon.offset(distance, join);
  return polygon;
}

const qv_polygon square = make_polygon({make_rectangle(0, 0, 4, 4)});

double get_nearest(const qv_polygon& polygon, const qv_3dvector& vertex) {
  double nearest = std::numeric_limits<double>::infinity();
  for (const qv_3dvector& v : polygon.get_contour_vertices())
    nearest = std::min<double>(nearest, (v - vertex).length());
  return nearest;
}

}  // namespace

TEST(qv_polygon_offset, mitres_keep_the_corners) {
  const qv_polygon grown = offset(square, 0.5f, mitre_join);
  EXPECT_EQ(grown.get_area(), 25);
  EXPECT_EQ(grown.get_contour_sizes(), qv_list<unsigned int>{4});
  EXPECT_TRUE(qv_test::has_vertex(grown, {-0.5f, 4.5f, 0}));
}

TEST(qv_polygon_offset, round_corners_are_arcs) {
  // Square, four strips, and a circle of 64 chords.
  const double circle = 64 / 2.0 * 0.25 * std::sin(2 * std::numbers::pi / 64);
  EXPECT_NEAR(offset(square, 0.5f, round_join).get_area(), 16 + 4 * 4 * 0.5 + circle, 1e-4);
}

TEST(qv_polygon_offset, square_corners_are_cut_off_at_the_distance) {
  // Each corner of the mitred square loses a triangle of height √2/2 − 1/2.
  const double height = 0.5 * (std::numbers::sqrt2 - 1);
  EXPECT_NEAR(offset(square, 0.5f, square_join).get_area(), 25 - 4 * height * height, 1e-4);
}

TEST(qv_polygon_offset, shrinks_and_leaves_nothing_in_the_end) {
  for (const int join : {square_join, round_join, mitre_join}) {
    EXPECT_NEAR(offset(square, -1, join).get_area(), 4, 1e-5);
    EXPECT_TRUE(offset(square, -2.001f, join).is_empty());
    EXPECT_TRUE(offset(square, -1e6f, join).is_empty());
  }
}

TEST(qv_polygon_offset, holes_shrink_while_the_outer_contour_grows) {
  const qv_polygon pierced = make_polygon({make_rectangle(0, 0, 4, 4), make_rectangle(1, 1, 3, 3)});
  EXPECT_NEAR(offset(pierced, 0.5f, mitre_join).get_area(), 25 - 1, 1e-5);
  EXPECT_NEAR(offset(pierced, 1.5f, mitre_join).get_area(), 49, 1e-5);
  EXPECT_NEAR(offset(pierced, -0.25f, mitre_join).get_area(), 3.5 * 3.5 - 2.5 * 2.5, 1e-5);
}

TEST(qv_polygon_offset, parts_that_meet_grow_together) {
  const qv_polygon two = make_polygon({make_rectangle(0, 0, 1, 1), make_rectangle(2, 0, 3, 1)});
  const qv_polygon one = offset(two, 0.6f, mitre_join);
  EXPECT_EQ(one.get_contour_count(), 1);
  EXPECT_NEAR(one.get_area(), (3 + 1.2) * (1 + 1.2), 1e-5);
}

TEST(qv_polygon_offset, out_and_back_with_mitres_returns_a_convex_polygon) {
  qv_random random(41);
  for (int i = 0; i < 300; ++i) {
    const auto plane = qv_test::make_random_plane(random);
    const int corners = 3 + static_cast<int>(random.dice() % 12);
    const qv_polygon polygon = plane.make_polygon({qv_test::make_circle(corners, 0, 0, 5)});
    const float distance = 0.01f + random.dice_float();
    const qv_polygon back = offset(offset(polygon, distance, mitre_join), -distance, mitre_join);
    ASSERT_EQ(back.get_contour_count(), 1) << "seed 41, polygon " << i;
    EXPECT_EQ(back.get_contour_vertices().get_count(), corners) << "seed 41, polygon " << i;
    for (const qv_3dvector& vertex : polygon.get_contour_vertices())
      EXPECT_LT(get_nearest(back, vertex), 1e-4) << "seed 41, polygon " << i;
  }
}

TEST(qv_polygon_offset, by_a_positive_distance_never_loses_a_point) {
  qv_random random(42);
  for (int i = 0; i < 100; ++i) {
    const auto plane = qv_test::make_random_plane(random);
    const qv_polygon polygon = plane.make_polygon({qv_test::make_star(random, 15, 0, 0, 5)});
    for (const int join : {square_join, round_join, mitre_join}) {
      const qv_polygon grown = offset(polygon, 0.3f, join);
      qv_polygon lost = polygon;
      lost.substracts(grown);
      EXPECT_TRUE(lost.is_empty()) << "seed 42, polygon " << i;
      EXPECT_GT(grown.get_area(), polygon.get_area());
    }
  }
}

TEST(qv_polygon_offset, by_nothing_only_tidies_up) {
  const qv_polygon bow_tie = make_polygon({{{0, 0, 0}, {2, 2, 0}, {2, 0, 0}, {0, 2, 0}}});
  const qv_polygon tidy = offset(bow_tie, 0, mitre_join);
  EXPECT_EQ(tidy.get_contour_sizes(), (qv_list<unsigned int>{3, 3}));
  EXPECT_NEAR(qv_test::get_oriented_area(tidy), 2, 1e-6);
  EXPECT_EQ(offset(square, 0, mitre_join).get_contour(0), square.get_contour(0));
}

TEST(qv_polygon_offset, by_a_distance_that_is_not_finite_changes_nothing) {
  for (const float distance :
       {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
        -std::numeric_limits<float>::infinity(), std::numeric_limits<float>::max()})
    EXPECT_EQ(offset(square, distance, mitre_join).get_contour(0), square.get_contour(0));
}

TEST(qv_polygon_offset, of_an_empty_polygon_is_empty) {
  for (const int join : {-1, square_join, round_join, mitre_join, 17})
    EXPECT_TRUE(offset(qv_polygon(), 1, join).is_empty());
}
