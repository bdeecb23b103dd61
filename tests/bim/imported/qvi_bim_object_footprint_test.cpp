#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "bim/imported/qvi_bim_object.h"
#include "core/shapes/qvi_mesh_instance.h"
#include "core/shapes/qvi_shader.h"
#include "core/shapes/qvi_solid.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_shapes.h"
#include "tests/support/qv_test_buildings.h"

using namespace qv;
using qv_test::make_item;
using qv_test::make_rectangle;
using qv_test::owned_item;
using qv_test::to_vector;

namespace {

const qv_matrix upright = qv_matrix::rotation(0, 90);  // a plan becomes a façade that looks at −y

// A prism over a plan, `height` along z, placed by `place`.
qvi_solid* add_prism(qv_item& parent, const qv_polygon& plan, float height,
                     const qv_matrix& place = qv_matrix()) {
  qv_solid prism;
  prism.extrusion(plan, {0, 0, height});
  auto* solid = new qvi_solid;
  solid->load_from_solid(&prism);
  solid->matrix_transform(place, true);
  parent.add_child(solid, -1);
  return solid;
}

qv_polygon make_plan(const qv_list<qv_3dvector>& corners) {
  qv_polygon plan({0, 0, 0}, {0, 0, 1});
  plan.add_contour(corners);
  return plan;
}

// The faces of a footprint in the order in which they are made.
struct footprint {
  std::vector<qvi_polygon*> ends;  // of the prism: towards and against the main normal
  std::vector<qvi_polygon*> sides;
  std::vector<qvi_polygon*> slices;
};

// `edges`: number of edges of the outline, its holes included.
footprint take_footprint(qvi_bim_object& object, int edges) {
  const std::vector<qvi_polygon*> all = to_vector(object.get_footprints());
  footprint result;
  for (std::size_t i = 0; i < all.size(); ++i) {
    auto& part = i < 2                                     ? result.ends
                 : i < 2 + static_cast<std::size_t>(edges) ? result.sides
                                                           : result.slices;
    part.push_back(all[i]);
  }
  return result;
}

// How far a polygon lies along `normal`.
float height_of(qvi_polygon* polygon, const qv_3dvector& normal) {
  return polygon->get_vertices()[0].dot(normal);
}

void expect_slices(const footprint& found, const qv_3dvector& normal, float low, float high,
                   int count, float area) {
  ASSERT_EQ(found.slices.size(), static_cast<std::size_t>(count));
  const float step = (high - low) / static_cast<float>(count);
  for (int i = 0; i < count; ++i) {
    qvi_polygon* const slice = found.slices[static_cast<std::size_t>(i)];
    EXPECT_NEAR(height_of(slice, normal), low + static_cast<float>(i) * step, 1e-4f);
    EXPECT_NEAR(slice->get_area(), area, area * 1e-3f);
    EXPECT_NEAR(slice->get_normal().dot(normal), 1, 1e-5f);
    for (const qv_3dvector& v : slice->get_vertices())
      EXPECT_NEAR(v.dot(normal), height_of(slice, normal), 1e-4f);
  }
}

// The prism reaches a millimetre beyond the object on either side.
void expect_prism(const footprint& found, const qv_3dvector& normal, float low, float high,
                  int edges, float area) {
  ASSERT_EQ(found.ends.size(), 2u);
  ASSERT_EQ(found.sides.size(), static_cast<std::size_t>(edges));
  float lowest = 1e8f;
  float highest = -1e8f;
  for (qvi_polygon* end : found.ends) {
    EXPECT_NEAR(end->get_area(), area, area * 1e-3f);
    lowest = std::min(lowest, height_of(end, normal));
    highest = std::max(highest, height_of(end, normal));
  }
  EXPECT_NEAR(lowest, low - 0.001f, 1e-4f);
  EXPECT_NEAR(highest, high + 0.001f, 1e-4f);
  for (const qvi_polygon* side : found.sides) EXPECT_NEAR(side->get_normal().dot(normal), 0, 1e-5f);
}

TEST(qvi_bim_object_footprint, of_a_wall_is_its_outline_through_its_thickness) {
  auto wall = make_item<qvi_bim_object>();
  // 4 × 2.5 m, 0.35 m thick, from y = −0.35 to 0.
  add_prism(*wall, make_rectangle(0, 0, 4, 2.5f), 0.35f, upright);
  const qv_3dvector normal = wall->find_main_normal();
  EXPECT_NEAR(std::abs(normal.y), 1, 1e-6f);
  const footprint found = take_footprint(*wall, 4);
  const float low = normal.y > 0 ? -0.35f : 0;
  expect_prism(found, normal, low, low + 0.35f, 4, 10);
  expect_slices(found, normal, low, low + 0.35f, 4, 10);  // 0.35 / 0.1 = 3.5: three steps and one
}

TEST(qvi_bim_object_footprint, leaves_the_openings_of_a_wall_out) {
  auto wall = make_item<qvi_bim_object>();
  qv_polygon face = make_rectangle(0, 0, 4, 2.5f);
  face.substracts(make_rectangle(1, 0.8f, 2, 2));     // 1.2 m² of window
  face.substracts(make_rectangle(2.5f, 0, 3.5f, 2));  // 2 m² of door, down to the floor
  add_prism(*wall, face, 0.25f, upright);
  const qv_3dvector normal = wall->find_main_normal();
  const float low = normal.y > 0 ? -0.25f : 0;
  const footprint found = take_footprint(*wall, 8 + 4);
  expect_prism(found, normal, low, low + 0.25f, 8 + 4, 6.8f);
  expect_slices(found, normal, low, low + 0.25f, 3, 6.8f);
}

TEST(qvi_bim_object_footprint, of_an_L_shaped_wall_is_the_elevation_that_most_of_it_shows) {
  auto wall = make_item<qvi_bim_object>();
  // Legs of 4 m along x and 3.05 m along y: the longer one decides, the other one is seen end on.
  add_prism(
      *wall,
      make_plan(
          {{0, 0, 0}, {4, 0, 0}, {4, 0.3f, 0}, {0.3f, 0.3f, 0}, {0.3f, 3.05f, 0}, {0, 3.05f, 0}}),
      2.5f);
  const qv_3dvector normal = wall->find_main_normal();
  EXPECT_NEAR(std::abs(normal.y), 1, 1e-6f);
  const footprint found = take_footprint(*wall, 4);
  const float low = normal.y > 0 ? 0 : -3.05f;
  expect_prism(found, normal, low, low + 3.05f, 4, 10);
  expect_slices(found, normal, low, low + 3.05f, 31, 10);
}

TEST(qvi_bim_object_footprint, of_L_and_U_shaped_slabs_has_their_shape) {
  struct slab {
    qv_list<qv_3dvector> corners;
    int edges;
    float area;
  };
  const slab slabs[] = {
      {{{0, 0, 0}, {6, 0, 0}, {6, 2, 0}, {2, 2, 0}, {2, 5, 0}, {0, 5, 0}}, 6, 18},
      {{{0, 0, 0}, {6, 0, 0}, {6, 5, 0}, {4, 5, 0}, {4, 2, 0}, {2, 2, 0}, {2, 5, 0}, {0, 5, 0}},
       8,
       24}};
  for (const slab& s : slabs) {
    auto object = make_item<qvi_bim_object>();
    add_prism(*object, make_plan(s.corners), 0.25f, qv_matrix::translation({0, 0, 3}));
    const qv_3dvector normal = object->find_main_normal();
    EXPECT_NEAR(std::abs(normal.z), 1, 1e-6f);
    const float low = normal.z > 0 ? 3 : -3.25f;
    const footprint found = take_footprint(*object, s.edges);
    expect_prism(found, normal, low, low + 0.25f, s.edges, s.area);
    expect_slices(found, normal, low, low + 0.25f, 3, s.area);
  }
}

TEST(qvi_bim_object_footprint, of_a_sloped_roof_follows_its_slope) {
  auto roof = make_item<qvi_bim_object>();
  const qv_matrix slope = qv_matrix::translation({10, 20, 6}) * qv_matrix::rotation(0, 35);
  add_prism(*roof, make_rectangle(0, 0, 8, 5), 0.3001f, slope);
  const qv_3dvector normal = roof->find_main_normal();
  const qv_3dvector up = slope.transform_direction({0, 0, 1});
  EXPECT_NEAR(std::abs(normal.dot(up)), 1, 1e-5f);
  const float sign = normal.dot(up) > 0 ? 1.0f : -1.0f;
  const float base = slope.transform_point({0, 0, 0}).dot(normal);
  const float low = sign > 0 ? base : base - 0.3001f;
  const footprint found = take_footprint(*roof, 4);
  expect_prism(found, normal, low, low + 0.3001f, 4, 40);
  expect_slices(found, normal, low, low + 0.3001f, 4, 40);
}

// Nine mullions of 5 cm every 50 cm, 3 m high, and four transoms of 5 cm every 90 cm across them.
void add_grid(qv_item& parent, float depth) {
  for (int i = 0; i < 9; ++i) {
    const float x = 0.5f * static_cast<float>(i);
    add_prism(parent, make_rectangle(x, 0, x + 0.05f, 3), depth, upright);
  }
  for (int i = 0; i < 4; ++i) {
    const float z = 0.9f * static_cast<float>(i);
    add_prism(parent, make_rectangle(0, z, 4.05f, z + 0.05f), depth, upright);
  }
}

TEST(qvi_bim_object_footprint, of_a_lattice_is_the_grid_of_its_members) {
  auto object = make_item<qvi_bim_object>();
  add_grid(*object, 0.04f);
  // 9 × 0.05 × 3 + 4 × 0.05 × 4.05 − 36 crossings of 0.05²
  constexpr float area = 1.35f + 0.81f - 0.09f;
  // 24 openings of four edges; round about the bottom and two sides, and above the last transom the
  // tops of nine mullions, their sixteen inner sides and the eight stretches between.
  constexpr int edges = 24 * 4 + 3 + 9 + 16 + 8;
  const qv_3dvector normal = object->find_main_normal();
  EXPECT_NEAR(std::abs(normal.y), 1, 1e-6f);
  const footprint found = take_footprint(*object, edges);
  const float low = normal.y > 0 ? -0.04f : 0;
  expect_prism(found, normal, low, low + 0.04f, edges, area);
  EXPECT_TRUE(found.slices.empty());
}

TEST(qvi_bim_object_footprint, of_a_curtain_wall_has_its_panes_and_its_members) {
  auto object = make_item<qvi_bim_object>();
  add_grid(*object, 0.15f);
  for (int i = 0; i < 8; ++i)
    for (int k = 0; k < 3; ++k) {
      const float x = 0.5f * static_cast<float>(i) + 0.05f;
      const float z = 0.9f * static_cast<float>(k) + 0.05f;
      add_prism(*object, make_rectangle(x, z, x + 0.45f, z + 0.85f), 0.02f,
                qv_matrix::translation({0, -0.06f, 0}) * upright);
    }
  // All of it up to the last transom, and the mullions above.
  constexpr float area = 4.05f * 2.75f + 9 * 0.05f * 0.25f;
  constexpr int edges = 3 + 9 + 16 + 8;
  const qv_3dvector normal = object->find_main_normal();
  EXPECT_NEAR(std::abs(normal.y), 1, 1e-6f);
  const footprint found = take_footprint(*object, edges);
  const float low = normal.y > 0 ? -0.15f : 0;
  expect_prism(found, normal, low, low + 0.15f, edges, area);
  expect_slices(found, normal, low, low + 0.15f, 2, area);
}

TEST(qvi_bim_object_footprint, closes_gaps_of_less_than_two_centimetres) {
  for (const float gap : {0.015f, 0.03f}) {
    auto object = make_item<qvi_bim_object>();
    add_prism(*object, make_rectangle(0, 0, 2, 2), 0.05f);
    add_prism(*object, make_rectangle(2 + gap, 0, 4 + gap, 2), 0.05f);
    const qv_list<qvi_polygon*> found = object->get_footprints();
    ASSERT_GT(found.get_count(), 0);
    EXPECT_NEAR(found[0]->get_area(), gap < 0.02f ? 8 + 2 * gap : 8, 1e-3f);
    EXPECT_EQ(found.get_count(), gap < 0.02f ? 2 + 4 : 2 + 8);
  }
}

TEST(qvi_bim_object_footprint, leaves_out_faces_within_about_half_a_degree_of_the_side) {
  // A base of 4 × 1 m and two steep flanks that add height and nothing to the outline.
  auto object = make_item<qvi_bim_object>();
  qv_test::add_face(*object, qv_test::rectangle({0, 0, 0}, {4, 0, 0}, {0, 1, 0}));
  // |n · N| = 0.0102 counts …
  qv_test::add_face(*object, qv_test::rectangle({0, 0, 0}, {1, 0, 0}, {0, 0.0051f, 0.5f}));
  // … and 0.0098 does not.
  qv_test::add_face(*object, qv_test::rectangle({2, 0, 0}, {3, 0, 0}, {2, 0.0098f, 1}));
  const qv_3dvector normal = object->find_main_normal();
  ASSERT_EQ(normal, qv_3dvector(0, 0, 1));
  const footprint found = take_footprint(*object, 4);
  // It was grown by a centimetre within its plane.
  expect_prism(found, normal, -0.01f, 0.51f, 4, 4);
}

TEST(qvi_bim_object_footprint, of_instances_lies_where_they_stand) {
  auto object = make_item<qvi_bim_object>();
  object->set_matrix(qv_matrix::translation({100, 0, 0}));
  auto library = make_item<qvi_bim_object>();
  qvi_solid* const panel = add_prism(*library, make_rectangle(0, 0, 2, 1), 0.05f);
  for (int i = 0; i < 2; ++i) {
    auto* instance = new qvi_mesh_instance;
    instance->set_mesh(panel);
    instance->set_matrix(qv_matrix::translation({2 * static_cast<float>(i), 0, 5}) *
                         qv_matrix::rotation(2, 0));
    object->add_child(instance, -1);
  }
  const qv_3dvector normal = object->find_main_normal();
  const footprint found = take_footprint(*object, 4);
  const float low = normal.z > 0 ? 5 : -5.05f;
  expect_prism(found, normal, low, low + 0.05f, 4, 4);
  qv_box box;
  for (qvi_polygon* end : found.ends) box.enlarge(end->get_bounding_box());
  EXPECT_NEAR(box.get_min().x, 0, 1e-4f);  // the instances are placed already
  EXPECT_NEAR(box.get_max().x, 4, 1e-4f);
}

TEST(qvi_bim_object_footprint, of_a_thin_object_has_no_slices) {
  auto sheet = make_item<qvi_bim_object>();
  add_prism(*sheet, make_rectangle(0, 0, 1, 1), 0.09f);
  EXPECT_EQ(sheet->get_footprints().get_count(), 6);
  auto film = make_item<qvi_bim_object>();
  qv_test::add_face(*film, qv_test::rectangle({0, 0, 1}, {2, 0, 1}, {0, 1, 1}));
  const footprint found = take_footprint(*film, 4);
  expect_prism(found, {0, 0, 1}, 1, 1, 4, 2);
  EXPECT_TRUE(found.slices.empty());
}

TEST(qvi_bim_object_footprint, has_a_slice_more_than_there_are_tenths_of_a_metre) {
  for (const float extent : {0.101f, 0.199f, 0.201f}) {
    auto object = make_item<qvi_bim_object>();
    add_prism(*object, make_rectangle(0, 0, 1, 1), extent);
    const qv_3dvector normal = object->find_main_normal();
    const float low = normal.z > 0 ? 0 : -extent;
    expect_slices(take_footprint(*object, 4), normal, low, low + extent, extent < 0.2f ? 2 : 3, 1);
  }
}

TEST(qvi_bim_object_footprint, of_an_object_seen_edge_on_is_none) {
  auto object = make_item<qvi_bim_object>();
  qvi_polygon* const panel =
      qv_test::add_face(*object, qv_test::rectangle({0, 0, 0}, {2, 0, 0}, {0, 3, 0}));
  ASSERT_EQ(object->find_main_normal(), qv_3dvector(0, 0, 1));
  // Turned without telling, so that the direction found before stays.
  panel->matrix_transform(qv_matrix::rotation(0, 90), false);
  ASSERT_EQ(object->find_main_normal(), qv_3dvector(0, 0, 1));
  EXPECT_TRUE(object->get_footprints().is_empty());
  EXPECT_EQ(object->get_children().get_count(), 1);
}

TEST(qvi_bim_object_footprint, of_less_than_a_tenth_of_a_square_metre_is_none) {
  auto small = make_item<qvi_bim_object>();
  add_prism(*small, make_rectangle(0, 0, 0.333f, 0.3f), 0.02f);
  EXPECT_TRUE(small->get_footprints().is_empty());
  EXPECT_EQ(small->get_children().get_count(), 1);
  auto enough = make_item<qvi_bim_object>();
  add_prism(*enough, make_rectangle(0, 0, 0.334f, 0.3f), 0.02f);
  EXPECT_EQ(enough->get_footprints().get_count(), 6);
  auto empty = make_item<qvi_bim_object>();
  EXPECT_TRUE(empty->get_footprints().is_empty());
}

TEST(qvi_bim_object_footprint, is_built_once_and_found_again) {
  auto wall = make_item<qvi_bim_object>();
  qvi_solid* const body = add_prism(*wall, make_rectangle(0, 0, 4, 2), 0.25f);
  const std::vector<qvi_polygon*> first = to_vector(wall->get_footprints());
  ASSERT_EQ(first.size(), 6u + 3u);
  body->matrix_transform(qv_matrix::translation({9, 9, 9}), true);
  EXPECT_EQ(to_vector(wall->get_footprints()), first);
  EXPECT_EQ(wall->get_children().get_count(), 1 + 9);
  for (std::size_t i = 0; i < first.size(); ++i)
    EXPECT_EQ(wall->get_children()[1 + static_cast<int>(i)], first[i]);
}

TEST(qvi_bim_object_footprint, that_somebody_else_made_is_taken_as_it_is) {
  auto wall = make_item<qvi_bim_object>();
  add_prism(*wall, make_rectangle(0, 0, 4, 2), 0.25f);
  auto* part = new qvi_bim_object;
  wall->add_child(part, -1);
  qvi_polygon* const given =
      qv_test::add_face(*part, qv_test::rectangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0}));
  given->set_raytracing_layers({"other", "footprint"});
  EXPECT_EQ(to_vector(wall->get_footprints()), std::vector<qvi_polygon*>{given});
}

TEST(qvi_bim_object_footprint, is_traced_in_its_layer_and_never_drawn) {
  auto wall = make_item<qvi_bim_object>();
  add_prism(*wall, make_rectangle(0, 0, 4, 2), 0.05f);  // bare
  auto* paint = new qvi_shader;
  auto* second_paint = new qvi_shader;
  for (qvi_shader* shader : {paint, second_paint}) {
    add_prism(*wall, make_rectangle(4, 0, 5, 2), 0.05f)->set_front_shader(shader);
    wall->add_child(shader, -1);
  }
  const qv_list<qvi_polygon*> found = wall->get_footprints();
  ASSERT_EQ(found.get_count(), 6);
  for (const qvi_polygon* polygon : found) {
    EXPECT_EQ(to_vector(polygon->get_raytracing_layers()), std::vector<std::string>{"footprint"});
    EXPECT_FALSE(polygon->get_rendering_visibility());
    EXPECT_EQ(polygon->get_front_shader(), paint);
    EXPECT_EQ(polygon->get_back_shader(), nullptr);
  }
}

}  // namespace
