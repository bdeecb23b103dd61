#include <gtest/gtest.h>

#include <cmath>

#include "bim/hierarchy/qvi_space.h"
#include "core/shapes/qvi_solid.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_test_buildings.h"
#include "utilities/qv_date.h"
#include "utilities/qv_solid.h"

using namespace qv;
using qv_test::recording_scene;
using qv_test::to_vector;
using type = qvi_wall::wall_type;
using texts = std::vector<std::string>;

namespace {

constexpr float measured = 1e-3f;

std::vector<qvi_polygon*> polygons_below(const qv_item* item) {
  std::vector<qvi_polygon*> found;
  for (qv_item* p : item->collect("polygon")) found.push_back(static_cast<qvi_polygon*>(p));
  return found;
}

TEST(qvi_space_shell, copies_the_faces_on_its_side) {
  recording_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  qvi_shader paint;
  room.floor->get_face_0()->set_front_shader(&paint);
  room.floor->get_face_0()->set_back_shader(&paint);
  room.space->precompute();
  const auto shell = polygons_below(room.space);
  ASSERT_EQ(shell.size(), 6u);
  for (std::size_t i = 0; i < shell.size(); ++i) {
    const qvi_wall* wall = room.space->get_walls()[static_cast<int>(i)];
    const qvi_polygon* face = wall->get_face_0();
    EXPECT_NE(shell[i], face);
    EXPECT_EQ(shell[i]->get_parent(), room.space);
    EXPECT_EQ(shell[i]->get_vertices(), face->get_vertices());
    EXPECT_EQ(shell[i]->get_contour_sizes(), face->get_contour_sizes());
    EXPECT_EQ(shell[i]->get_normal(), face->get_normal());
    EXPECT_EQ(shell[i]->get_front_shader(), nullptr);
    EXPECT_EQ(shell[i]->get_back_shader(), nullptr);
    EXPECT_FALSE(shell[i]->get_rendering_visibility());
    EXPECT_EQ(to_vector(shell[i]->get_raytracing_layers()), texts{});
    EXPECT_EQ(to_vector(shell[i]->get_rendering_layers()), texts{"bim"});
    // The face itself keeps what it had.
    EXPECT_TRUE(face->get_rendering_visibility());
    EXPECT_EQ(face->get_raytracing_layers().get_count(), 3);
  }
  EXPECT_EQ(room.floor->get_face_0()->get_front_shader(), &paint);
  room.floor->get_face_0()->set_front_shader(nullptr);
  room.floor->get_face_0()->set_back_shader(nullptr);
}

TEST(qvi_space_shell, takes_the_second_face_of_a_wall_of_which_it_is_the_second_space) {
  recording_scene scene;
  auto block = qv_test::add_block(scene, {0, 0, 0}, 2, 1, 1);
  qvi_space* second = block.at(1, 0, 0);
  second->precompute();
  const auto shell = polygons_below(second);
  ASSERT_EQ(shell.size(), 6u);
  for (std::size_t i = 0; i < shell.size(); ++i) {
    const qvi_wall* wall = second->get_walls()[static_cast<int>(i)];
    const qvi_polygon* face =
        wall->get_space_0() == second ? wall->get_face_0() : wall->get_face_1();
    EXPECT_EQ(shell[i]->get_vertices(), face->get_vertices());
  }
}

TEST(qvi_space_shell, is_made_once) {
  recording_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  room.space->precompute();
  const auto shell = polygons_below(room.space);
  room.floor->set_composition_reverse(true);
  room.space->precompute();
  EXPECT_EQ(polygons_below(room.space), shell);
}

TEST(qvi_space_shell, of_its_own_is_not_replaced) {
  recording_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  auto* own = qv_test::add_face(*room.space, qv_test::rectangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0}));
  room.space->precompute();
  EXPECT_EQ(polygons_below(room.space), std::vector<qvi_polygon*>{own});
}

TEST(qvi_space_shell, misses_the_walls_without_a_face) {
  recording_scene scene;
  auto* space = qv_test::add_space(scene);
  auto* wall = new qvi_wall;
  wall->set_space_0(space);
  scene.add_child(wall, -1);
  space->precompute();
  EXPECT_TRUE(polygons_below(space).empty());
  EXPECT_EQ(space->get_walls().get_count(), 1);
}

TEST(qvi_space_shell, takes_no_part_in_the_simulation) {
  recording_scene scene;
  auto* space = qv_test::add_space(scene);
  auto* mesh = new qvi_mesh;
  mesh->set_raytracing_layers({"simulation", "picking", "simulation", "bim"});
  space->add_child(mesh, -1);
  space->precompute();
  EXPECT_EQ(to_vector(mesh->get_raytracing_layers()), (texts{"picking", "bim"}));
  mesh->set_raytracing_layers({"bim", "simulation"});
  space->precompute();
  EXPECT_EQ(to_vector(mesh->get_raytracing_layers()), texts{"bim"});
}

TEST(qvi_space_shell, is_turned_outwards) {
  recording_scene scene;
  auto* space = qv_test::add_space(scene);
  qv_polygon base({0, 0, 0}, {0, 0, 1});
  base.add_contour(qv_test::rectangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0}));
  qv_solid box;
  box.extrusion(base, {0, 0, 1});
  for (qv_polygon* face : box.get_faces()) {
    auto* polygon = new qvi_polygon;
    polygon->load_from_polygon(face);
    if (polygon->get_normal().z > 0.5f) polygon->reverse();
    space->add_child(polygon, -1);
  }
  space->precompute();
  const qv_3dvector centre(0.5f, 0.5f, 0.5f);
  ASSERT_EQ(polygons_below(space).size(), 6u);
  for (const qvi_polygon* face : polygons_below(space)) {
    EXPECT_GT(face->get_normal().dot(face->get_vertices()[0] - centre), 0.0f);
  }
}

