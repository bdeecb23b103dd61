#include "utilities/qv_ear_clipping.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "utilities/qv_random.h"

using namespace qv;

namespace {

plane::ring make_star(qv_random& random, int corners, double a, double b, double size,
                      bool clockwise) {
  plane::ring contour;
  for (int i = 0; i < corners; ++i) {
    const double angle = (clockwise ? -2 : 2) * std::numbers::pi * i / corners;
    const double radius = size * (0.3 + 0.7 * random.dice_double());
    contour.push_back({a + radius * std::cos(angle), b + radius * std::sin(angle)});
  }
  return contour;
}

double get_sum(const std::vector<plane::triangle>& triangles) {
  double sum = 0;
  for (const plane::triangle& t : triangles) {
    const double area = plane::signed_area({t.corners[0], t.corners[1], t.corners[2]});
    EXPECT_GT(area, 0);
    sum += area;
  }
  return sum;
}

}  // namespace

TEST(qv_ear_clipping, fills_contours_without_holes) {
  qv_random random(81);
  for (int i = 0; i < 300; ++i) {
    const int corners = 3 + static_cast<int>(random.dice() % 40);
    const plane::part piece{make_star(random, corners, 0, 0, 5, false), {}};
    const auto triangles = plane::clip_ears(piece);
    EXPECT_EQ(static_cast<int>(triangles.size()), corners - 2) << "seed 81, contour " << i;
    EXPECT_NEAR(get_sum(triangles), plane::area(piece), 1e-9) << "seed 81, contour " << i;
  }
}

TEST(qv_ear_clipping, leaves_holes_open) {
  qv_random random(82);
  for (int i = 0; i < 300; ++i) {
    plane::part piece{{{-5, -5}, {5, -5}, {5, 5}, {-5, 5}}, {}};
    for (int a = -4; a <= 4; a += 2)
      for (int b = -4; b <= 4; b += 2)
        if (random.dice() % 2 == 0) piece.holes.push_back(make_star(random, 7, a, b, 0.9, true));
    EXPECT_NEAR(get_sum(plane::clip_ears(piece)), plane::area(piece), 1e-9)
        << "seed 82, part " << i;
  }
}

TEST(qv_ear_clipping, passes_straight_corners) {
  const plane::part piece{{{0, 0}, {1, 0}, {2, 0}, {4, 0}, {4, 3}, {0, 3}, {0, 1}}, {}};
  EXPECT_DOUBLE_EQ(get_sum(plane::clip_ears(piece)), 12);
}

TEST(qv_ear_clipping, ends_on_contours_that_it_cannot_fill) {
  EXPECT_TRUE(plane::clip_ears({{{0, 0}, {1, 1}}, {}}).empty());
  EXPECT_TRUE(plane::clip_ears({{{0, 0}, {1, 1}, {2, 2}, {3, 3}}, {}}).empty());
  const plane::part clockwise{{{0, 0}, {0, 1}, {1, 1}, {1, 0}}, {}};
  EXPECT_TRUE(plane::clip_ears(clockwise).empty());
  const plane::part bow_tie{{{0, 0}, {2, 2}, {2, 0}, {0, 2}}, {}};
  EXPECT_LE(plane::clip_ears(bow_tie).size(), 2u);
}
