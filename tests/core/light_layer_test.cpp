#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "core/items/qv_scene.h"
#include "core/light/qv_ray.h"
#include "core/light/qv_raytracer.h"
#include "core/light/qv_raytracing_layer.h"
#include "core/shapes/qvi_mesh_instance.h"
#include "core/shapes/qvi_polygon.h"
#include "light_meshes.h"

using namespace qv;
using namespace qv_test;

namespace {

const qv_list<std::string> bim_layer = {"bim"};

qvi_mesh* add_square(qv_item& parent, float z, const qv_list<std::string>& layers = bim_layer) {
  qvi_mesh* mesh = make_mesh(square(10, z)).release();
  mesh->set_raytracing_layers(layers);
  parent.add_child(mesh, -1);
  return mesh;
}

/// Height of the first surface of layer "bim" above the origin, −1 without one.
float height(qv_scene& scene) {
  qv_raytracer* tracer = scene.get_raytracer("bim");
  tracer->update();
  qv_ray ray({0.5f, 0.25f, 0}, {0, 0, 1});
  tracer->raytrace(ray);
  return ray.hit_distance;
}

}  // namespace

TEST(qv_raytracing_layer, takes_the_meshes_that_bear_its_name_in_scene_order) {
  qv_scene scene;
  qvi_mesh* first = add_square(scene, 1, {"simulation", "bim"});
  add_square(scene, 2, {"simulation"});
  qvi_mesh* child = add_square(*first, 3);
  qvi_mesh* last = add_square(scene, 4);
  EXPECT_EQ(scene.get_raytracer("bim")->get_meshes(), (qv_list<qvi_mesh*>{first, child, last}));
  EXPECT_EQ(scene.get_raytracer("simulation")->get_meshes().get_count(), 2);
  EXPECT_EQ(scene.get_raytracer("none")->get_meshes().get_count(), 0);
  EXPECT_EQ(scene.get_raytracer("bim"), scene.get_raytracer("bim"));
}

TEST(qv_raytracing_layer, follows_arrivals_and_departures) {
  qv_scene scene;
  EXPECT_EQ(height(scene), -1);
  qvi_mesh* far = add_square(scene, 4);
  EXPECT_EQ(height(scene), 4);
  qvi_mesh* near = add_square(*far, 2);
  EXPECT_EQ(height(scene), 2);
  near->remove();
  EXPECT_EQ(height(scene), 4);
  scene.add_child(near, 0);
  EXPECT_EQ(height(scene), 2);
  qv_item::destroy(near);
  qv_item::destroy(far);
  EXPECT_EQ(height(scene), -1);
}

TEST(qv_raytracing_layer, follows_changes_of_layers) {
  qv_scene scene;
  add_square(scene, 4);
  qvi_mesh* mesh = add_square(scene, 2, {"simulation"});
  EXPECT_EQ(height(scene), 4);
  mesh->set_raytracing_layers({"simulation", "bim"});
  EXPECT_EQ(height(scene), 2);
  mesh->set_raytracing_layers({});
  EXPECT_EQ(height(scene), 4);
}

TEST(qv_raytracing_layer, follows_changes_of_geometry) {
  qv_scene scene;
  qvi_mesh* mesh = add_square(scene, 4);
  EXPECT_EQ(height(scene), 4);
  load(*mesh, square(10, 3));
  EXPECT_EQ(height(scene), 3);
  mesh->matrix_transform(qv_matrix::translation({0, 0, 2}), true);
  EXPECT_EQ(height(scene), 5);
  mesh->set_raytracing_layers({});
  load(*mesh, square(10, 1));
  mesh->set_raytracing_layers({"bim"});
  EXPECT_EQ(height(scene), 1);
}

TEST(qv_raytracing_layer, follows_changes_of_one_and_of_most_among_many) {
  qv_scene scene;
  std::vector<qvi_mesh*> meshes(60);
  for (std::size_t i = 0; i < 60; ++i) meshes[i] = add_square(scene, 100 + static_cast<float>(i));
  ASSERT_EQ(height(scene), 100);
  load(*meshes[31], square(10, 90));
  EXPECT_EQ(height(scene), 90);
  for (std::size_t i = 10; i < 60; ++i)
    load(*meshes[i], square(10, static_cast<float>(80 - static_cast<int>(i))));
  EXPECT_EQ(height(scene), 21);
  for (std::size_t i = 10; i < 60; ++i) qv_item::destroy(meshes[i]);
  EXPECT_EQ(height(scene), 100);
}

TEST(qv_raytracing_layer, forgets_the_change_of_a_mesh_that_left) {
  qv_scene scene;
  for (int i = 10; i < 40; ++i) add_square(scene, static_cast<float>(i));
  qvi_mesh* gone = add_square(scene, 3);
  qvi_mesh* back = add_square(scene, 5);
  ASSERT_EQ(height(scene), 3);
  load(*gone, square(10, 2));
  qv_item::destroy(gone);
  back->remove();
  load(*back, square(10, 4));
  scene.add_child(back, -1);
  EXPECT_EQ(height(scene), 4);
  load(*back, square(10, 1));
  back->remove();
  EXPECT_EQ(height(scene), 10);
  qv_item::destroy(back);
  EXPECT_EQ(height(scene), 10);
}

