#include "core/light/qv_receiver.h"

#include <gtest/gtest.h>

#include <cmath>

#include "light_receivers.h"

// Against closed forms. Where a result has a standard error, it may be three of them off; the
// little that is added allows for single precision and for scenes that are not quite infinite.

using namespace qv;
using namespace qv_test;

namespace {

constexpr double rounding = 1e-5;
/// Scenes that should be infinite end at this distance, m.
constexpr float far_away = 2000;
constexpr double finite_scene = 2e-3;

void expect_direct(const qv_receiver& receiver, int step, double expected) {
  EXPECT_NEAR(receiver.get_direct_direct(step), expected,
              3 * receiver.get_direct_direct_sigma(step) + rounding)
      << "step " << step;
}

void expect_indirect(const qv_receiver& receiver, int step, double expected, double extra = 0) {
  EXPECT_NEAR(receiver.get_indirect_direct(step), expected,
              3 * receiver.get_indirect_direct_sigma(step) + rounding + extra)
      << "step " << step;
}

void expect_sky(const qv_receiver& receiver, double direct, double indirect, double extra = 0) {
  EXPECT_NEAR(receiver.get_direct_diffuse(0), direct,
              3 * receiver.get_diffuse_sigma(0) + rounding + extra);
  EXPECT_NEAR(receiver.get_indirect_diffuse(0), indirect,
              3 * receiver.get_diffuse_sigma(0) + rounding + extra);
}

}  // namespace

TEST(qv_receiver, gets_the_cosine_of_the_sun_and_its_share_of_the_sky_in_the_open) {
  qv_scene scene;
  const std::vector<qv_3dvector> suns = {direction_at(90, 0), direction_at(30, 0),
                                         direction_at(10, 200), direction_at(-5, 0)};
  add_sun(scene, suns);
  add_surface(scene, square(5, 0));
  for (double tilt : {0.0, 20.0, 45.0, 90.0, 120.0}) {
    const qv_3dvector normal = direction_at(90 - tilt, 0);
    const qv_3dvector u(0, 1, 0), v = normal.cross(u);
    // Above the surface in the scene, where it is not hidden for any tilt up to 90°.
    test_receiver receiver(scene, to_polygon(qv_3dvector(0, 0, 50) - u - v, u * 2, v * 2));
    if (tilt > 90) receiver.set_ray_depth(0);
    receiver.compute(2);
    for (int i = 0; i < 4; ++i) {
      const bool up = suns[static_cast<std::size_t>(i)].z > 0;
      const double cosine = suns[static_cast<std::size_t>(i)].dot(receiver.get_normal());
      expect_direct(receiver, i, up ? std::max(0.0, cosine) : 0.0);
    }
    expect_sky(receiver, (1 + std::cos(tilt * std::numbers::pi / 180)) / 2, 0, 1e-6);
  }
}

TEST(qv_receiver, is_exact_where_nothing_stands_before_the_surface) {
  qv_scene scene;
  add_sun(scene, {direction_at(40, 0)});
  add_surface(scene, box({-5, -5, 0}, {5, 5, 8}), {0.4f});
  test_receiver receiver(scene, to_polygon({5, -5, 0}, {0, 10, 0}, {0, 0, 8}));
  receiver.compute(1);
  EXPECT_FLOAT_EQ(receiver.get_direct_direct(0), std::cos(40 * std::numbers::pi_v<float> / 180));
  EXPECT_EQ(receiver.get_direct_direct_sigma(0), 0);
  EXPECT_EQ(receiver.get_direct_diffuse(0), 0.5f);
  EXPECT_EQ(receiver.get_diffuse_sigma(0), 0);
  EXPECT_EQ(receiver.get_sum_sigma(), 0);
}

