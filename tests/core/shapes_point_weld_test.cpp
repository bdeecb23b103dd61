#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "core/shapes/point_weld.h"
#include "utilities/qv_random.h"

namespace {

using namespace qv;

// Every kept point is asked, in order: what the hash grid must find.
std::vector<int> weld_slowly(const qv_list<qv_3dvector>& points, float distance) {
  std::vector<int> kept;
  for (int i = 0; i < points.get_count(); ++i) {
    kept.push_back(i);
    for (int j = 0; j < i && kept[i] == i; ++j) {
      const double x = double{points[i].x} - points[j].x, y = double{points[i].y} - points[j].y,
                   z = double{points[i].z} - points[j].z;
      const double squared = x * x + y * y + z * z;
      if (kept[j] == j && (squared == 0 || squared < double{distance} * distance)) kept[i] = j;
    }
  }
  return kept;
}

TEST(weld_points, agrees_with_asking_every_kept_point) {
  constexpr int seed = 20;
  SCOPED_TRACE(seed);
  qv_random random(seed);
  for (float distance : {0.0f, 1e-6f, 0.01f, 0.1f, 1.0f, 50.0f}) {
    for (float shift : {0.0f, 3000.0f}) {
      qv_list<qv_3dvector> points;
      for (int i = 0; i < 400; ++i) {
        // Steps of 1/20, so that many points coincide and many lie exactly a distance apart.
        const auto dice = [&] { return shift + std::floor(random.dice_float() * 20) / 20; };
        const float x = dice(), y = dice(), z = dice();
        points.append({x, y, z});
      }
      EXPECT_EQ(weld_points(points, distance), weld_slowly(points, distance))
          << "distance " << distance << ", shift " << shift;
    }
  }
}

TEST(weld_points, keeps_points_exactly_the_distance_apart) {
  EXPECT_EQ(weld_points({{0, 0, 0}, {0.5f, 0, 0}}, 0.5f), (std::vector<int>{0, 1}));
  EXPECT_EQ(weld_points({{0, 0, 0}, {0.49f, 0, 0}}, 0.5f), (std::vector<int>{0, 0}));
}

TEST(weld_points, joins_the_first_kept_point_and_not_a_welded_one) {
  // The second joins the first; the third is near the second only, and so is kept.
  EXPECT_EQ(weld_points({{0, 0, 0}, {0.9f, 0, 0}, {1.8f, 0, 0}, {0.95f, 0, 0}}, 1),
            (std::vector<int>{0, 0, 2, 0}));
}

TEST(weld_points, takes_both_zeros_for_one) {
  EXPECT_EQ(weld_points({{0.0f, 1, 2}, {-0.0f, 1, 2}}, 0), (std::vector<int>{0, 0}));
}

TEST(weld_points, survives_what_is_no_point_and_no_distance) {
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  constexpr float infinity = std::numeric_limits<float>::infinity();
  constexpr float largest = std::numeric_limits<float>::max();
  const qv_list<qv_3dvector> points = {{nan, 0, 0},     {nan, 0, 0}, {infinity, 0, 0}, {0, 0, 0},
                                       {largest, 0, 0}, {0, 0, 0},   {0, 1, 0}};
  EXPECT_EQ(weld_points(points, nan), (std::vector<int>{0, 1, 2, 3, 4, 3, 6}));
  EXPECT_EQ(weld_points(points, -1), (std::vector<int>{0, 1, 2, 3, 4, 3, 6}));
  EXPECT_EQ(weld_points(points, 1e-30f), (std::vector<int>{0, 1, 2, 3, 4, 3, 6}));
  EXPECT_EQ(weld_points(points, infinity), (std::vector<int>{0, 1, 2, 3, 4, 3, 3}));
  EXPECT_TRUE(weld_points({}, 1).empty());
}

}  // namespace
