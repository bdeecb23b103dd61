#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "app/pictures/qv_frame_buffer.h"
#include "app/pictures/qv_painter.h"
#include "tests/pictures/qv_picture_comparison.h"
#include "tests/pictures/qv_picture_scene.h"

namespace {

using qv::qv_double3;
using qv::qv_picture_view;
using qv_test::blue;
using qv_test::green;
using qv_test::picture_of_scene;
using qv_test::red;

constexpr std::uint32_t white = 0xffffff;
constexpr std::uint32_t pure_red = 0xff0000;
const qv::qv_pixel_box whole{10, 10, 140, 100};

// Geometry with one part for each triangle; `item` stands for what it belongs to.
qv::qv_picture_geometry geometry_of(const std::vector<qv::qv_3dvector>& corners,
                                    qv::qv_item* item) {
  qv::qv_picture_geometry geometry;
  geometry.corners = corners;
  for (std::size_t first = 0; first < corners.size(); first += 3) {
    qv::qv_picture_part& part = geometry.parts.emplace_back();
    part.item = item;
    part.triangles = {first, 3};
  }
  return geometry;
}

qv::qv_pixels paint(const qv::qv_picture_geometry& geometry,
                    const std::vector<qv::qv_color>& colors, qv::qv_camera& camera) {
  qv::qv_frame_buffer frame(160, 120);
  camera.fit(geometry.get_points(), 160, 120, whole);
  qv::qv_paint_style style;
  style.shadow_share = 1;
  qv::qv_paint(geometry, colors, camera, style);
  return frame.read();
}

// Twice the signed area that a point spans with a side.
double side_of(const qv::qv_pixel_point& a, const qv::qv_pixel_point& b,
               const qv::qv_pixel_point& p) {
  return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

TEST_F(picture_of_scene, has_a_red_face_where_it_should_be) {
  constexpr unsigned int seed = 31;
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> coordinate(-3, 3);
  int inside = 0;  // of any triangle; some are seen from their edge
  for (int round = 0; round < 6; ++round) {
    const std::vector<qv::qv_3dvector> corners = {
        {coordinate(random), coordinate(random), coordinate(random)},
        {coordinate(random), coordinate(random), coordinate(random)},
        {coordinate(random), coordinate(random), coordinate(random)}};
    const qv::qv_picture_geometry geometry = geometry_of(corners, &scene_);
    for (const qv_picture_view view :
         {qv_picture_view::iso, qv_picture_view::perspective, qv_picture_view::north,
          qv_picture_view::east, qv_picture_view::plan}) {
      SCOPED_TRACE(testing::Message() << "seed " << seed << ", round " << round << ", view "
                                      << static_cast<int>(view));
      qv::qv_camera camera(view);
      const qv::qv_pixels picture = paint(geometry, {{1, 0, 0, 1}}, camera);
      qv::qv_pixel_point seen[3];
      for (std::size_t i = 0; i < 3; ++i) seen[i] = camera.project(qv_double3(corners[i]));
      const double turn = side_of(seen[0], seen[1], seen[2]) < 0 ? -1 : 1;
      for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
          double nearest = 1e9;  // px inside of the nearest side
          for (std::size_t i = 0; i < 3; ++i) {
            const auto& a = seen[i];
            const auto& b = seen[(i + 1) % 3];
            nearest = std::min(nearest, turn * side_of(a, b, {x + 0.5, y + 0.5}) /
                                            std::hypot(b.x - a.x, b.y - a.y));
          }
          if (nearest > 1) {
            ASSERT_EQ(picture.at(x, y), pure_red) << x << ", " << y;
            ++inside;
          } else if (nearest < -1) {
            ASSERT_EQ(picture.at(x, y), white) << x << ", " << y;
          }
        }
      }
    }
  }
  EXPECT_GT(inside, 20000);
}

// A square of two triangles across the line of sight from the south.
std::vector<qv::qv_3dvector> square(float size, float y) {
  const float s = size / 2;
  return {{-s, y, -s}, {s, y, -s}, {s, y, s}, {-s, y, -s}, {s, y, s}, {-s, y, s}};
}

TEST_F(picture_of_scene, hides_what_lies_behind) {
  std::vector<qv::qv_3dvector> corners = square(4, 0);
  for (const qv::qv_3dvector& corner : square(2, 1)) corners.push_back(corner);
  const qv::qv_color green_color(0, 1, 0, 1);
  const std::vector<qv::qv_color> colors = {{1, 0, 0, 1}, {1, 0, 0, 1}, green_color, green_color};
  const qv::qv_picture_geometry geometry = geometry_of(corners, &scene_);
  qv::qv_camera from_south(qv_picture_view::south);
  EXPECT_EQ(paint(geometry, colors, from_south).at(80, 60), pure_red);
  qv::qv_camera from_north(qv_picture_view::north);
  const qv::qv_pixels picture = paint(geometry, colors, from_north);
  EXPECT_EQ(picture.at(80, 60), 0x00ff00U);
  EXPECT_EQ(picture.at(40, 60), pure_red);
}

