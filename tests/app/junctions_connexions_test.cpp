#include <gtest/gtest.h>

#include <map>

#include "app/junctions/qv_connexions.h"
#include "bim/envelope/qvi_connexion.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/imported/qvi_bim_object.h"
#include "bim/materials/qvi_limit_condition.h"
#include "core/items/qv_scene.h"
#include "tests/support/qv_test_buildings.h"

namespace {

using namespace qv;
using type = qvi_connexion::connexion_type;

std::vector<qvi_connexion*> connexions_of(qv_scene& scene) {
  std::vector<qvi_connexion*> connexions;
  for (qv_item* item : scene.get_items("connexion"))
    connexions.push_back(static_cast<qvi_connexion*>(item));
  return connexions;
}

std::map<type, int> count_types(qv_scene& scene) {
  std::map<type, int> counts;
  for (const qvi_connexion* connexion : connexions_of(scene))
    ++counts[connexion->get_connexion_type()];
  return counts;
}

std::map<type, int> study_types(qv_scene& scene) {
  qv_add_connexions(scene);
  scene.precompute();
  qvi_limit_condition::default_limit_conditions(&scene);
  scene.precompute();
  return count_types(scene);
}

TEST(qv_add_connexions, gives_a_box_four_edges_of_each_kind) {
  qv_scene scene;
  qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f}, 0);
  EXPECT_EQ(study_types(scene), (std::map<type, int>{{type::facade_angle_outer, 4},
                                                     {type::roof_facade, 4},
                                                     {type::lower_floor_soil_facade, 4}}));
  float length = 0;
  for (const qvi_connexion* connexion : connexions_of(scene)) length += connexion->get_length();
  EXPECT_FLOAT_EQ(length, 4 * (4 + 5 + 2.5f));
}

// Two rooms side by side: the partition meets floors, roofs and façades, each of them cut there.
TEST(qv_add_connexions, knows_the_edges_of_a_partition) {
  qv_scene scene;
  qv_test::add_block(scene, {0, 0, 0}, 2, 1, 1, {4, 5, 2.5f}, 0);
  const auto counts = study_types(scene);
  EXPECT_EQ(counts, (std::map<type, int>{{type::unknown, 2},  // straight façades and the partition
                                         {type::facade_angle_outer, 4},
                                         {type::roof_roof_inner_wall, 1},
                                         {type::roof_facade, 6},
                                         {type::lower_floor_soil_facade, 6},
                                         {type::lower_floor_soil_inner_wall, 1}}));
}

TEST(qv_add_connexions, knows_the_edge_of_an_intermediate_floor) {
  qv_scene scene;
  qv_test::add_block(scene, {0, 0, 0}, 1, 1, 2, {4, 5, 2.5f}, 0);
  EXPECT_EQ(study_types(scene), (std::map<type, int>{{type::facade_angle_outer, 8},
                                                     {type::facade_intermediate, 4},
                                                     {type::roof_facade, 4},
                                                     {type::lower_floor_soil_facade, 4}}));
}

TEST(qv_add_connexions, knows_the_edge_of_a_balcony) {
  qv_scene scene;
  qv_test::add_block(scene, {0, 0, 0}, 1, 1, 2, {4, 5, 2.5f}, 0);
  qv_test::add_wall(scene, qvi_wall::wall_type::floor, nullptr, nullptr,
                    qv_test::rectangle({1, 0, 2.5f}, {1, -1, 2.5f}, {3, 0, 2.5f}), 0);
  auto counts = study_types(scene);
  EXPECT_EQ(counts[type::facade_balcony_intermediate], 1);
  EXPECT_EQ(counts[type::facade_intermediate],
            5);  // 3 sides, and 1 m left and right of the balcony
}

// A shade of a model file: an object with a flat face.
qvi_bim_object* add_object(qv_scene& scene, const qv_list<qv_3dvector>& corners) {
  auto* object = new qvi_bim_object;
  auto* face = new qvi_polygon;
  face->set_vertices(corners);
  face->set_contour_sizes({4});
  face->set_normal((corners[1] - corners[0]).cross(corners[2] - corners[1]).normalized());
  object->set_name("balcony");
  object->set_source_id("b1");
  object->add_child(face, -1);
  scene.add_child(object, -1);
  return object;
}

TEST(qv_add_connexions, knows_the_edge_of_a_balcony_that_is_an_object) {
  qv_scene scene;
  qv_test::add_block(scene, {0, 0, 0}, 1, 1, 2, {4, 5, 2.5f}, 0);
  const int wall_count = scene.get_items("wall").get_count();
  const qvi_bim_object* balcony =
      add_object(scene, {{1, 0, 2.5f}, {1, -1, 2.5f}, {3, -1, 2.5f}, {3, 0, 2.5f}});
  add_object(scene, {{1, -9, 0}, {3, -9, 0}, {3, -9, 4}, {1, -9, 4}});  // a fence
  auto counts = study_types(scene);
  EXPECT_EQ(counts[type::facade_balcony_intermediate], 1);
  EXPECT_EQ(counts[type::facade_intermediate], 5);
  EXPECT_EQ(counts[type::unknown], 0);
  const qv_list<qv_item*> walls = scene.get_items("wall");
  ASSERT_EQ(walls.get_count(), wall_count + 1);  // none for the fence
  const auto* wall = static_cast<const qvi_wall*>(walls[wall_count]);
  EXPECT_EQ(wall->get_name(), "balcony");
  EXPECT_EQ(wall->get_source_ids(), qv_list<std::string>{"b1"});
  EXPECT_EQ(wall->get_contact_type(), qvi_wall::contact_type::outside_slab);
  EXPECT_EQ(wall->get_face_0()->get_parent(), balcony);
  EXPECT_EQ(wall->get_loss_area(), 2);
}