// --- measured from the shell alone ---

TEST(qvi_space_shell, measures_the_room_from_its_shell) {
  recording_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  room.space->precompute();
  float area = -1;
  float volume = -1;
  room.space->compute_size_from_shell_geometry(1.8f, area, volume);
  EXPECT_NEAR(area, 20.0f, measured);
  EXPECT_NEAR(volume, 50.0f, measured);
  room.space->compute_size_from_shell_geometry(2.6f, area, volume);
  EXPECT_EQ(area, 0.0f);
  EXPECT_NEAR(volume, 50.0f, measured);
  // What precompute found is not touched.
  EXPECT_NEAR(room.space->get_area(), 20.0f, measured);
}

TEST(qvi_space_shell, measures_a_step_exactly_on_its_grid) {
  recording_scene scene;
  auto* space = qv_test::add_space(scene);
  const auto add = [&](const qv_list<qv_3dvector>& contour) { qv_test::add_face(*space, contour); };
  add(qv_test::rectangle({0, 0, 0}, {0, 2, 0}, {4, 0, 0}));  // down, 4 × 2
  add(qv_test::rectangle({0, 0, 3}, {1, 0, 3}, {0, 2, 3}));  // 3 m above the first metre
  add(qv_test::rectangle({1, 0, 1}, {4, 0, 1}, {1, 2, 1}));  // 1 m above the rest
  float area = 0;
  float volume = 0;
  space->compute_size_from_shell_geometry(1.8f, area, volume);
  EXPECT_NEAR(area, 2.0f, measured);  // 1 × 2
  EXPECT_NEAR(volume, 2 * 3.0f + 6 * 1.0f, measured);
}

TEST(qvi_space_shell, takes_for_a_floor_what_looks_down_by_nine_tenths) {
  for (const float z : {0.91f, 0.89f}) {
    recording_scene scene;
    auto* space = qv_test::add_space(scene);
    // A ramp one metre wide under a ceiling that covers it.
    const float run = 2 * z, rise = 2 * std::sqrt(1 - z * z);
    qv_test::add_face(*space, qv_test::rectangle({0, 0, 0}, {0, 1, 0}, {run, 0, rise}));
    qv_test::add_face(*space, qv_test::rectangle({-1, -1, 9}, {9, -1, 9}, {-1, 2, 9}));
    float area = -1;
    float volume = -1;
    space->compute_size_from_shell_geometry(1.8f, area, volume);
    EXPECT_NEAR(area, z > 0.9f ? 2.0f : 0.0f, measured);
    EXPECT_EQ(volume > 0, z > 0.9f);
  }
}

TEST(qvi_space_shell, leaves_the_polygons_of_nested_spaces_out) {
  recording_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  room.space->precompute();
  auto* nested = qv_test::add_space(*room.space);
  auto* folder = new qv_item;
  nested->add_child(folder, -1);
  // A table that would stop every ray, and a second floor under it.
  qv_test::add_face(*folder, qv_test::rectangle({0, 0, 1}, {4, 0, 1}, {0, 5, 1}));
  qv_test::add_face(*nested, qv_test::rectangle({0, 0, 0}, {0, 5, 0}, {4, 0, 0}));
  float area = 0;
  float volume = 0;
  room.space->compute_size_from_shell_geometry(1.8f, area, volume);
  EXPECT_NEAR(area, 20.0f, measured);
  EXPECT_NEAR(volume, 50.0f, measured);
  nested->compute_size_from_shell_geometry(0.5f, area, volume);
  EXPECT_NEAR(area, 20.0f, measured);
  EXPECT_NEAR(volume, 20.0f, measured);
}

TEST(qvi_space_shell, a_shell_without_a_floor_has_no_size) {
  recording_scene scene;
  auto* space = qv_test::add_space(scene);
  qv_test::add_face(*space, qv_test::rectangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0}));  // looks up
  float area = 5;
  float volume = 5;
  space->compute_size_from_shell_geometry(1.8f, area, volume);
  EXPECT_EQ(area, 0.0f);
  EXPECT_EQ(volume, 0.0f);
}

// --- its bounds ---

TEST(qvi_space_shell, its_bounds_are_those_of_its_walls_and_polygons_until_it_changes) {
  recording_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f}, 0.5f);
  EXPECT_EQ(room.space->get_local_bounding_box(), qv_box({-0.5f, -0.5f, -0.5f}, {4.5f, 5.5f, 3}));
  auto* far_wall = qv_test::add_wall(scene, type::wall, nullptr, room.space,
                                     qv_test::rectangle({9, 0, 0}, {9, 1, 0}, {9, 0, 1}), 0);
  EXPECT_EQ(room.space->get_local_bounding_box().get_max().x, 4.5f);  // kept
  room.space->set_source_type("changed");
  EXPECT_EQ(room.space->get_local_bounding_box().get_max().x, 9.0f);
  far_wall->set_space_1(nullptr);
  qv_test::add_face(*room.space, qv_test::rectangle({0, 0, 20}, {1, 0, 20}, {0, 1, 20}));
  EXPECT_EQ(room.space->get_local_bounding_box(), qv_box({-0.5f, -0.5f, -0.5f}, {4.5f, 5.5f, 20}));
}

TEST(qvi_space_shell, a_space_without_anything_has_empty_bounds) {
  qvi_space space;
  EXPECT_TRUE(space.get_local_bounding_box().is_empty());
}

}  // namespace