TEST(qv_receiver, is_shaded_by_an_overhang_as_far_as_it_reaches) {
  // A wall 3 m high facing +x, an overhang 1 m deep at its top: of the sun at elevation e and at
  // azimuth a from the normal, the upper tan e / cos a metres lie in the shade.
  qv_scene scene;
  std::vector<qv_3dvector> suns;
  std::vector<double> shares;
  for (double elevation : {10.0, 30.0, 45.0, 60.0, 70.0, 80.0}) {
    for (double azimuth : {0.0, 25.0, -50.0}) {
      suns.push_back(direction_at(elevation, azimuth));
      const double shade =
          std::tan(elevation * std::numbers::pi / 180) / std::cos(azimuth * std::numbers::pi / 180);
      shares.push_back(std::max(0.0, 1 - shade / 3));
    }
  }
  add_sun(scene, suns);
  add_surface(scene, parallelogram({0, -far_away, 3}, {1, 0, 0}, {0, 2 * far_away, 0}));
  test_receiver receiver(scene, to_polygon({0, -2, 0}, {0, 4, 0}, {0, 0, 3}));
  // The points lie a centimetre before the wall.
  receiver.set_offset(0.001f);
  receiver.compute(7);
  for (std::size_t i = 0; i < suns.size(); ++i) {
    EXPECT_NEAR(receiver.get_direct_direct(static_cast<int>(i)), shares[i] * suns[i].x,
                3 * receiver.get_direct_direct_sigma(static_cast<int>(i)) + 1e-3)
        << i;
    EXPECT_LT(receiver.get_direct_direct_sigma(static_cast<int>(i)), 0.004) << i;
  }
}

TEST(qv_receiver, sees_the_sky_of_a_street_from_its_middle) {
  // Cosine of the angle up to which the walls reach.
  qv_scene scene;
  add_sun(scene, {direction_at(40, 0)});
  add_surface(scene, parallelogram({-6, -far_away, 0}, {0, 2 * far_away, 0}, {0, 0, 9}));
  add_surface(scene, parallelogram({6, -far_away, 0}, {0, 2 * far_away, 0}, {0, 0, 9}));
  test_receiver receiver(scene, to_polygon({-0.01f, -0.01f, 0}, {0.02f, 0, 0}, {0, 0.02f, 0}));
  receiver.compute(3);
  expect_sky(receiver, std::cos(std::atan2(9, 6)), 0, finite_scene);
  EXPECT_LT(receiver.get_diffuse_sigma(0), 0.005);
}

TEST(qv_receiver, sees_the_sky_through_the_mouth_of_a_cylinder) {
  // View factor of a disc of radius r at height h from below its centre: r² / (r² + h²).
  qv_scene scene;
  add_sun(scene, {direction_at(40, 0)});
  std::vector<corners> tube;
  constexpr int sides = 96;
  const auto around = [](int i, float z) {
    const double angle = 2 * std::numbers::pi * i / sides;
    return qv_3dvector(static_cast<float>(2 * std::cos(angle)),
                       static_cast<float>(2 * std::sin(angle)), z);
  };
  for (int i = 0; i < sides; ++i) {
    tube.push_back({around(i, 0), around(i + 1, 0), around(i + 1, 3)});
    tube.push_back({around(i, 0), around(i + 1, 3), around(i, 3)});
  }
  add_surface(scene, tube);
  test_receiver receiver(scene, to_polygon({-0.01f, -0.01f, 0}, {0.02f, 0, 0}, {0, 0.02f, 0}));
  receiver.compute(3);
  expect_sky(receiver, 4.0 / 13, 0, finite_scene);
}

TEST(qv_receiver, gets_what_an_endless_wall_before_it_reflects) {
  // The wall fills the half-space before the receiver: sky on it is 1/2, sun its cosine.
  qv_scene scene;
  const std::vector<qv_3dvector> suns = {direction_at(30, 180), direction_at(60, 230),
                                         direction_at(45, 0)};
  add_sun(scene, suns);
  add_surface(scene,
              parallelogram({10, far_away, -far_away}, {0, -2 * far_away, 0}, {0, 0, 2 * far_away}),
              {0.3f});
  test_receiver receiver(scene, to_polygon({0, -0.5f, 0}, {0, 1, 0}, {0, 0, 1}));
  receiver.compute(5);
  for (int i = 0; i < 3; ++i) {
    const double cosine = std::max(0.0f, -suns[static_cast<std::size_t>(i)].x);
    expect_direct(receiver, i, 0);
    expect_indirect(receiver, i, 0.3 * cosine, finite_scene);
  }
  expect_sky(receiver, 0, 0.3 * 0.5, finite_scene);
}

