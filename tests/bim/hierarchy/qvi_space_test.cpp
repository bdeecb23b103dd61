#include "bim/hierarchy/qvi_space.h"

#include <gtest/gtest.h>

#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/hierarchy/qvi_zone.h"
#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_test_buildings.h"
#include "utilities/qv_date.h"

using namespace qv;
using qv_test::recording_scene;
using qv_test::to_vector;
using type = qvi_wall::wall_type;
using walls = std::vector<qvi_wall*>;

namespace {

// Distances come from a ray tracer in single precision.
constexpr float measured = 1e-3f;

TEST(qvi_space, a_room_is_inside_and_a_plain_outer_space_is_outside) {
  qvi_space room;
  qvi_xspace outside;
  EXPECT_FALSE(room.get_outside());
  EXPECT_TRUE(outside.get_outside());
  EXPECT_EQ(room.get_floor(), -1);
  EXPECT_EQ(room.get_area(), 0.0f);
  EXPECT_EQ(room.get_volume(), 0.0f);
}

TEST(qvi_space, measures_a_box_room) {
  qv_scene scene;
  auto room = qv_test::add_box_room(scene, {10, 20, 3}, {4, 5, 2.5f});
  room.space->precompute();
  EXPECT_NEAR(room.space->get_area(), 20.0f, measured);
  EXPECT_NEAR(room.space->get_volume(), 50.0f, measured);
}

TEST(qvi_space, sorts_its_walls) {
  qv_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  auto* neighbour = qv_test::add_space(scene);
  room.sides[2]->set_space_1(neighbour);
  room.space->precompute();
  EXPECT_EQ(to_vector(room.space->get_walls()), (walls{room.floor, room.sides[0], room.sides[1],
                                                       room.sides[2], room.sides[3], room.roof}));
  EXPECT_EQ(to_vector(room.space->get_inner_walls()), walls{room.sides[2]});
  EXPECT_EQ(to_vector(room.space->get_outer_walls()),
            (walls{room.sides[0], room.sides[1], room.sides[3]}));
  EXPECT_EQ(to_vector(room.space->get_floors()), walls{room.floor});
  EXPECT_EQ(to_vector(room.space->get_ceilings()), walls{room.roof});
  neighbour->precompute();
  EXPECT_EQ(to_vector(neighbour->get_walls()), walls{room.sides[2]});
}

TEST(qvi_space, a_wall_within_it_is_an_inner_one_and_bounds_it_once) {
  qv_scene scene;
  auto* space = qv_test::add_space(scene);
  auto* partition = qv_test::add_wall(scene, type::wall, space, space,
                                      qv_test::rectangle({1, 0, 0}, {1, 5, 0}, {1, 0, 2.5f}));
  space->precompute();
  EXPECT_EQ(to_vector(space->get_walls()), walls{partition});
  EXPECT_EQ(to_vector(space->get_inner_walls()), walls{partition});
  EXPECT_TRUE(space->get_outer_walls().is_empty());
}

TEST(qvi_space, a_floor_lies_under_the_space_that_its_normal_points_to) {
  for (const qv_3dvector& normal :
       {qv_3dvector(0, 0, 1), qv_3dvector(0, 0, -1), qv_3dvector(1, 0, 0)}) {
    qv_scene scene;
    auto* first = qv_test::add_space(scene);
    auto* second = qv_test::add_space(scene);
    auto* slab = new qvi_wall;
    slab->set_space_0(first);
    slab->set_space_1(second);
    slab->set_normal(normal);
    scene.add_child(slab, -1);
    first->precompute();
    second->precompute();
    qvi_space* above = normal.z > 0 ? second : first;
    qvi_space* below = normal.z > 0 ? first : second;
    EXPECT_EQ(to_vector(above->get_floors()), walls{slab});
    EXPECT_EQ(above->get_ceilings().get_count(), 0);
    EXPECT_EQ(to_vector(below->get_ceilings()), walls{slab});
    EXPECT_EQ(below->get_floors().get_count(), 0);
  }
}

TEST(qvi_space, a_roof_lies_over_the_space_whatever_its_normal) {
  qv_scene scene;
  auto* space = qv_test::add_space(scene);
  auto* roof = new qvi_wall;
  roof->set_wall_type(type::roof);
  roof->set_space_0(space);
  roof->set_normal({0, 0, -1});
  scene.add_child(roof, -1);
  space->precompute();
  EXPECT_EQ(to_vector(space->get_ceilings()), walls{roof});
  EXPECT_EQ(space->get_floors().get_count(), 0);
}

TEST(qvi_space, precomputes_every_wall_of_the_scene) {
  qv_scene scene;
  auto* space = qv_test::add_space(scene);
  auto* stranger = new qvi_wall;
  stranger->set_wall_type(type::wall);
  scene.add_child(stranger, -1);
  space->precompute();
  EXPECT_EQ(stranger->get_contact_type(), qvi_wall::contact_type::outside_wall);
}

TEST(qvi_space, measures_each_room_of_a_block) {
  qv_scene scene;
  auto block = qv_test::add_block(scene, {0, 0, 0}, 2, 2, 3, {3, 4, 2.5f});
  scene.precompute();
  for (int z = 0; z < 3; ++z) {
    for (int y = 0; y < 2; ++y) {
      for (int x = 0; x < 2; ++x) {
        const qvi_space* space = block.at(x, y, z);
        EXPECT_NEAR(space->get_area(), 12.0f, measured);
        EXPECT_NEAR(space->get_volume(), 30.0f, measured);
        EXPECT_EQ(space->get_walls().get_count(), 6);
        EXPECT_EQ(space->get_inner_walls().get_count(), 2);
        EXPECT_EQ(space->get_outer_walls().get_count(), 2);
        EXPECT_EQ(space->get_floors().get_count(), 1);
        EXPECT_EQ(space->get_ceilings().get_count(), 1);
      }
    }
  }
}

// --- area and volume ---

TEST(qvi_space, a_room_too_low_to_stand_in_has_a_volume_but_no_area) {
  for (float height : {1.0f, 1.79f, 1.8f}) {
    qv_scene scene;
    auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, height});
    room.space->precompute();
    EXPECT_EQ(room.space->get_area(), 0.0f) << height;
    EXPECT_NEAR(room.space->get_volume(), 20 * height, measured);
  }
}

