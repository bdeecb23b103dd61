#include <gtest/gtest.h>

#include <limits>

#include "core/shapes/qvi_mesh_instance.h"
#include "core/shapes/qvi_solid.h"
#include "tests/core/qv_shapes_drawing.h"

namespace {

using namespace qv;
using qv_test::get_area;
using qv_test::gl_primitive;
using qv_test::gl_recorder;
using qv_test::make_item;

class hostile_drawing : public qv_test::shapes_drawing {};

TEST_F(hostile_drawing, draws_nothing_of_what_is_empty) {
  const auto instance = make_item<qvi_mesh_instance>();
  const auto of_empty_mesh = make_item<qvi_mesh_instance>();
  const auto empty_mesh = make_item<qvi_mesh>();
  const auto empty_polygon = make_item<qvi_polygon>();
  const auto empty_solid = make_item<qvi_solid>();
  of_empty_mesh->set_mesh(empty_mesh.get());
  for (qvi_mesh* mesh :
       {empty_mesh.get(), static_cast<qvi_mesh*>(empty_polygon.get()),
        static_cast<qvi_mesh*>(empty_solid.get()), static_cast<qvi_mesh*>(instance.get()),
        static_cast<qvi_mesh*>(of_empty_mesh.get())}) {
    mesh->set_selected(true);
    gl_recorder gl;
    mesh->render_opengl(false);
    mesh->render_opengl(true);
    mesh->render_opengl_raw();
    mesh->render_opengl_contour_raw();
    for (const gl_primitive& primitive : gl.primitives) EXPECT_TRUE(primitive.vertices.empty());
    EXPECT_TRUE(gl.lighting);
    EXPECT_TRUE(gl.depth_test);
    EXPECT_EQ(gl.get_matrix_depth(), 0);
  }
}

TEST_F(hostile_drawing, draws_what_is_sound_of_a_surface_with_bad_points) {
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  cube->set_vertices({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {nan, 0, 0}});
  cube->set_triangles({0, 1, 2, 0, 1, 3});
  frame->set_vertices(
      {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {5, 5, nan}, {6, 5, 0}, {6, 6, 0}});
  frame->set_contour_sizes({4, 3});
  gl_recorder gl;
  cube->render_opengl_raw();
  frame->render_opengl_raw();
  ASSERT_EQ(gl.primitives.size(), 2u);
  EXPECT_NEAR(get_area(gl.primitives[0]), 0.5, 1e-6);
  EXPECT_NEAR(get_area(gl.primitives[1]), 4, 1e-6);
}

TEST_F(hostile_drawing, draws_nothing_for_what_is_no_surface) {
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
