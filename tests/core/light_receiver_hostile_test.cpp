#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <vector>

#include "light_receivers.h"

using namespace qv;
using namespace qv_test;

namespace {

constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

void expect_zeros(const qv_receiver& receiver) {
  for (int i = -1; i < 3; ++i) {
    EXPECT_EQ(receiver.get_direct_direct(i), 0) << i;
    EXPECT_EQ(receiver.get_indirect_direct(i), 0) << i;
    EXPECT_EQ(receiver.get_direct_diffuse(i), 0) << i;
    EXPECT_EQ(receiver.get_indirect_diffuse(i), 0) << i;
    EXPECT_EQ(receiver.get_direct_direct_sigma(i), 0) << i;
    EXPECT_EQ(receiver.get_indirect_direct_sigma(i), 0) << i;
    EXPECT_EQ(receiver.get_diffuse_sigma(i), 0) << i;
  }
  EXPECT_EQ(receiver.get_sum_sigma(), 0);
}

qv_polygon ground() {
  return to_polygon({-1, -1, 0}, {2, 0, 0}, {0, 2, 0});
}

/// Everything that a receiver found.
std::vector<float> results(const qv_receiver& receiver) {
  std::vector<float> all = {receiver.get_sum_sigma(), receiver.get_direct_samples(),
                            receiver.get_diffuse_samples()};
  for (int i = 0; i < receiver.get_sun()->get_nb_values(); ++i) {
    for (float value : {receiver.get_direct_direct(i), receiver.get_indirect_direct(i),
                        receiver.get_direct_diffuse(i), receiver.get_indirect_diffuse(i),
                        receiver.get_direct_direct_sigma(i), receiver.get_indirect_direct_sigma(i),
                        receiver.get_diffuse_sigma(i)}) {
      all.push_back(value);
    }
  }
  return all;
}

/// A small town: boxes of different heights and finishes, and a mirror.
void add_town(qv_scene& scene) {
  for (int i = 0; i < 9; ++i) {
    const int column = i % 3, row = i / 3;
    const auto x = static_cast<float>(column) * 8 - 8, y = static_cast<float>(row) * 8 - 8;
    add_surface(scene, box({x - 2, y - 2, 0}, {x + 2, y + 2, 3 + static_cast<float>(i)}),
                {0.3f + 0.05f * static_cast<float>(i), i == 4 ? 0.2f : 0, 0, i == 7 ? 0.1f : 0});
  }
  add_surface(scene, square(30, 0), {0.2f});
}

}  // namespace

TEST(qv_receiver, yields_zeros_for_a_surface_that_is_none) {
  qv_scene scene;
  add_sun(scene, {direction_at(40, 0)});
  add_surface(scene, box({1, 1, 0}, {2, 2, 2}), {0.4f});
  qv_polygon flat;
  flat.add_contour({{0, 0, 0}, {1, 1, 0}, {2, 2, 0}});
  qv_polygon broken;
  broken.add_contour({{0, 0, 0}, {1, not_a_number, 0}, {1, 1, 0}, {0, infinite, 0}});
  for (const qv_polygon& polygon : {qv_polygon(), flat, broken}) {
    test_receiver receiver(scene, polygon);
    receiver.set_normal({0, 0, 1});
    receiver.compute(1);
    expect_zeros(receiver);
    EXPECT_TRUE(receiver.get_samples().is_empty());
  }
  for (const qv_3dvector& normal :
       {qv_3dvector(), qv_3dvector(not_a_number, 0, 1), qv_3dvector(infinite, 0, 0)}) {
    test_receiver receiver(scene, ground());
    receiver.set_normal(normal);
    receiver.compute(1);
    expect_zeros(receiver);
  }
}

TEST(qv_receiver, yields_zeros_without_scene_or_sun) {
  qv_receiver nowhere(nullptr, nullptr, "simulation");
  nowhere.set_polygon(ground());
  nowhere.set_direct_rays(100);
  nowhere.set_montecarlo_rays(100);
  nowhere.compute(1);
  expect_zeros(nowhere);

  qv_scene scene;
  add_surface(scene, box({1, 1, 0}, {2, 2, 2}), {0.4f});
  test_receiver receiver(scene, ground());
  receiver.compute(1);
  expect_zeros(receiver);
}