TEST(qv_receiver, follows_the_reflected_sun_of_a_whole_year) {
  // As above, with so many suns that visibility is interpolated between nodes.
  qv_scene scene;
  const std::vector<qv_3dvector> suns = year_of_suns(7);
  add_sun(scene, suns);
  add_surface(scene,
              parallelogram({far_away, 10, -far_away}, {-2 * far_away, 0, 0}, {0, 0, 2 * far_away}),
              {0.3f});
  test_receiver receiver(scene, to_polygon({0.5f, 0, 0}, {-1, 0, 0}, {0, 0, 1}));
  receiver.compute(5);
  double got = 0, expected = 0;
  for (std::size_t i = 0; i < suns.size(); ++i) {
    const double cosine = suns[i].z > 0 ? std::max(0.0f, -suns[i].y) : 0.0;
    expect_indirect(receiver, static_cast<int>(i), 0.3 * cosine, finite_scene);
    got += receiver.get_indirect_direct(static_cast<int>(i));
    expected += 0.3 * cosine;
  }
  EXPECT_NEAR(got, expected, 0.005 * expected);
}

TEST(qv_receiver, gets_the_sun_from_a_mirror) {
  // A wall-high mirror beside level ground: the mirror image of the sun stands as high as the sun.
  for (float share : {1.0f, 0.5f}) {
    qv_scene scene;
    const std::vector<qv_3dvector> suns = {direction_at(50, 20), direction_at(35, -30),
                                           direction_at(50, 170)};
    add_sun(scene, suns);
    add_surface(scene, parallelogram({-3, -far_away, 0}, {0, 2 * far_away, 0}, {0, 0, far_away}),
                {0, share});
    test_receiver receiver(scene, to_polygon({-1, -1, 0}, {2, 0, 0}, {0, 2, 0}),
                           {.direct_rays = 10000});
    receiver.compute(2);
    expect_direct(receiver, 0, suns[0].z);
    expect_indirect(receiver, 0, share * suns[0].z);
    expect_direct(receiver, 1, suns[1].z);
    expect_indirect(receiver, 1, share * suns[1].z);
    expect_direct(receiver, 2, 0);  // behind the mirror
    expect_indirect(receiver, 2, 0);
    // The half of the sky that the mirror hides is replaced by the image of the other half.
    expect_sky(receiver, 0.5, 0.5 * share, 0.36);
    EXPECT_NEAR(receiver.get_direct_diffuse(0) + receiver.get_indirect_diffuse(0) / share, 1,
                3 * receiver.get_diffuse_sigma(0) / share + finite_scene);
  }
}

TEST(qv_receiver, gets_the_sun_over_two_mirrors) {
  // A roof keeps the sun off; it comes in through the open side, off a mirror that leans at 45° and
  // throws it level onto another one that throws it down.
  qv_scene scene;
  add_sun(scene, {direction_at(90, 0)});
  // Vertical light falls on the first mirror at x = 10, goes towards −x, and down at x = 0.
  add_surface(scene, parallelogram({9, -5, 5}, {2, 0, 2}, {0, 10, 0}), {0, 0.8f});
  add_surface(scene, parallelogram({-1, -5, 5}, {2, 0, 2}, {0, 10, 0}), {0, 0.5f});
  test_receiver receiver(scene, to_polygon({-0.5f, -1, 0}, {1, 0, 0}, {0, 2, 0}),
                         {.direct_rays = 10000});
  receiver.compute(2);
  expect_direct(receiver, 0, 0);
  expect_indirect(receiver, 0, 0.8 * 0.5);
  EXPECT_EQ(receiver.get_indirect_direct_sigma(0), 0);

  test_receiver shallow(scene, receiver.get_polygon(), {.ray_depth = 1});
  shallow.compute(2);
  expect_indirect(shallow, 0, 0);
}

