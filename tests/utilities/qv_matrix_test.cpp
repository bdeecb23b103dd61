#include "utilities/qv_matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "utilities/qv_random.h"

using qv::qv_3dvector;
using qv::qv_matrix;
using qv::qv_random;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();

void expect_near(const qv_3dvector& v, const qv_3dvector& expected, double tolerance = 1e-5) {
  EXPECT_NEAR(v.x, expected.x, tolerance);
  EXPECT_NEAR(v.y, expected.y, tolerance);
  EXPECT_NEAR(v.z, expected.z, tolerance);
}

qv_matrix random_placement(qv_random& random) {
  qv_matrix m = qv_matrix::translation(10 * random.dice_vector());
  for (int axis = 0; axis < 3; ++axis) m *= qv_matrix::rotation(axis, 360 * random.dice_float());
  return m * qv_matrix::scaling({0.5f + random.dice_float(), 0.5f + random.dice_float(),
                                 0.5f + random.dice_float()});
}

}  // namespace

TEST(qv_matrix, is_the_identity_at_first) {
  EXPECT_EQ(qv_matrix().transform_point({1, 2, 3}), qv_3dvector(1, 2, 3));
  EXPECT_EQ(qv_matrix() * qv_matrix(), qv_matrix());
}

TEST(qv_matrix, turns_counter_clockwise_seen_from_the_tip_of_the_axis) {
  EXPECT_EQ(qv_matrix::rotation(0, 90).transform_point({0, 1, 0}), qv_3dvector(0, 0, 1));
  EXPECT_EQ(qv_matrix::rotation(1, 90).transform_point({0, 0, 1}), qv_3dvector(1, 0, 0));
  EXPECT_EQ(qv_matrix::rotation(2, 90).transform_point({1, 0, 0}), qv_3dvector(0, 1, 0));
  expect_near(qv_matrix::rotation(2, 30).transform_point({2, 0, 0}), {std::sqrt(3.0f), 1, 0}, 1e-6);
}

TEST(qv_matrix, quarter_turns_are_exact) {
  for (int axis = 0; axis < 3; ++axis) {
    for (const float degrees : {-3600090.0f, -450.0f, -180.0f, 0.0f, 90.0f, 270.0f, 720.0f}) {
      const qv_matrix m = qv_matrix::rotation(axis, degrees);
      for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
          const float element = m.get(i, j);
          EXPECT_TRUE(element == 0 || element == 1 || element == -1) << axis << " " << degrees;
        }
    }
    const qv_matrix quarter = qv_matrix::rotation(axis, 90);
    EXPECT_EQ(quarter * quarter * quarter * quarter, qv_matrix());
    EXPECT_EQ(qv_matrix::rotation(axis, 360), qv_matrix());
    EXPECT_EQ(qv_matrix::rotation(axis, -270), quarter);
    EXPECT_EQ(qv_matrix::rotation(axis, 450), quarter);
  }
}

TEST(qv_matrix, another_axis_or_an_angle_that_is_not_finite_is_the_identity) {
  EXPECT_EQ(qv_matrix::rotation(3, 45), qv_matrix());
  EXPECT_EQ(qv_matrix::rotation(-1, 45), qv_matrix());
  EXPECT_EQ(qv_matrix::rotation(0, not_a_number), qv_matrix());
  EXPECT_EQ(qv_matrix::rotation(0, infinity), qv_matrix());
}

TEST(qv_matrix, a_product_applies_its_right_hand_factor_first) {
  const qv_matrix turn = qv_matrix::rotation(2, 90), move = qv_matrix::translation({5, 0, 0});
  EXPECT_EQ((move * turn).transform_point({1, 0, 0}), qv_3dvector(5, 1, 0));
  EXPECT_EQ((turn * move).transform_point({1, 0, 0}), qv_3dvector(0, 6, 0));
  qv_matrix same = turn;
  same *= same;
  EXPECT_EQ(same, qv_matrix::rotation(2, 180));
}

TEST(qv_matrix, directions_are_not_moved) {
  const qv_matrix m = qv_matrix::translation({5, 6, 7}) * qv_matrix::scaling({2, 2, 2});
  EXPECT_EQ(m.transform_direction({1, 0, 0}), qv_3dvector(2, 0, 0));
}

TEST(qv_matrix, the_inverse_undoes) {
  qv_random random(5);
  for (int i = 0; i < 200; ++i) {
    const qv_matrix m = random_placement(random);
    const qv_3dvector p = 10 * random.dice_vector();
    expect_near(m.get_inverse().transform_point(m.transform_point(p)), p, 1e-4);
  }
}

TEST(qv_matrix, determinant_is_the_volume_of_the_unit_cube) {
  EXPECT_EQ(qv_matrix::scaling({2, 3, 4}).get_determinant(), 24);
  EXPECT_EQ(qv_matrix::scaling({-2, 3, 4}).get_determinant(), -24);
  EXPECT_NEAR((qv_matrix::rotation(0, 33) * qv_matrix::rotation(1, 71)).get_determinant(), 1, 1e-6);
}

TEST(qv_matrix, a_normal_stays_that_of_the_transformed_edges) {
  qv_random random(6);
  for (int i = 0; i < 200; ++i) {
    qv_matrix m = random_placement(random);
    if (i % 2 == 1) m *= qv_matrix::scaling({1, -1, 1});
    const qv_3dvector u = random.dice_vector(), v = random.dice_vector();
    const qv_3dvector normal = u.cross(v).normalized();
    const qv_3dvector expected =
        m.transform_direction(u).cross(m.transform_direction(v)).normalized();
    if (u.cross(v).length() > 0.1f) expect_near(m.transform_normal(normal), expected, 1e-4);
  }
}

TEST(qv_matrix, a_mirror_image_turns_a_normal_over) {
  const qv_matrix mirror = qv_matrix::scaling({-1, 1, 1});
  EXPECT_EQ(mirror.transform_normal({0, 0, 1}), qv_3dvector(0, 0, -1));
  EXPECT_EQ(mirror.transform_normal({1, 0, 0}), qv_3dvector(1, 0, 0));
}

TEST(qv_matrix, a_singular_matrix_has_no_normal_and_the_identity_for_inverse) {
  const qv_matrix flat = qv_matrix::scaling({1, 1, 0});
  EXPECT_EQ(flat.transform_normal({0, 0, 1}), qv_3dvector());
  EXPECT_EQ(flat.get_inverse(), qv_matrix());
  qv_matrix unknown;
  unknown.set(1, 1, not_a_number);
  EXPECT_EQ(unknown.transform_normal({0, 0, 1}), qv_3dvector());
  EXPECT_EQ(unknown.get_inverse(), qv_matrix());
}
