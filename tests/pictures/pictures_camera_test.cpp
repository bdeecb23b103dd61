#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "app/pictures/qv_camera.h"

namespace {

using qv::qv_camera;
using qv::qv_double3;
using qv::qv_picture_view;

constexpr qv_picture_view all_views[] = {qv_picture_view::iso,   qv_picture_view::perspective,
                                         qv_picture_view::north, qv_picture_view::east,
                                         qv_picture_view::south, qv_picture_view::west,
                                         qv_picture_view::plan};

const qv::qv_pixel_box room{20, 30, 400, 300};

std::vector<qv_double3> random_points(std::mt19937& random) {
  std::uniform_real_distribution<double> coordinate(-50, 50);
  std::vector<qv_double3> points;
  for (int i = 0; i < 40; ++i)
    points.emplace_back(coordinate(random), coordinate(random), coordinate(random) / 5);
  return points;
}

TEST(qv_camera, has_axes_at_right_angles_in_every_view) {
  for (const qv_picture_view view : all_views) {
    for (const double azimuth : {0.0, 30.0, 217.5, -400.0}) {
      const qv_camera camera(view, azimuth);
      EXPECT_NEAR(camera.get_right().length(), 1, 1e-12);
      EXPECT_NEAR(camera.get_up().length(), 1, 1e-12);
      const qv_double3 toward = camera.get_right().cross(camera.get_up());
      EXPECT_NEAR((toward - camera.get_toward()).length(), 0, 1e-12);
    }
  }
}

TEST(qv_camera, shows_each_facade_from_its_side) {
  EXPECT_EQ(qv_camera(qv_picture_view::south).get_toward(), qv_double3(0, -1, 0));
  EXPECT_EQ(qv_camera(qv_picture_view::south).get_right(), qv_double3(1, 0, 0));
  EXPECT_EQ(qv_camera(qv_picture_view::east).get_toward(), qv_double3(1, 0, 0));
  EXPECT_EQ(qv_camera(qv_picture_view::north).get_right(), qv_double3(-1, 0, 0));
  EXPECT_EQ(qv_camera(qv_picture_view::west).get_toward(), qv_double3(-1, 0, 0));
  EXPECT_EQ(qv_camera(qv_picture_view::plan).get_up(), qv_double3(0, 1, 0));
}

TEST(qv_camera, turns_with_the_axes_of_the_model) {
  // Of a model whose +Y looks east, the north façade looks east.
  EXPECT_EQ(qv_camera(qv_picture_view::north, 90).get_toward(), qv_double3(1, 0, 0));
  EXPECT_EQ(qv_camera(qv_picture_view::plan, 90).get_up(), qv_double3(1, 0, 0));
}

TEST(qv_camera, holds_every_point_in_its_room_and_fills_it) {
  constexpr unsigned int seed = 20261121;
  std::mt19937 random(seed);
  for (int round = 0; round < 20; ++round) {
    const std::vector<qv_double3> points = random_points(random);
    for (const qv_picture_view view : all_views) {
      SCOPED_TRACE(testing::Message() << "seed " << seed << ", round " << round << ", view "
                                      << static_cast<int>(view));
      qv_camera camera(view, 12);
      camera.fit(points, 500, 400, room);
      double widest = 0;
      for (const qv_double3& point : points) {
        const qv::qv_pixel_point at = camera.project(point);
        EXPECT_GE(at.x, room.left - 1e-6);
        EXPECT_LE(at.x, room.left + room.width + 1e-6);
        EXPECT_GE(at.y, room.top - 1e-6);
        EXPECT_LE(at.y, room.top + room.height + 1e-6);
        widest = std::max({widest, std::abs(at.x - room.left - room.width / 2) / room.width,
                           std::abs(at.y - room.top - room.height / 2) / room.height});
      }
      EXPECT_NEAR(widest, 0.5, 1e-6);
    }
  }
}

TEST(qv_camera, gives_opengl_the_same_places_and_a_depth_in_range) {
  std::mt19937 random(7);
  const std::vector<qv_double3> points = random_points(random);
  for (const qv_picture_view view : all_views) {
    SCOPED_TRACE(static_cast<int>(view));
    qv_camera camera(view, -33);
    camera.fit(points, 500, 400, room);
    const qv_camera::matrix placing = camera.get_placing();
    const qv_camera::matrix projection = camera.get_projection();
    const auto times = [](const qv_camera::matrix& m, const std::array<double, 4>& v) {
      std::array<double, 4> product{};
      for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 4; ++column)
          product[row] += m[4 * column + row] * v[column];
      return product;
    };
    for (const qv_double3& point : points) {
      const auto clip = times(projection, times(placing, {point.x, point.y, point.z, 1}));
      const qv::qv_pixel_point at = camera.project(point);
      EXPECT_NEAR((clip[0] / clip[3] + 1) / 2 * 500, at.x, 1e-6);
      EXPECT_NEAR((1 - clip[1] / clip[3]) / 2 * 400, at.y, 1e-6);
      EXPECT_LT(std::abs(clip[2] / clip[3]), 1);
    }
  }
}

TEST(qv_camera, sees_a_metre_around_a_point_and_nothing_at_all) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<std::vector<qv_double3>> cases = {
      {}, {{nan, 0, 0}}, {{5, 6, 7}}, {{5, 6, 7}, {5, 6, 7}, {nan, nan, nan}}};
  for (const auto& points : cases) {
    for (const qv_picture_view view : all_views) {
      qv_camera camera(view);
      camera.fit(points, 500, 400, room);
      EXPECT_TRUE(std::isfinite(camera.get_scale()));
      EXPECT_GT(camera.get_scale(), 10);
      EXPECT_LT(camera.get_scale(), 1000);
      for (const double number : camera.get_projection()) EXPECT_TRUE(std::isfinite(number));
    }
  }
}

TEST(qv_camera, fits_a_line_in_every_direction) {
  for (const qv_picture_view view : all_views) {
    for (const qv_double3& end :
         {qv_double3(10, 0, 0), qv_double3(0, 10, 0), qv_double3(0, 0, 10)}) {
      qv_camera camera(view);
      const std::vector<qv_double3> points = {{0, 0, 0}, end};
      camera.fit(points, 500, 400, room);
      EXPECT_GT(camera.get_scale(), 1);
      EXPECT_TRUE(std::isfinite(camera.get_scale()));
    }
  }
}

}  // namespace
