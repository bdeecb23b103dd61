#include "utilities/qv_plane_frame.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "utilities/qv_random.h"

using qv::qv_3dvector;
using qv::qv_plane_frame;
using qv::qv_random;

namespace {

constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();

struct coordinates {
  double a = 0;
  double b = 0;
};

coordinates to_plane(const qv_plane_frame& frame, const qv_3dvector& p) {
  coordinates result;
  frame.to_plane(p, result.a, result.b);
  return result;
}

}  // namespace

TEST(qv_plane_frame, a_horizontal_plane_keeps_x_and_y) {
  const qv_plane_frame frame({1, 2, 3}, {0, 0, 5});
  ASSERT_TRUE(frame.is_valid());
  EXPECT_EQ(to_plane(frame, {4, 6, 9}).a, 3);
  EXPECT_EQ(to_plane(frame, {4, 6, 9}).b, 4);
  EXPECT_EQ(frame.get_height({4, 6, 9}), 6);
  EXPECT_EQ(frame.to_space(3, 4), qv_3dvector(4, 6, 3));
}

TEST(qv_plane_frame, a_slight_lean_does_not_turn_the_axes_of_a_horizontal_plane) {
  const qv_plane_frame frame({0, 0, 0}, {3e-5f, -2e-5f, 1});
  EXPECT_NEAR(to_plane(frame, {1, 0, 0}).a, 1, 1e-8);
  EXPECT_NEAR(to_plane(frame, {1, 0, 0}).b, 0, 1e-8);
}

TEST(qv_plane_frame, in_a_wall_the_first_axis_is_horizontal_and_the_second_goes_up) {
  const qv_plane_frame frame({0, 0, 0}, {0, -1, 0});
  EXPECT_EQ(frame.to_space(1, 0), qv_3dvector(1, 0, 0));
  EXPECT_EQ(frame.to_space(0, 1), qv_3dvector(0, 0, 1));
}

TEST(qv_plane_frame, goes_to_the_plane_and_back) {
  qv_random random(11);
  for (int i = 0; i < 1000; ++i) {
    const qv_3dvector origin = 100 * random.dice_vector();
    const qv_3dvector normal = random.dice_vector();
    const qv_plane_frame frame(origin, normal);
    const qv_3dvector p = frame.to_space(20 * random.dice_double() - 10, 7 * random.dice_double());
    EXPECT_NEAR(frame.get_height(p), 0, 2e-5);
    const coordinates c = to_plane(frame, p);
    const qv_3dvector back = frame.to_space(c.a, c.b);
    EXPECT_NEAR((back - p).length(), 0, 2e-5);
  }
}

TEST(qv_plane_frame, is_right_handed_and_keeps_lengths) {
  qv_random random(12);
  for (int i = 0; i < 1000; ++i) {
    const qv_3dvector normal = random.dice_vector();
    const qv_plane_frame frame({0, 0, 0}, normal);
    const qv_3dvector u = frame.to_space(1, 0), v = frame.to_space(0, 1);
    EXPECT_NEAR(u.length(), 1, 1e-6);
    EXPECT_NEAR(v.length(), 1, 1e-6);
    EXPECT_NEAR(u.cross(v).dot(normal), 1, 1e-6);
  }
}

TEST(qv_plane_frame, without_a_normal_or_a_point_is_invalid) {
  EXPECT_FALSE(qv_plane_frame({0, 0, 0}, {0, 0, 0}).is_valid());
  EXPECT_FALSE(qv_plane_frame({0, 0, 0}, {not_a_number, 0, 1}).is_valid());
  EXPECT_FALSE(qv_plane_frame({0, not_a_number, 0}, {0, 0, 1}).is_valid());
  EXPECT_TRUE(qv_plane_frame({0, 0, 0}, {0, 0, 1e-30f}).is_valid());
}
