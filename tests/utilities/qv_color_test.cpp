#include "utilities/qv_color.h"

#include <gtest/gtest.h>

#include <limits>

using qv::qv_color;

TEST(qv_color, is_opaque_black_at_first) {
  EXPECT_EQ(qv_color(), qv_color(0, 0, 0, 1));
}

TEST(qv_color, scales_and_adds_all_four_components) {
  qv_color color(0.5f, 0.25f, 1, 0.5f);
  color *= 2;
  EXPECT_EQ(color, qv_color(1, 0.5f, 2, 1));
  color += qv_color(1, 1, 1, 1);
  EXPECT_EQ(color, qv_color(2, 1.5f, 3, 2));
}

TEST(qv_color, a_nan_differs_from_everything) {
  const qv_color color(0, 0, std::numeric_limits<float>::quiet_NaN(), 1);
  EXPECT_FALSE(color == color);
}