TEST(qv_receiver, yields_zeros_before_it_has_computed) {
  qv_scene scene;
  add_sun(scene, {direction_at(40, 0)});
  const test_receiver receiver(scene, ground());
  expect_zeros(receiver);
}

TEST(qv_receiver, casts_no_rays_that_were_not_granted) {
  qv_scene scene;
  add_sun(scene, {direction_at(40, 180)});
  add_surface(scene, box({1, -5, 0}, {2, 5, 2}), {0.4f});
  test_receiver beam_only(scene, ground(), {.montecarlo_rays = 0});
  beam_only.compute(1);
  EXPECT_GT(beam_only.get_direct_direct(0), 0);
  EXPECT_EQ(beam_only.get_direct_diffuse(0), 0);
  EXPECT_EQ(beam_only.get_indirect_direct(0), 0);
  EXPECT_EQ(beam_only.get_diffuse_samples(), 0);
  test_receiver sky_only(scene, ground(), {.direct_rays = -5});
  sky_only.compute(1);
  EXPECT_EQ(sky_only.get_direct_direct(0), 0);
  EXPECT_GT(sky_only.get_direct_diffuse(0), 0);
  EXPECT_EQ(sky_only.get_direct_samples(), 0);
}

TEST(qv_receiver, leaves_out_steps_without_sun) {
  qv_scene scene;
  qvi_sun* sun = add_sun(scene, {direction_at(40, 180),
                                 direction_at(40, 180),
                                 direction_at(-10, 180),
                                 {not_a_number, 0, 1},
                                 {0, 0, 0},
                                 direction_at(50, 180) * 7});
  sun->set_direct_irradiation({500, -20, 500, 500, 500, 500, 500, 500});
  sun->set_diffuse_irradiation({100, -3, not_a_number, infinite, 1, 1});
  add_surface(scene, box({1, -5, 0}, {2, 5, 2}), {0.4f});
  test_receiver receiver(scene, ground());
  receiver.compute(1);
  EXPECT_GT(receiver.get_direct_direct(0), 0);
  for (int i = 1; i < 5; ++i) EXPECT_EQ(receiver.get_direct_direct(i), 0) << i;
  EXPECT_GT(receiver.get_direct_direct(5), receiver.get_direct_direct(0));
  EXPECT_LE(receiver.get_direct_direct(5), std::sin(50 * std::numbers::pi_v<float> / 180));
  EXPECT_EQ(receiver.get_direct_direct(6), 0);
  EXPECT_TRUE(std::isfinite(receiver.get_sum_sigma()));
}

TEST(qv_receiver, counts_steps_to_the_end_of_the_shortest_list) {
  qv_scene scene;
  qvi_sun* sun = add_sun(scene, {direction_at(40, 0), direction_at(50, 0), direction_at(60, 0)});
  sun->set_direct_irradiation({500, 500});
  test_receiver receiver(scene, ground());
  receiver.compute(1);
  EXPECT_GT(receiver.get_direct_diffuse(1), 0);
  EXPECT_EQ(receiver.get_direct_direct(2), 0);
  EXPECT_EQ(receiver.get_direct_diffuse(2), 0);
}

TEST(qv_receiver, takes_coefficients_without_sense_for_what_they_can_mean) {
  // Nothing is reflected for what is negative or not a number, and never more than what comes.
  for (float coefficient : {-1.0f, not_a_number, infinite, 3.0f}) {
    qv_scene scene;
    add_sun(scene, {direction_at(60, 180)});
    add_surface(scene, parallelogram({2, 50, -50}, {0, -100, 0}, {0, 0, 100}),
                {coefficient, coefficient, coefficient, coefficient});
    test_receiver receiver(scene, to_polygon({0, -1, 0}, {0, 2, 0}, {0, 0, 2}));
    receiver.compute(1);
    for (float value : {receiver.get_indirect_direct(0), receiver.get_direct_diffuse(0),
                        receiver.get_indirect_diffuse(0)}) {
      EXPECT_GE(value, 0);
      EXPECT_LE(value, 1);
    }
  }
}