TEST(qv_receiver, gets_the_sun_from_a_mirror_by_way_of_a_matt_wall) {
  // The mirror doubles the sun on the endless wall, which the receiver alone faces.
  qv_scene scene;
  const qv_3dvector sun = direction_at(40, 180);
  add_sun(scene, {sun});
  add_surface(scene, parallelogram({10, far_away, 0}, {0, -2 * far_away, 0}, {0, 0, 2 * far_away}),
              {0.3f});
  // Level ground that is a mirror, as far as the wall reaches.
  add_surface(scene,
              parallelogram({-far_away, -far_away, 0}, {2 * far_away, 0, 0}, {0, 2 * far_away, 0}),
              {0, 0.5f});
  // Looks straight at the wall from so near that little else is seen.
  test_receiver receiver(scene, to_polygon({9.9f, -0.5f, 50}, {0, 1, 0}, {0, 0, 1}));
  receiver.compute(5);
  expect_indirect(receiver, 0, 0.3 * 1.5 * -sun.x, 0.004);
}

TEST(qv_receiver, gets_what_panes_let_through) {
  qv_scene scene;
  const qv_3dvector sun = direction_at(70, 10);
  add_sun(scene, {sun});
  add_surface(scene, square(far_away, 3), {0, 0, 0, 0.6f});
  test_receiver receiver(scene, to_polygon({-1, -1, 0}, {2, 0, 0}, {0, 2, 0}));
  receiver.compute(2);
  EXPECT_NEAR(receiver.get_direct_direct(0), 0.6f * sun.z, 1e-6);
  expect_sky(receiver, 0.6, 0, finite_scene);
  expect_indirect(receiver, 0, 0);

  add_surface(scene, square(far_away, 5), {0, 0, 0, 0.5f});
  receiver.compute(2);
  EXPECT_NEAR(receiver.get_direct_direct(0), 0.3f * sun.z, 1e-6);
  expect_sky(receiver, 0.3, 0, finite_scene);
}

TEST(qv_receiver, takes_the_transmission_of_the_side_that_the_light_strikes) {
  qv_scene scene;
  add_sun(scene, {direction_at(90, 0)});
  qvi_mesh* pane = add_surface(scene, square(far_away, 3));
  pane->set_front_shader(add_shader(scene, {0, 0, 0, 0.7f}));
  pane->set_back_shader(add_shader(scene, {0, 0, 0, 0.2f}));
  test_receiver receiver(scene, to_polygon({-1, -1, 0}, {2, 0, 0}, {0, 2, 0}));
  receiver.compute(2);
  EXPECT_FLOAT_EQ(receiver.get_direct_direct(0), 0.7f);
  expect_sky(receiver, 0.7, 0, finite_scene);
}

TEST(qv_receiver, gets_what_frosted_glass_scatters) {
  qv_scene scene;
  const qv_3dvector sun = direction_at(60, 10);
  add_sun(scene, {sun});
  add_surface(scene, square(far_away, 3), {0, 0, 0.5f, 0});
  test_receiver receiver(scene, to_polygon({-1, -1, 0}, {2, 0, 0}, {0, 2, 0}));
  receiver.compute(2);
  expect_direct(receiver, 0, 0);
  expect_indirect(receiver, 0, 0.5 * sun.z, finite_scene);
  expect_sky(receiver, 0, 0.5, finite_scene);
}

