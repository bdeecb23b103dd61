#include <gtest/gtest.h>

#include <algorithm>

#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "core/items/qv_scene.h"
#include "tests/support/qv_recording_gl.h"
#include "tests/support/qv_test_buildings.h"

using namespace qv;
using qv_test::gl_recorder;

namespace {

class qvi_space_view : public ::testing::Test {
 protected:
  qvi_space_view() { room_ = qv_test::add_box_room(scene_, {0, 0, 0}, {4, 5, 2.5f}); }

  // "yellow", "red", "none" or "other": the colour of what `item` draws.
  static std::string color_drawn(qv_item* item) {
    gl_recorder gl;
    item->render_opengl(true);
    if (gl.primitives.empty()) return "none";
    const qv_color c = gl.primitives[0].color;
    if (c == qv_color(1, 1, 0, 0.5f)) return "yellow";
    return c == qv_color(1, 0, 0, 0.5f) ? "red" : "other";
  }
  qv_scene scene_;
  qv_test::box_room room_;
};

TEST_F(qvi_space_view, draws_nothing_and_changes_no_state_unless_highlighted) {
  gl_recorder gl;
  room_.space->render_opengl(true);
  EXPECT_TRUE(gl.calls.empty());
  room_.space->set_mouseover(true);
  room_.space->render_opengl(false);
  EXPECT_TRUE(gl.calls.empty());
}

TEST_F(qvi_space_view, is_yellow_under_the_mouse_and_red_when_it_or_what_holds_it_is_selected) {
  auto* campus = new qvi_campus;
  auto* building = new qvi_building;
  auto* zone = new qvi_zone;
  scene_.add_child(campus, -1);
  campus->add_child(building, -1);
  scene_.add_child(zone, -1);
  zone->set_building(building);
  room_.space->set_zone(zone);
  room_.space->set_building(building);
  scene_.precompute();
  EXPECT_EQ(color_drawn(room_.space), "none");
  for (qv_item* item : std::initializer_list<qv_item*>{room_.space, zone, building, campus}) {
    item->set_selected(true);
    EXPECT_EQ(color_drawn(room_.space), "red");
    room_.space->set_mouseover(true);
    EXPECT_EQ(color_drawn(room_.space), "yellow");
    room_.space->set_mouseover(false);
    item->set_selected(false);
  }
  // The mouse over what holds the space does not count.
  zone->set_mouseover(true);
  building->set_mouseover(true);
  EXPECT_EQ(color_drawn(room_.space), "none");
}

TEST_F(qvi_space_view, draws_its_shell_transparently) {
  room_.space->precompute();
  gl_recorder gl;
  room_.space->render_opengl_transparent({0.25f, 0.5f, 0.75f, 1});
  const auto contours = gl.get_contours();
  const auto surfaces = gl.get_surfaces();
  EXPECT_EQ(contours.size(), 6u);
  EXPECT_EQ(surfaces.size(), 6u);
  for (const auto& p : contours) {
    EXPECT_EQ(p.color, qv_color(0.25f, 0.5f, 0.75f, 0.5f));
    EXPECT_EQ(p.line_width, 1.0f);
    EXPECT_FALSE(p.lighting);
    EXPECT_FALSE(p.depth_test);
  }
  for (const auto& p : surfaces) {
    EXPECT_EQ(p.color, qv_color(0.25f, 0.5f, 0.75f, 0.2f));
    EXPECT_FALSE(p.lighting);
    EXPECT_FALSE(p.depth_test);
  }
  EXPECT_TRUE(gl.primitives.front().is_contour());
  EXPECT_TRUE(gl.primitives.back().is_surface());
  EXPECT_TRUE(gl.lighting);
  EXPECT_TRUE(gl.depth_test);
}

using texts = std::vector<std::string>;

// The calls of a highlight of `count` four-cornered polygons.
texts get_highlight(int count, const std::string& color) {
  texts calls = {"disable lighting", "disable depth_test", "color " + color + " 0.5",
                 "line_width 1"};
  calls.insert(calls.end(), static_cast<std::size_t>(count), "line_loop 4");
  calls.push_back("color " + color + " 0.2");
  calls.insert(calls.end(), static_cast<std::size_t>(count), "triangles 6");
  calls.insert(calls.end(), {"enable lighting", "enable depth_test"});
  return calls;
}

TEST_F(qvi_space_view, sets_each_state_in_turn) {
  room_.space->precompute();
  room_.space->set_selected(true);
  gl_recorder gl;
  room_.space->render_opengl(true);
  EXPECT_EQ(gl.calls, get_highlight(6, "1 0 0"));
}

TEST_F(qvi_space_view, draws_every_polygon_of_a_shell_of_its_own_and_no_wall) {
  auto* const folder = new qv_item;
  room_.space->add_child(folder, -1);
  qv_test::add_face(*folder, qv_test::rectangle({7, 0, 0}, {8, 0, 0}, {7, 1, 0}));
  qv_test::add_face(*room_.space, qv_test::rectangle({7, 0, 1}, {8, 0, 1}, {7, 1, 1}));
  room_.space->precompute();
  room_.space->set_mouseover(true);
  gl_recorder gl;
  room_.space->render_opengl(true);
  EXPECT_EQ(gl.calls, get_highlight(2, "1 1 0"));
  for (const auto& primitive : gl.primitives)
    for (const qv_3dvector& vertex : primitive.vertices) EXPECT_GE(vertex.x, 7);
}

TEST_F(qvi_space_view, draws_both_faces_of_a_wall_that_has_it_on_both_sides) {
  qvi_space* const space = qv_test::add_space(scene_);
  qvi_wall* const screen =
      qv_test::add_wall(scene_, qvi_wall::wall_type::wall, space, space,
                        qv_test::rectangle({20, 0, 0}, {24, 0, 0}, {20, 0, 2}), 0.5f);
  scene_.precompute();
  for (qv_item* polygon : space->collect("polygon")) qv_item::destroy(polygon);
  gl_recorder gl;
  space->render_opengl_transparent({1, 0, 0, 1});
  EXPECT_EQ(gl.calls, get_highlight(2, "1 0 0"));
  screen->set_face_1(nullptr);
  gl.calls.clear();
  space->render_opengl_transparent({1, 0, 0, 1});
  EXPECT_EQ(gl.calls, get_highlight(1, "1 0 0"));
}

TEST_F(qvi_space_view, draws_the_plain_faces_where_its_walls_are_pierced) {
  scene_.precompute();
  for (qvi_wall* wall : room_.space->get_walls()) wall->create_opening(0.5f, true);
  for (qv_item* polygon : room_.space->collect("polygon")) qv_item::destroy(polygon);
  gl_recorder gl;
  room_.space->render_opengl_transparent({1, 0, 0, 1});
  EXPECT_EQ(gl.calls, get_highlight(6, "1 0 0"));
}

TEST_F(qvi_space_view, leaves_the_states_as_they_were_when_it_has_neither_shell_nor_wall) {
  qvi_space* const empty = qv_test::add_space(scene_);
  empty->set_selected(true);
  gl_recorder gl;
  empty->render_opengl(true);
  EXPECT_EQ(gl.calls, get_highlight(0, "1 0 0"));
}

TEST_F(qvi_space_view, is_not_drawn_for_an_outer_space_above_it) {
  auto* const outside = new qvi_xspace;
  scene_.add_child(outside, -1);
  qvi_space* const room = qv_test::add_space(*outside);
  room->set_selected(true);
  gl_recorder gl;
  outside->render_opengl(true);
  EXPECT_TRUE(gl.primitives.empty());
}

TEST_F(qvi_space_view, draws_the_spaces_below_it_before_itself_and_no_outer_space) {
  room_.space->precompute();
  auto* const outside = new qvi_xspace;
  room_.space->add_child(outside, -1);
  qvi_space* const child = qv_test::add_space(*room_.space);
  for (qv_item* item : std::initializer_list<qv_item*>{outside, child, room_.space})
    item->set_selected(true);
  child->set_mouseover(true);
  gl_recorder gl;
  room_.space->render_opengl(true);
  texts expected = get_highlight(0, "1 1 0");
  const texts own = get_highlight(6, "1 0 0");
  expected.insert(expected.end(), own.begin(), own.end());
  EXPECT_EQ(gl.calls, expected);
}

TEST_F(qvi_space_view, draws_the_faces_of_its_walls_while_it_has_no_shell) {
  auto block = qv_test::add_block(scene_, {20, 0, 0}, 2, 1, 1, {4, 5, 2.5f}, 0.5f);
  // The walls get their faces only after the space has looked for them.
  std::vector<std::pair<qvi_polygon*, qvi_polygon*>> faces;
  for (qvi_wall* wall : block.walls) {
    faces.emplace_back(wall->get_face_0(), wall->get_face_1());
    wall->set_face_0(nullptr);
    wall->set_face_1(nullptr);
  }
  qvi_space* second = block.at(1, 0, 0);
  second->precompute();
  for (std::size_t i = 0; i < faces.size(); ++i) {
    block.walls[i]->set_face_0(faces[i].first);
    block.walls[i]->set_face_1(faces[i].second);
  }
  gl_recorder gl;
  second->render_opengl_transparent({1, 0, 0, 1});
  EXPECT_EQ(gl.get_contours().size(), 6u);
  EXPECT_EQ(gl.get_surfaces().size(), 6u);
  // Of the partition, whose second space this is, the face at x = 24.5 and not the one at 24.
  const auto lies_at = [](const qv_test::gl_primitive& p, float x) {
    return std::all_of(p.vertices.begin(), p.vertices.end(),
                       [x](const qv_3dvector& v) { return v.x == x; });
  };
  int at_24_5 = 0;
  for (const auto& p : gl.primitives) {
    EXPECT_FALSE(lies_at(p, 24));
    at_24_5 += lies_at(p, 24.5f);
  }
  EXPECT_EQ(at_24_5, 2);
}

// The user may take shell polygons and walls away; a draw may come before the next precompute.
TEST_F(qvi_space_view, draws_nothing_that_is_gone) {
  scene_.precompute();
  for (qv_item* polygon : room_.space->collect("polygon")) qv_item::destroy(polygon);
  {
    gl_recorder gl;
    room_.space->render_opengl_transparent({1, 0, 0, 1});
    EXPECT_EQ(gl.get_contours().size(), 6u);  // the walls' faces instead
  }
  qv_item::destroy(room_.roof);
  {
    gl_recorder gl;
    room_.space->render_opengl_transparent({1, 0, 0, 1});
    EXPECT_EQ(gl.get_contours().size(), 5u);
  }
}

TEST_F(qvi_space_view, draws_the_spaces_directly_below_it) {
  auto* child = qv_test::add_space(*room_.space);
  auto* folder = new qv_item;
  room_.space->add_child(folder, -1);
  auto* deeper = qv_test::add_space(*folder);
  qv_test::add_face(*child, qv_test::rectangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0}));
  qv_test::add_face(*deeper, qv_test::rectangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0}));
  child->precompute();
  deeper->precompute();
  deeper->set_selected(true);
  EXPECT_EQ(color_drawn(room_.space), "none");  // not a direct child
  child->set_selected(true);
  EXPECT_EQ(color_drawn(room_.space), "red");
}

