#include "bim/materials/qvi_limit_condition.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_test_buildings.h"
#include "utilities/qv_date.h"

using namespace qv;
using qv_test::recording_scene;
using contact = qvi_wall::contact_type;
using typology = qvi_limit_condition::limit_condition_typology;

namespace {

class qvi_limit_condition_test : public ::testing::Test {
 protected:
  // A wall of the given contact type whose only face lies at height z.
  qvi_wall* add_wall(contact type, float z) {
    qvi_wall* wall = qv_test::add_wall(scene_, qvi_wall::wall_type::floor, nullptr, nullptr,
                                       qv_test::rectangle({0, 0, z}, {0, 3, z}, {3, 0, z}), 0);
    wall->precompute();
    wall->set_contact_type(type);
    return wall;
  }
  qvi_limit_condition* add_condition(typology kind, const char* name = "") {
    auto* condition = new qvi_limit_condition;
    condition->set_typology(kind);
    condition->set_name(name);
    scene_.add_child(condition, -1);
    return condition;
  }
  qv_list<qv_item*> get_conditions() { return scene_.get_items("limit_condition"); }
  void run() { qvi_limit_condition::default_limit_conditions(&scene_); }

  recording_scene scene_;
};

TEST_F(qvi_limit_condition_test, a_new_one_is_soil_with_a_coefficient_deliberately_above_one) {
  qvi_limit_condition condition;
  EXPECT_EQ(condition.get_typology(), typology::soil);
  EXPECT_EQ(condition.get_conductivity(), 1.5f);
  EXPECT_EQ(condition.get_density(), 1500.0f);
  EXPECT_EQ(condition.get_specific_heat(), 2100.0f);
  EXPECT_EQ(condition.get_b_coefficient(), 5.0f);
  EXPECT_EQ(condition.get_temperature(), 19.0f);
}

TEST_F(qvi_limit_condition_test, takes_its_typology_by_index_too) {
  qvi_limit_condition condition;
  condition.set_typology(2);
  EXPECT_EQ(condition.get_typology(), typology::adiabatic);
  const unsigned int date = qv_get_date();
  condition.set_typology(2);
  condition.set_typology(typology::adiabatic);
  EXPECT_EQ(qv_get_date(), date);
}

TEST_F(qvi_limit_condition_test, a_scene_without_walls_gets_its_soil_condition_and_is_computed) {
  auto* probe = new qv_test::probe_item;
  scene_.add_child(probe, -1);
  run();
  ASSERT_EQ(get_conditions().get_count(), 1);
  auto* soil = static_cast<qvi_limit_condition*>(get_conditions()[0]);
  EXPECT_EQ(soil->get_name(), "Soil");
  EXPECT_EQ(soil->get_typology(), typology::soil);
  EXPECT_EQ(soil->get_conductivity(), 1.5f);
  EXPECT_EQ(soil->get_b_coefficient(), 5.0f);
  EXPECT_EQ(soil->get_parent(), &scene_);
  EXPECT_EQ(scene_.get_children()[scene_.get_children().get_count() - 1], soil);
  EXPECT_GE(probe->precompute_count, 1);
}

TEST_F(qvi_limit_condition_test, a_second_run_makes_nothing_and_changes_nothing) {
  qvi_wall* floor = add_wall(contact::lower_floor, 0);
  run();
  qv_item* soil = get_conditions()[0];
  const unsigned int date = floor->get_limit_condition_date();
  scene_.forget();
  run();
  ASSERT_EQ(get_conditions().get_count(), 1);
  EXPECT_EQ(floor->get_limit_condition(), soil);
  EXPECT_EQ(floor->get_limit_condition_date(), date);
  EXPECT_EQ(scene_.count_changes(floor, "limit_condition"), 0);
}

TEST_F(qvi_limit_condition_test, takes_the_first_soil_condition_of_the_scene) {
  add_condition(typology::crawlspace, "crawl");
  auto* first = add_condition(typology::soil, "clay");
  add_condition(typology::soil, "sand");
  qvi_wall* floor = add_wall(contact::lower_floor, 0);
  run();
  EXPECT_EQ(get_conditions().get_count(), 3);
  EXPECT_EQ(floor->get_limit_condition(), first);
}

TEST_F(qvi_limit_condition_test, rests_the_floors_less_than_a_man_above_the_lowest_on_the_ground) {
  qvi_wall* at_0 = add_wall(contact::lower_floor, 0);
  qvi_wall* at_1_79 = add_wall(contact::lower_floor, 1.79f);
  qvi_wall* at_1_8 = add_wall(contact::lower_floor, 1.8f);
  qvi_wall* below_1_8 = add_wall(contact::lower_floor, std::nextafter(1.8f, 0.0f));
  qvi_wall* at_3 = add_wall(contact::lower_floor, 3);
  run();
  qvi_limit_condition* soil = at_0->get_limit_condition();
  ASSERT_NE(soil, nullptr);
  EXPECT_EQ(soil->get_name(), "Soil");
  EXPECT_EQ(at_1_79->get_limit_condition(), soil);
  EXPECT_EQ(below_1_8->get_limit_condition(), soil);
  EXPECT_EQ(at_1_8->get_limit_condition(), nullptr);
  EXPECT_EQ(at_3->get_limit_condition(), nullptr);
}

TEST_F(qvi_limit_condition_test, measures_from_the_lowest_lower_floor_only) {
  add_wall(contact::outer_wall, -20);
  add_wall(contact::outside_slab, -20);
  qvi_wall* low = add_wall(contact::lower_floor, -5);
  qvi_wall* high = add_wall(contact::lower_floor, -3);
  run();
  EXPECT_NE(low->get_limit_condition(), nullptr);
  EXPECT_EQ(high->get_limit_condition(), nullptr);
}

TEST_F(qvi_limit_condition_test, works_at_any_height_above_the_sea) {
  for (const float altitude : {-4000.0f, 4000.0f, 1e6f}) {
    qv_scene scene;
    const auto add_floor = [&scene](float z) {
      qvi_wall* const floor =
          qv_test::add_wall(scene, qvi_wall::wall_type::floor, nullptr, nullptr,
                            qv_test::rectangle({0, 0, z}, {0, 3, z}, {3, 0, z}), 0);
      floor->precompute();
      floor->set_contact_type(contact::lower_floor);
      return floor;
    };
    qvi_wall* const low = add_floor(altitude);
    qvi_wall* const near = add_floor(altitude + 1.5f);
    qvi_wall* const high = add_floor(altitude + 2);
    qvi_limit_condition::default_limit_conditions(&scene);
    EXPECT_NE(low->get_limit_condition(), nullptr) << altitude;
    EXPECT_NE(near->get_limit_condition(), nullptr) << altitude;
    EXPECT_EQ(high->get_limit_condition(), nullptr) << altitude;
  }
}

TEST_F(qvi_limit_condition_test, gives_none_to_a_floor_without_geometry) {
  auto* crawlspace = add_condition(typology::crawlspace);
  qvi_wall* const floor = add_wall(contact::lower_floor, 5);
  auto* const bare = new qvi_wall;
  scene_.add_child(bare, -1);
  bare->set_contact_type(contact::lower_floor);
  bare->set_limit_condition(crawlspace);
  run();
  EXPECT_NE(floor->get_limit_condition(), nullptr);
  EXPECT_EQ(bare->get_limit_condition(), nullptr);
  qvi_limit_condition::default_limit_conditions(nullptr);  // does nothing
}

TEST_F(qvi_limit_condition_test, takes_the_lowest_point_of_each_floor) {
  qvi_wall* flat = add_wall(contact::lower_floor, 0);
  // A floor whose face lies at 2 m, with another polygon below it at 1 m.
  qvi_wall* deep = add_wall(contact::lower_floor, 2);
  qv_test::add_face(*deep, qv_test::rectangle({0, 0, 1}, {0, 3, 1}, {3, 0, 1}));
  run();
  EXPECT_NE(flat->get_limit_condition(), nullptr);
  EXPECT_EQ(deep->get_limit_condition(), flat->get_limit_condition());
}

TEST_F(qvi_limit_condition_test, takes_away_what_higher_floors_and_other_walls_had) {
  auto* crawlspace = add_condition(typology::crawlspace);
  add_wall(contact::lower_floor, 0);
  std::vector<qvi_wall*> walls = {add_wall(contact::lower_floor, 5)};
  for (contact type : {contact::outer_wall, contact::inner_wall, contact::intermediate_floor,
                       contact::roof, contact::outside_wall, contact::outside_slab})
    walls.push_back(add_wall(type, 0));
  for (qvi_wall* wall : walls) wall->set_limit_condition(crawlspace);
  scene_.forget();
  const unsigned int before = qv_get_date();
  run();
  for (qvi_wall* wall : walls) {
    EXPECT_EQ(wall->get_limit_condition(), nullptr);
    EXPECT_GT(wall->get_limit_condition_date(), before);
    EXPECT_EQ(scene_.count_changes(wall, "limit_condition"), 1);
  }
  // The condition itself stays in the scene.
  EXPECT_EQ(crawlspace->get_scene(), &scene_);
}

TEST_F(qvi_limit_condition_test, leaves_walls_that_have_none_alone) {
  qvi_wall* facade = add_wall(contact::outer_wall, 0);
  qvi_wall* high = add_wall(contact::lower_floor, 9);
  add_wall(contact::lower_floor, 0);
  scene_.forget();
  run();
  EXPECT_EQ(scene_.count_changes(facade, "limit_condition"), 0);
  EXPECT_EQ(scene_.count_changes(high, "limit_condition"), 0);
}

TEST_F(qvi_limit_condition_test, replaces_another_condition_of_a_low_floor) {
  auto* crawlspace = add_condition(typology::crawlspace);
  qvi_wall* floor = add_wall(contact::lower_floor, 0);
  floor->set_limit_condition(crawlspace);
  run();
  ASSERT_NE(floor->get_limit_condition(), nullptr);
  EXPECT_EQ(floor->get_limit_condition()->get_name(), "Soil");
}

TEST_F(qvi_limit_condition_test, leaves_a_parameter_of_another_kind_alone) {
  auto* crawlspace = add_condition(typology::crawlspace);
  qvi_wall* floor = add_wall(contact::lower_floor, 0);
  qvi_wall* facade = add_wall(contact::outer_wall, 0);
  facade->set_limit_condition(crawlspace);
  floor->find_param("limit_condition")->redeclare(qv_param::type_float);
  facade->find_param("limit_condition")->redeclare(qv_param::type_string);
  scene_.forget();
  run();
  EXPECT_EQ(floor->get_limit_condition(), nullptr);
  EXPECT_EQ(facade->get_limit_condition(), crawlspace);
  EXPECT_EQ(scene_.count_changes(floor, "limit_condition"), 0);
  EXPECT_EQ(scene_.count_changes(facade, "limit_condition"), 0);
}

TEST_F(qvi_limit_condition_test, works_on_a_street_of_houses) {
  qv_test::add_street(scene_, 3);
  scene_.precompute();
  run();
  int on_the_ground = 0;
  for (qv_item* item : scene_.get_items("wall")) {
    auto* wall = static_cast<qvi_wall*>(item);
    const bool lowest = wall->get_contact_type() == contact::lower_floor;
    EXPECT_EQ(wall->get_limit_condition() != nullptr, lowest);
    EXPECT_EQ(wall->is_exterior(),
              !lowest && (wall->get_space_0() == nullptr || wall->get_space_1() == nullptr));
    on_the_ground += lowest;
  }
  EXPECT_EQ(on_the_ground, 6);  // two rooms of each house
}

}  // namespace