TEST_F(picture_of_scene, lets_glass_be_seen_through_whatever_the_order) {
  std::vector<qv::qv_3dvector> corners = square(4, 0);  // glass, the nearer one
  for (const qv::qv_3dvector& corner : square(4, 1)) corners.push_back(corner);
  const qv::qv_color glass(0, 0, 1, 0.5f);
  const qv::qv_color opaque(1, 0, 0, 1);
  const qv::qv_picture_geometry geometry = geometry_of(corners, &scene_);
  qv::qv_camera camera(qv_picture_view::south);
  const std::uint32_t seen = paint(geometry, {glass, glass, opaque, opaque}, camera).at(80, 60);
  EXPECT_NEAR(red(seen), 128, 2);
  EXPECT_NEAR(blue(seen), 128, 2);
  // Two panes: the nearer one counts more.
  const qv::qv_color yellow(1, 1, 0, 0.5f);
  const std::uint32_t panes = paint(geometry, {glass, glass, yellow, yellow}, camera).at(80, 60);
  EXPECT_NEAR(blue(panes), 191, 2);  // white 255, ×½ under yellow 128, ×½ + ½ · 255
  EXPECT_NEAR(red(panes), 128, 2);
}

TEST(qv_ground_outline, holds_the_model_on_its_lowest_level) {
  std::mt19937 random(5);
  std::uniform_real_distribution<double> coordinate(-40, 40);
  std::vector<qv_double3> points;
  double lowest = 1e9;
  for (int i = 0; i < 200; ++i) {
    points.emplace_back(coordinate(random), coordinate(random) / 3, coordinate(random));
    lowest = std::min(lowest, points.back().z);
  }
  points.emplace_back(std::nan(""), 1e9, 0);
  const std::vector<qv_double3> outline = qv::qv_ground_outline(points);
  ASSERT_GT(outline.size(), 3u);
  for (std::size_t i = 0; i < outline.size(); ++i) {
    EXPECT_EQ(outline[i].z, lowest);
    const qv_double3& next = outline[(i + 1) % outline.size()];
    for (std::size_t j = 0; j + 1 < points.size(); ++j) {
      // To the left of every side: the outline runs counter-clockwise.
      EXPECT_GT((next.x - outline[i].x) * (points[j].y - outline[i].y) -
                    (next.y - outline[i].y) * (points[j].x - outline[i].x),
                0);
    }
  }
  EXPECT_TRUE(qv::qv_ground_outline({}).empty());
  EXPECT_TRUE(qv::qv_ground_outline(std::vector<qv_double3>{{std::nan(""), 0, 0}}).empty());
}

TEST_F(picture_of_scene, has_smooth_borders) {
  const qv::qv_picture_geometry geometry =
      geometry_of({{-3, 0, -2}, {3, 0, -1}, {0, 0, 2}}, &scene_);
  qv::qv_camera camera(qv_picture_view::south);
  const qv::qv_pixels picture = paint(geometry, {{1, 0, 0, 1}}, camera);
  int between = 0;
  for (const std::uint32_t pixel : picture.rows)
    if (green(pixel) > 20 && green(pixel) < 235) ++between;
  EXPECT_GT(between, 50);
}

TEST_F(picture_of_scene, tells_faces_apart_by_light) {
  qv_test::add_box_room(scene_, {0, 0, 0}, {4, 4, 3}, 0);
  const qv::qv_pixels picture = draw();
  // The two façades and the roof in front of the viewer; façades have one colour in the key.
  const std::uint32_t left = picture.at(60, 75);
  const std::uint32_t right = picture.at(95, 75);
  EXPECT_NE(left, right);
  EXPECT_GT(red(left), red(right));
  EXPECT_GT(red(right), 0.7 * red(left));  // not lost in the dark
}

TEST_F(picture_of_scene, is_the_same_every_time) {
  qv_test::add_street(scene_, 2);
  const qv::qv_pixels first = draw();
  EXPECT_EQ(draw().rows, first.rows);
  {
    qv::qv_picture_maker another;
    EXPECT_EQ(draw(another, scene_, small()).pixels.rows, first.rows);
    EXPECT_EQ(draw().rows, first.rows);
  }
  EXPECT_EQ(draw().rows, first.rows);  // the other one is gone
}