// --- the outer space ---

class qvi_xspace_view : public ::testing::Test {
 protected:
  qvi_xspace_view() {
    scene_.add_child(outside_, -1);
    auto* folder = new qv_item;
    outside_->add_child(folder, -1);
    qv_test::add_face(*folder, qv_test::rectangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0}));
    qv_test::add_face(*outside_, qv_test::rectangle({0, 0, 1}, {1, 0, 1}, {0, 1, 1}));
  }
  qv_scene scene_;
  qvi_xspace* outside_ = new qvi_xspace;
};

TEST_F(qvi_xspace_view, deliberately_leaves_lighting_and_depth_test_off_unless_highlighted) {
  gl_recorder gl;
  outside_->render_opengl(true);
  EXPECT_EQ(gl.calls, (std::vector<std::string>{"disable lighting", "disable depth_test"}));
  EXPECT_FALSE(gl.lighting);
  EXPECT_FALSE(gl.depth_test);
}

TEST_F(qvi_xspace_view, does_nothing_when_it_is_not_to_draw) {
  gl_recorder gl;
  outside_->set_selected(true);
  outside_->render_opengl(false);
  EXPECT_TRUE(gl.calls.empty());
}

TEST_F(qvi_xspace_view, sets_each_state_in_turn) {
  outside_->set_mouseover(true);
  gl_recorder gl;
  outside_->render_opengl(true);
  EXPECT_EQ(gl.calls, get_highlight(2, "1 1 0"));
  // The deeper polygon comes first.
  EXPECT_EQ(gl.primitives[0].vertices[0].z, 0);
  EXPECT_EQ(gl.primitives[1].vertices[0].z, 1);
}

