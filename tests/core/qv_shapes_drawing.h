#pragma once

#include <gtest/gtest.h>

#include "core/shapes/qvi_polygon.h"
#include "tests/support/qv_recording_gl.h"
#include "tests/support/qv_shapes.h"

namespace qv_test {

/// Area of a surface as it was drawn.
inline double get_area(const gl_primitive& surface) {
  double area = 0;
  for (std::size_t i = 0; i + 2 < surface.vertices.size(); i += 3)
    area += (surface.vertices[i + 1] - surface.vertices[i])
                .cross(surface.vertices[i + 2] - surface.vertices[i])
                .length() /
            2;
  return area;
}

/// True when each triangle runs counter-clockwise about its normal, and the normals point away from
/// `centre` or, with `inwards`, towards it.
inline bool shows_side(const gl_primitive& surface, const qv::qv_3dvector& centre, bool inwards) {
  for (std::size_t i = 0; i + 2 < surface.vertices.size(); i += 3) {
    const qv::qv_3dvector& a = surface.vertices[i];
    const qv::qv_3dvector about =
        (surface.vertices[i + 1] - a).cross(surface.vertices[i + 2] - a).normalized();
    if (about.dot(surface.normals[i]) < 0.99f) return false;
    if (((a - centre).dot(about) < 0) != inwards) return false;
  }
  return !surface.vertices.empty();
}

/// A test with a cube of two metres, a flat frame of 14 m² and a shader for either side.
class shapes_drawing : public testing::Test {
 protected:
  shapes_drawing() {
    const auto corners = make_cube_corners(2);
    cube->load_from_triangles(corners, make_loose_triangles(corners));
    frame->load_from_polygon(&frame_region);
    front->set_diffuse_color(red);
    back->set_diffuse_color(blue_glass);
  }

  static constexpr qv::qv_color red{1, 0, 0, 1};
  static constexpr qv::qv_color blue_glass{0, 0, 1, 0.5f};

  const qv::qv_polygon frame_region = make_frame(0, 0, 5, 4);
  owned_item<qv::qvi_shader> front = make_item<qv::qvi_shader>();
  owned_item<qv::qvi_shader> back = make_item<qv::qvi_shader>();
  owned_item<qv::qvi_mesh> cube = make_item<qv::qvi_mesh>();
  owned_item<qv::qvi_polygon> frame = make_item<qv::qvi_polygon>();
};

}  // namespace qv_test
