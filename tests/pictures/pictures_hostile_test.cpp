#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "app/readers/qv_input_error.h"
#include "tests/pictures/qv_picture_comparison.h"
#include "tests/pictures/qv_picture_scene.h"

namespace {

using qv::qv_picture_color;
using qv::qv_picture_view;
using testing::HasSubstr;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

constexpr qv_picture_view all_views[] = {qv_picture_view::iso,   qv_picture_view::perspective,
                                         qv_picture_view::north, qv_picture_view::east,
                                         qv_picture_view::south, qv_picture_view::west,
                                         qv_picture_view::plan};

class hostile_picture : public qv_test::picture_of_scene {
 protected:
  std::string complaint() {
    try {
      draw();
    } catch (const qv::qv_input_error& error) {
      EXPECT_EQ(error.get_exit_code(), 3);
      return error.what();
    }
    return "none";
  }
  static bool shows_something(const qv::qv_pixels& picture) {
    return std::any_of(picture.rows.begin(), picture.rows.end(),
                       [](std::uint32_t pixel) { return pixel != 0xffffff; });
  }
};

TEST_F(hostile_picture, of_nothing_is_refused) {
  EXPECT_THAT(complaint(), HasSubstr("scene: there is nothing to draw"));
}

TEST_F(hostile_picture, of_a_model_of_no_size_is_refused) {
  for (int i = 0; i < 3; ++i) add_surface({{5, 5, 5}, {5, 5, 5}, {5, 5, 5}});
  EXPECT_THAT(complaint(), HasSubstr("nothing to draw"));
}

TEST_F(hostile_picture, of_numbers_that_are_none_is_refused) {
  add_surface({{nan, 0, 0}, {1, nan, 0}, {0, 1, infinite}});
  EXPECT_THAT(complaint(), HasSubstr("nothing to draw"));
}

TEST_F(hostile_picture, leaves_out_numbers_that_are_none_and_says_so) {
  auto* const mesh = new qv::qvi_mesh;
  scene_.add_child(mesh, -1);
  mesh->set_vertices({{0, 0, 0}, {4, 0, 0}, {0, 0, 3}, {nan, 0, 0}, {infinite, 1, 1}});
  mesh->set_triangles({0, 1, 2, 0, 1, 3, 1, 2, 4});
  EXPECT_TRUE(shows_something(draw(qv_picture_view::south)));
  EXPECT_THAT(notes_, testing::ElementsAre(HasSubstr("2 triangles or lines are left out")));
}

TEST_F(hostile_picture, leaves_out_triangles_whose_corners_are_no_vertices) {
  auto* const mesh = new qv::qvi_mesh;
  scene_.add_child(mesh, -1);
  mesh->set_vertices({{0, 0, 0}, {4, 0, 0}, {0, 0, 3}});
  mesh->set_triangles({0, 1, 2});
  const qv::qv_pixels sound = draw(qv_picture_view::south);
  mesh->set_triangles({0, 1, 2, 0, 1, 90000, -90000, 1, 2});
  EXPECT_EQ(draw(qv_picture_view::south).rows, sound.rows);
  mesh->set_triangles({0, 1, 3});
  EXPECT_THAT(complaint(), HasSubstr("nothing to draw"));
}

TEST_F(hostile_picture, of_one_flat_surface_shows_it_from_everywhere) {
  add_surface(qv_test::rectangle({0, 0, 0}, {4, 0, 0}, {0, 0, 3}));
  for (const qv_picture_view view : all_views) {
    SCOPED_TRACE(static_cast<int>(view));
    EXPECT_TRUE(shows_something(draw(view)));
  }
}

TEST_F(hostile_picture, of_a_hair_and_of_a_continent) {
  for (const float size : {1e-4f, 1e6f}) {
    SCOPED_TRACE(size);
    qv::qvi_polygon* const surface =
        add_surface(qv_test::rectangle({0, 0, 0}, {size, 0, 0}, {0, size, size / 2}));
    for (const qv_picture_view view : all_views) draw(view);
    EXPECT_TRUE(shows_something(draw()));
    qv::qv_item::destroy(surface);
  }
}

TEST_F(hostile_picture, takes_every_colouring_of_a_model_that_knows_nothing) {
  add_surface(qv_test::rectangle({0, 0, 0}, {4, 0, 0}, {0, 0, 3}));
  qv_test::add_box_room(scene_, {10, 0, 0}, {4, 4, 3});
  scene_.precompute();
  for (int color = 0; color <= static_cast<int>(qv_picture_color::thermal_bridges); ++color) {
    qv::qv_picture_options options;
    options.color = static_cast<qv_picture_color>(color);
    options.width = 320;
    options.height = 200;
    EXPECT_TRUE(shows_something(draw(options)));
  }
}

TEST_F(hostile_picture, takes_any_name_of_rooms_and_zones) {
  const std::string names[] = {std::string(10000, 'x'),
                               "\xd8\xba\xd8\xb1\xd9\x81\xd8\xa9 \xe2\x80\xae",
                               "line\nbreak\x01\xff", "", "%s%n{}"};
  float x = 0;
  for (const std::string& name : names) {
    qv_test::add_box_room(scene_, {x, 0, 0}, {4, 4, 3}).space->set_name(name);
    x += 5;
  }
  scene_.precompute();
  for (qv::qv_item* item : scene_.get_items("space"))
    static_cast<qv::qvi_space*>(item)->set_floor(0);
  qv::qv_picture_options options;
  options.view = qv_picture_view::plan;
  options.storey = 0;
  options.color = qv_picture_color::zone;
  options.width = 400;
  options.height = 120;
  EXPECT_TRUE(shows_something(draw(options)));
}

TEST_F(hostile_picture, names_the_storeys_that_there_are) {
  qv_test::add_box_room(scene_, {0, 0, 0}, {4, 4, 3}).space->set_floor(2);
  qv_test::add_box_room(scene_, {0, 0, 9}, {4, 4, 3}).space->set_floor(4);
  qv::qv_picture_options options;
  options.storey = 3;
  try {
    draw(options);
    FAIL();
  } catch (const qv::qv_input_error& error) {
    EXPECT_STREQ(error.what(), "scene: there is no storey 3; choose one of 2, 4");
  }
}

}  // namespace
