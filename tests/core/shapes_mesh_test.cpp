#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "core/light/qv_ray.h"
#include "core/shapes/qvi_mesh.h"
#include "core/shapes/qvi_polygon.h"
#include "core/shapes/qvi_solid.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_shapes.h"
#include "utilities/qv_random.h"

namespace {

using namespace qv;
using qv_test::make_item;
using qv_test::to_vector;

constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

class listening_mesh : public qvi_mesh {
 public:
  std::vector<std::string> changes;
  ~listening_mesh() override = default;

 protected:
  void item_changed(qv_item* item, const std::string& name) override {
    if (item == this) changes.push_back(name);
    qvi_mesh::item_changed(item, name);
  }
};

void load_cube(qvi_mesh& mesh, float size) {
  const auto corners = qv_test::make_cube_corners(size);
  mesh.load_from_triangles(corners, qv_test::make_loose_triangles(corners));
}

// Enclosed volume by the divergence theorem: positive when the fronts face outwards.
double get_volume(qvi_mesh& mesh) {
  double volume = 0;
  qv_3dvector a, b, c;
  for (int i = 0; i < mesh.get_nb_triangles(); ++i)
    if (mesh.read_triangle(i, a, b, c, nullptr)) volume += double{a.dot(b.cross(c))} / 6;
  return volume;
}

TEST(qvi_mesh, is_empty_and_visible_when_new) {
  const auto mesh = make_item<qvi_mesh>();
  EXPECT_TRUE(mesh->has_exact_type("mesh"));
  EXPECT_EQ(mesh->get_nb_triangles(), 0);
  EXPECT_EQ(mesh->get_nb_vertices(), 0);
  EXPECT_EQ(mesh->get_area(), 0);
  EXPECT_TRUE(mesh->get_local_bounding_box().is_empty());
  EXPECT_TRUE(mesh->get_rendering_visibility());
  EXPECT_EQ(mesh->get_front_shader(), nullptr);
}

TEST(qvi_mesh, measures_a_cube) {
  listening_mesh mesh;
  load_cube(mesh, 2);
  EXPECT_EQ(mesh.get_nb_triangles(), 12);
  EXPECT_EQ(mesh.get_nb_vertices(), 36);
  EXPECT_EQ(mesh.get_area(), 24);
  EXPECT_EQ(mesh.get_local_bounding_box(), qv_box({0, 0, 0}, {2, 2, 2}));
  EXPECT_DOUBLE_EQ(get_volume(mesh), 8);
}

TEST(qvi_mesh, reads_a_triangle_with_its_normal) {
  listening_mesh mesh;
  mesh.load_from_triangles({{0, 0, 1}, {2, 0, 1}, {0, 3, 1}}, {0, 1, 2});
  qv_3dvector a, b, c, normal;
  ASSERT_TRUE(mesh.read_triangle(0, a, b, c, &normal));
  EXPECT_EQ(a, qv_3dvector(0, 0, 1));
  EXPECT_EQ(b, qv_3dvector(2, 0, 1));
  EXPECT_EQ(c, qv_3dvector(0, 3, 1));
  EXPECT_EQ(normal, qv_3dvector(0, 0, 1));
}

TEST(qvi_mesh, writes_nothing_for_a_triangle_that_is_not_there) {
  listening_mesh mesh;
  mesh.set_vertices({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
  mesh.set_triangles({0, 1, 3, 0, -1, 2, 0, 1});
  qv_3dvector a(7, 7, 7), b = a, c = a, normal = a;
  for (int index : {-1, 0, 1, 2, 1000000})
    EXPECT_FALSE(mesh.read_triangle(index, a, b, c, &normal)) << index;
  for (const qv_3dvector& untouched : {a, b, c, normal}) EXPECT_EQ(untouched, qv_3dvector(7, 7, 7));
  EXPECT_EQ(mesh.get_area(), 0);
}

TEST(qvi_mesh, gives_the_zero_normal_to_a_triangle_without_area) {
  listening_mesh mesh;
  mesh.load_from_triangles({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {not_a_number, 0, 0}},
                           {0, 1, 2, 0, 1, 3});
  qv_3dvector a, b, c, normal(1, 1, 1);
  ASSERT_TRUE(mesh.read_triangle(0, a, b, c, &normal));
  EXPECT_EQ(normal, qv_3dvector());
  normal = {1, 1, 1};
  ASSERT_TRUE(mesh.read_triangle(1, a, b, c, &normal));
  EXPECT_EQ(normal, qv_3dvector());
}

TEST(qvi_mesh, becomes_the_triangles_of_a_polygon) {
  listening_mesh mesh;
  const qv_polygon frame = qv_test::make_frame(0, 0, 5, 4, 1);
  mesh.load_from_polygon(&frame);
  EXPECT_FLOAT_EQ(mesh.get_area(), 20 - 3 * 2);
  qv_3dvector a, b, c, normal;
  for (int i = 0; i < mesh.get_nb_triangles(); ++i) {
    ASSERT_TRUE(mesh.read_triangle(i, a, b, c, &normal));
    EXPECT_EQ(normal, qv_3dvector(0, 0, 1));
  }
  mesh.load_from_polygon(nullptr);
  EXPECT_EQ(mesh.get_nb_triangles(), 0);
  EXPECT_EQ(mesh.get_nb_vertices(), 0);
}

TEST(qvi_mesh, drops_triangles_that_name_no_vertex_when_loaded) {
  listening_mesh mesh;
  mesh.load_from_triangles({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 1, 2, 0, 1, 9, -1, 1, 2, 0, 1});
  EXPECT_EQ(to_vector(mesh.get_triangles()), (std::vector<int>{0, 1, 2}));
}

TEST(qvi_mesh, stamps_and_announces_what_it_loads) {
  listening_mesh mesh;
  const unsigned int before = mesh.get_geometry_date();
  load_cube(mesh, 1);
  EXPECT_EQ(mesh.changes, (std::vector<std::string>{"vertices", "triangles"}));
  const unsigned int loaded = mesh.get_geometry_date();
  EXPECT_GT(loaded, before);
  load_cube(mesh, 1);
  EXPECT_EQ(mesh.changes.size(), 2u);
  EXPECT_EQ(mesh.get_geometry_date(), loaded);
}

TEST(qvi_mesh, counts_its_front_shader_to_its_geometry_and_the_back_one_not) {
  listening_mesh mesh;
  const auto shader = make_item<qvi_shader>();
  const unsigned int before = mesh.get_geometry_date();
  mesh.set_back_shader(shader.get());
  EXPECT_EQ(mesh.get_geometry_date(), before);
  const unsigned int shape = mesh.get_shape_date();
  mesh.set_front_shader(shader.get());
  EXPECT_GT(mesh.get_geometry_date(), before);
  EXPECT_EQ(mesh.get_shape_date(), shape);
}

// --- merging ---

TEST(qvi_mesh, adds_up_areas_when_merged) {
  listening_mesh mesh, other, third;
  load_cube(mesh, 1);
  load_cube(other, 2);
  load_cube(third, 3);
  mesh.merge(qv_list<qvi_mesh*>{&other, nullptr, &mesh, &third});
  EXPECT_FLOAT_EQ(mesh.get_area(), 6 + 24 + 54);
  EXPECT_EQ(mesh.get_nb_vertices(), 3 * 36);
  EXPECT_EQ(other.get_nb_triangles(), 12);
}

TEST(qvi_mesh, adds_nothing_for_null_or_itself) {
  listening_mesh mesh;
  load_cube(mesh, 1);
  mesh.changes.clear();
  mesh.merge(static_cast<qvi_mesh*>(nullptr));
  mesh.merge(&mesh);
  EXPECT_TRUE(mesh.changes.empty());
  EXPECT_EQ(mesh.get_nb_triangles(), 12);
}

TEST(qvi_mesh, brings_no_dangling_index_to_life_by_merging) {
  listening_mesh mesh, other;
  mesh.set_vertices({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
  mesh.set_triangles({0, 1, 2, 0, 1, 4});
  other.set_vertices({{5, 0, 0}, {6, 0, 0}, {5, 1, 0}});
  other.set_triangles({0, 1, 2, 0, 1, -3});
  mesh.merge(&other);
  EXPECT_EQ(to_vector(mesh.get_triangles()), (std::vector<int>{0, 1, 2, 3, 4, 5}));
}

// --- placing ---

TEST(qvi_mesh, comes_back_by_the_inverse_transformation) {
  listening_mesh mesh;
  load_cube(mesh, 2);
  const std::vector<qv_3dvector> original = to_vector(mesh.get_vertices());
  const qv_matrix there = qv_matrix::translation({10, -3, 5}) * qv_matrix::rotation(2, 37) *
                          qv_matrix::scaling({2, 1, 0.5f});
  mesh.matrix_transform(there, true);
  EXPECT_NEAR(get_volume(mesh), 8, 1e-3);
  mesh.matrix_transform(there.get_inverse(), true);
  for (int i = 0; i < mesh.get_nb_vertices(); ++i)
    EXPECT_NEAR((mesh.get_vertices()[i] - original[i]).length(), 0, 1e-5);
}

TEST(qvi_mesh, keeps_its_front_outside_in_a_mirror) {
  listening_mesh mesh;
  load_cube(mesh, 2);
  mesh.matrix_transform(qv_matrix::scaling({-1, 1, 1}), true);
  EXPECT_DOUBLE_EQ(get_volume(mesh), 8);
  EXPECT_EQ(mesh.get_local_bounding_box(), qv_box({-2, 0, 0}, {0, 2, 2}));
  mesh.matrix_transform(qv_matrix::scaling({-1, -1, -1}), false);
  EXPECT_DOUBLE_EQ(get_volume(mesh), 8);
}

TEST(qvi_mesh, moves_without_a_word_when_asked_to) {
  qv_test::recording_scene scene;
  auto* mesh = new listening_mesh;
  scene.add_child(mesh, -1);
  load_cube(*mesh, 1);
  mesh->changes.clear();
  const unsigned int vertices_date = mesh->get_vertices_date();
  const unsigned int item_date = mesh->get_date();
  const unsigned int shape_date = mesh->get_shape_date();
  mesh->matrix_transform(qv_matrix::translation({5, 0, 0}), false);
  EXPECT_EQ(mesh->get_vertices()[0], qv_3dvector(5, 0, 0));
  EXPECT_TRUE(mesh->changes.empty());
  EXPECT_EQ(mesh->get_vertices_date(), vertices_date);
  EXPECT_EQ(mesh->get_date(), item_date);
  EXPECT_GT(mesh->get_shape_date(), shape_date);
  mesh->matrix_transform(qv_matrix::translation({5, 0, 0}), true);
  EXPECT_EQ(mesh->changes, std::vector<std::string>{"vertices"});
}

TEST(qvi_mesh, pushes_each_side_of_a_cube_out_along_its_corners) {
  listening_mesh mesh;
  load_cube(mesh, 2);
  mesh.optimize_vertices(0);
  mesh.push_offset(0.5f);
  // A corner's mean normal weighs faces by the triangles that meet there, so corners keep close to
  // the diagonal; each moves by exactly half a metre.
  for (const qv_3dvector& vertex : mesh.get_vertices()) {
    const qv_3dvector nearest(vertex.x > 1 ? 2.0f : 0.0f, vertex.y > 1 ? 2.0f : 0.0f,
                              vertex.z > 1 ? 2.0f : 0.0f);
    EXPECT_NEAR((vertex - nearest).length(), 0.5, 1e-6);
  }
  EXPECT_GT(get_volume(mesh), 8);
}

TEST(qvi_mesh, does_not_tear_loose_triangles_apart_when_pushed) {
  listening_mesh mesh;
  load_cube(mesh, 2);
  mesh.push_offset(-0.25f);
  mesh.optimize_vertices(1e-6f);
  EXPECT_EQ(mesh.get_nb_vertices(), 8);
  EXPECT_LT(get_volume(mesh), 8);
}

TEST(qvi_mesh, is_not_pushed_by_a_distance_that_is_none) {
  listening_mesh mesh;
  load_cube(mesh, 2);
  mesh.changes.clear();
  mesh.push_offset(not_a_number);
  mesh.push_offset(infinity);
  EXPECT_TRUE(mesh.changes.empty());
}

TEST(qvi_mesh, turns_over_with_its_shaders) {
  listening_mesh mesh;
  const auto outside = make_item<qvi_shader>();
  load_cube(mesh, 2);
  mesh.set_front_shader(outside.get());
  mesh.reverse();
  EXPECT_DOUBLE_EQ(get_volume(mesh), -8);
  EXPECT_EQ(mesh.get_front_shader(), nullptr);
  EXPECT_EQ(mesh.get_back_shader(), outside.get());
  mesh.reverse();
  EXPECT_DOUBLE_EQ(get_volume(mesh), 8);
  EXPECT_EQ(mesh.get_front_shader(), outside.get());
}

// --- welding ---

TEST(qvi_mesh, welds_a_cube_of_loose_triangles_to_eight_corners) {
  listening_mesh mesh;
  load_cube(mesh, 2);
  mesh.optimize_vertices(0.001f);
  EXPECT_EQ(mesh.get_nb_vertices(), 8);
  EXPECT_EQ(mesh.get_nb_triangles(), 12);
  EXPECT_EQ(mesh.get_area(), 24);
  EXPECT_DOUBLE_EQ(get_volume(mesh), 8);
}

TEST(qvi_mesh, welds_within_the_distance_and_drops_what_collapses) {
  listening_mesh mesh;
  // Two triangles over a gap of half a millimetre, a sliver in the gap, and a vertex without use.
  mesh.load_from_triangles(
      {{9, 9, 9}, {0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {1.0005f, 0, 0}, {2, 0, 0}, {1.0005f, 1, 0}},
      {1, 2, 3, 4, 5, 6, 2, 4, 3});
  mesh.optimize_vertices(0.001f);
  EXPECT_EQ(to_vector(mesh.get_vertices()),
            (std::vector<qv_3dvector>{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {2, 0, 0}}));
  EXPECT_EQ(to_vector(mesh.get_triangles()), (std::vector<int>{0, 1, 2, 1, 3, 2}));
}

// --- raw polygons ---

TEST(qvi_mesh, falls_into_the_six_squares_of_a_cube) {
  listening_mesh mesh;
  load_cube(mesh, 2);
  const qv_test::owned_polygons polygons(mesh.build_raw_polygons());
  ASSERT_EQ(polygons.get_count(), 6);
  const qv_3dvector normals[6] = {{0, 0, -1}, {0, 0, 1}, {0, -1, 0},
                                  {1, 0, 0},  {0, 1, 0}, {-1, 0, 0}};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(polygons[i].get_normal(), normals[i]);
    EXPECT_FLOAT_EQ(polygons[i].get_area(), 4);
    EXPECT_EQ(to_vector(polygons[i].get_contour_sizes()), (std::vector<unsigned int>{4}));
  }
}

qv_polygon make_l_with_hole() {
  qv_polygon polygon({0, 0, 2}, {0, 0, 1});
  polygon.add_contour({{0, 0, 2}, {6, 0, 2}, {6, 2, 2}, {3, 2, 2}, {3, 5, 2}, {0, 5, 2}});
  polygon.add_contour({{1, 1, 2}, {1, 3, 2}, {2, 3, 2}, {2, 1, 2}});
  return polygon;
}

TEST(qvi_mesh, gives_back_an_l_with_a_hole_however_it_lies) {
  constexpr int seed = 3;
  SCOPED_TRACE(seed);
  qv_random random(seed);
  const qv_polygon original = make_l_with_hole();
  // 6 × 2 + 3 × 3 − 1 × 2
  constexpr float area = 19;
  for (int i = 0; i < 20; ++i) {
    listening_mesh mesh;
    mesh.load_from_polygon(&original);
    const float angle = 360 * random.dice_float();
    const float tilt = 360 * random.dice_float();
    const qv_matrix there = qv_matrix::translation({200 * random.dice_float(), -90, 12}) *
                            qv_matrix::rotation(0, tilt) * qv_matrix::rotation(2, angle);
    mesh.matrix_transform(there, true);
    const qv_test::owned_polygons polygons(mesh.build_raw_polygons());
    ASSERT_EQ(polygons.get_count(), 1);
    EXPECT_EQ(to_vector(polygons[0].get_contour_sizes()), (std::vector<unsigned int>{6, 4}));
    EXPECT_NEAR(polygons[0].get_area(), area, 1e-3);
    EXPECT_NEAR(polygons[0].get_normal().dot(there.transform_normal({0, 0, 1})), 1, 1e-5);
  }
}

// A prism over a star of `count` arms around a square hole, leaning to one side.
qv_solid make_random_prism(qv_random& random, int count) {
  qv_polygon base({0, 0, 0}, {0, 0, 1});
  qv_list<qv_3dvector> star;
  for (int i = 0; i < count; ++i) {
    const double angle = 2 * 3.14159265358979 * (i + 0.6 * random.dice_double()) / count;
    const double radius = 3 + 4 * random.dice_double();
    star.append({static_cast<float>(radius * std::cos(angle)),
                 static_cast<float>(radius * std::sin(angle)), 0});
  }
  base.add_contour(star);
  base.add_contour({{-0.3f, -0.3f, 0}, {-0.3f, 0.3f, 0}, {0.3f, 0.3f, 0}, {0.3f, -0.3f, 0}});
  qv_solid prism;
  prism.extrusion(base, {0.5f * random.dice_float(), 0, 3});
  return prism;
}

TEST(qvi_mesh, gives_back_the_faces_of_prisms_anywhere_on_a_site) {
  constexpr int seed = 5;
  SCOPED_TRACE(seed);
  qv_random random(seed);
  for (int i = 0; i < 200; ++i) {
    const qv_solid prism = make_random_prism(random, 5 + i % 9);
    const auto solid = make_item<qvi_solid>();
    solid->load_from_solid(&prism);
    const float site = i % 2 == 0 ? 0.0f : 500.0f;
    const float x = site * random.dice_float(), y = site * random.dice_float();
    solid->matrix_transform(qv_matrix::translation({x, y, 0}) *
                                qv_matrix::rotation(0, 360 * random.dice_float()) *
                                qv_matrix::rotation(2, 77),
                            true);
    listening_mesh mesh;
    mesh.merge(solid.get());
    if (i % 3 == 0) mesh.optimize_vertices(0.001f);
    const qv_test::owned_polygons polygons(mesh.build_raw_polygons());
    ASSERT_EQ(polygons.get_count(), prism.get_faces().get_count()) << i;
    for (int face = 0; face < polygons.get_count(); ++face)
      EXPECT_EQ(polygons[face].get_contour_count(), prism.get_faces()[face]->get_contour_count());
    EXPECT_NEAR(polygons.get_area() / solid->get_area(), 1, 1e-5);
  }
}

TEST(qvi_mesh, keeps_planes_and_sides_apart_in_raw_polygons) {
  listening_mesh mesh, back;
  const qv_polygon floor = qv_test::make_rectangle(0, 0, 4, 4);
  const qv_polygon step = qv_test::make_rectangle(4, 0, 8, 4, 0.2f);
  mesh.load_from_polygon(&floor);
  back.load_from_polygon(&step);
  mesh.merge(&back);
  back.load_from_polygon(&floor);
  back.reverse();
  mesh.merge(&back);
  const qv_test::owned_polygons polygons(mesh.build_raw_polygons());
  ASSERT_EQ(polygons.get_count(), 3);
  EXPECT_EQ(polygons[0].get_normal(), qv_3dvector(0, 0, 1));
  EXPECT_EQ(polygons[1].get_normal(), qv_3dvector(0, 0, 1));
  EXPECT_EQ(polygons[2].get_normal(), qv_3dvector(0, 0, -1));
  for (int i = 0; i < 3; ++i) EXPECT_FLOAT_EQ(polygons[i].get_area(), 16);
}

TEST(qvi_mesh, does_not_drift_around_a_cylinder) {
  listening_mesh mesh;
  // Twelve facets of 30°: 2 · 12 · sin 15° of girth over a height of 3.
  qv_list<qv_3dvector> vertices;
  qv_list<int> triangles;
  constexpr int facets = 12;
  for (int i = 0; i < facets; ++i) {
    const double angle = 2 * 3.14159265358979 * i / facets;
    const auto x = static_cast<float>(std::cos(angle)), y = static_cast<float>(std::sin(angle));
    vertices.append({x, y, 0});
    vertices.append({x, y, 3});
    const int next = 2 * ((i + 1) % facets);
    for (int corner : {2 * i, next, next + 1, 2 * i, next + 1, 2 * i + 1}) triangles.append(corner);
  }
  mesh.load_from_triangles(vertices, triangles);
  const qv_test::owned_polygons polygons(mesh.build_raw_polygons());
  EXPECT_EQ(polygons.get_count(), facets);
  EXPECT_NEAR(polygons.get_area(), 2 * facets * std::sin(3.14159265358979 / 12) * 3, 1e-4);
}

TEST(qvi_mesh, keeps_a_hole_that_touches_the_border_at_a_corner_by_itself) {
  listening_mesh mesh;
  // 3 × 3 unit squares less two of them.
  qv_list<qv_3dvector> vertices;
  for (int y = 0; y <= 3; ++y)
    for (int x = 0; x <= 3; ++x) vertices.append({static_cast<float>(x), static_cast<float>(y), 0});
  qv_list<int> triangles;
  const auto add_square = [&](int x, int y) {
    const int p = 4 * y + x;
    for (int corner : {p, p + 1, p + 5, p, p + 5, p + 4}) triangles.append(corner);
  };
  // Two holes, at (1, 1) and (2, 2), that touch at the point (2, 2); the second one reaches the
  // outside.
  for (int y = 0; y < 3; ++y)
    for (int x = 0; x < 3; ++x)
      if (!(x == y && x > 0)) add_square(x, y);
  mesh.load_from_triangles(vertices, triangles);
  const qv_test::owned_polygons polygons(mesh.build_raw_polygons());
  ASSERT_EQ(polygons.get_count(), 1);
  EXPECT_FLOAT_EQ(polygons[0].get_area(), 7);
  // The outer contour around the notch, and the hole.
  EXPECT_EQ(polygons[0].get_contour_count(), 2);
}

TEST(qvi_mesh, takes_doubled_triangles_once) {
  listening_mesh mesh;
  mesh.load_from_triangles({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}},
                           {0, 1, 2, 0, 2, 3, 2, 0, 1, 3, 0, 2});
  const qv_test::owned_polygons polygons(mesh.build_raw_polygons());
  ASSERT_EQ(polygons.get_count(), 1);
  EXPECT_FLOAT_EQ(polygons[0].get_area(), 4);
}

TEST(qvi_mesh, unites_triangles_of_one_plane_that_overlap) {
  listening_mesh mesh;
  // Three triangles on one edge, the third over the first.
  mesh.load_from_triangles({{0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {0, -2, 0}, {2, 2, 0}},
                           {0, 1, 2, 1, 0, 3, 0, 1, 4});
  const qv_test::owned_polygons polygons(mesh.build_raw_polygons());
  ASSERT_EQ(polygons.get_count(), 1);
  // Each has area 2; the overlap of the first and the third is a triangle of area 1.
  EXPECT_NEAR(polygons[0].get_area(), 5, 1e-4);
}

TEST(qvi_mesh, makes_no_polygon_of_triangles_that_are_none) {
  listening_mesh mesh;
  mesh.set_vertices({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {not_a_number, 1, 0}, {0, infinity, 0}});
  mesh.set_triangles({0, 1, 2, 0, 1, 3, 0, 1, 4, 0, 0, 0, 0, 1, 99, 5, -7, 2});
  const qv_test::owned_polygons polygons(mesh.build_raw_polygons());
  EXPECT_EQ(polygons.get_count(), 0);
  mesh.optimize_vertices(0.1f);
  EXPECT_EQ(mesh.get_nb_triangles(), 0);
  mesh.push_offset(1);
  mesh.reverse();
}

TEST(qvi_mesh, does_not_choke_on_a_fan_about_one_edge) {
  listening_mesh mesh;
  qv_list<qv_3dvector> vertices = {{0, 0, 0}, {0, 0, 1}};
  qv_list<int> triangles;
  constexpr int blades = 50000;
  for (int i = 0; i < blades; ++i) {
    const double angle = 2 * 3.14159265358979 * i / blades;
    vertices.append(
        {static_cast<float>(1e3 * std::cos(angle)), static_cast<float>(1e3 * std::sin(angle)), 0});
    for (int corner : {0, 1, i + 2}) triangles.append(corner);
  }
  mesh.load_from_triangles(vertices, triangles);
  const qv_test::owned_polygons polygons(mesh.build_raw_polygons());
  EXPECT_EQ(polygons.get_count(), blades);
}

// --- shading and text ---

TEST(qvi_mesh, shows_a_ray_the_shader_of_the_side_that_it_hits) {
  listening_mesh mesh;
  const auto front = make_item<qvi_shader>();
  const auto back = make_item<qvi_shader>();
  front->set_diffuse_color({1, 0, 0, 1});
  back->set_diffuse_color({0, 0, 1, 1});
  mesh.set_front_shader(front.get());
  qv_ray ray({0, 0, 5}, {0, 0, -1});
  ray.hit_distance = 5;
  ray.hit_mesh = &mesh;
  ray.hit_triangle = 0;
  ray.hit_normal = {0, 0, 1};
  qv_color color;
  ASSERT_TRUE(mesh.shade_ray(&ray, color));
  EXPECT_EQ(color, qv_color(1, 0, 0, 1));
  ray.direction = {0, 0, 1};
  EXPECT_FALSE(mesh.shade_ray(&ray, color));
  mesh.set_back_shader(back.get());
  ASSERT_TRUE(mesh.shade_ray(&ray, color));
  EXPECT_EQ(color, qv_color(0, 0, 1, 1));
}

TEST(qvi_mesh, shades_only_rays_that_hit_it) {
  listening_mesh mesh, other;
  const auto shader = make_item<qvi_shader>();
  mesh.set_front_shader(shader.get());
  qv_color color(9, 9, 9, 9);
  EXPECT_FALSE(mesh.shade_ray(nullptr, color));
  qv_ray ray;
  EXPECT_FALSE(mesh.shade_ray(&ray, color));
  ray.hit_distance = 1;
  ray.hit_mesh = &other;
  EXPECT_FALSE(mesh.shade_ray(&ray, color));
  ray.hit_mesh = &mesh;
  ray.hit_distance = not_a_number;
  EXPECT_FALSE(mesh.shade_ray(&ray, color));
  EXPECT_EQ(color, qv_color(9, 9, 9, 9));
}

TEST(qvi_mesh, writes_itself_as_json) {
  listening_mesh mesh;
  EXPECT_EQ(mesh.to_json(), R"({"vertices":[],"triangles":[]})");
  mesh.set_vertices({{0, 0.1f, -2.5f}, {not_a_number, infinity, 1}, {1, 1, 1}});
  mesh.set_triangles({0, 1, 2, 0, 1, 3});
  EXPECT_EQ(mesh.to_json(), R"({"vertices":[0,0.1,-2.5,null,null,1,1,1,1],"triangles":[0,1,2]})");
}

TEST(qvi_mesh, reads_back_from_its_json_to_the_last_bit) {
  constexpr int seed = 11;
  SCOPED_TRACE(seed);
  qv_random random(seed);
  listening_mesh mesh;
  qv_list<qv_3dvector> vertices = {{1e-40f, 3.4e38f, -0.0f}, {1e5f, 16777216, 1.0f / 3}};
  for (int i = 0; i < 100; ++i) {
    const auto dice = [&] { return std::ldexp(random.dice_float() - 0.5f, i - 50); };
    const float x = dice(), y = dice(), z = dice();
    vertices.append({x, y, z});
  }
  mesh.set_vertices(vertices);
  mesh.set_triangles({0, 1, 2, 99, 100, 101});
  const auto json = nlohmann::json::parse(mesh.to_json());
  const auto numbers = json.at("vertices").get<std::vector<float>>();
  ASSERT_EQ(numbers.size(), 3u * static_cast<unsigned>(vertices.get_count()));
  for (int i = 0; i < vertices.get_count(); ++i) {
    EXPECT_EQ(numbers[3 * i], vertices[i].x);
    EXPECT_EQ(numbers[3 * i + 1], vertices[i].y);
    EXPECT_EQ(numbers[3 * i + 2], vertices[i].z);
  }
  EXPECT_EQ(json.at("triangles").get<std::vector<int>>(),
            (std::vector<int>{0, 1, 2, 99, 100, 101}));
}

TEST(qvi_mesh, shares_its_geometry_with_a_copy) {
  const auto mesh = make_item<qvi_mesh>();
  load_cube(*mesh, 1);
  qv_test::owned_item<qvi_mesh> twin(new qvi_mesh(*mesh));
  mesh->matrix_transform(qv_matrix::translation({1, 0, 0}), false);
  EXPECT_EQ(twin->get_vertices()[0], qv_3dvector(1, 0, 0));
  EXPECT_EQ(twin->get_shape_date(), mesh->get_shape_date());
}

}  // namespace