TEST(qv_receiver, sees_the_default_finish_where_a_mesh_has_no_shader) {
  qv_scene scene;
  const qv_3dvector sun = direction_at(30, 180);
  add_sun(scene, {sun});
  qvi_mesh* wall =
      add_surface(scene, parallelogram({10, 2000, -2000}, {0, -4000, 0}, {0, 0, 4000}));
  wall->set_front_shader(nullptr);
  test_receiver receiver(scene, to_polygon({0, -0.5f, 0}, {0, 1, 0}, {0, 0, 1}));
  receiver.compute(5);
  EXPECT_NEAR(receiver.get_indirect_direct(0), 0.4 * -sun.x, 0.01);
}

TEST(qv_receiver, notices_changes_between_computations) {
  qv_scene scene;
  add_sun(scene, {direction_at(90, 0)});
  qvi_mesh* roof = add_surface(scene, square(20, 3));
  test_receiver receiver(scene, ground());
  receiver.compute(1);
  EXPECT_EQ(receiver.get_direct_direct(0), 0);
  roof->set_front_shader(add_shader(scene, {0, 0, 0, 0.5f}));
  receiver.compute(1);
  EXPECT_FLOAT_EQ(receiver.get_direct_direct(0), 0.5f);
  // A shader that is in no scene tells nobody when it changes.
  const owned<qvi_shader> outside(new qvi_shader);
  roof->set_front_shader(outside.get());
  receiver.compute(1);
  EXPECT_EQ(receiver.get_direct_direct(0), 0);
  outside->set_direct_transmission(0.25f, qv_spectrum::solar);
  receiver.compute(1);
  EXPECT_FLOAT_EQ(receiver.get_direct_direct(0), 0.25f);
  roof->set_raytracing_layers({"picking"});
  receiver.compute(1);
  EXPECT_EQ(receiver.get_direct_direct(0), 1);
  roof->set_front_shader(nullptr);
}

TEST(qv_receiver, gives_the_same_bits_for_the_same_seed_and_others_for_another) {
  qv_scene scene;
  add_sun(scene, year_of_suns(30));
  add_town(scene);
  const receiver_settings few = {.direct_rays = 1000, .montecarlo_rays = 1000};
  test_receiver first(scene, to_polygon({-6, -6, 0}, {4, 0, 0}, {0, 0, 2}), few);
  test_receiver second(scene, first.get_polygon(), few);
  first.compute(874597);
  second.compute(874597);
  EXPECT_EQ(results(first), results(second));
  second.compute(874598);
  EXPECT_NE(results(first), results(second));
  second.compute(874597);
  EXPECT_EQ(results(first), results(second));
}

TEST(qv_receiver, gives_the_same_bits_beside_any_number_of_threads) {
  const auto compute_all = [](int thread_count) {
    qv_scene scene;
    add_sun(scene, year_of_suns(60));
    add_town(scene);
    std::vector<std::vector<float>> all(8);
    const auto work = [&](int first) {
      for (int i = first; i < 8; i += thread_count) {
        const float x = -6 + 1.5f * static_cast<float>(i);
        test_receiver receiver(scene, to_polygon({x, -5.9f, 0.5f}, {1, 0, 0}, {0, 0, 2}),
                               {.direct_rays = 1000, .montecarlo_rays = 500});
        receiver.compute(i);
        all[static_cast<std::size_t>(i)] = results(receiver);
      }
    };
    std::vector<std::jthread> threads;
    for (int i = 1; i < thread_count; ++i) threads.emplace_back(work, i);
    work(0);
    threads.clear();
    return all;
  };
  // On a scene of their own, which no one has prepared.
  EXPECT_EQ(compute_all(1), compute_all(4));
}

TEST(qv_receiver, keeps_sample_points_over_the_whole_area) {
  qv_scene scene;
  add_sun(scene, {direction_at(40, 0)});
  add_surface(scene, box({3, 3, 0}, {4, 4, 2}), {0.4f});
  test_receiver receiver(scene, ground());
  receiver.compute(1);
  ASSERT_GT(receiver.get_samples().get_count(), 100);
  int quarters[4] = {};
  for (const qv_3dvector& point : receiver.get_samples()) {
    EXPECT_NEAR(point.z, 0.01, 1e-6);
    EXPECT_LE(std::fabs(point.x), 1);
    EXPECT_LE(std::fabs(point.y), 1);
    ++quarters[(point.x > 0 ? 1 : 0) + (point.y > 0 ? 2 : 0)];
  }
  const double quarter = receiver.get_samples().get_count() / 4.0;
  for (int count : quarters) EXPECT_NEAR(count, quarter, 12);
}