TEST_F(qvi_xspace_view, leaves_the_states_as_they_were_when_highlighted_without_a_mesh) {
  for (qv_item* mesh : outside_->collect("mesh")) qv_item::destroy(mesh);
  outside_->set_selected(true);
  gl_recorder gl;
  outside_->render_opengl(true);
  EXPECT_EQ(gl.calls, get_highlight(0, "1 0 0"));
}

TEST_F(qvi_xspace_view, draws_its_meshes_in_yellow_under_the_mouse_and_in_red_when_selected) {
  for (bool mouse : {false, true}) {
    outside_->set_selected(true);
    outside_->set_mouseover(mouse);
    gl_recorder gl;
    outside_->render_opengl(true);
    const float green = mouse ? 1 : 0;
    ASSERT_EQ(gl.primitives.size(), 4u);
    for (int i = 0; i < 4; ++i) {
      const auto& p = gl.primitives[static_cast<std::size_t>(i)];
      EXPECT_EQ(p.is_contour(), i < 2);
      EXPECT_EQ(p.color, qv_color(1, green, 0, i < 2 ? 0.5f : 0.2f));
      EXPECT_EQ(p.line_width, 1.0f);
      EXPECT_FALSE(p.lighting);
      EXPECT_FALSE(p.depth_test);
    }
    EXPECT_TRUE(gl.lighting);
    EXPECT_TRUE(gl.depth_test);
  }
}

}  // namespace