TEST(qvi_space, counts_the_area_only_where_one_can_stand) {
  qv_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  // Over the first metre of x a lower ceiling, 1.5 m above the floor.
  auto* low = qv_test::add_wall(scene, type::roof, room.space, nullptr,
                                qv_test::rectangle({0, 0, 1.5f}, {1, 0, 1.5f}, {0, 5, 1.5f}));
  room.space->precompute();
  // The same hundred points, looked at one by one.
  qv_polygon region;
  room.floor->get_face_0()->fill_polygon(&region);
  const auto points = region.random_distribution(100, 4895);
  ASSERT_EQ(points.get_count(), 100);
  int high = 0;
  for (const qv_3dvector& p : points) high += p.x > 1;
  ASSERT_GT(high, 60);
  ASSERT_LT(high, 90);
  const float share = static_cast<float>(high) / 100;
  EXPECT_NEAR(room.space->get_area(), 20 * share, measured);
  EXPECT_NEAR(room.space->get_volume(), 20 * (share * 2.5f + (1 - share) * 1.5f), measured);
  EXPECT_EQ(to_vector(room.space->get_ceilings()), (walls{room.roof, low}));
}

TEST(qvi_space, sums_several_floors_and_skips_those_without_a_face) {
  qv_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  qv_test::add_wall(scene, type::floor, room.space, nullptr,
                    qv_test::rectangle({0, 0, 1}, {0, 5, 1}, {2, 0, 1}), 0);
  auto* bare = new qvi_wall;
  bare->set_space_0(room.space);
  bare->set_normal({0, 0, -1});
  scene.add_child(bare, -1);
  room.space->precompute();
  EXPECT_EQ(room.space->get_floors().get_count(), 3);
  // The platform's 10 m² lie 1.5 m under the roof: volume only. The rays of the floor that start
  // beneath it end there, 1 m up.
  qv_polygon region;
  room.floor->get_face_0()->fill_polygon(&region);
  int free = 0;
  for (const qv_3dvector& p : region.random_distribution(100, 4895)) free += p.x > 2;
  const float share = static_cast<float>(free) / 100;
  EXPECT_NEAR(room.space->get_area(), 20 * share, measured);
  EXPECT_NEAR(room.space->get_volume(), 20 * (share * 2.5f + (1 - share)) + 10 * 1.5f, measured);
}

