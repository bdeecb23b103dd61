#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "core/shapes/qvi_mesh_instance.h"
#include "core/shapes/qvi_polygon.h"
#include "core/shapes/qvi_solid.h"
#include "tests/support/qv_recording_gl.h"
#include "tests/support/qv_shapes.h"

namespace {

using namespace qv;
using qv_test::gl_primitive;
using qv_test::gl_recorder;
using qv_test::make_item;
using texts = std::vector<std::string>;

constexpr qv_color red(1, 0, 0, 1);
constexpr qv_color blue_glass(0, 0, 1, 0.5f);

double get_area(const gl_primitive& surface) {
  double area = 0;
  for (std::size_t i = 0; i + 2 < surface.vertices.size(); i += 3)
    area += (surface.vertices[i + 1] - surface.vertices[i])
                .cross(surface.vertices[i + 2] - surface.vertices[i])
                .length() /
            2;
  return area;
}

// True when each triangle runs counter-clockwise about its normal, and the normals point away from
// `centre` or, with `inwards`, towards it.
bool shows_side(const gl_primitive& surface, const qv_3dvector& centre, bool inwards) {
  for (std::size_t i = 0; i + 2 < surface.vertices.size(); i += 3) {
    const qv_3dvector& a = surface.vertices[i];
    const qv_3dvector about =
        (surface.vertices[i + 1] - a).cross(surface.vertices[i + 2] - a).normalized();
    if (about.dot(surface.normals[i]) < 0.99f) return false;
    if (((a - centre).dot(about) < 0) != inwards) return false;
  }
  return !surface.vertices.empty();
}

class shapes_drawing : public testing::Test {
 protected:
  shapes_drawing() {
    const auto corners = qv_test::make_cube_corners(2);
    cube->load_from_triangles(corners, qv_test::make_loose_triangles(corners));
    frame->load_from_polygon(&frame_region);
    front->set_diffuse_color(red);
    back->set_diffuse_color(blue_glass);
  }

  const qv_polygon frame_region = qv_test::make_frame(0, 0, 5, 4);
  qv_test::owned_item<qvi_shader> front = make_item<qvi_shader>();
  qv_test::owned_item<qvi_shader> back = make_item<qvi_shader>();
  qv_test::owned_item<qvi_mesh> cube = make_item<qvi_mesh>();
  qv_test::owned_item<qvi_polygon> frame = make_item<qvi_polygon>();
};

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

TEST_F(shapes_drawing, draws_an_instance_in_its_place_with_the_right_side_outwards) {
  for (bool mirrored : {false, true}) {
    for (bool reversed : {false, true}) {
      const auto instance = make_item<qvi_mesh_instance>();
      instance->set_mesh(cube.get());
      instance->set_matrix(qv_matrix::translation({10, 0, 0}) *
                           qv_matrix::scaling({mirrored ? -1.0f : 1.0f, 1, 1}));
      if (reversed) instance->reverse();
      gl_recorder gl;
      instance->render_opengl(false);
      ASSERT_EQ(gl.primitives.size(), 2u);
      const qv_3dvector centre(mirrored ? 9 : 11, 1, 1);
      EXPECT_TRUE(shows_side(gl.primitives[0], centre, reversed));
      EXPECT_TRUE(shows_side(gl.primitives[1], centre, !reversed));
      instance->render_opengl_contour_raw();
      for (const qv_3dvector& vertex : gl.primitives[2].vertices)
        EXPECT_EQ((vertex - centre).length(), qv_3dvector(1, 1, 1).length());
      EXPECT_EQ(gl.get_matrix_depth(), 0);
    }
  }
}

TEST_F(shapes_drawing, draws_nothing_for_what_is_no_surface) {
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  cube->set_vertices({{0, 0, 0}, {1, 0, 0}, {nan, 0, 0}});
  cube->set_triangles({0, 1, 2, 0, 1, 5, 0, 0, 1, -1});
  frame->set_vertices({{0, 0, 0}, {nan, 0, 0}, {1, 0, 0}});
  frame->set_contour_sizes({7, 7});
  const auto instance = make_item<qvi_mesh_instance>();
  instance->set_mesh(instance.get());
  gl_recorder gl;
  for (qvi_mesh* mesh :
       {cube.get(), static_cast<qvi_mesh*>(frame.get()), static_cast<qvi_mesh*>(instance.get())}) {
    mesh->render_opengl_raw();
    mesh->render_opengl_contour_raw();
    mesh->render_opengl(false);
  }
  for (const gl_primitive& primitive : gl.primitives)
    for (const qv_3dvector& vertex : primitive.vertices) EXPECT_TRUE(vertex.is_finite());
  EXPECT_TRUE(gl.get_surfaces().empty() || get_area(gl.get_surfaces()[0]) == 0);
}

}  // namespace
