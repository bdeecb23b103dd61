#include <gtest/gtest.h>

#include <limits>

#include "core/shapes/qvi_mesh_instance.h"
#include "tests/core/qv_shapes_drawing.h"

namespace {

using namespace qv;
using qv_test::get_area;
using qv_test::gl_primitive;
using qv_test::gl_recorder;
using qv_test::make_item;
using qv_test::shows_side;

class instance_drawing : public qv_test::shapes_drawing {};

TEST_F(instance_drawing, draws_an_instance_in_its_place_with_the_right_side_outwards) {
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

TEST_F(instance_drawing, highlights_an_instance_in_its_place) {
  const auto inner = make_item<qvi_mesh_instance>();
  inner->set_mesh(frame.get());
  inner->set_matrix(qv_matrix::rotation(2, 90));
  const auto outer = make_item<qvi_mesh_instance>();
  outer->set_mesh(inner.get());
  outer->set_matrix(qv_matrix::translation({0, 0, 7}));
  outer->set_selected(true);
  gl_recorder gl;
  outer->render_opengl(true);
  ASSERT_EQ(gl.primitives.size(), 3u);
  EXPECT_EQ(gl.primitives[0].vertices.size(), 4u);
  EXPECT_EQ(gl.primitives[0].color, qv_color(1, 0, 0, 0.5f));
  EXPECT_EQ(gl.primitives[2].color, qv_color(1, 0, 0, 0.2f));
  EXPECT_NEAR(get_area(gl.primitives[2]), 14, 1e-4);
  for (const gl_primitive& primitive : gl.primitives) {
    for (const qv_3dvector& vertex : primitive.vertices) {
      // 5 m along x and 4 along y, turned a quarter about z, then lifted.
      EXPECT_GE(vertex.x, -4.0001f);
      EXPECT_LE(vertex.x, 0.0001f);
      EXPECT_EQ(vertex.z, 7);
    }
  }
  EXPECT_EQ(gl.get_matrix_depth(), 0);
  EXPECT_TRUE(gl.lighting);
  EXPECT_TRUE(gl.depth_test);
}

TEST_F(instance_drawing, shows_an_instance_in_its_own_shaders_before_those_of_its_mesh) {
  cube->set_front_shader(front.get());
  cube->set_back_shader(front.get());
  const auto instance = make_item<qvi_mesh_instance>();
  instance->set_mesh(cube.get());
  instance->set_back_shader(back.get());
  gl_recorder gl;
  instance->render_opengl(false);
  ASSERT_EQ(gl.primitives.size(), 2u);
  EXPECT_EQ(gl.primitives[0].color, red);
  EXPECT_EQ(gl.primitives[1].color, blue_glass);
}

TEST_F(instance_drawing, draws_nothing_of_an_instance_that_is_nowhere) {
  const auto inner = make_item<qvi_mesh_instance>();
  inner->set_mesh(cube.get());
  const auto outer = make_item<qvi_mesh_instance>();
  outer->set_mesh(inner.get());
  outer->set_selected(true);
  for (const float odd :
       {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
    for (qvi_mesh_instance* placed : {inner.get(), outer.get()}) {
      placed->set_matrix(qv_matrix::translation({odd, 0, 0}));
      gl_recorder gl;
      outer->render_opengl(false);
      outer->render_opengl(true);
      outer->render_opengl_contour_raw();
      EXPECT_TRUE(gl.primitives.empty());
      EXPECT_EQ(gl.get_matrix_depth(), 0);
      placed->set_matrix(qv_matrix());
    }
  }
}

// Flat across x: its sides still cover area, its ends do not.
TEST_F(instance_drawing, draws_a_flattened_instance_as_flat_as_it_is) {
  const auto instance = make_item<qvi_mesh_instance>();
  instance->set_mesh(cube.get());
  instance->set_matrix(qv_matrix::scaling({0, 1, 1}));
  gl_recorder gl;
  instance->render_opengl_raw();
  ASSERT_EQ(gl.primitives.size(), 1u);
  EXPECT_NEAR(get_area(gl.primitives[0]), 8, 1e-6);
  for (const qv_3dvector& vertex : gl.primitives[0].vertices) EXPECT_EQ(vertex.x, 0);
}

}  // namespace