TEST(qv_receiver, gets_back_all_light_that_enters_a_white_room) {
  // Nothing is absorbed, so all that enters through the hole in the roof leaves through it.
  qv_scene scene;
  const qv_3dvector sun = direction_at(65, 30);
  add_sun(scene, {sun});
  const finish white = {1.0f};
  add_surface(scene, parallelogram({0, 0, 0}, {4, 0, 0}, {0, 4, 0}), white);
  add_surface(scene, parallelogram({0, 0, 0}, {0, 4, 0}, {0, 0, 2}), white);
  add_surface(scene, parallelogram({4, 0, 0}, {0, 4, 0}, {0, 0, 2}), white);
  add_surface(scene, parallelogram({0, 0, 0}, {4, 0, 0}, {0, 0, 2}), white);
  add_surface(scene, parallelogram({0, 4, 0}, {4, 0, 0}, {0, 0, 2}), white);
  add_surface(scene, parallelogram({0, 0, 2}, {1, 0, 0}, {0, 4, 0}), white);
  add_surface(scene, parallelogram({1, 0, 2}, {3, 0, 0}, {0, 1, 0}), white);
  test_receiver receiver(scene, to_polygon({1, 1, 2}, {0, 3, 0}, {3, 0, 0}),
                         {.montecarlo_rays = 8000, .ray_depth = 100});
  receiver.set_offset(0.002f);
  receiver.compute(4);
  expect_direct(receiver, 0, 0);
  expect_sky(receiver, 0, 1, 2e-3);
  expect_indirect(receiver, 0, sun.z, 2e-3);
  EXPECT_LT(receiver.get_indirect_direct_sigma(0), 0.05);
}

TEST(qv_receiver, loses_to_a_surface_what_that_one_loses_to_it) {
  // Of two level plates of different sizes one hides from the other the same area times share of
  // the half-space as the other way round.
  const auto hidden = [](float own, float other) {
    qv_scene scene;
    add_sun(scene, {direction_at(90, 0)});
    std::vector<corners> plate = square(other / 2, 1.5f);
    for (corners& t : plate)
      for (qv_3dvector& p : t) p.x += 0.7f;
    add_surface(scene, plate);
    test_receiver receiver(scene, to_polygon({-own / 2, -own / 2, 0}, {own, 0, 0}, {0, own, 0}));
    receiver.set_offset(0.0001f);
    receiver.compute(11);
    return std::pair(own * own * (1 - receiver.get_direct_diffuse(0)),
                     own * own * receiver.get_diffuse_sigma(0));
  };
  const auto [small_area, small_sigma] = hidden(1, 4);
  const auto [large_area, large_sigma] = hidden(4, 1);
  EXPECT_NEAR(small_area, large_area, 3 * std::hypot(small_sigma, large_sigma) + 1e-3);
  EXPECT_GT(small_area, 0.3);
}

TEST(qv_receiver, multiplies_by_the_area_when_asked_for_the_whole_surface) {
  qv_scene scene;
  add_sun(scene, {direction_at(60, 10)});
  add_surface(scene, box({1, -1, 0}, {2, 1, 3}), {0.4f});
  qv_polygon polygon = to_polygon({-3, -1, 0}, {3, 0, 0}, {0, 2, 0});
  polygon.add_contour({{-2, -0.5f, 0}, {-2, 0.5f, 0}, {-1, 0.5f, 0}, {-1, -0.5f, 0}});
  test_receiver each(scene, polygon), whole(scene, polygon);
  whole.set_per_square_metter(false);
  each.compute(1);
  whole.compute(1);
  EXPECT_NEAR(whole.get_direct_direct(0), 5 * each.get_direct_direct(0), 1e-5);
  EXPECT_NEAR(whole.get_direct_direct_sigma(0), 5 * each.get_direct_direct_sigma(0), 1e-5);
  EXPECT_NEAR(whole.get_indirect_direct(0), 5 * each.get_indirect_direct(0), 1e-5);
  EXPECT_NEAR(whole.get_direct_diffuse(0), 5 * each.get_direct_diffuse(0), 1e-5);
  EXPECT_NEAR(whole.get_diffuse_sigma(0), 5 * each.get_diffuse_sigma(0), 1e-5);
  EXPECT_NEAR(whole.get_sum_sigma(), 5 * each.get_sum_sigma(), 1e-3);
  EXPECT_GT(each.get_sum_sigma(), 0);
}
