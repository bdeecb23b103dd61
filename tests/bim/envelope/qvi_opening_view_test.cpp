#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "bim/envelope/qvi_opening_composition.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_opaque.h"
#include "core/items/qv_scene.h"
#include "tests/support/qv_recording_gl.h"
#include "tests/support/qv_test_openings.h"

// The panel and the highlight of an opening.

namespace {

using namespace qv;
using qv_test::add_new;
using qv_test::add_piece;
using qv_test::facade_rectangle;
using qv_test::gl_recorder;

class opening_view : public testing::Test {
 protected:
  opening_view() {
    opening->set_composition(composition);
    add_piece(*opening, facade_rectangle(0, 0, 1.5f, 1), glazing);
    add_piece(*opening, facade_rectangle(1.5f, 0, 1.75f, 1), add_new<qvi_opaque>(scene));
    add_piece(*opening, facade_rectangle(1.75f, 0, 2, 1), add_new<qvi_opening_shader>(scene));
    scene.precompute();
  }

  qv_scene scene;
  qvi_opening* opening = qv_test::add_opening(scene);
  qvi_opening_composition* composition = add_new<qvi_opening_composition>(scene);
  qvi_glazing* glazing = qv_test::add_single_glazing(scene, 0.6f);
};

TEST_F(opening_view, describes_areas_and_performances) {
  opening->set_forced_U(1.2344f);
  opening->set_forced_solar_factor(0.4567f);
  opening->set_forced_visible_transmittance(0.5f);
  EXPECT_EQ(opening->get_html_information(),
            "<table width=100% border=0>"
            "<tr><td><b>Surface de vitrage :</b></td><td align=left>1.50 m²</td></tr>"
            "<tr><td><b>Surface opaque :</b></td><td align=left>0.25 m²</td></tr>"
            "<tr><td><b>Surface de cadre :</b></td><td align=left>0.25 m²</td></tr>"
            "<tr><td><b>Surface totale :</b></td><td align=left>2.00 m²</td></tr>"
            "<tr><td><b>U :</b></td><td align=left>1.234 W/K/m²</td></tr>"
            "<tr><td><b>Facteur solaire :</b></td><td align=left>45.7 %</td></tr>"
            "<tr><td><b>Transmission lumineuse :</b></td><td align=left>50.0 %</td></tr>"
            "</table>");
}

TEST_F(opening_view, shows_the_compositions_forced_values) {
  composition->set_forced_U(0.0f);
  EXPECT_NE(opening->get_html_information().find("<b>U :</b></td><td align=left>0.000 W/K/m²"),
            std::string::npos);
}

// Without any piece the areas are 0 and the values 0 / 0, whose sign is the processor's choice.
TEST_F(opening_view, shows_what_is_no_number_as_printf_does) {
  qvi_opening* const empty = qv_test::add_opening(scene);
  scene.precompute();
  ASSERT_TRUE(std::isnan(empty->get_U()));
  const std::string nan = std::signbit(empty->get_U()) ? "-nan" : "nan";
  EXPECT_EQ(empty->get_html_information(),
            "<table width=100% border=0>"
            "<tr><td><b>Surface de vitrage :</b></td><td align=left>0.00 m²</td></tr>"
            "<tr><td><b>Surface opaque :</b></td><td align=left>0.00 m²</td></tr>"
            "<tr><td><b>Surface de cadre :</b></td><td align=left>0.00 m²</td></tr>"
            "<tr><td><b>Surface totale :</b></td><td align=left>0.00 m²</td></tr>"
            "<tr><td><b>U :</b></td><td align=left>" +
                nan +
                " W/K/m²</td></tr>"
                "<tr><td><b>Facteur solaire :</b></td><td align=left>" +
                nan +
                " %</td></tr>"
                "<tr><td><b>Transmission lumineuse :</b></td><td align=left>" +
                nan + " %</td></tr></table>");
}

TEST_F(opening_view, shows_its_own_forced_values_before_the_compositions) {
  composition->set_forced_U(1.5f);
  composition->set_forced_solar_factor(0.25f);
  composition->set_forced_visible_transmittance(0.125f);
  const auto last_rows = [&](const std::string& U, const std::string& solar_factor,
                             const std::string& transmission) {
    const std::string text = opening->get_html_information();
    EXPECT_EQ(text.substr(text.find("<tr><td><b>U :")),
              "<tr><td><b>U :</b></td><td align=left>" + U +
                  " W/K/m²</td></tr><tr><td><b>Facteur solaire :</b></td><td align=left>" +
                  solar_factor +
                  " %</td></tr><tr><td><b>Transmission lumineuse :</b></td><td align=left>" +
                  transmission + " %</td></tr></table>");
  };
  last_rows("1.500", "25.0", "12.5");
  opening->set_forced_U(0);  // 0 is forced
  opening->set_forced_solar_factor(0);
  opening->set_forced_visible_transmittance(1);
  last_rows("0.000", "0.0", "100.0");
  opening->set_forced_U(-0.001f);
  opening->set_forced_solar_factor(-0.001f);
  opening->set_forced_visible_transmittance(-0.001f);
  last_rows("1.500", "25.0", "12.5");
}

TEST_F(opening_view, has_no_highlight_unless_it_or_its_composition_is_chosen) {
  gl_recorder gl;
  opening->render_opengl(true);
  opening->render_opengl(false);
  EXPECT_TRUE(gl.primitives.empty());
  glazing->set_selected(true);
  opening->render_opengl(true);
  EXPECT_TRUE(gl.primitives.empty());
}

TEST_F(opening_view, is_highlighted_in_red_when_selected_and_in_yellow_under_the_mouse) {
  const auto drawn = [&] {
    gl_recorder gl;
    opening->render_opengl(true);
    EXPECT_FALSE(gl.primitives.empty());
    qv_color color(0, 0, 0, 0);
    for (const auto& primitive : gl.primitives) {
      color = primitive.color;
      EXPECT_FALSE(primitive.lighting);
      EXPECT_FALSE(primitive.depth_test);
    }
    EXPECT_TRUE(gl.lighting);
    EXPECT_TRUE(gl.depth_test);
    return color;
  };
  const qv_color red(1, 0, 0, 0.2f), yellow(1, 1, 0, 0.2f);
  opening->set_selected(true);
  EXPECT_EQ(drawn(), red);
  opening->set_mouseover(true);
  EXPECT_EQ(drawn(), yellow);
  opening->set_selected(false);
  EXPECT_EQ(drawn(), yellow);
  opening->set_mouseover(false);
  composition->set_selected(true);
  EXPECT_EQ(drawn(), red);
  composition->set_mouseover(true);
  EXPECT_EQ(drawn(), yellow);
  composition->set_selected(false);
  opening->set_composition(nullptr);
  gl_recorder gl;
  opening->render_opengl(true);
  EXPECT_TRUE(gl.primitives.empty());
}

TEST_F(opening_view, sets_each_state_in_turn) {
  opening->set_selected(true);
  gl_recorder gl;
  opening->render_opengl(true);
  EXPECT_EQ(gl.calls,
            (std::vector<std::string>{"disable lighting", "disable depth_test", "color 1 0 0 0.2",
                                      "triangles 6", "triangles 6", "triangles 6",
                                      "enable depth_test", "enable lighting"}));
}

TEST_F(opening_view, draws_its_base_when_it_is_not_to_show_its_highlight) {
  opening->set_selected(true);
  opening->set_mouseover(true);
  gl_recorder gl;
  opening->render_opengl(false);
  EXPECT_TRUE(gl.calls.empty());
}

TEST_F(opening_view, draws_every_piece_below_it_hidden_or_not_in_the_current_colour) {
  auto* const sash = add_new<qv_item>(*opening);
  auto* const deep = new qvi_polygon;
  const qv_polygon shape = facade_rectangle(0, 0, 1, 1);
  deep->load_from_polygon(&shape);
  deep->set_rendering_visibility(false);
  sash->add_child(deep, -1);
  gl_recorder gl;
  opening->render_opengl_raw();
  EXPECT_EQ(gl.calls, std::vector<std::string>(4, "triangles 6"));
}

TEST_F(opening_view, leaves_the_states_as_they_were_when_it_has_no_piece) {
  qvi_opening* const empty = qv_test::add_opening(scene);
  empty->set_selected(true);
  gl_recorder gl;
  empty->render_opengl(true);
  EXPECT_TRUE(gl.primitives.empty());
  EXPECT_TRUE(gl.lighting);
  EXPECT_TRUE(gl.depth_test);
}

TEST_F(opening_view, draws_its_surface) {
  gl_recorder gl;
  opening->render_opengl_raw();
  double left = 1e9, right = -1e9;
  for (const auto& primitive : gl.get_surfaces()) {
    for (const qv_3dvector& v : primitive.vertices) {
      left = std::min<double>(left, v.x);
      right = std::max<double>(right, v.x);
    }
  }
  EXPECT_NEAR(left, 0, 1e-6);
  EXPECT_NEAR(right, 2, 1e-6);
}

TEST(qvi_opening, names_its_types_in_one_list) {
  EXPECT_EQ(qvi_opening::get_opening_type_list(),
            (qv_list<std::string>{"window", "door", "curtain_wall", "skylight"}));
  EXPECT_EQ(&qvi_opening::get_opening_type_list(), &qvi_opening::get_opening_type_list());
}

}  // namespace