TEST(qv_add_connexions, leaves_out_objects_that_meet_a_balcony_and_no_envelope) {
  qv_scene scene;
  qv_test::add_block(scene, {0, 0, 0}, 1, 1, 2, {4, 5, 2.5f}, 0);
  const int wall_count = scene.get_items("wall").get_count();
  add_object(scene, {{1, 0, 2.5f}, {1, -1, 2.5f}, {3, -1, 2.5f}, {3, 0, 2.5f}});
  // A parapet along its edge, and a screen that goes on from there.
  add_object(scene, {{1, -1, 2.5f}, {3, -1, 2.5f}, {3, -1, 3.5f}, {1, -1, 3.5f}});
  add_object(scene, {{3, -1, 2.5f}, {5, -1, 2.5f}, {5, -1, 3.5f}, {3, -1, 3.5f}});
  const auto counts = study_types(scene);
  EXPECT_EQ(scene.get_items("wall").get_count(), wall_count + 1);
  EXPECT_EQ(counts.at(type::facade_balcony_intermediate), 1);
  EXPECT_EQ(counts.count(type::unknown), 0U);
  for (const qvi_connexion* connexion : connexions_of(scene))
    EXPECT_GE(connexion->get_walls().get_count(), 2) << connexion->get_name();
}

// An L of two rooms whose inner corner is the only one of its kind.
TEST(qv_add_connexions, tells_an_inner_corner_from_outer_ones) {
  qv_scene scene;
  qvi_space* space = qv_test::add_space(scene);
  const qv_3dvector plan[] = {{0, 0, 0}, {6, 0, 0}, {6, 4, 0}, {3, 4, 0}, {3, 8, 0}, {0, 8, 0}};
  const qv_3dvector up(0, 0, 3);
  qv_list<qv_3dvector> floor, roof;
  for (int i = 0; i < 6; ++i) {
    const qv_3dvector& a = plan[i];
    const qv_3dvector& b = plan[(i + 1) % 6];
    qv_test::add_wall(scene, qvi_wall::wall_type::wall, space, nullptr,
                      qv_test::rectangle(a, b, a + up), 0);
    roof.append(a + up);
    floor.append(plan[5 - i]);
  }
  qv_test::add_wall(scene, qvi_wall::wall_type::floor, space, nullptr, floor, 0);
  qv_test::add_wall(scene, qvi_wall::wall_type::roof, space, nullptr, roof, 0);
  EXPECT_EQ(study_types(scene), (std::map<type, int>{{type::facade_angle_outer, 5},
                                                     {type::facade_angle_inner, 1},
                                                     {type::roof_facade, 6},
                                                     {type::lower_floor_soil_facade, 6}}));
}

TEST(qv_add_connexions, does_not_see_the_edges_of_openings) {
  qv_scene scene;
  const qv_test::box_room room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f}, 0);
  // A door in the south side: the face with the opening cut out has three edges of it.
  qvi_polygon* pierced = qv_test::add_face(*room.sides[0], {{0, 0, 0},
                                                            {1, 0, 0},
                                                            {1, 0, 2},
                                                            {2, 0, 2},
                                                            {2, 0, 0},
                                                            {4, 0, 0},
                                                            {4, 0, 2.5f},
                                                            {0, 0, 2.5f}});
  room.sides[0]->set_pierced_face_0(pierced);
  room.sides[0]->set_pierced_face_1(pierced);
  EXPECT_EQ(qv_add_connexions(scene), 12);
}

TEST(qv_add_connexions, puts_walls_of_spaces_first_and_below_their_campus) {
  qv_scene scene;
  auto* campus = new qvi_campus;
  scene.add_child(campus, -1);
  qv_test::add_wall(*campus, qvi_wall::wall_type::floor, nullptr, nullptr,
                    qv_test::rectangle({0, -2, 2.5f}, {4, -2, 2.5f}, {0, 0, 2.5f}), 0);
  const qv_test::box_room room = qv_test::add_box_room(*campus, {0, 0, 0}, {4, 5, 2.5f}, 0);
  EXPECT_EQ(qv_add_connexions(scene), 12);
  int with_canopy = 0;
  for (const qvi_connexion* connexion : connexions_of(scene)) {
    EXPECT_EQ(connexion->get_parent(), campus);
    EXPECT_EQ(connexion->get_walls()[0]->get_space_0(), room.space);
    with_canopy += connexion->get_walls().get_count() == 3 ? 1 : 0;
  }
  EXPECT_EQ(with_canopy, 1);
}

}  // namespace
