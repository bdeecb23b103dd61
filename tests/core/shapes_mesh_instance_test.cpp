#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "core/light/qv_ray.h"
#include "core/shapes/qvi_mesh_instance.h"
#include "core/shapes/qvi_polygon.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_shapes.h"

namespace {

using namespace qv;
using qv_test::make_item;

class qvi_mesh_instance_test : public testing::Test {
 protected:
  qvi_mesh_instance_test() {
    const auto corners = qv_test::make_cube_corners(2);
    cube->load_from_triangles(corners, qv_test::make_loose_triangles(corners));
    instance->set_mesh(cube.get());
  }

  static double get_volume(qvi_mesh& mesh) {
    double volume = 0;
    qv_3dvector a, b, c;
    for (int i = 0; i < mesh.get_nb_triangles(); ++i)
      if (mesh.read_triangle(i, a, b, c, nullptr)) volume += double{a.dot(b.cross(c))} / 6;
    return volume;
  }

  qv_test::owned_item<qvi_mesh> cube = make_item<qvi_mesh>();
  qv_test::owned_item<qvi_mesh_instance> instance = make_item<qvi_mesh_instance>();
};

TEST_F(qvi_mesh_instance_test, shows_nothing_without_a_mesh) {
  instance->set_mesh(nullptr);
  EXPECT_TRUE(instance->has_exact_type("mesh_instance"));
  EXPECT_TRUE(instance->has_type("mesh"));
  EXPECT_EQ(instance->get_nb_triangles(), 0);
  EXPECT_EQ(instance->get_area(), 0);
  EXPECT_TRUE(instance->get_local_bounding_box().is_empty());
  EXPECT_EQ(instance->build_raw_polygons().get_count(), 0);
  EXPECT_EQ(instance->get_side_shader(true), nullptr);
}

TEST_F(qvi_mesh_instance_test, places_its_mesh) {
  instance->set_matrix(qv_matrix::translation({10, 0, 0}) * qv_matrix::scaling({1, 1, 2}));
  EXPECT_EQ(instance->get_nb_triangles(), 12);
  EXPECT_EQ(instance->get_local_bounding_box(), qv_box({10, 0, 0}, {12, 2, 4}));
  // 2 · 2 × 2 + 4 · 2 × 4
  EXPECT_FLOAT_EQ(instance->get_area(), 40);
  const qv_test::owned_polygons raw(instance->build_raw_polygons());
  EXPECT_EQ(raw.get_count(), 6);
  EXPECT_NEAR(raw.get_area(), 40, 1e-4);
  EXPECT_EQ(cube->get_area(), 24);
}

TEST_F(qvi_mesh_instance_test, follows_every_change_of_its_mesh) {
  EXPECT_EQ(instance->get_area(), 24);
  cube->matrix_transform(qv_matrix::scaling({2, 2, 2}), true);
  EXPECT_EQ(instance->get_area(), 96);
  cube->matrix_transform(qv_matrix::scaling({0.5f, 0.5f, 0.5f}), false);
  EXPECT_EQ(instance->get_area(), 24);
  instance->matrix_transform(qv_matrix::scaling({3, 3, 3}), false);
  EXPECT_EQ(instance->get_area(), 216);
  unsigned int date = instance->get_geometry_date();
  const auto shader = make_item<qvi_shader>();
  cube->set_front_shader(shader.get());
  EXPECT_GT(instance->get_geometry_date(), date);
  date = instance->get_geometry_date();
  qv_item::destroy(cube.release());
  EXPECT_EQ(instance->get_mesh(), nullptr);
  EXPECT_EQ(instance->get_nb_triangles(), 0);
  EXPECT_GT(instance->get_geometry_date(), date);
}

TEST_F(qvi_mesh_instance_test, multiplies_its_matrix_from_the_left) {
  instance->set_matrix(qv_matrix::scaling({2, 2, 2}));
  const unsigned int date = instance->get_matrix_date();
  instance->matrix_transform(qv_matrix::translation({1, 0, 0}), true);
  EXPECT_GT(instance->get_matrix_date(), date);
  EXPECT_EQ(instance->get_local_bounding_box(), qv_box({1, 0, 0}, {5, 4, 4}));
  EXPECT_EQ(cube->get_local_bounding_box(), qv_box({0, 0, 0}, {2, 2, 2}));
}

TEST_F(qvi_mesh_instance_test, keeps_the_front_outside_in_a_mirror) {
  instance->set_matrix(qv_matrix::scaling({-1, 1, 1}));
  EXPECT_DOUBLE_EQ(get_volume(*instance), 8);
  const qv_test::owned_polygons raw(instance->build_raw_polygons());
  ASSERT_EQ(raw.get_count(), 6);
  for (int i = 0; i < 6; ++i)
    EXPECT_GT((raw[i].get_contour_vertices()[0] - qv_3dvector(-1, 1, 1)).dot(raw[i].get_normal()),
              0);
}

TEST_F(qvi_mesh_instance_test, turns_over_without_touching_its_mesh) {
  const auto own = make_item<qvi_shader>();
  instance->set_front_shader(own.get());
  instance->reverse();
  EXPECT_DOUBLE_EQ(get_volume(*instance), -8);
  EXPECT_DOUBLE_EQ(get_volume(*cube), 8);
  EXPECT_EQ(instance->get_side_shader(false), own.get());
  const qv_test::owned_polygons raw(instance->build_raw_polygons());
  ASSERT_EQ(raw.get_count(), 6);
  EXPECT_EQ(raw[0].get_normal(), qv_3dvector(0, 0, 1));
  instance->reverse();
  EXPECT_DOUBLE_EQ(get_volume(*instance), 8);
  EXPECT_EQ(instance->get_side_shader(true), own.get());
}

TEST_F(qvi_mesh_instance_test, takes_the_shaders_of_its_mesh_where_it_has_none) {
  const auto front = make_item<qvi_shader>();
  const auto back = make_item<qvi_shader>();
  cube->set_front_shader(front.get());
  cube->set_back_shader(back.get());
  EXPECT_EQ(instance->get_side_shader(true), front.get());
  EXPECT_EQ(instance->get_side_shader(false), back.get());
  instance->reverse();
  EXPECT_EQ(instance->get_side_shader(true), back.get());
  qv_ray ray({5, 0, 0}, {-1, 0, 0});
  ray.hit_mesh = instance.get();
  ray.hit_distance = 3;
  ray.hit_normal = {1, 0, 0};
  qv_color color;
  back->set_diffuse_color({0, 1, 0, 1});
  ASSERT_TRUE(instance->shade_ray(&ray, color));
  EXPECT_EQ(color, qv_color(0, 1, 0, 1));
}

TEST_F(qvi_mesh_instance_test, shows_the_end_of_a_chain) {
  const auto outer = make_item<qvi_mesh_instance>();
  const auto outermost = make_item<qvi_mesh_instance>();
  outer->set_mesh(instance.get());
  outermost->set_mesh(outer.get());
  instance->set_matrix(qv_matrix::translation({1, 0, 0}));
  outer->set_matrix(qv_matrix::rotation(2, 90));
  outermost->set_matrix(qv_matrix::scaling({2, 2, 2}));
  // x 1 … 3 becomes y 1 … 3, then 2 … 6; y 0 … 2 becomes x −2 … 0, then −4 … 0.
  EXPECT_EQ(outermost->get_local_bounding_box(), qv_box({-4, 2, 0}, {0, 6, 4}));
  EXPECT_EQ(outermost->get_area(), 96);
  instance->set_mesh(nullptr);
  EXPECT_EQ(outermost->get_area(), 0);
}

TEST_F(qvi_mesh_instance_test, shows_nothing_when_it_leads_back_to_itself) {
  std::vector<qv_test::owned_item<qvi_mesh_instance>> ring;
  for (int length = 1; length <= 9; ++length) {
    ring.push_back(make_item<qvi_mesh_instance>());
    for (int i = 0; i < length; ++i) ring[i]->set_mesh(ring[(i + 1) % length].get());
    // One that leads into the ring without being part of it.
    instance->set_mesh(ring[length / 2].get());
    for (qvi_mesh_instance* item : {ring[0].get(), instance.get()}) {
      EXPECT_EQ(item->get_nb_triangles(), 0);
      EXPECT_TRUE(item->get_local_bounding_box().is_empty());
      EXPECT_EQ(item->get_side_shader(true), nullptr);
      EXPECT_EQ(item->build_raw_polygons().get_count(), 0);
      EXPECT_GT(item->get_geometry_date(), 0u);
    }
  }
  ring[4]->set_mesh(cube.get());
  EXPECT_EQ(ring[0]->get_area(), 24);
}

TEST_F(qvi_mesh_instance_test, has_no_geometry_of_its_own_to_change) {
  const qv_polygon rectangle = qv_test::make_rectangle(0, 0, 1, 1);
  const unsigned int date = instance->get_date();
  instance->load_from_polygon(&rectangle);
  instance->load_from_triangles({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 1, 2});
  instance->merge(cube.get());
  instance->optimize_vertices(1);
  instance->push_offset(1);
  EXPECT_EQ(instance->get_date(), date);
  EXPECT_EQ(instance->get_area(), 24);
}

TEST_F(qvi_mesh_instance_test, can_be_merged_into_the_mesh_that_it_shows) {
  instance->set_matrix(qv_matrix::translation({5, 0, 0}));
  cube->merge(instance.get());
  EXPECT_EQ(cube->get_area(), 48);
  EXPECT_EQ(cube->get_local_bounding_box(), qv_box({0, 0, 0}, {7, 2, 2}));
  EXPECT_EQ(instance->get_area(), 48);
}

TEST_F(qvi_mesh_instance_test, shows_a_polygon_with_its_hole) {
  const auto polygon = make_item<qvi_polygon>();
  const qv_polygon frame = qv_test::make_frame(0, 0, 5, 4);
  polygon->load_from_polygon(&frame);
  instance->set_mesh(polygon.get());
  instance->set_matrix(qv_matrix::rotation(1, 90) * qv_matrix::scaling({1, -1, 1}));
  EXPECT_FLOAT_EQ(instance->get_area(), 14);
  const qv_test::owned_polygons raw(instance->build_raw_polygons());
  ASSERT_EQ(raw.get_count(), 1);
  EXPECT_FLOAT_EQ(raw[0].get_area(), 14);
  EXPECT_NEAR(raw[0].get_normal().dot({1, 0, 0}), 1, 1e-6);
  qv_3dvector a, b, c, normal;
  ASSERT_TRUE(instance->read_triangle(0, a, b, c, &normal));
  EXPECT_NEAR(normal.dot({1, 0, 0}), 1, 1e-6);
}

}  // namespace
