#include "utilities/qv_random.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>

using qv::qv_3dvector;
using qv::qv_random;

// The expected numbers of the first three tests were worked out in another language from the
// published definition; with the seed left unscrambled and the stream of the author's demonstration
// that program gives her numbers a15c02b7, 7b47f409, ba1d3330.

TEST(qv_random, the_same_seed_gives_the_same_numbers_on_every_machine) {
  qv_random zero(0), one(1), minus_one(-1);
  for (const std::uint32_t expected : {0x347e36a9u, 0x26f7b671u, 0x11b8d67cu, 0x681095dau})
    EXPECT_EQ(zero.dice(), expected);
  for (const std::uint32_t expected : {0xae073f5cu, 0x039e3aa6u, 0xf59e64dcu, 0x94c9c79eu})
    EXPECT_EQ(one.dice(), expected);
  for (const std::uint32_t expected : {0x5ac81912u, 0xaa702824u, 0xc829e004u, 0xa94c6e1du})
    EXPECT_EQ(minus_one.dice(), expected);
}

TEST(qv_random, maps_numbers_to_the_unit_interval) {
  qv_random doubles(1), floats(1);
  for (const double expected : {0x1.5c0e7e80e78eap-1, 0x1.eb3cc9a53271ep-1, 0x1.d53e5ea5f3879p-1})
    EXPECT_EQ(doubles.dice_double(), expected);
  for (const float expected : {0x1.5c0e7ep-1f, 0x1.cf1dp-7f})
    EXPECT_EQ(floats.dice_float(), expected);
}

TEST(qv_random, directions_are_the_same_to_the_last_bit) {
  qv_random random(4895);
  EXPECT_EQ(random.dice_vector(), qv_3dvector(-0x1.c9e6acp-3f, -0x1.6ea026p-1f, 0x1.529032p-1f));
  EXPECT_EQ(random.dice_vector(), qv_3dvector(0x1.20dde4p-1f, 0x1.463e1ep-1f, -0x1.0cd2a8p-1f));
  qv_random other(65421);
  EXPECT_EQ(other.dice_vector(), qv_3dvector(0x1.3c5ef8p-1f, 0x1.db5d8ap-2f, 0x1.44e688p-1f));
}

TEST(qv_random, floats_stay_below_one) {
  qv_random random(7);
  float highest = 0, lowest = 1;
  for (int i = 0; i < 1'000'000; ++i) {
    const float value = random.dice_float();
    highest = std::max(highest, value);
    lowest = std::min(lowest, value);
  }
  EXPECT_LT(highest, 1.0f);
  EXPECT_GE(lowest, 0.0f);
  EXPECT_GT(highest, 0.99999f);
  EXPECT_LT(lowest, 0.00001f);
}

TEST(qv_random, directions_have_length_1) {
  qv_random random(3);
  for (int i = 0; i < 10'000; ++i) EXPECT_NEAR(random.dice_vector().length(), 1, 2e-7);
}

// By Archimedes each coordinate of a uniform direction is uniform over [−1, 1]; so is the azimuth.
TEST(qv_random, directions_are_uniform_over_the_sphere) {
  constexpr int draws = 160'000, classes = 16;
  std::array<std::array<int, classes>, 4> counts{};
  qv_random random(12345);
  for (int i = 0; i < draws; ++i) {
    const qv_3dvector v = random.dice_vector();
    const double turns = std::atan2(v.y, v.x) / 3.14159265358979 / 2 + 0.5;
    const std::array<double, 4> shares{(v.x + 1) / 2, (v.y + 1) / 2, (v.z + 1) / 2, turns};
    for (std::size_t k = 0; k < 4; ++k)
      ++counts[k][static_cast<std::size_t>(std::min(shares[k] * classes, classes - 1.0))];
  }
  for (const auto& count : counts) {
    double chi_square = 0;
    for (const int n : count) {
      const double expected = draws / static_cast<double>(classes);
      chi_square += (n - expected) * (n - expected) / expected;
    }
    // 15 degrees of freedom: above 44.3 in one case of 10,000.
    EXPECT_LT(chi_square, 44.3);
  }
}

TEST(qv_random, neighbouring_seeds_are_unrelated) {
  // Means of the first number over 10,000 seeds in a row, and of products of neighbours.
  double sum = 0, products = 0, before = 0;
  constexpr int seeds = 10'000;
  for (int seed = 0; seed < seeds; ++seed) {
    const double value = qv_random(seed).dice_double() - 0.5;
    sum += value;
    products += value * before;
    before = value;
  }
  EXPECT_NEAR(sum / seeds, 0, 5 * std::sqrt(1.0 / 12 / seeds));
  EXPECT_NEAR(products / seeds, 0, 5.0 / 12 / std::sqrt(seeds));
}