TEST(qvi_space, a_floor_under_the_open_sky_adds_nothing) {
  qv_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  qv_item::destroy(room.roof);
  room.space->precompute();
  EXPECT_EQ(room.space->get_area(), 0.0f);
  EXPECT_EQ(room.space->get_volume(), 0.0f);
}

TEST(qvi_space, sees_only_surfaces_of_the_layer_bim) {
  qv_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  // Something in between that is drawn and picked but not measured.
  auto* table = qv_test::add_face(scene, qv_test::rectangle({0, 0, 1}, {4, 0, 1}, {0, 5, 1}));
  table->set_raytracing_layers({"simulation", "picking"});
  room.space->precompute();
  EXPECT_NEAR(room.space->get_volume(), 50.0f, measured);
  table->set_raytracing_layers({"bim"});
  room.floor->set_composition_reverse(true);  // a wall must change for a new measurement
  room.space->precompute();
  EXPECT_NEAR(room.space->get_volume(), 20.0f, measured);
  EXPECT_EQ(room.space->get_area(), 0.0f);
}

TEST(qvi_space, takes_forced_values_from_zero_up) {
  qv_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  room.space->precompute();
  room.space->set_forced_area(0);
  room.space->set_forced_volume(0);
  EXPECT_EQ(room.space->get_area(), 0.0f);
  EXPECT_EQ(room.space->get_volume(), 0.0f);
  room.space->set_forced_area(12.5f);
  room.space->set_forced_volume(30);
  EXPECT_EQ(room.space->get_area(), 12.5f);
  EXPECT_EQ(room.space->get_volume(), 30.0f);
  room.space->set_forced_area(-0.001f);
  room.space->set_forced_volume(-5);
  EXPECT_NEAR(room.space->get_area(), 20.0f, measured);
  EXPECT_NEAR(room.space->get_volume(), 50.0f, measured);
}

TEST(qvi_space, measures_an_upright_floor_from_the_face_on_its_own_side) {
  // A floor whose normal has no z component counts as one that looks down: face 0 is measured.
  qv_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  room.floor->set_face_1(
      qv_test::add_face(*room.floor, qv_test::rectangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0})));
  room.floor->set_normal({1, 0, 0});
  room.space->precompute();
  EXPECT_EQ(to_vector(room.space->get_floors()), walls{room.floor});
  EXPECT_NEAR(room.space->get_area(), 20.0f, measured);
}

TEST(qvi_space, sees_what_is_more_than_a_centimetre_above_its_floor) {
  for (const float height : {0.005f, 0.05f}) {
    qv_scene scene;
    auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
    qv_test::add_face(scene, qv_test::rectangle({0, 0, height}, {4, 0, height}, {0, 5, height}));
    room.space->precompute();
    const float free_height = height > 0.01f ? height : 2.5f;
    EXPECT_NEAR(room.space->get_volume(), 20 * free_height, measured) << height;
  }
}

TEST(qvi_space, measures_a_shaft_of_any_height) {
  qv_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 50000});
  room.space->precompute();
  EXPECT_NEAR(room.space->get_area(), 20.0f, measured);
  EXPECT_NEAR(room.space->get_volume(), 1e6f, 5.0f);
}

// --- when it measures ---

