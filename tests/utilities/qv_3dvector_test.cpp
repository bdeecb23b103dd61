#include "utilities/qv_3dvector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using qv::qv_3dvector;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();

struct angles {
  float azimuth = -1;
  float tilt = -1;
};

angles get_angles(const qv_3dvector& v) {
  angles result;
  v.get_angles(result.azimuth, result.tilt);
  return result;
}

}  // namespace

TEST(qv_3dvector, adds_scales_and_multiplies_component_by_component) {
  const qv_3dvector u(1, 2, 3), v(4, -5, 6);
  EXPECT_EQ(u + v, qv_3dvector(5, -3, 9));
  EXPECT_EQ(u - v, qv_3dvector(-3, 7, -3));
  EXPECT_EQ(-u, qv_3dvector(-1, -2, -3));
  EXPECT_EQ(2 * u, qv_3dvector(2, 4, 6));
  EXPECT_EQ(u / 2, qv_3dvector(0.5f, 1, 1.5f));
  EXPECT_EQ(u.dot(v), 4 - 10 + 18);
  EXPECT_EQ(u.cross(v), qv_3dvector(2 * 6 + 3 * 5, 3 * 4 - 1 * 6, -1 * 5 - 2 * 4));
}

TEST(qv_3dvector, normalize_returns_the_former_length) {
  qv_3dvector v(3, 0, -4);
  EXPECT_EQ(v.normalize(), 5);
  EXPECT_EQ(v, qv_3dvector(0.6f, 0, -0.8f));
  EXPECT_EQ(qv_3dvector(0, 7, 0).normalized(), qv_3dvector(0, 1, 0));
}

TEST(qv_3dvector, normalizes_lengths_whose_squares_leave_single_precision) {
  for (const float size : {1e-40f, 1e-30f, 1e30f, std::numeric_limits<float>::max()}) {
    const qv_3dvector unit = qv_3dvector(size, -size, size).normalized();
    EXPECT_NEAR(unit.length(), 1, 1e-6) << size;
  }
}

TEST(qv_3dvector, leaves_a_zero_vector_and_one_that_is_not_finite_as_it_is) {
  qv_3dvector zero;
  EXPECT_EQ(zero.normalize(), 0);
  EXPECT_EQ(zero, qv_3dvector());
  qv_3dvector endless(infinity, 1, 0);
  EXPECT_EQ(endless.normalize(), infinity);
  EXPECT_EQ(endless, qv_3dvector(infinity, 1, 0));
  qv_3dvector unknown(1, not_a_number, 0);
  EXPECT_TRUE(std::isnan(unknown.normalize()));
  EXPECT_EQ(unknown.x, 1);
}

TEST(qv_3dvector, a_nan_differs_from_everything) {
  const qv_3dvector v(not_a_number, 0, 0);
  EXPECT_FALSE(v == v);
  EXPECT_FALSE(v.is_finite());
}

TEST(qv_3dvector, angles_follow_the_axes) {
  EXPECT_EQ(get_angles({1, 0, 0}).azimuth, 0);
  EXPECT_EQ(get_angles({1, 0, 0}).tilt, 90);
  EXPECT_EQ(get_angles({0, 1, 0}).azimuth, 90);
  EXPECT_EQ(get_angles({0, -1, 0}).azimuth, -90);
  EXPECT_EQ(get_angles({0, 0, 2}).tilt, 0);
  EXPECT_EQ(get_angles({0, 0, 2}).azimuth, 0);
  EXPECT_EQ(get_angles({0, 0, -2}).tilt, 180);
  EXPECT_EQ(get_angles({0, 0, -2}).azimuth, 0);
  EXPECT_FLOAT_EQ(get_angles({1, 1, 1}).azimuth, 45);
  EXPECT_FLOAT_EQ(get_angles({1, 1, std::sqrt(2.0f)}).tilt, 45);
}

TEST(qv_3dvector, azimuth_at_the_seam_is_plus_180) {
  EXPECT_EQ(get_angles({-1, 0.0f, 0}).azimuth, 180);
  EXPECT_EQ(get_angles({-1, -0.0f, 0}).azimuth, 180);
  EXPECT_EQ(get_angles({-1, -1e-20f, 0}).azimuth, 180);
}

TEST(qv_3dvector, angles_of_nothing_are_zero) {
  for (const qv_3dvector& v :
       {qv_3dvector(), qv_3dvector(not_a_number, 0, 1), qv_3dvector(0, infinity, 0)}) {
    EXPECT_EQ(get_angles(v).azimuth, 0);
    EXPECT_EQ(get_angles(v).tilt, 0);
  }
}
