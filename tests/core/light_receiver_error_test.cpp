#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "light_receivers.h"

// How large the errors are that a receiver admits, and whether it admits the right ones.

using namespace qv;
using namespace qv_test;

namespace {

/// So many that the share within one standard error is itself known to 2.3 %.
constexpr int seed_count = 400;

/// A wall under an overhang beside a wall that reflects, on level ground.
struct yard {
  explicit yard(const std::vector<qv_3dvector>& suns) {
    add_sun(scene, suns);
    add_surface(scene, parallelogram({0, -6, 3}, {1, 0, 0}, {0, 12, 0}));
    add_surface(scene, parallelogram({4, 6, 0}, {0, -9, 0}, {0, 0, 2.5f}), {0.5f});
    add_surface(scene, parallelogram({-20, -20, 0}, {40, 0, 0}, {0, 40, 0}), {0.3f});
  }
  qv_polygon polygon = to_polygon({0, -2, 0.2f}, {0, 4, 0}, {0, 0, 2.8f});
  qv_scene scene;
};

struct reading {
  double value;
  double sigma;
};

/// Of many seeds, the share whose value lies within `widths` of its own sigma of `truth`.
double share_within(const std::vector<reading>& readings, double truth, double widths) {
  int within = 0;
  for (const reading& r : readings)
    if (std::fabs(r.value - truth) <= widths * r.sigma) ++within;
  return static_cast<double>(within) / static_cast<double>(readings.size());
}

double mean_of(const std::vector<reading>& readings) {
  double sum = 0;
  for (const reading& r : readings) sum += r.value;
  return sum / static_cast<double>(readings.size());
}

std::vector<reading> read_seeds(qv_scene& scene, const qv_polygon& polygon,
                                const receiver_settings& settings,
                                const std::function<reading(const qv_receiver&)>& read) {
  std::vector<reading> readings;
  for (int seed = 0; seed < seed_count; ++seed) {
    test_receiver receiver(scene, polygon, settings);
    receiver.compute(seed);
    readings.push_back(read(receiver));
  }
  return readings;
}

/// 68 % and 95 % of the errors within one and two sigma, five per cent more or less.
void expect_right_sigma(const std::vector<reading>& readings, double truth) {
  EXPECT_NEAR(share_within(readings, truth, 1), 0.683, 0.05);
  EXPECT_NEAR(share_within(readings, truth, 2), 0.954, 0.05);
}

/// Sum of all four results over the steps, each times its irradiation.
double total(const qv_receiver& receiver) {
  double sum = 0;
  for (int i = 0; i < receiver.get_sun()->get_nb_values(); ++i) {
    sum += 800 * (double(receiver.get_direct_direct(i)) + receiver.get_indirect_direct(i)) +
           100 * (double(receiver.get_direct_diffuse(i)) + receiver.get_indirect_diffuse(i));
  }
  return sum;
}

}  // namespace

TEST(qv_receiver, knows_its_error_of_the_beam) {
  // A wall 2.8 m high under an overhang 1 m deep, but for the centimetre to the points.
  qv_scene scene;
  std::vector<qv_3dvector> suns;
  std::vector<double> truths;
  for (double elevation : {30.0, 40.0, 45.0, 50.0, 52.0, 57.0, 60.0, 64.0}) {
    const double shade = std::tan(elevation * std::numbers::pi / 180);
    suns.push_back(direction_at(elevation, 0));
    truths.push_back((2.8 - 0.99 * shade) / 2.8 * suns.back().x);
  }
  add_sun(scene, suns);
  add_surface(scene, parallelogram({0, -6, 3}, {1, 0, 0}, {0, 12, 0}));
  const qv_polygon wall = to_polygon({0, -2, 0.2f}, {0, 4, 0}, {0, 0, 2.8f});
  std::vector<reading> errors;
  for (int seed = 0; seed < seed_count; ++seed) {
    test_receiver receiver(scene, wall, {.direct_rays = 8 * 128, .montecarlo_rays = 0});
    receiver.compute(seed);
    for (int step = 0; step < 8; ++step) {
      errors.push_back({receiver.get_direct_direct(step) - truths[static_cast<std::size_t>(step)],
                        receiver.get_direct_direct_sigma(step)});
    }
  }
  expect_right_sigma(errors, 0);
}

