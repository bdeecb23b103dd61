#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "core/shapes/qvi_mesh_instance.h"
#include "core/shapes/qvi_polygon.h"
#include "core/shapes/qvi_solid.h"
#include "tests/support/qv_recording_gl.h"
#include "tests/support/qv_shapes.h"
#include "utilities/qv_random.h"

namespace {

using namespace qv;

/// Throws dice for every kind of argument, sound ones and others.
class hostile_dice {
 public:
  explicit hostile_dice(int seed) : random_(seed), only_sound_(roll(2) == 0) {}

  int roll(int sides) { return static_cast<int>(random_.dice() % static_cast<unsigned>(sides)); }
  int integer() { return roll(20) == 0 ? static_cast<int>(random_.dice()) : roll(20); }
  float number() {
    constexpr float odd[] = {std::numeric_limits<float>::quiet_NaN(),
                             std::numeric_limits<float>::infinity(), 3e38f, 1e-40f, -1e9f};
    if (!only_sound_ && roll(4) == 0) return odd[roll(5)];
    // Few different values, so that points coincide and planes meet.
    return static_cast<float>(roll(9) - 4) / 2;
  }
  qv_3dvector vector() {
    const float x = number(), y = number();
    return {x, y, roll(2) == 0 ? 0.0f : number()};
  }
  qv_list<qv_3dvector> vectors(int largest) {
    qv_list<qv_3dvector> list;
    for (int i = roll(largest); i > 0; --i) list.append(vector());
    return list;
  }
  qv_list<int> integers(int largest) {
    qv_list<int> list;
    for (int i = roll(largest); i > 0; --i) list.append(integer());
    return list;
  }
  qv_list<unsigned int> sizes(int largest) {
    qv_list<unsigned int> list;
    for (int i = roll(largest); i > 0; --i)
      list.append(roll(8) == 0 ? random_.dice() : static_cast<unsigned int>(roll(6)));
    return list;
  }
  qv_matrix matrix() {
    const float angle = 45 * number();
    const qv_matrix turned = qv_matrix::rotation(roll(4), angle);
    const qv_matrix moved = qv_matrix::translation(vector());
    return turned * moved * qv_matrix::scaling(vector());
  }
  qv_polygon polygon() {
    const qv_3dvector point = vector();
    qv_polygon result(point, vector());
    for (int i = roll(3); i > 0; --i) result.add_contour(vectors(8));
    return result;
  }

 private:
  qv_random random_;
  bool only_sound_;
};

void set_something(qvi_mesh& mesh, qvi_mesh* other, hostile_dice& dice) {
  mesh.set_vertices(dice.vectors(30));
  mesh.set_triangles(dice.integers(60));
  if (auto* polygon = dynamic_cast<qvi_polygon*>(&mesh)) {
    polygon->set_contour_sizes(dice.sizes(5));
    polygon->set_normal(dice.vector());
  } else if (auto* solid = dynamic_cast<qvi_solid*>(&mesh)) {
    solid->set_contour_sizes(dice.sizes(8));
    solid->set_face_sizes(dice.sizes(6));
    solid->set_face_normals(dice.vectors(6));
  } else if (auto* instance = dynamic_cast<qvi_mesh_instance*>(&mesh)) {
    instance->set_mesh(other);
    instance->set_matrix(dice.matrix());
  }
}

void change_something(qvi_mesh& mesh, qvi_mesh* other, hostile_dice& dice) {
  const qv_polygon region = dice.polygon();
  switch (dice.roll(8)) {
    case 0:
      return mesh.matrix_transform(dice.matrix(), dice.roll(2) == 0);
    case 1:
      return mesh.push_offset(dice.number());
    case 2:
      return mesh.reverse();
    case 3:
      return mesh.optimize_vertices(std::fabs(dice.number()));
    case 4:
      return mesh.merge(other);
    case 5:
      return mesh.load_from_polygon(dice.roll(5) > 0 ? &region : nullptr);
    case 6:
      return mesh.load_from_triangles(dice.vectors(20), dice.integers(30));
    default:
      return set_something(mesh, other, dice);
  }
}

// What must hold of any surface, whatever was done to it.
void expect_sound(qvi_mesh& mesh) {
  EXPECT_GE(mesh.get_area(), 0);
  EXPECT_EQ(mesh.to_json().back(), '}');
  EXPECT_TRUE(mesh.get_local_bounding_box().is_empty() ||
              mesh.get_local_bounding_box().get_min().is_finite());
  const qv_test::owned_polygons raw(mesh.build_raw_polygons());
  for (int i = 0; i < raw.get_count(); ++i) EXPECT_GE(raw[i].get_area(), 0);
  qv_3dvector a, b, c, normal;
  for (int i = -1; i <= mesh.get_nb_triangles(); ++i)
    EXPECT_TRUE(!mesh.read_triangle(i, a, b, c, &normal) || normal.is_finite());
}

// What is drawn of any surface: triangles and lines of finite points, every state put back.
void expect_drawn_soundly(qvi_mesh& mesh) {
  // A placement takes sound points far beyond the largest number.
  const bool in_place = dynamic_cast<qvi_mesh_instance*>(&mesh) == nullptr;
  qv_test::gl_recorder gl;
  mesh.set_selected(true);
  mesh.render_opengl(true);
  EXPECT_TRUE(gl.lighting && gl.depth_test);
  mesh.render_opengl(false);
  EXPECT_EQ(gl.get_matrix_depth(), 0);
  for (const qv_test::gl_primitive& primitive : gl.primitives) {
    EXPECT_TRUE(primitive.mode != "triangles" || primitive.vertices.size() % 3 == 0);
    EXPECT_TRUE(primitive.mode != "lines" || primitive.vertices.size() % 2 == 0);
    for (const qv_3dvector& vertex : primitive.vertices)
      EXPECT_TRUE(vertex.is_finite() || !in_place);
  }
}

TEST(shapes, stay_sound_whatever_is_done_to_them) {
  for (int seed = 0; seed < 500; ++seed) {
    SCOPED_TRACE(seed);
    hostile_dice dice(seed);
    const qv_test::owned_item<qvi_mesh> meshes[] = {
        qv_test::owned_item<qvi_mesh>(new qvi_mesh), qv_test::owned_item<qvi_mesh>(new qvi_polygon),
        qv_test::owned_item<qvi_mesh>(new qvi_solid),
        qv_test::owned_item<qvi_mesh>(new qvi_mesh_instance),
        qv_test::owned_item<qvi_mesh>(new qvi_mesh_instance)};
    for (int step = 0; step < 20; ++step) {
      qvi_mesh& mesh = *meshes[dice.roll(5)];
      change_something(mesh, meshes[dice.roll(5)].get(), dice);
      if (dice.roll(2) == 0) expect_sound(mesh);
    }
    if (seed % 4 == 0)
      for (const auto& mesh : meshes) expect_drawn_soundly(*mesh);
  }
}

}  // namespace
