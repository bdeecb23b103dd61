#include <gtest/gtest.h>

#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/hierarchy/qvi_xspace.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_limit_condition.h"
#include "tests/pictures/qv_picture_comparison.h"
#include "tests/pictures/qv_picture_scene.h"

namespace {

using qv::qv_picture_view;
using qv_test::blue;
using qv_test::green;
using qv_test::red;

// A room seen from the south, and what a highlight makes of its middle.
class highlight : public qv_test::picture_of_scene {
 protected:
  void SetUp() override {
    room_ = qv_test::add_box_room(scene_, {0, 0, 0}, {4, 4, 3}, 0.25f);
    plain_ = draw(qv_picture_view::south);
  }

  // "", "yellow" or "red": what was laid over the pixel since the picture without highlights. The
  // darker blue tells that something was, the green whether it was yellow.
  std::string color_over(const qv::qv_pixels& picture, int x, int y) const {
    const std::uint32_t now = picture.at(x, y);
    const std::uint32_t before = plain_.at(x, y);
    if (blue(now) > blue(before) - 8) return now == before ? "" : "something else";
    if (red(now) < red(before) - 2) return "something else";
    return green(now) > green(before) - 4 ? "yellow" : "red";
  }
  std::string seen() { return color_over(draw(qv_picture_view::south), 80, 66); }

  qv::qvi_wall& south_wall() const { return *room_.sides[0]; }

  qv_test::box_room room_;
  qv::qv_pixels plain_;
};

TEST_F(highlight, leaves_a_scene_without_selection_as_it_is) {
  EXPECT_EQ(seen(), "");
}

TEST_F(highlight, of_the_selected_wall_is_yellow) {
  south_wall().set_selected(true);
  EXPECT_EQ(seen(), "yellow");
  south_wall().set_selected(false);
  EXPECT_EQ(seen(), "");
}

TEST_F(highlight, of_a_wall_selected_before_another_is_red) {
  south_wall().set_selected(true);
  room_.roof->set_selected(true);  // selected last
  EXPECT_EQ(seen(), "red");
}

TEST_F(highlight, shows_through_what_lies_before) {
  room_.sides[2]->set_selected(true);  // the north wall
  EXPECT_EQ(seen(), "yellow");
}

TEST_F(highlight, of_a_wall_follows_its_composition_and_its_limit_condition) {
  auto* const composition = new qv::qvi_composition;
  scene_.add_child(composition, -1);
  south_wall().set_composition(composition);
  composition->set_selected(true);
  EXPECT_EQ(seen(), "yellow");
  composition->set_selected(false);
  auto* const condition = new qv::qvi_limit_condition;
  scene_.add_child(condition, -1);
  south_wall().set_limit_condition(condition);
  condition->set_selected(true);
  EXPECT_EQ(seen(), "yellow");
}

TEST_F(highlight, of_a_room_is_red_when_selected_and_yellow_under_the_pointer) {
  room_.space->set_selected(true);
  EXPECT_EQ(seen(), "red");
  room_.space->set_mouseover(true);
  EXPECT_EQ(seen(), "yellow");
}

TEST_F(highlight, of_a_room_follows_its_zone) {
  auto* const zone = new qv::qvi_zone;
  scene_.add_child(zone, -1);
  room_.space->set_zone(zone);
  zone->set_selected(true);
  EXPECT_EQ(seen(), "red");
}

TEST_F(highlight, of_an_opening_covers_it_alone) {
  auto* const opening = new qv::qvi_opening;
  scene_.add_child(opening, -1);
  opening->set_wall(&south_wall());
  qv_test::add_face(*opening,
                    qv_test::rectangle({1.5f, -0.3f, 1}, {2.5f, -0.3f, 1}, {1.5f, -0.3f, 2}));
  plain_ = draw(qv_picture_view::south);
  opening->set_selected(true);
  const qv::qv_pixels selected = draw(qv_picture_view::south);
  EXPECT_EQ(color_over(selected, 80, 62), "red");
  EXPECT_EQ(color_over(selected, 50, 62), "");
  opening->set_mouseover(true);
  EXPECT_EQ(color_over(draw(qv_picture_view::south), 80, 62), "yellow");
}

TEST_F(highlight, of_a_thermal_bridge_is_a_line) {
  auto* const bridge = new qv::qvi_connexion;
  scene_.add_child(bridge, -1);
  bridge->set_point_0({0, 0, 1.5f});
  bridge->set_point_1({4, 0, 1.5f});
  const auto count_pure = [&](std::uint32_t color) {
    const qv::qv_pixels picture = draw(qv_picture_view::south);
    return std::count(picture.rows.begin(), picture.rows.end(), color);
  };
  EXPECT_EQ(count_pure(0xff0000), 0);
  bridge->set_selected(true);
  EXPECT_GT(count_pure(0xff0000), 50);
  bridge->set_mouseover(true);
  EXPECT_GT(count_pure(0xffff00), 50);
  EXPECT_EQ(count_pure(0xff0000), 0);
}

TEST_F(highlight, of_an_imported_surface_is_its_own) {
  qv::qvi_polygon* const surface =
      add_surface(qv_test::rectangle({1, -2, 0.5f}, {3, -2, 0.5f}, {1, -2, 2.5f}));
  plain_ = draw(qv_picture_view::south);
  surface->set_selected(true);
  EXPECT_EQ(seen(), "red");
  surface->set_mouseover(true);
  EXPECT_EQ(seen(), "yellow");
}

TEST_F(highlight, survives_an_outer_space_that_leaves_the_depth_test_off) {
  auto* const outside = new qv::qvi_xspace;
  scene_.add_child(outside, -1);  // drawn last, neither selected nor hovered
  south_wall().set_selected(true);
  EXPECT_EQ(seen(), "yellow");
  south_wall().set_selected(false);
  EXPECT_EQ(seen(), "");
}

}  // namespace
