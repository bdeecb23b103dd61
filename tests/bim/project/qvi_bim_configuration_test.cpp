#include "bim/project/qvi_bim_configuration.h"

#include <gtest/gtest.h>

#include <limits>

#include "bim/envelope/qvi_opening_composition.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/materials/qvi_composition.h"
#include "core/light/qvi_schedule.h"
#include "tests/bim/project/qv_configured_project.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_shapes.h"
#include "utilities/qv_date.h"

using namespace qv;
using namespace qv_test;

namespace {

qvi_composition* choice(const qvi_bim_configuration& configuration, contact type) {
  return configuration.get_wall_compositions()[static_cast<int>(type)];
}
qvi_opening_composition* choice(const qvi_bim_configuration& configuration, kind type) {
  return configuration.get_opening_compositions()[static_cast<int>(type)];
}
float choice(const qvi_bim_configuration& configuration, junction type) {
  return configuration.get_connexion_values()[static_cast<int>(type) - 1];
}

// --- learning walls ---

TEST_F(qvi_bim_configuration_test, lists_every_contact_type_even_of_an_empty_scene) {
  qv_scene empty;
  configuration_.load_walls_from_scene(&empty, nullptr);
  const std::vector<contact> types = to_vector(configuration_.get_contact_types());
  ASSERT_EQ(types.size(), 7u);
  for (std::size_t i = 0; i < types.size(); ++i) EXPECT_EQ(static_cast<std::size_t>(types[i]), i);
  EXPECT_EQ(to_vector(configuration_.get_wall_compositions()),
            std::vector<qvi_composition*>(7, nullptr));
}

TEST_F(qvi_bim_configuration_test, learns_the_composition_that_walls_agree_on) {
  auto* brick = project_.add<qvi_composition>("brick");
  auto* slab = project_.add<qvi_composition>("slab");
  project_.add_wall(0, contact::outer_wall, brick);
  project_.add_wall(0, contact::outer_wall, nullptr);  // has not chosen
  project_.add_wall(1, contact::outer_wall, brick);
  project_.add_wall(1, contact::lower_floor, slab);
  configuration_.load_walls_from_scene(&scene_, nullptr);
  EXPECT_EQ(choice(configuration_, contact::outer_wall), brick);
  EXPECT_EQ(choice(configuration_, contact::lower_floor), slab);
  EXPECT_EQ(choice(configuration_, contact::roof), nullptr);
}

TEST_F(qvi_bim_configuration_test, learns_nothing_where_walls_disagree_whatever_follows) {
  auto* brick = project_.add<qvi_composition>("brick");
  auto* stone = project_.add<qvi_composition>("stone");
  for (qvi_composition* composition : {brick, stone, brick, stone, stone})
    project_.add_wall(0, contact::outer_wall, composition);
  configuration_.load_walls_from_scene(&scene_, nullptr);
  EXPECT_EQ(choice(configuration_, contact::outer_wall), nullptr);
}

TEST_F(qvi_bim_configuration_test, compares_compositions_by_identity_and_not_by_likeness) {
  for (int i = 0; i < 2; ++i)
    project_.add_wall(0, contact::roof, project_.add<qvi_composition>("twin"));
  configuration_.load_walls_from_scene(&scene_, nullptr);
  EXPECT_EQ(choice(configuration_, contact::roof), nullptr);
}

TEST_F(qvi_bim_configuration_test, leaves_out_walls_without_a_first_space) {
  auto* brick = project_.add<qvi_composition>("brick");
  project_.add_wall(-1, contact::outer_wall, brick)->set_space_1(project_.spaces[0]);
  configuration_.load_walls_from_scene(&scene_, nullptr);
  EXPECT_EQ(choice(configuration_, contact::outer_wall), nullptr);
}

TEST_F(qvi_bim_configuration_test, learns_from_one_building_alone) {
  auto* brick = project_.add<qvi_composition>("brick");
  auto* stone = project_.add<qvi_composition>("stone");
  project_.add_wall(0, contact::outer_wall, brick);
  project_.add_wall(1, contact::outer_wall, stone);
  configuration_.load_walls_from_scene(&scene_, nullptr);
  EXPECT_EQ(choice(configuration_, contact::outer_wall), nullptr);
  configuration_.load_walls_from_scene(&scene_, project_.buildings[0]);
  EXPECT_EQ(choice(configuration_, contact::outer_wall), brick);
  configuration_.load_walls_from_scene(&scene_, project_.buildings[1]);
  EXPECT_EQ(choice(configuration_, contact::outer_wall), stone);
}

TEST_F(qvi_bim_configuration_test, learning_the_same_again_changes_no_date) {
  auto* wall = project_.add_wall(0, contact::roof, project_.add<qvi_composition>());
  project_.add_opening(wall, kind::door, project_.add<qvi_opening_composition>());
  project_.add_junction({wall}, junction::roof_roof, 0.5f);
  const auto load = [this] {
    configuration_.load_walls_from_scene(&scene_, nullptr);
    configuration_.load_openings_from_scene(&scene_, nullptr);
    configuration_.load_connexions_from_scene(&scene_, nullptr);
  };
  load();
  const unsigned int date = qv_get_date();
  load();
  EXPECT_EQ(qv_get_date(), date);
}

TEST_F(qvi_bim_configuration_test, announces_each_of_its_lists_once_for_each_learning) {
  scene_.add_child(owner_.release(), -1);
  project_.add_wall(0, contact::roof, project_.add<qvi_composition>());
  scene_.forget();
  configuration_.load_walls_from_scene(&scene_, nullptr);
  EXPECT_EQ(scene_.changed, (std::vector<notification>{{&configuration_, "contact_types"},
                                                       {&configuration_, "wall_compositions"}}));
  scene_.forget();
  configuration_.load_connexions_from_scene(&scene_, nullptr);
  EXPECT_EQ(scene_.changed, (std::vector<notification>{{&configuration_, "connexion_types"},
                                                       {&configuration_, "connexion_values"}}));
}

// --- learning openings ---

TEST_F(qvi_bim_configuration_test, learns_the_composition_that_openings_agree_on) {
  auto* wall = project_.add_wall(0, contact::outer_wall, nullptr);
  auto* other_wall = project_.add_wall(1, contact::outer_wall, nullptr);
  auto* stray_wall = project_.add_wall(-1, contact::outer_wall, nullptr);
  auto* triple = project_.add<qvi_opening_composition>("triple");
  auto* oak = project_.add<qvi_opening_composition>("oak");
  project_.add_opening(wall, kind::window, triple);
  project_.add_opening(wall, kind::window, nullptr);
  project_.add_opening(other_wall, kind::window, triple);
  project_.add_opening(wall, kind::door, oak);
  project_.add_opening(other_wall, kind::door, triple);
  project_.add_opening(nullptr, kind::skylight, oak);
  project_.add_opening(stray_wall, kind::skylight, oak);
  configuration_.load_openings_from_scene(&scene_, nullptr);
  ASSERT_EQ(configuration_.get_opening_types().get_count(), 4);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(static_cast<int>(configuration_.get_opening_types()[i]), i);
  EXPECT_EQ(to_vector(configuration_.get_opening_compositions()),
            (std::vector<qvi_opening_composition*>{triple, nullptr, nullptr, nullptr}));
  configuration_.load_openings_from_scene(&scene_, project_.buildings[0]);
  EXPECT_EQ(choice(configuration_, kind::door), oak);
  EXPECT_EQ(configuration_.get_contact_types().get_count(), 0);  // the other tables stay
}

// --- learning junctions ---

TEST_F(qvi_bim_configuration_test, lists_every_junction_but_those_without_loss) {
  auto* wall = project_.add_wall(0, contact::outer_wall, nullptr);
  project_.add_junction({wall}, junction::no_loss, 0.9f);
  configuration_.load_connexions_from_scene(&scene_, nullptr);
  const std::vector<junction> types = to_vector(configuration_.get_connexion_types());
  ASSERT_EQ(types.size(), 17u);
  for (std::size_t i = 0; i < types.size(); ++i)
    EXPECT_EQ(static_cast<std::size_t>(types[i]), i + 1);
  EXPECT_EQ(to_vector(configuration_.get_connexion_values()), std::vector<float>(17, 0.0f));
}

TEST_F(qvi_bim_configuration_test, learns_the_psi_that_junctions_agree_on) {
  auto* wall = project_.add_wall(0, contact::outer_wall, nullptr);
  auto* other = project_.add_wall(1, contact::outer_wall, nullptr);
  auto* stray = project_.add_wall(-1, contact::outer_wall, nullptr);
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (const float psi : {0.0f, 0.5f, -1.0f, 0.0f, nan, 0.5f})
    project_.add_junction({wall, other}, junction::roof_facade, psi);
  project_.add_junction({}, junction::roof_facade, 0.7f);
  project_.add_junction({stray, wall}, junction::roof_facade, 0.7f);
  for (const float psi : {0.5f, 0.7f, 0.5f, 0.5f})
    project_.add_junction({wall}, junction::roof_roof, psi);
  project_.add_junction({other}, junction::unknown, 0.25f);
  configuration_.load_connexions_from_scene(&scene_, nullptr);
  EXPECT_EQ(choice(configuration_, junction::roof_facade), 0.5f);
  EXPECT_EQ(choice(configuration_, junction::roof_roof), 0.0f);  // they disagree
  EXPECT_EQ(choice(configuration_, junction::unknown), 0.25f);
  configuration_.load_connexions_from_scene(&scene_, project_.buildings[1]);
  EXPECT_EQ(choice(configuration_, junction::roof_facade), 0.0f);
  EXPECT_EQ(choice(configuration_, junction::unknown), 0.25f);
}

// --- copies of the scene's items ---

TEST_F(qvi_bim_configuration_test, copies_the_compositions_that_its_table_does_not_name) {
  auto* brick = project_.add<qvi_composition>("brick");
  auto* stone = project_.add<qvi_composition>("stone");
  stone->set_typology(qvi_composition::composition_typology::roof);
  project_.add_wall(0, contact::outer_wall, brick);
  configuration_.load_walls_from_scene(&scene_, nullptr);
  configuration_.load_compositions_from_scene(&scene_);
  ASSERT_EQ(names_of(configuration_.get_children()), std::vector<std::string>{"stone"});
  const auto* copy = static_cast<const qvi_composition*>(configuration_.get_children()[0]);
  EXPECT_NE(copy, stone);
  EXPECT_EQ(copy->get_typology(), qvi_composition::composition_typology::roof);
}

TEST_F(qvi_bim_configuration_test, copies_opening_compositions_and_all_schedules) {
  auto* used = project_.add<qvi_opening_composition>("used");
  project_.add<qvi_opening_composition>("spare");
  auto* wall = project_.add_wall(0, contact::outer_wall, nullptr);
  project_.add_opening(wall, kind::window, used);
  for (const char* name : {"day", "night"}) project_.add<qvi_schedule>(name)->set_values({1, 2});
  configuration_.load_openings_from_scene(&scene_, nullptr);
  configuration_.load_opening_compositions_from_scene(&scene_);
  configuration_.load_schedules_from_scene(&scene_);
  EXPECT_EQ(names_of(configuration_.get_children()),
            (std::vector<std::string>{"spare", "day", "night"}));
  EXPECT_EQ(static_cast<qvi_schedule*>(configuration_.get_children()[1])->get_values(),
            (qv_list<float>{1, 2}));
}

TEST_F(qvi_bim_configuration_test, copies_everything_again_when_asked_again) {
  project_.add<qvi_composition>("brick");
  project_.add<qvi_schedule>("day");
  for (int i = 0; i < 2; ++i) {
    configuration_.load_compositions_from_scene(&scene_);
    configuration_.load_schedules_from_scene(&scene_);
  }
  EXPECT_EQ(names_of(configuration_.get_children()),
            (std::vector<std::string>{"brick", "day", "brick", "day"}));
}

TEST_F(qvi_bim_configuration_test, that_lives_in_the_scene_copies_what_is_there_before) {
  scene_.add_child(owner_.release(), 0);
  project_.add<qvi_schedule>("day");
  project_.add<qvi_schedule>("night");
  configuration_.load_schedules_from_scene(&scene_);
  EXPECT_EQ(names_of(configuration_.get_children()), (std::vector<std::string>{"day", "night"}));
}

}  // namespace
