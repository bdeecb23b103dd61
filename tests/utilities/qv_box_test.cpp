#include "utilities/qv_box.h"

#include <gtest/gtest.h>

#include <limits>

using qv::qv_3dvector;
using qv::qv_box;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();

}  // namespace

TEST(qv_box, is_empty_at_first_and_after_clear) {
  qv_box box;
  EXPECT_TRUE(box.is_empty());
  EXPECT_EQ(box.get_min(), qv_3dvector());
  EXPECT_EQ(box.get_size(), qv_3dvector());
  box.enlarge(qv_3dvector(1, 2, 3));
  EXPECT_FALSE(box.is_empty());
  box.clear();
  EXPECT_TRUE(box.is_empty());
  EXPECT_EQ(box, qv_box());
}

TEST(qv_box, takes_its_corners_in_any_order) {
  const qv_box box({4, -1, 2}, {1, 5, 0});
  EXPECT_EQ(box.get_min(), qv_3dvector(1, -1, 0));
  EXPECT_EQ(box.get_max(), qv_3dvector(4, 5, 2));
  EXPECT_EQ(box.get_origin(), box.get_min());
  EXPECT_EQ(box.get_size(), qv_3dvector(3, 6, 2));
  EXPECT_EQ(box.get_center(), qv_3dvector(2.5f, 2, 1));
}

TEST(qv_box, of_one_point_is_not_empty) {
  const qv_box box({1, 1, 1}, {1, 1, 1});
  EXPECT_FALSE(box.is_empty());
  EXPECT_EQ(box.get_size(), qv_3dvector());
}

TEST(qv_box, grows_to_hold_boxes_and_is_not_changed_by_an_empty_one) {
  qv_box box({0, 0, 0}, {1, 1, 1});
  box.enlarge(qv_box({2, -3, 0.5f}, {3, 0, 0.6f}));
  EXPECT_EQ(box, qv_box({0, -3, 0}, {3, 1, 1}));
  box.enlarge(qv_box());
  EXPECT_EQ(box, qv_box({0, -3, 0}, {3, 1, 1}));
  qv_box empty;
  empty.enlarge(box);
  EXPECT_EQ(empty, box);
}

TEST(qv_box, leaves_out_points_that_are_not_finite) {
  qv_box box({0, 0, 0}, {1, 1, 1});
  box.enlarge(qv_3dvector(5, not_a_number, 0));
  box.enlarge(qv_3dvector(0, 0, -infinity));
  EXPECT_EQ(box, qv_box({0, 0, 0}, {1, 1, 1}));
  EXPECT_TRUE(qv_box({not_a_number, 0, 0}, {0, infinity, 0}).is_empty());
}