TEST_F(picture_of_scene, is_the_same_400_km_away) {
  qv_test::add_box_room(scene_, {0, 0, 0}, {4, 4, 3}, 0.25f);
  const qv::qv_pixels here = draw();
  qv::qv_scene far;
  // Floats lie 1/32 m apart there, so that these are exact.
  qv_test::add_box_room(far, {400000, 300000, 0}, {4, 4, 3}, 0.25f);
  far.precompute();
  EXPECT_EQ(draw(maker_, far, small()).pixels.rows, here.rows);
}

TEST_F(picture_of_scene, has_the_size_asked_for) {
  add_surface(qv_test::rectangle({0, 0, 0}, {4, 0, 0}, {0, 0, 3}));
  for (const auto& [width, height] :
       {std::pair(32, 32), std::pair(333, 47), std::pair(31 * 8, 1001)}) {
    qv::qv_picture_options options;
    options.width = width;
    options.height = height;
    const qv::qv_pixels picture = draw(options);
    EXPECT_EQ(picture.width, width);
    EXPECT_EQ(picture.height, height);
    EXPECT_EQ(picture.rows.size(), static_cast<std::size_t>(width * height));
  }
}

TEST_F(picture_of_scene, of_a_size_that_is_refused_asks_for_a_smaller_one) {
  add_surface(qv_test::rectangle({0, 0, 0}, {4, 0, 0}, {0, 0, 3}));
  qv::qv_picture_options options;
  options.width = 1 << 20;
  try {
    draw(options);
    FAIL();
  } catch (const qv::qv_no_drawing& refusal) {
    EXPECT_STREQ(refusal.what(),
                 "OpenGL: cannot draw: a picture of that size is refused; ask for a smaller one");
  }
  EXPECT_EQ(draw().width, 160);
}

TEST_F(picture_of_scene, of_an_elevation_within_half_a_degree_of_north_faces_0_degrees) {
  qv_test::add_box_room(scene_, {0, 0, 0}, {4, 4, 3});
  scene_.precompute();
  qv::qv_picture_options options;
  options.view = qv_picture_view::east;
  options.width = 460;
  options.height = 230;
  const auto title_of = [&](double azimuth) {
    qv::qv_picture_subject subject;
    subject.scene = &scene_;
    subject.azimuth = azimuth;
    std::vector<std::uint32_t> rows = maker_.draw(subject, options, "scene").pixels.rows;
    rows.resize(16U * static_cast<std::size_t>(options.width));  // above the model
    return rows;
  };
  EXPECT_EQ(title_of(269.7), title_of(270.3));
  EXPECT_NE(title_of(269.7), title_of(271));
}

TEST_F(picture_of_scene, of_a_plan_has_the_glass_of_its_key) {
  const qv_test::box_room room = qv_test::add_box_room(scene_, {0, 0, 0}, {4, 4, 3});
  room.space->set_floor(0);
  scene_.precompute();
  ASSERT_TRUE(room.sides[0]->create_opening(0.5f, true));
  scene_.precompute();
  qv::qv_picture_options options;
  options.view = qv_picture_view::plan;
  options.storey = 0;
  options.width = 640;
  options.height = 400;
  const qv::qv_pixels picture = draw(options);
  const auto count_glass = [&](int from, int to) {
    int count = 0;
    for (int y = 0; y < picture.height; ++y)
      for (int x = from; x < to; ++x)
        if (std::abs(red(picture.at(x, y)) - 77) <= 1 &&
            std::abs(blue(picture.at(x, y)) - 242) <= 1)
          ++count;
    return count;
  };
  EXPECT_GT(count_glass(0, 430), 50);
  EXPECT_GT(count_glass(430, 640), 50);
}

TEST_F(picture_of_scene, gives_thermal_bridges_as_lines_over_a_pale_model) {
  qv::qv_picture_geometry geometry = geometry_of(square(4, 0), &scene_);
  geometry.line_ends = {{-2, 1, 0}, {2, 1, 0}};  // behind the square
  qv::qv_picture_part& line = geometry.parts.emplace_back();
  line.item = &scene_;
  line.lines = {0, 2};
  const qv::qv_color pale(0.8f, 0.8f, 0.8f, 1);
  qv::qv_camera camera(qv_picture_view::south);
  const qv::qv_pixels picture = paint(geometry, {pale, pale, {1, 0, 0, 1}}, camera);
  EXPECT_EQ(picture.at(80, 60), pure_red);
  EXPECT_EQ(picture.at(80, 66), 0xccccccU);
}

}  // namespace
