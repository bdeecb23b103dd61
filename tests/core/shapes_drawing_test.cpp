#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/shapes/qvi_mesh_instance.h"
#include "core/shapes/qvi_polygon.h"
#include "core/shapes/qvi_solid.h"
#include "tests/core/qv_shapes_drawing.h"

namespace {

using namespace qv;
using qv_test::get_area;
using qv_test::gl_primitive;
using qv_test::gl_recorder;
using qv_test::make_item;
using qv_test::shapes_drawing;
using qv_test::shows_side;
using texts = std::vector<std::string>;

TEST_F(shapes_drawing, shows_each_side_in_its_shaders_colour) {
  cube->set_front_shader(front.get());
  cube->set_back_shader(back.get());
  gl_recorder gl;
  cube->render_opengl(false);
  EXPECT_EQ(gl.calls,
            (texts{"enable cull_face", "color 1 0 0 1", "triangles 36", "enable blend",
                   "color 0 0 1 0.5", "triangles 36", "disable blend", "disable cull_face"}));
  ASSERT_EQ(gl.primitives.size(), 2u);
  EXPECT_TRUE(shows_side(gl.primitives[0], {1, 1, 1}, false));
  EXPECT_TRUE(shows_side(gl.primitives[1], {1, 1, 1}, true));
}

TEST_F(shapes_drawing, shows_a_surface_without_shaders_in_grey) {
  gl_recorder gl;
  frame->render_opengl(false);
  ASSERT_EQ(gl.primitives.size(), 2u);
  for (const gl_primitive& side : gl.primitives) {
    EXPECT_EQ(side.color, qvi_shader::get_default_color());
    EXPECT_NEAR(get_area(side), 14, 1e-4);
  }
}

TEST_F(shapes_drawing, hides_what_is_not_visible) {
  gl_recorder gl;
  cube->set_rendering_visibility(false);
  cube->render_opengl(false);
  EXPECT_TRUE(gl.calls.empty());
}

TEST_F(shapes_drawing, highlights_only_what_is_selected_or_under_the_mouse) {
  {
    gl_recorder gl;
    frame->render_opengl(true);
    EXPECT_TRUE(gl.calls.empty());
  }
  const std::string triangles = "triangles " + std::to_string(3 * frame->get_nb_triangles());
  frame->set_selected(true);
  {
    gl_recorder gl;
    frame->render_opengl(true);
    EXPECT_EQ(gl.calls, (texts{"disable lighting", "disable depth_test", "color 1 0 0 0.5",
                               "line_width 1", "line_loop 4", "line_loop 4", "color 1 0 0 0.2",
                               triangles, "enable lighting", "enable depth_test"}));
  }
  frame->set_mouseover(true);
  frame->set_rendering_visibility(false);
  gl_recorder gl;
  frame->render_opengl(true);
  ASSERT_EQ(gl.primitives.size(), 3u);
  EXPECT_EQ(gl.primitives[0].color, qv_color(1, 1, 0, 0.5f));
  EXPECT_EQ(gl.primitives[2].color, qv_color(1, 1, 0, 0.2f));
}

TEST_F(shapes_drawing, draws_the_contour_of_a_mesh_along_its_edges_and_folds) {
  gl_recorder gl;
  cube->render_opengl_contour_raw();
  // Twelve edges of the cube, and none of the diagonals.
  EXPECT_EQ(gl.calls, texts{"lines 24"});
  for (std::size_t i = 0; i < 24; i += 2)
    EXPECT_EQ((gl.primitives[0].vertices[i + 1] - gl.primitives[0].vertices[i]).length(), 2);
}

TEST_F(shapes_drawing, draws_no_diagonal_where_triangles_come_twice) {
  qv_list<int> twice = cube->get_triangles();
  for (int corner : cube->get_triangles()) twice.append(corner);
  cube->set_triangles(twice);
  gl_recorder gl;
  cube->render_opengl_contour_raw();
  EXPECT_EQ(gl.calls, texts{"lines 24"});
}

TEST_F(shapes_drawing, draws_the_border_of_a_flat_mesh_and_a_fold_only_when_it_is_sharp) {
  for (const auto& [height, lines] : {std::pair(0.0f, 4), {0.1f, 4}, {0.5f, 5}}) {
    const auto tent = make_item<qvi_mesh>();
    tent->load_from_triangles({{0, 0, 0}, {1, 1, 0}, {0, 1, height}, {1, 0, height}},
                              {0, 1, 2, 0, 3, 1});
    gl_recorder gl;
    tent->render_opengl_contour_raw();
    EXPECT_EQ(gl.calls, texts{"lines " + std::to_string(2 * lines)}) << height;
  }
}

TEST_F(shapes_drawing, draws_the_contours_of_a_solid_face_by_face) {
  qv_solid pipe;
  pipe.extrusion(frame_region, {0, 0, 3});
  const auto solid = make_item<qvi_solid>();
  solid->load_from_solid(&pipe);
  gl_recorder gl;
  solid->render_opengl_contour_raw();
  // Base and opposite with two contours each, and a side for each of the eight edges.
  EXPECT_EQ(gl.calls, texts(12, "line_loop 4"));
}

TEST_F(shapes_drawing, shows_a_side_without_a_shader_in_grey_beside_one_with) {
  for (bool of_front : {true, false}) {
    frame->set_front_shader(of_front ? front.get() : nullptr);
    frame->set_back_shader(of_front ? nullptr : front.get());
    gl_recorder gl;
    frame->render_opengl(false);
    ASSERT_EQ(gl.primitives.size(), 2u);
    EXPECT_EQ(gl.primitives[of_front ? 0 : 1].color, red);
    EXPECT_EQ(gl.primitives[of_front ? 1 : 0].color, qvi_shader::get_default_color());
  }
}

TEST_F(shapes_drawing, blends_only_the_side_that_one_sees_through) {
  frame->set_front_shader(back.get());
  frame->set_back_shader(front.get());
  const std::string triangles = "triangles " + std::to_string(3 * frame->get_nb_triangles());
  gl_recorder gl;
  frame->render_opengl(false);
  EXPECT_EQ(gl.calls, (texts{"enable cull_face", "enable blend", "color 0 0 1 0.5", triangles,
                             "disable blend", "color 1 0 0 1", triangles, "disable cull_face"}));
}

TEST_F(shapes_drawing, draws_bare_surfaces_and_contours_in_the_current_state) {
  const auto solid = make_item<qvi_solid>();
  qv_solid block;
  block.extrusion(frame_region, {0, 0, 1});
  solid->load_from_solid(&block);
  const auto instance = make_item<qvi_mesh_instance>();
  instance->set_mesh(cube.get());
  for (qvi_mesh* mesh :
       {cube.get(), static_cast<qvi_mesh*>(frame.get()), static_cast<qvi_mesh*>(solid.get()),
        static_cast<qvi_mesh*>(instance.get())}) {
    mesh->set_front_shader(front.get());
    mesh->set_rendering_visibility(false);  // concerns the shaded drawing only
    gl_recorder gl;
    mesh->render_opengl_raw();
    mesh->render_opengl_contour_raw();
    EXPECT_EQ(gl.calls.size(), gl.primitives.size());
    EXPECT_FALSE(gl.get_surfaces().empty());
    EXPECT_FALSE(gl.get_contours().empty());
  }
}

// True when `point` lies in a triangle of the surface, seen along z.
bool covers(const gl_primitive& surface, float x, float y) {
  const qv_3dvector point(x, y, 0);
  for (std::size_t i = 0; i + 2 < surface.vertices.size(); i += 3) {
    int left = 0, right = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      const qv_3dvector& from = surface.vertices[i + k];
      const qv_3dvector& to = surface.vertices[i + (k + 1) % 3];
      (((to - from).cross(point - from).z > 0) ? left : right) += 1;
    }
    if (left == 0 || right == 0) return true;
  }
  return false;
}