TEST(qv_raytracing_layer, keeps_changes_while_others_come_and_go) {
  qv_scene scene;
  for (int i = 0; i < 100; ++i) add_square(scene, static_cast<float>(10 + i));
  qvi_mesh* mesh = add_square(scene, 8);
  ASSERT_EQ(height(scene), 8);
  load(*mesh, square(10, 7));
  for (int i = 0; i < 1000; ++i) qv_item::destroy(add_square(scene, 2));
  qvi_mesh* last = add_square(scene, 6);
  EXPECT_EQ(height(scene), 6);
  qv_item::destroy(last);
  EXPECT_EQ(height(scene), 7);
}

TEST(qv_raytracing_layer, follows_a_polygon_that_is_turned) {
  qv_scene scene;
  qv_polygon shape({0, 0, 2}, {0, 0, 1});
  shape.add_contour({{-5, -5, 2}, {5, -5, 2}, {5, 5, 2}, {-5, 5, 2}});
  auto* polygon = new qvi_polygon;
  polygon->load_from_polygon(&shape);
  polygon->set_raytracing_layers(bim_layer);
  scene.add_child(polygon, -1);
  ASSERT_EQ(height(scene), 2);
  polygon->reverse();
  qv_raytracer* tracer = scene.get_raytracer("bim");
  tracer->update();
  qv_ray ray({0.5f, 0.25f, 0}, {0, 0, 1});
  ASSERT_TRUE(tracer->raytrace(ray));
  EXPECT_EQ(ray.hit_normal, qv_3dvector(0, 0, -1));
}

TEST(qv_raytracing_layer, updates_through_a_kept_tracer) {
  qv_scene scene;
  qvi_mesh* mesh = add_square(scene, 4);
  qv_raytracer* tracer = scene.get_raytracer("bim");
  tracer->update();
  add_square(scene, 2);
  qv_item::destroy(mesh);
  tracer->update();
  qv_ray ray({0.5f, 0.25f, 0}, {0, 0, 1});
  ASSERT_TRUE(tracer->raytrace(ray));
  EXPECT_EQ(ray.hit_distance, 2);
}

TEST(qv_raytracing_layer, follows_instances_and_what_they_show) {
  qv_scene scene;
  // The window shown is not in the layer itself.
  qvi_mesh* window = add_square(scene, 4, {});
  auto* instance = new qvi_mesh_instance;
  instance->set_mesh(window);
  instance->set_raytracing_layers(bim_layer);
  scene.add_child(instance, -1);
  EXPECT_EQ(height(scene), 4);
  instance->set_matrix(qv_matrix::translation({0, 0, 1}));
  EXPECT_EQ(height(scene), 5);
  load(*window, square(10, 2));
  EXPECT_EQ(height(scene), 3);

  // An instance of the instance follows too.
  auto* second = new qvi_mesh_instance;
  second->set_mesh(instance);
  second->set_matrix(qv_matrix::translation({0, 0, -2}));
  second->set_raytracing_layers(bim_layer);
  scene.add_child(second, -1);
  EXPECT_EQ(height(scene), 1);
  load(*window, square(10, 3));
  EXPECT_EQ(height(scene), 2);
  instance->set_raytracing_layers({});
  load(*window, square(10, 4));
  EXPECT_EQ(height(scene), 3);
  instance->set_mesh(nullptr);
  EXPECT_EQ(height(scene), -1);
}

TEST(qv_raytracing_layer, follows_an_instance_of_a_mesh_outside_of_the_scene) {
  qv_scene scene;
  owned<qvi_mesh> window = make_mesh(square(10, 4));
  auto* instance = new qvi_mesh_instance;
  instance->set_mesh(window.get());
  instance->set_raytracing_layers(bim_layer);
  scene.add_child(instance, -1);
  EXPECT_EQ(height(scene), 4);
  load(*window, square(10, 2));
  EXPECT_EQ(height(scene), 2);
  window.reset();
  EXPECT_EQ(height(scene), -1);
}

TEST(qv_raytracing_layer, leaves_a_circle_of_instances_out) {
  qv_scene scene;
  auto* a = new qvi_mesh_instance;
  auto* b = new qvi_mesh_instance;
  a->set_mesh(b);
  b->set_mesh(a);
  for (qvi_mesh_instance* instance : {a, b}) {
    instance->set_raytracing_layers(bim_layer);
    scene.add_child(instance, -1);
  }
  EXPECT_EQ(height(scene), -1);
  add_square(scene, 3);
  EXPECT_EQ(height(scene), 3);
}

TEST(qv_raytracing_layer, never_takes_a_new_mesh_for_a_former_one) {
  qv_scene scene;
  for (int i = 1; i <= 50; ++i) {
    qvi_mesh* mesh = add_square(scene, static_cast<float>(i));
    ASSERT_EQ(height(scene), static_cast<float>(i));
    qv_item::destroy(mesh);
  }
}

TEST(qv_raytracing_layer, is_untouched_by_the_rest_of_the_scene) {
  qv_scene scene;
  for (int i = 1; i <= 200; ++i) add_square(scene, static_cast<float>(i));
  ASSERT_EQ(height(scene), 1);
  const int before = scene.get_raytracer("bim")->get_triangle_count();
  for (int i = 0; i < 2000; ++i) {
    qvi_mesh* other = add_square(scene, 0.5f, {});
    load(*other, square(10, 0.25f));
    ASSERT_EQ(height(scene), 1);
  }
  EXPECT_EQ(scene.get_raytracer("bim")->get_triangle_count(), before);
}
