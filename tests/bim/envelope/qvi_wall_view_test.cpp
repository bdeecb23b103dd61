#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_limit_condition.h"
#include "bim/materials/qvi_material.h"
#include "core/items/qv_scene.h"
#include "tests/support/qv_recording_gl.h"
#include "tests/support/qv_shapes.h"
#include "tests/support/qv_test_buildings.h"

using namespace qv;
using qv_test::gl_recorder;
using type = qvi_wall::wall_type;

namespace {

class qvi_wall_view : public ::testing::Test {
 protected:
  qvi_wall_view() {
    for (qv_item* item :
         std::initializer_list<qv_item*>{living_, kitchen_, matter_, composition_, condition_})
      scene_.add_child(item, -1);
    living_->set_name("Séjour");
    living_->set_unique_id("s0");
    kitchen_->set_name("Cuisine");
    kitchen_->set_unique_id("s1");
    composition_->set_name("Mur 1");
    composition_->set_unique_id("c");
    composition_->set_layers({matter_});
    wall_ = qv_test::add_wall(scene_, type::wall, living_, nullptr,
                              qv_test::rectangle({0, 0, 0}, {4, 0, 0}, {0, 0, 2}), 0.5f);
    wall_->set_composition(composition_);
    wall_->set_limit_condition(condition_);
  }
  qvi_polygon* add_face(float y) {
    return qv_test::add_face(*wall_, qv_test::rectangle({0, y, 0}, {4, y, 0}, {0, y, 2}));
  }
  // The y of every contour (or surface) that `draw` draws, as a mark of the face.
  template <class F>
  static std::vector<float> drawn_faces(F draw) {
    gl_recorder gl;
    draw();
    std::vector<float> marks;
    for (const auto& p : gl.primitives) marks.push_back(p.vertices.at(0).y);
    return marks;
  }
  qv_scene scene_;
  qvi_space* living_ = new qvi_space;
  qvi_space* kitchen_ = new qvi_space;
  qvi_matter* matter_ = new qvi_matter;
  qvi_composition* composition_ = new qvi_composition;
  qvi_limit_condition* condition_ = new qvi_limit_condition;
  qvi_wall* wall_;
};

const std::string living_link = "<a href=\"item:s0\">Séjour</a>";
const std::string kitchen_link = "<a href=\"item:s1\">Cuisine</a>";
const std::string composition_rows =
    "<tr><td><b>Composition : </b></td><td><a href=\"item:c\">Mur 1</a></td></tr>"
    "<tr><td><b>Sens de la composition : </b></td><td>";
const std::string panel_end = "</td></tr></table>";

std::string panel_head(const std::string& label) {
  return "<table width=100% border=0><tr><td><b>Type :</b></td><td>" + label + "</td></tr>";
}

// --- the panel ---
// The row of the spaces has no opening mark of its own.

TEST_F(qvi_wall_view, describes_a_facade) {
  EXPECT_EQ(wall_->get_html_information(), panel_head("Façade") + "<td><b>Pièce :</b></td><td>" +
                                               living_link + "</td></tr>" + composition_rows +
                                               living_link + " vers Extérieur" + panel_end);
}

TEST_F(qvi_wall_view, describes_an_inner_wall) {
  wall_->set_space_1(kitchen_);
  EXPECT_EQ(wall_->get_html_information(),
            panel_head("Paroi intérieure") + "<td><b>Pièce 1 :</b></td><td>" + living_link +
                "</td></tr><tr><td><b>Pièce 2 :</b></td><td>" + kitchen_link + "</td></tr>" +
                composition_rows + living_link + " vers " + kitchen_link + panel_end);
}

TEST_F(qvi_wall_view, describes_a_wall_that_bounds_no_space) {
  wall_->set_space_0(nullptr);
  EXPECT_EQ(wall_->get_html_information(),
            panel_head("Façade") + "<td><b>Pièce :</b></td><td>Extérieur</td></tr>" +
                composition_rows + "Extérieur vers Extérieur" + panel_end);
}

TEST_F(qvi_wall_view, describes_an_intermediate_floor_by_its_lower_and_upper_space) {
  wall_->set_wall_type(type::floor);
  wall_->set_space_1(kitchen_);
  wall_->set_normal({0, 0, 1});
  const auto rows = [](const std::string& lower, const std::string& upper) {
    return "<td><b>Pièce inférieure :</b></td><td>" + lower +
           "</td></tr><tr><td><b>Pièce supérieure :</b></td><td>" + upper + "</td></tr>";
  };
  const std::string tail = composition_rows + living_link + " vers " + kitchen_link + panel_end;
  EXPECT_EQ(wall_->get_html_information(),
            panel_head("Plancher intermédiaire") + rows(living_link, kitchen_link) + tail);
  wall_->set_normal({0, 0, -1});
  EXPECT_EQ(wall_->get_html_information(),
            panel_head("Plancher intermédiaire") + rows(kitchen_link, living_link) + tail);
  wall_->set_normal({1, 0, 0});
  EXPECT_EQ(wall_->get_html_information(),
            panel_head("Plancher intermédiaire") + rows(kitchen_link, living_link) + tail);
}

TEST_F(qvi_wall_view, describes_a_lower_floor_and_a_roof) {
  const std::string tail = "<td><b>Pièce :</b></td><td>" + living_link + "</td></tr>" +
                           composition_rows + living_link + " vers Extérieur" + panel_end;
  wall_->set_wall_type(type::floor);
  EXPECT_EQ(wall_->get_html_information(), panel_head("Plancher bas") + tail);
  wall_->set_wall_type(type::roof);
  EXPECT_EQ(wall_->get_html_information(), panel_head("Toiture") + tail);
}

TEST_F(qvi_wall_view, describes_a_roof_over_nothing) {
  wall_->set_wall_type(type::roof);
  wall_->set_space_0(nullptr);
  EXPECT_EQ(wall_->get_html_information(),
            panel_head("Toiture") + "<td><b>Pièce :</b></td><td></td></tr>" + composition_rows +
                "Extérieur vers Extérieur" + panel_end);
}

TEST_F(qvi_wall_view, describes_a_wall_whose_only_space_is_the_second_one) {
  wall_->set_space_0(nullptr);
  wall_->set_space_1(kitchen_);
  const std::string tail = composition_rows + "Extérieur vers " + kitchen_link + panel_end;
  const std::string its_space = "<td><b>Pièce :</b></td><td>" + kitchen_link + "</td></tr>";
  EXPECT_EQ(wall_->get_html_information(), panel_head("Façade") + its_space + tail);
  wall_->set_wall_type(type::floor);
  EXPECT_EQ(wall_->get_html_information(), panel_head("Plancher bas") + its_space + tail);
  // A roof shows its first space only.
  wall_->set_wall_type(type::roof);
  EXPECT_EQ(wall_->get_html_information(),
            panel_head("Toiture") + "<td><b>Pièce :</b></td><td></td></tr>" + tail);
}

TEST_F(qvi_wall_view, describes_a_roof_between_two_spaces_by_the_first_of_them) {
  wall_->set_wall_type(type::roof);
  wall_->set_space_1(kitchen_);
  EXPECT_EQ(wall_->get_html_information(), panel_head("Toiture") + "<td><b>Pièce :</b></td><td>" +
                                               living_link + "</td></tr>" + composition_rows +
                                               living_link + " vers " + kitchen_link + panel_end);
}

TEST_F(qvi_wall_view, describes_a_wall_without_a_composition) {
  wall_->set_composition(nullptr);
  wall_->set_composition_reverse(true);  // the sense is told by the spaces alone
  EXPECT_EQ(wall_->get_html_information(),
            panel_head("Façade") + "<td><b>Pièce :</b></td><td>" + living_link +
                "</td></tr><tr><td><b>Composition : </b></td><td></td></tr>"
                "<tr><td><b>Sens de la composition : </b></td><td>" +
                living_link + " vers Extérieur" + panel_end);
}

// --- the drawing ---

TEST_F(qvi_wall_view, draws_nothing_when_nothing_related_is_selected) {
  gl_recorder gl;
  wall_->render_opengl(true);
  wall_->set_selected(true);
  wall_->render_opengl(false);
  EXPECT_TRUE(gl.primitives.empty());
}

TEST_F(qvi_wall_view, draws_its_contour_its_normal_and_its_faces) {
  gl_recorder gl;
  wall_->render_opengl_transparent({0.25f, 0.5f, 0.75f, 1});
  ASSERT_EQ(gl.primitives.size(), 5u);
  for (const auto& p : gl.primitives) {
    EXPECT_FALSE(p.lighting);
    EXPECT_FALSE(p.depth_test);
    EXPECT_EQ(p.line_width, 1.0f);
  }
  const qv_color outline(0.25f, 0.5f, 0.75f, 0.5f);
  const qv_color filling(0.25f, 0.5f, 0.75f, 0.2f);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(gl.primitives[i].color, outline);
  for (int i = 3; i < 5; ++i) EXPECT_EQ(gl.primitives[i].color, filling);
  EXPECT_EQ(gl.primitives[0].mode, "line_loop");
  EXPECT_EQ(gl.primitives[1].mode, "line_loop");
  EXPECT_EQ(gl.primitives[2].mode, "lines");
  EXPECT_TRUE(gl.primitives[3].is_surface());
  EXPECT_TRUE(gl.primitives[4].is_surface());
  // The box runs from (0, −0.5, 0) to (4, 0, 2); the normal is −y.
  EXPECT_EQ(gl.primitives[2].vertices, (std::vector<qv_3dvector>{{2, -0.25f, 1}, {2, -1.25f, 1}}));
  EXPECT_TRUE(gl.lighting);
  EXPECT_TRUE(gl.depth_test);
}

TEST_F(qvi_wall_view, sets_each_state_in_turn) {
  gl_recorder gl;
  wall_->render_opengl_transparent({1, 0, 0, 1});
  EXPECT_EQ(gl.calls,
            (std::vector<std::string>{"disable lighting", "disable depth_test", "color 1 0 0 0.5",
                                      "line_width 1", "line_loop 4", "line_loop 4", "lines 2",
                                      "color 1 0 0 0.2", "line_width 1", "triangles 6",
                                      "triangles 6", "enable lighting", "enable depth_test"}));
}

TEST_F(qvi_wall_view, draws_no_normal_that_is_none) {
  wall_->set_normal({std::numeric_limits<float>::quiet_NaN(), 0, 0});
  gl_recorder gl;
  wall_->render_opengl_transparent({1, 0, 0, 1});
  EXPECT_EQ(std::count(gl.calls.begin(), gl.calls.end(), "lines 2"), 0);
  EXPECT_EQ(gl.primitives.size(), 4u);
}

TEST_F(qvi_wall_view, draws_faces_that_are_hidden_otherwise) {
  wall_->get_face_0()->set_rendering_visibility(false);
  wall_->get_face_1()->set_rendering_visibility(false);
  wall_->set_selected(true);
  gl_recorder gl;
  wall_->render_opengl(true);
  EXPECT_EQ(gl.get_contours().size(), 3u);
  EXPECT_EQ(gl.get_surfaces().size(), 2u);
}

TEST_F(qvi_wall_view, is_not_highlighted_under_the_mouse_alone) {
  wall_->set_mouseover(true);
  composition_->set_mouseover(true);
  gl_recorder gl;
  wall_->render_opengl(true);
  EXPECT_TRUE(gl.calls.empty());
}

// Without a scene nothing is the selected item, so nothing is related to it.
TEST_F(qvi_wall_view, is_red_when_selected_outside_a_scene) {
  wall_->remove();
  const qv_test::owned_item<qvi_wall> outside(wall_);
  wall_->set_selected(true);
  gl_recorder gl;
  wall_->render_opengl(true);
  ASSERT_EQ(gl.primitives.size(), 5u);
  EXPECT_EQ(gl.primitives[0].color, qv_color(1, 0, 0, 0.5f));
  EXPECT_EQ(gl.primitives[4].color, qv_color(1, 0, 0, 0.2f));
}

TEST_F(qvi_wall_view, leaves_the_states_as_they_were_when_it_has_no_face) {
  for (qv_item* face : wall_->collect("polygon")) qv_item::destroy(face);
  wall_->set_selected(true);
  gl_recorder gl;
  wall_->render_opengl(true);
  EXPECT_TRUE(gl.get_surfaces().empty());
  for (const auto& primitive : gl.primitives)
    for (const qv_3dvector& vertex : primitive.vertices) EXPECT_TRUE(vertex.is_finite());
  EXPECT_TRUE(gl.lighting);
  EXPECT_TRUE(gl.depth_test);
}

TEST_F(qvi_wall_view, is_yellow_when_related_to_the_selected_item_and_red_when_only_selected) {
  const auto color_drawn = [&]() -> std::string {
    gl_recorder gl;
    wall_->render_opengl(true);
    if (gl.primitives.empty()) return "none";
    const qv_color c = gl.primitives[0].color;
    if (c == qv_color(1, 1, 0, 0.5f)) return "yellow";
    return c == qv_color(1, 0, 0, 0.5f) ? "red" : "other";
  };
  qv_item* const related[] = {wall_, composition_, matter_, condition_};
  for (qv_item* item : related) {
    item->set_selected(true);
    EXPECT_EQ(color_drawn(), "yellow");
    kitchen_->set_selected(true);  // selected later, so the scene's selected item is another
    EXPECT_EQ(color_drawn(), "red");
    kitchen_->set_selected(false);
    item->set_selected(false);
    EXPECT_EQ(color_drawn(), "none");
  }
  kitchen_->set_selected(true);
  EXPECT_EQ(color_drawn(), "none");
  living_->set_selected(true);
  EXPECT_EQ(color_drawn(), "none");
}

TEST_F(qvi_wall_view, knows_what_it_is_related_to) {
  qvi_matter other_matter;
  qvi_limit_condition other_condition;
  EXPECT_FALSE(wall_->is_selection_related(nullptr));
  EXPECT_TRUE(wall_->is_selection_related(wall_));
  EXPECT_TRUE(wall_->is_selection_related(composition_));
  EXPECT_TRUE(wall_->is_selection_related(matter_));
  EXPECT_TRUE(wall_->is_selection_related(condition_));
  EXPECT_FALSE(wall_->is_selection_related(&other_matter));
  EXPECT_FALSE(wall_->is_selection_related(&other_condition));
  EXPECT_FALSE(wall_->is_selection_related(living_));
  EXPECT_FALSE(wall_->is_selection_related(wall_->get_face_0()));
  auto* product = new qvi_material;  // a kind of matter
  scene_.add_child(product, -1);
  EXPECT_FALSE(wall_->is_selection_related(product));
  composition_->set_layers({matter_, product});
  EXPECT_TRUE(wall_->is_selection_related(product));
  wall_->set_composition(nullptr);
  wall_->set_limit_condition(nullptr);
  EXPECT_FALSE(wall_->is_selection_related(matter_));
  EXPECT_FALSE(wall_->is_selection_related(composition_));
  EXPECT_FALSE(wall_->is_selection_related(condition_));
}

TEST_F(qvi_wall_view, draws_the_single_face_before_the_two_and_the_pierced_before_the_plain) {
  const auto contours = [&] { return drawn_faces([&] { wall_->draw_contour_raw(); }); };
  const auto faces = [&] { return drawn_faces([&] { wall_->draw_face_raw(); }); };
  const auto expect_drawn = [&](const std::vector<float>& marks) {
    EXPECT_EQ(contours(), marks);
    EXPECT_EQ(faces(), marks);
  };
  expect_drawn({0, -0.5f});
  wall_->set_pierced_face_1(add_face(11));
  expect_drawn({0, 11});
  wall_->set_pierced_face_0(add_face(10));
  expect_drawn({10, 11});
  wall_->set_face(add_face(20));
  expect_drawn({20});
  wall_->set_pierced_face(add_face(21));
  expect_drawn({21});
  wall_->set_face(nullptr);
  expect_drawn({21});
}

TEST_F(qvi_wall_view, draws_what_there_is) {
  wall_->set_face_0(nullptr);
  EXPECT_EQ(drawn_faces([&] { wall_->draw_contour_raw(); }), std::vector<float>{-0.5f});
  wall_->set_face_1(nullptr);
  EXPECT_TRUE(drawn_faces([&] { wall_->draw_contour_raw(); }).empty());
  EXPECT_TRUE(drawn_faces([&] { wall_->draw_face_raw(); }).empty());
}

TEST_F(qvi_wall_view, draws_the_contours_of_holes) {
  qv_polygon region({0, 0, 0}, {0, 0, 0});
  region.add_contour(qv_test::rectangle({0, 0, 0}, {4, 0, 0}, {0, 0, 2}));
  region.add_contour(qv_test::rectangle({1, 0, 0.5f}, {1, 0, 1.5f}, {3, 0, 0.5f}));
  wall_->get_face_0()->load_from_polygon(&region);
  EXPECT_EQ(drawn_faces([&] { wall_->draw_contour_raw(); }).size(), 3u);
}

}  // namespace