TEST_F(shapes_drawing, fills_what_a_polygon_encloses_and_leaves_its_holes_open) {
  // An L of two metres' width with a hole in each arm, and an island apart with a court in it.
  qv_polygon region({0, 0, 0}, {0, 0, 1});
  region.add_contour({{0, 0, 0}, {10, 0, 0}, {10, 2, 0}, {2, 2, 0}, {2, 8, 0}, {0, 8, 0}});
  region.add_contour({{5, 0.5f, 0}, {5, 1.5f, 0}, {7, 1.5f, 0}, {7, 0.5f, 0}});
  region.add_contour({{0.5f, 4, 0}, {0.5f, 6, 0}, {1.5f, 6, 0}, {1.5f, 4, 0}});
  region.add_contour({{5, 5, 0}, {8, 5, 0}, {8, 8, 0}, {5, 8, 0}});
  region.add_contour({{6, 6, 0}, {6, 7, 0}, {7, 7, 0}, {7, 6, 0}});
  frame->load_from_polygon(&region);
  gl_recorder gl;
  frame->render_opengl(false);
  ASSERT_EQ(gl.primitives.size(), 2u);
  for (const gl_primitive& side : gl.primitives) {
    // 20 + 12 of the L less twice 2, 9 − 1 of the island.
    EXPECT_NEAR(get_area(side), 36, 1e-4);
    for (const auto& [x, y] : {std::pair(6.0f, 1.0f), {1.0f, 5.0f}, {6.5f, 6.5f}, {4.0f, 4.0f}})
      EXPECT_FALSE(covers(side, x, y)) << x << ' ' << y;
    for (const auto& [x, y] : {std::pair(9.1f, 1.1f), {1.1f, 1.2f}, {1.1f, 7.3f}, {5.3f, 7.4f}})
      EXPECT_TRUE(covers(side, x, y)) << x << ' ' << y;
  }
  EXPECT_TRUE(shows_side(gl.primitives[0], {0, 0, -1}, false));
  EXPECT_TRUE(shows_side(gl.primitives[1], {0, 0, -1}, true));
  gl.primitives.clear();
  frame->render_opengl_contour_raw();
  std::vector<std::size_t> corners;
  for (const gl_primitive& contour : gl.primitives) corners.push_back(contour.vertices.size());
  EXPECT_EQ(corners, (std::vector<std::size_t>{6, 4, 4, 4, 4}));
}

TEST_F(shapes_drawing, fills_the_faces_of_a_solid_with_their_holes) {
  qv_solid pipe;
  pipe.extrusion(frame_region, {0, 0, 3});
  const auto solid = make_item<qvi_solid>();
  solid->load_from_solid(&pipe);
  solid->set_front_shader(front.get());
  gl_recorder gl;
  solid->render_opengl(false);
  ASSERT_EQ(gl.primitives.size(), 2u);
  EXPECT_EQ(gl.primitives[0].color, red);
  // Twice 14 of the frame, and 3 m over its outer and inner length, 18 and 10.
  for (const gl_primitive& side : gl.primitives) EXPECT_NEAR(get_area(side), 2 * 14 + 3 * 28, 1e-4);
}

}  // namespace