TEST(qvi_space, measures_again_only_after_a_change_of_a_wall) {
  recording_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  room.space->precompute();
  for (qvi_polygon* face : {room.roof->get_face_0(), room.roof->get_face_1()})
    face->matrix_transform(qv_matrix::translation({0, 0, 1}), true);
  scene.add_child(new qv_test::probe_item, -1);
  room.space->set_source_type("changed");
  room.space->precompute();
  EXPECT_NEAR(room.space->get_volume(), 50.0f, measured);
  room.sides[0]->set_composition_reverse(true);
  room.space->precompute();
  EXPECT_NEAR(room.space->get_volume(), 70.0f, measured);
}

TEST(qvi_space, measures_again_when_a_wall_comes_or_goes) {
  recording_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  room.space->precompute();
  auto* low = qv_test::add_wall(scene, type::roof, room.space, nullptr,
                                qv_test::rectangle({0, 0, 2}, {4, 0, 2}, {0, 5, 2}));
  room.space->precompute();
  EXPECT_NEAR(room.space->get_volume(), 40.0f, measured);
  qv_item::destroy(low);
  room.space->precompute();
  EXPECT_NEAR(room.space->get_volume(), 50.0f, measured);
  EXPECT_EQ(room.space->get_walls().get_count(), 6);
}

TEST(qvi_space, does_nothing_while_the_scene_stays_as_it_is) {
  recording_scene scene;
  auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  scene.precompute();
  scene.forget();
  const unsigned int date = qv_get_date();
  room.space->precompute();
  EXPECT_EQ(qv_get_date(), date);
  EXPECT_TRUE(scene.changed.empty());
  EXPECT_TRUE(scene.added.empty());
}

TEST(qvi_space, skips_everything_outside_a_scene) {
  auto* space = new qvi_space;
  auto* wall = new qvi_wall;
  wall->set_space_0(space);
  space->precompute();
  EXPECT_EQ(space->get_walls().get_count(), 0);
  qv_item::destroy(wall);
  qv_item::destroy(space);
}

// --- its place in the hierarchy ---

TEST(qvi_space, takes_the_building_of_its_zone) {
  recording_scene scene;
  auto* building = new qvi_building;
  auto* other = new qvi_building;
  auto* zone = new qvi_zone;
  for (qv_item* item : std::initializer_list<qv_item*>{building, other, zone})
    scene.add_child(item, -1);
  auto* space = qv_test::add_space(scene);
  auto* settled = qv_test::add_space(scene);
  zone->set_building(building);
  space->set_zone(zone);
  settled->set_zone(zone);
  settled->set_building(other);
  scene.forget();
  space->precompute();
  settled->precompute();
  EXPECT_EQ(space->get_building(), building);
  EXPECT_EQ(scene.count_changes(space, "building"), 1);
  EXPECT_EQ(settled->get_building(), other);
}

TEST(qvi_space, finds_its_campus_through_its_building) {
  qv_scene scene;
  auto* campus = new qvi_campus;
  auto* building = new qvi_building;
  scene.add_child(campus, -1);
  campus->add_child(building, -1);
  auto* space = qv_test::add_space(scene);
  EXPECT_EQ(space->get_campus(), nullptr);
  space->set_building(building);
  scene.precompute();
  EXPECT_EQ(space->get_campus(), campus);
}

TEST(qvi_space, a_copy_constructed_one_shares_its_record) {
  for (bool source_first : {true, false}) {
    qv_scene scene;
    auto room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
    auto* copy = new qvi_space(*room.space);
    room.space->precompute();
    EXPECT_EQ(copy->get_area(), room.space->get_area());
    EXPECT_EQ(copy->get_walls(), room.space->get_walls());
    auto* fresh = static_cast<qvi_space*>(room.space->copy());
    EXPECT_EQ(fresh->get_area(), 0.0f);
    EXPECT_EQ(fresh->get_walls().get_count(), 0);
    qv_item::destroy(fresh);
    qv_item::destroy(source_first ? room.space : copy);
    EXPECT_NEAR((source_first ? copy : room.space)->get_area(), 20.0f, measured);
    if (source_first) qv_item::destroy(copy);
  }
}

}  // namespace