TEST(qv_receiver, knows_its_error_of_the_sky) {
  yard place({direction_at(50, 30)});
  const auto read = [](const qv_receiver& receiver) {
    return reading{receiver.get_direct_diffuse(0) + receiver.get_indirect_diffuse(0),
                   receiver.get_diffuse_sigma(0)};
  };
  const auto readings = read_seeds(
      place.scene, place.polygon, {.direct_rays = 0, .montecarlo_rays = 512, .ray_depth = 1}, read);
  test_receiver dense(place.scene, place.polygon,
                      {.direct_rays = 0, .montecarlo_rays = 100000, .ray_depth = 1});
  dense.compute(-1);
  expect_right_sigma(readings, read(dense).value);
}

TEST(qv_receiver, knows_its_error_of_the_reflected_sun) {
  yard place({direction_at(50, 160)});
  const auto read = [](const qv_receiver& receiver) {
    return reading{receiver.get_indirect_direct(0), receiver.get_indirect_direct_sigma(0)};
  };
  const auto readings = read_seeds(
      place.scene, place.polygon, {.direct_rays = 0, .montecarlo_rays = 512, .ray_depth = 1}, read);
  test_receiver dense(place.scene, place.polygon,
                      {.direct_rays = 0, .montecarlo_rays = 100000, .ray_depth = 1});
  dense.compute(-1);
  expect_right_sigma(readings, read(dense).value);
}

TEST(qv_receiver, knows_its_error_of_the_beam_of_many_steps) {
  // With more steps than samples each, the steps' points are chosen from a common stock.
  yard place(year_of_suns(8));
  const auto readings = read_seeds(place.scene, place.polygon,
                                   {.direct_rays = 16, .montecarlo_rays = 0, .ray_depth = 0},
                                   [](const qv_receiver& receiver) {
                                     return reading{total(receiver), receiver.get_sum_sigma()};
                                   });
  test_receiver few(place.scene, place.polygon,
                    {.direct_rays = 16, .montecarlo_rays = 0, .ray_depth = 0});
  few.compute(0);
  EXPECT_GT(few.get_direct_samples(), 4096);
  test_receiver dense(place.scene, place.polygon,
                      {.direct_rays = 500000, .montecarlo_rays = 0, .ray_depth = 0});
  dense.compute(-1);
  expect_right_sigma(readings, total(dense));
  EXPECT_NEAR(mean_of(readings), total(dense), 4 * few.get_sum_sigma() / std::sqrt(seed_count));
}

TEST(qv_receiver, knows_its_error_of_a_year) {
  yard place(year_of_suns(60));
  const auto readings = read_seeds(place.scene, place.polygon,
                                   {.direct_rays = 16, .montecarlo_rays = 256, .ray_depth = 1},
                                   [](const qv_receiver& receiver) {
                                     return reading{total(receiver), receiver.get_sum_sigma()};
                                   });
  test_receiver dense(place.scene, place.polygon,
                      {.direct_rays = 200000, .montecarlo_rays = 50000, .ray_depth = 1});
  dense.compute(-1);
  expect_right_sigma(readings, total(dense));
  EXPECT_NEAR(mean_of(readings), total(dense), 0.01 * total(dense));
}

TEST(qv_receiver, has_errors_of_its_own_beside_a_receiver_of_the_same_seed) {
  // Two walls under one endless overhang and over one endless ground: the same in everything but
  // their place.
  qv_scene scene;
  add_sun(scene, {direction_at(45, 0)});
  add_surface(scene, parallelogram({0, -500, 3}, {1, 0, 0}, {0, 1000, 0}));
  add_surface(scene, parallelogram({-500, -500, 0}, {1000, 0, 0}, {0, 1000, 0}), {0.3f});
  constexpr int count = 50;
  const receiver_settings settings = {.direct_rays = 64, .montecarlo_rays = 128, .ray_depth = 1};
  double values[2][count];
  double means[2] = {};
  for (int seed = 0; seed < count; ++seed) {
    for (int k = 0; k < 2; ++k) {
      const auto y = static_cast<float>(8 * k);
      test_receiver receiver(scene, to_polygon({0, y, 0.2f}, {0, 4, 0}, {0, 0, 2.8f}), settings);
      receiver.compute(seed);
      values[k][seed] = total(receiver);
      means[k] += values[k][seed] / count;
    }
  }
  double product = 0, squares[2] = {};
  for (int seed = 0; seed < count; ++seed) {
    product += (values[0][seed] - means[0]) * (values[1][seed] - means[1]);
    for (int k = 0; k < 2; ++k) squares[k] += std::pow(values[k][seed] - means[k], 2);
  }
  // Chance alone makes a correlation of 1 / √50.
  EXPECT_LT(std::fabs(product) / std::sqrt(squares[0] * squares[1]), 0.4);
}

TEST(qv_receiver, has_no_bias_on_a_wall_with_windows_cut_out) {
  // A screen shades all that lies left of x = 0; the wall has more of its area there.
  qv_scene scene;
  add_sun(scene, {direction_at(90, 0)});
  add_surface(scene, parallelogram({-10, -10, 3}, {10, 0, 0}, {0, 20, 0}));
  qv_polygon polygon = to_polygon({-2, -2, 0}, {4, 0, 0}, {0, 4, 0});
  polygon.add_contour({{0.5f, -1.5f, 0}, {0.5f, 1.5f, 0}, {1.5f, 1.5f, 0}, {1.5f, -1.5f, 0}});
  polygon.add_contour({{-1.5f, 0.5f, 0}, {-1.5f, 1, 0}, {-1, 1, 0}, {-1, 0.5f, 0}});
  const auto readings = read_seeds(scene, polygon, {.direct_rays = 16, .montecarlo_rays = 0},
                                   [](const qv_receiver& receiver) {
                                     return reading{receiver.get_direct_direct(0), 0};
                                   });
  // 16 m² less 3 m² on the right and 0.25 m² on the left.
  EXPECT_NEAR(mean_of(readings), 5 / 12.75, 0.01);
}

TEST(qv_receiver, stops_early_when_the_error_is_small_enough) {
  yard place(year_of_suns(30));
  const receiver_settings full = {.direct_rays = 40000, .montecarlo_rays = 20000};
  receiver_settings bounded = full;
  bounded.direct_error = 0.01f;
  bounded.diffuse_error = 0.03f;
  test_receiver all(place.scene, place.polygon, full);
  all.compute(3);
  EXPECT_GE(all.get_direct_samples(), 40000);
  EXPECT_EQ(all.get_diffuse_samples(), 20000);
  std::vector<reading> readings;
  for (int seed = 0; seed < 20; ++seed) {
    test_receiver some(place.scene, place.polygon, bounded);
    some.compute(seed);
    EXPECT_LT(some.get_direct_samples(), all.get_direct_samples() / 2);
    EXPECT_LT(some.get_diffuse_samples(), all.get_diffuse_samples() / 2);
    EXPECT_LT(some.get_sum_sigma(), 0.05 * total(some));
    readings.push_back({total(some), std::hypot(some.get_sum_sigma(), all.get_sum_sigma())});
  }
  EXPECT_GE(share_within(readings, total(all), 3), 0.9);
}

TEST(qv_receiver, admits_that_a_small_shadow_may_be_missed) {
  // A stick that shades a thousandth of the surface: whether a sample meets it or not, the truth
  // lies within the error.
  qv_scene scene;
  add_sun(scene, {direction_at(90, 0)});
  add_surface(scene, parallelogram({0, -10, 3}, {0.001f, 0, 0}, {0, 20, 0}));
  for (int seed = 0; seed < 20; ++seed) {
    test_receiver receiver(scene, to_polygon({-0.5f, -0.5f, 0}, {1, 0, 0}, {0, 1, 0}),
                           {.direct_rays = 16, .montecarlo_rays = 0});
    receiver.compute(seed);
    EXPECT_NEAR(receiver.get_direct_direct(0), 0.999, 3 * receiver.get_direct_direct_sigma(0));
  }
}
