#include "bim/project/qvi_bim_configuration.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "bim/envelope/qvi_opening_composition.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_material.h"
#include "bim/materials/qvi_opaque.h"
#include "core/light/qvi_schedule.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_shapes.h"
#include "utilities/qv_date.h"

using namespace qv;
using qv_test::notification;
using qv_test::recording_scene;
using qv_test::to_vector;
using contact = qvi_wall::contact_type;
using kind = qvi_opening::opening_type;
using junction = qvi_connexion::connexion_type;

namespace {

/// A scene with two buildings of one space each, to which walls, openings and junctions are added.
class project {
 public:
  project() {
    for (int i = 0; i < 2; ++i) {
      buildings[i] = add<qvi_building>("B" + std::to_string(i));
      spaces[i] = add<qvi_space>("S" + std::to_string(i));
      spaces[i]->set_building(buildings[i]);
    }
  }
  template <class T>
  T* add(const std::string& name = "") {
    auto* item = new T;
    item->set_name(name);
    scene.add_child(item, -1);
    return item;
  }
  /// A wall of building `of`; none has no space.
  qvi_wall* add_wall(int of, contact type, qvi_composition* composition) {
    auto* wall = add<qvi_wall>();
    wall->set_space_0(of < 0 ? nullptr : spaces[of]);
    wall->set_contact_type(type);
    wall->set_composition(composition);
    return wall;
  }
  qvi_opening* add_opening(qvi_wall* wall, kind type, qvi_opening_composition* composition) {
    auto* opening = add<qvi_opening>();
    opening->set_wall(wall);
    opening->set_opening_type(type);
    opening->set_composition(composition);
    return opening;
  }
  qvi_connexion* add_junction(const qv_list<qvi_wall*>& walls, junction type, float psi) {
    auto* connexion = add<qvi_connexion>();
    connexion->set_walls(walls);
    connexion->set_connexion_type(type);
    connexion->set_psi(psi);
    return connexion;
  }
  qv_list<qvi_building*> both() const { return {buildings[0], buildings[1]}; }

  recording_scene scene;
  qvi_building* buildings[2];
  qvi_space* spaces[2];
};

qvi_composition* choice(const qvi_bim_configuration& configuration, contact type) {
  return configuration.get_wall_compositions()[static_cast<int>(type)];
}
qvi_opening_composition* choice(const qvi_bim_configuration& configuration, kind type) {
  return configuration.get_opening_compositions()[static_cast<int>(type)];
}
float choice(const qvi_bim_configuration& configuration, junction type) {
  return configuration.get_connexion_values()[static_cast<int>(type) - 1];
}

class qvi_bim_configuration_test : public ::testing::Test {
 protected:
  project project_;
  recording_scene& scene_ = project_.scene;
  qv_test::owned_item<qvi_bim_configuration> owner_ = qv_test::make_item<qvi_bim_configuration>();
  qvi_bim_configuration& configuration_ = *owner_;
};

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

std::vector<std::string> names_of(const qv_list<qv_item*>& items) {
  std::vector<std::string> names;
  for (const qv_item* item : items) names.push_back(item->get_name());
  return names;
}

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

// --- giving walls their compositions ---

TEST_F(qvi_bim_configuration_test, gives_nothing_while_it_has_no_keys) {
  auto* brick = new qvi_composition;
  auto* oak = new qvi_opening_composition;
  configuration_.set_wall_compositions({brick});
  configuration_.set_opening_compositions({oak});
  configuration_.set_connexion_values({0.5f});
  auto* wall = project_.add_wall(0, contact::outer_wall, nullptr);
  auto* opening = project_.add_opening(wall, kind::window, nullptr);
  project_.add_junction({wall}, junction::unknown, 0.25f);
  scene_.forget();
  configuration_.apply_walls_to_scene(&scene_, project_.both(), true);
  configuration_.apply_walls_to_scene(&scene_, qv_list<qvi_wall*>{wall}, true);
  configuration_.apply_openings_to_scene(&scene_, project_.both(), true);
  configuration_.apply_openings_to_scene(&scene_, qv_list<qvi_opening*>{opening}, true);
  configuration_.apply_connexions_to_scene(&scene_, project_.both(), true);
  EXPECT_TRUE(scene_.changed.empty());
  EXPECT_TRUE(scene_.added.empty());
  EXPECT_TRUE(scene_.announced.empty());
  EXPECT_EQ(brick->get_scene(), nullptr);
  qv_item::destroy(brick);
  qv_item::destroy(oak);
}

TEST_F(qvi_bim_configuration_test, gives_walls_the_composition_of_their_contact_type) {
  auto* brick = project_.add<qvi_composition>("brick");
  auto* slab = project_.add<qvi_composition>("slab");
  auto* tiles = project_.add<qvi_composition>("tiles");
  configuration_.set_contact_types(
      {contact::outer_wall, contact::lower_floor, contact::inner_wall, contact::outer_wall});
  configuration_.set_wall_compositions({brick, slab, nullptr, tiles});
  qvi_wall* const outer = project_.add_wall(0, contact::outer_wall, tiles);
  qvi_wall* const floor = project_.add_wall(1, contact::lower_floor, nullptr);
  qvi_wall* const inner = project_.add_wall(0, contact::inner_wall, tiles);
  qvi_wall* const roof = project_.add_wall(0, contact::roof, tiles);
  qvi_wall* const stray = project_.add_wall(-1, contact::outer_wall, tiles);
  configuration_.apply_walls_to_scene(&scene_, qv_list<qvi_wall*>{outer, floor, inner, roof, stray},
                                      false);
  EXPECT_EQ(outer->get_composition(), brick);  // the first of two entries
  EXPECT_EQ(floor->get_composition(), slab);
  EXPECT_EQ(inner->get_composition(), tiles);  // no choice
  EXPECT_EQ(roof->get_composition(), tiles);   // no key
  EXPECT_EQ(stray->get_composition(), tiles);
  EXPECT_TRUE(scene_.announced.empty());
}

TEST_F(qvi_bim_configuration_test, goes_by_the_first_entry_of_a_key_even_without_a_choice) {
  auto* brick = project_.add<qvi_composition>("brick");
  auto* oak = project_.add<qvi_opening_composition>("oak");
  configuration_.set_contact_types({contact::outer_wall, contact::outer_wall});
  configuration_.set_wall_compositions({nullptr, brick});
  configuration_.set_opening_types({kind::door, kind::door});
  configuration_.set_opening_compositions({nullptr, oak});
  qvi_wall* const wall = project_.add_wall(0, contact::outer_wall, nullptr);
  qvi_opening* const door = project_.add_opening(wall, kind::door, nullptr);
  configuration_.apply_walls_to_scene(&scene_, project_.both(), true);
  configuration_.apply_openings_to_scene(&scene_, project_.both(), true);
  EXPECT_EQ(wall->get_composition(), nullptr);
  EXPECT_EQ(door->get_composition(), nullptr);
  EXPECT_TRUE(scene_.announced.empty());
}

TEST_F(qvi_bim_configuration_test, keeps_the_other_choices_where_one_is_destroyed) {
  auto* brick = project_.add<qvi_composition>("brick");
  auto* tiles = project_.add<qvi_composition>("tiles");
  auto* pine = project_.add<qvi_opening_composition>("pine");
  auto* oak = project_.add<qvi_opening_composition>("oak");
  configuration_.set_contact_types({contact::outer_wall, contact::roof});
  configuration_.set_wall_compositions({brick, tiles});
  configuration_.set_opening_types({kind::window, kind::door});
  configuration_.set_opening_compositions({pine, oak});
  qv_item::destroy(brick);
  qv_item::destroy(pine);
  qvi_wall* const wall = project_.add_wall(0, contact::outer_wall, nullptr);
  qvi_wall* const roof = project_.add_wall(0, contact::roof, nullptr);
  qvi_opening* const window = project_.add_opening(wall, kind::window, nullptr);
  qvi_opening* const door = project_.add_opening(wall, kind::door, nullptr);
  configuration_.apply_walls_to_scene(&scene_, project_.both(), true);
  configuration_.apply_openings_to_scene(&scene_, project_.both(), true);
  EXPECT_EQ(wall->get_composition(), nullptr);
  EXPECT_EQ(roof->get_composition(), tiles);
  EXPECT_EQ(window->get_composition(), nullptr);
  EXPECT_EQ(door->get_composition(), oak);
}

TEST_F(qvi_bim_configuration_test, gives_nothing_for_keys_beyond_its_choices) {
  auto* brick = project_.add<qvi_composition>("brick");
  configuration_.set_contact_types({contact::roof, contact::outer_wall});
  configuration_.set_wall_compositions({brick});
  configuration_.set_opening_types({kind::door});
  configuration_.set_connexion_types({junction::roof_roof, junction::roof_facade});
  configuration_.set_connexion_values({0.5f});
  qvi_wall* const wall = project_.add_wall(0, contact::outer_wall, nullptr);
  qvi_opening* const door = project_.add_opening(wall, kind::door, nullptr);
  qvi_connexion* const eaves = project_.add_junction({wall}, junction::roof_facade, 0.1f);
  configuration_.apply_walls_to_scene(&scene_, project_.both(), true);
  configuration_.apply_openings_to_scene(&scene_, project_.both(), true);
  configuration_.apply_connexions_to_scene(&scene_, project_.both(), true);
  EXPECT_EQ(wall->get_composition(), nullptr);
  EXPECT_EQ(door->get_composition(), nullptr);
  EXPECT_EQ(eaves->get_psi(), 0.1f);
  EXPECT_TRUE(scene_.announced.empty());
}

TEST_F(qvi_bim_configuration_test, gives_the_walls_of_the_buildings_named_alone) {
  auto* brick = project_.add<qvi_composition>("brick");
  configuration_.set_contact_types({contact::outer_wall});
  configuration_.set_wall_compositions({brick});
  qvi_wall* const walls[] = {project_.add_wall(0, contact::outer_wall, nullptr),
                             project_.add_wall(1, contact::outer_wall, nullptr),
                             project_.add_wall(-1, contact::outer_wall, nullptr)};
  configuration_.apply_walls_to_scene(&scene_, qv_list<qvi_building*>{}, false);
  for (const qvi_wall* wall : walls) EXPECT_EQ(wall->get_composition(), nullptr);
  configuration_.apply_walls_to_scene(&scene_, qv_list<qvi_building*>{project_.buildings[1]},
                                      false);
  EXPECT_EQ(walls[0]->get_composition(), nullptr);
  EXPECT_EQ(walls[1]->get_composition(), brick);
  configuration_.apply_walls_to_scene(&scene_, project_.both(), false);
  EXPECT_EQ(walls[0]->get_composition(), brick);
  EXPECT_EQ(walls[2]->get_composition(), nullptr);
}

// Takes down what a composition parameter held when its change was announced.
class recording_values : public recording_scene {
 public:
  std::vector<qv_item*> held;
  void record_change(qv_item* item, const std::string& name) override {
    held.push_back(item->find_param(name)->get_item());
    recording_scene::record_change(item, name);
  }
};

TEST(qvi_bim_configuration, announces_each_change_before_it_is_made) {
  recording_values scene;
  auto* space = new qvi_space;
  auto* wall = new qvi_wall;
  auto* opening = new qvi_opening;
  auto* before = new qvi_composition;
  auto* after = new qvi_composition;
  auto* leaf = new qvi_opening_composition;
  after->set_name("after");
  for (qv_item* item : std::initializer_list<qv_item*>{space, wall, opening, before, after, leaf})
    scene.add_child(item, -1);
  wall->set_space_0(space);
  wall->set_contact_type(contact::roof);
  wall->set_composition(before);
  opening->set_wall(wall);
  auto configuration = qv_test::make_item<qvi_bim_configuration>();
  configuration->set_contact_types({contact::roof});
  configuration->set_wall_compositions({after});
  configuration->set_opening_types({kind::window});
  configuration->set_opening_compositions({leaf});
  configuration->apply_walls_to_scene(&scene, qv_list<qvi_wall*>{wall}, true);
  EXPECT_EQ(scene.announced, (std::vector<notification>{{wall, "composition"}}));
  EXPECT_EQ(scene.held, std::vector<qv_item*>{before});
  EXPECT_EQ(wall->get_composition(), after);
  configuration->apply_openings_to_scene(&scene, qv_list<qvi_opening*>{opening}, true);
  EXPECT_EQ(scene.announced.back(), (notification{opening, "composition"}));
  EXPECT_EQ(scene.held.back(), nullptr);
  EXPECT_EQ(opening->get_composition(), leaf);
}

TEST_F(qvi_bim_configuration_test, gives_the_same_again_without_a_notification) {
  auto* brick = project_.add<qvi_composition>("brick");
  auto* oak = project_.add<qvi_opening_composition>("oak");
  qvi_wall* const wall = project_.add_wall(0, contact::outer_wall, brick);
  qvi_opening* const opening = project_.add_opening(wall, kind::door, oak);
  qvi_connexion* const corner = project_.add_junction({wall}, junction::facade_angle_outer, 0.5f);
  configuration_.load_walls_from_scene(&scene_, nullptr);
  configuration_.load_openings_from_scene(&scene_, nullptr);
  configuration_.load_connexions_from_scene(&scene_, nullptr);
  wall->set_composition(nullptr);
  opening->set_composition(nullptr);
  corner->set_psi(0);
  const auto apply = [&](bool record) {
    scene_.forget();
    configuration_.apply_walls_to_scene(&scene_, project_.both(), record);
    configuration_.apply_openings_to_scene(&scene_, project_.both(), record);
    configuration_.apply_connexions_to_scene(&scene_, project_.both(), record);
  };
  apply(false);
  EXPECT_EQ(scene_.changed, (std::vector<notification>{
                                {wall, "composition"}, {opening, "composition"}, {corner, "psi"}}));
  EXPECT_TRUE(scene_.announced.empty());
  apply(true);
  EXPECT_TRUE(scene_.changed.empty());
  EXPECT_TRUE(scene_.added.empty());
  EXPECT_EQ(scene_.announced,  // whether or not the value will differ
            (std::vector<notification>{
                {wall, "composition"}, {opening, "composition"}, {corner, "psi"}}));
}

// --- giving openings and junctions their choices ---

TEST_F(qvi_bim_configuration_test, gives_openings_the_composition_of_their_kind) {
  auto* triple = project_.add<qvi_opening_composition>("triple");
  auto* oak = project_.add<qvi_opening_composition>("oak");
  auto* wall = project_.add_wall(0, contact::outer_wall, nullptr);
  auto* far_wall = project_.add_wall(1, contact::outer_wall, nullptr);
  auto* stray_wall = project_.add_wall(-1, contact::outer_wall, nullptr);
  configuration_.set_opening_types({kind::window, kind::skylight});
  configuration_.set_opening_compositions({triple, nullptr});
  qvi_opening* const window = project_.add_opening(wall, kind::window, oak);
  qvi_opening* const skylight = project_.add_opening(wall, kind::skylight, oak);
  qvi_opening* const door = project_.add_opening(wall, kind::door, oak);
  qvi_opening* const far = project_.add_opening(far_wall, kind::window, oak);
  qvi_opening* const in_stray = project_.add_opening(stray_wall, kind::window, oak);
  qvi_opening* const stray = project_.add_opening(nullptr, kind::window, oak);
  configuration_.apply_openings_to_scene(&scene_, qv_list<qvi_building*>{project_.buildings[0]},
                                         false);
  EXPECT_EQ(window->get_composition(), triple);
  for (const qvi_opening* other : {skylight, door, far, in_stray, stray})
    EXPECT_EQ(other->get_composition(), oak);
  configuration_.apply_openings_to_scene(&scene_, qv_list<qvi_opening*>{far, in_stray, stray},
                                         false);
  EXPECT_EQ(far->get_composition(), triple);
  EXPECT_EQ(in_stray->get_composition(), oak);
  EXPECT_EQ(stray->get_composition(), oak);
}

TEST_F(qvi_bim_configuration_test, gives_junctions_the_psi_of_their_type_zero_included) {
  auto* wall = project_.add_wall(0, contact::outer_wall, nullptr);
  auto* far_wall = project_.add_wall(1, contact::outer_wall, nullptr);
  auto* stray_wall = project_.add_wall(-1, contact::outer_wall, nullptr);
  configuration_.set_connexion_types(
      {junction::roof_roof, junction::roof_facade, junction::roof_roof});
  configuration_.set_connexion_values({0.5f, 0.0f, 0.9f});
  qvi_connexion* const ridge = project_.add_junction({wall}, junction::roof_roof, 0.1f);
  qvi_connexion* const eaves = project_.add_junction({wall, far_wall}, junction::roof_facade, 0.1f);
  qvi_connexion* const corner = project_.add_junction({wall}, junction::facade_angle_outer, 0.1f);
  qvi_connexion* const far = project_.add_junction({far_wall, wall}, junction::roof_roof, 0.1f);
  qvi_connexion* const in_stray = project_.add_junction({stray_wall}, junction::roof_roof, 0.1f);
  qvi_connexion* const empty = project_.add_junction({}, junction::roof_roof, 0.1f);
  scene_.forget();
  configuration_.apply_connexions_to_scene(&scene_, qv_list<qvi_building*>{project_.buildings[0]},
                                           true);
  EXPECT_EQ(ridge->get_psi(), 0.5f);
  EXPECT_EQ(eaves->get_psi(), 0.0f);
  for (const qvi_connexion* other : {corner, far, in_stray, empty})
    EXPECT_EQ(other->get_psi(), 0.1f);
  EXPECT_EQ(scene_.announced, (std::vector<notification>{{ridge, "psi"}, {eaves, "psi"}}));
}

// --- from one project to another ---

TEST_F(qvi_bim_configuration_test, brings_what_it_names_into_a_scene_that_lacks_it) {
  auto* wool = new qvi_material;
  wool->set_name("wool");
  auto* brick = new qvi_composition;
  brick->set_name("brick");
  brick->set_layers({wool});
  configuration_.add_child(brick, -1);
  configuration_.add_child(wool, -1);
  configuration_.set_contact_types({contact::outer_wall});
  configuration_.set_wall_compositions({brick});
  qvi_wall* const wall = project_.add_wall(0, contact::outer_wall, nullptr);
  configuration_.apply_walls_to_scene(&scene_, qv_list<qvi_wall*>{wall}, false);
  ASSERT_NE(wall->get_composition(), nullptr);
  EXPECT_EQ(wall->get_composition()->get_name(), "brick");
  EXPECT_EQ(wall->get_composition()->get_scene(), &scene_);
  ASSERT_EQ(wall->get_composition()->get_layers().get_count(), 1);
  EXPECT_EQ(wall->get_composition()->get_layers()[0]->get_scene(), &scene_);
  scene_.forget();
  configuration_.apply_walls_to_scene(&scene_, qv_list<qvi_wall*>{wall}, false);
  EXPECT_TRUE(scene_.added.empty());
  EXPECT_TRUE(scene_.changed.empty());
}

TEST_F(qvi_bim_configuration_test, uses_what_the_other_scene_has_of_the_same_kind_and_name) {
  project source;
  auto* brick = source.add<qvi_composition>("brick");
  auto* oak = source.add<qvi_opening_composition>("oak");
  qvi_wall* const source_wall = source.add_wall(0, contact::outer_wall, brick);
  source.add_opening(source_wall, kind::door, oak);
  configuration_.load_walls_from_scene(&source.scene, nullptr);
  configuration_.load_openings_from_scene(&source.scene, nullptr);

  auto* own_brick = project_.add<qvi_composition>("brick");
  auto* own_oak = project_.add<qvi_opening_composition>("oak");
  qvi_wall* const wall = project_.add_wall(0, contact::outer_wall, nullptr);
  qvi_opening* const door = project_.add_opening(wall, kind::door, nullptr);
  scene_.forget();
  configuration_.apply_walls_to_scene(&scene_, project_.both(), false);
  configuration_.apply_openings_to_scene(&scene_, project_.both(), false);
  EXPECT_EQ(wall->get_composition(), own_brick);
  EXPECT_EQ(door->get_composition(), own_oak);
  EXPECT_TRUE(scene_.added.empty());
  EXPECT_EQ(brick->get_scene(), &source.scene);
  EXPECT_EQ(source_wall->get_composition(), brick);
}

TEST_F(qvi_bim_configuration_test, takes_a_composition_of_another_name_for_another_one) {
  auto* brick = new qvi_composition;
  brick->set_name("brick");
  configuration_.add_child(brick, -1);
  project_.add<qvi_composition>("stone");  // otherwise alike
  scene_.forget();
  configuration_.apply_compositions_to_scene(&scene_, false);
  EXPECT_EQ(scene_.get_items("composition").get_count(), 2);
}

TEST_F(qvi_bim_configuration_test, brings_a_choice_of_another_name_than_that_of_its_twin) {
  auto* brick = new qvi_composition;
  auto* oak = new qvi_opening_composition;
  brick->set_name("brick");
  oak->set_name("oak");
  configuration_.set_contact_types({contact::outer_wall});
  configuration_.set_wall_compositions({brick});
  configuration_.set_opening_types({kind::door});
  configuration_.set_opening_compositions({oak});
  project_.add<qvi_composition>("stone");  // otherwise alike
  project_.add<qvi_opening_composition>("fir");
  qvi_wall* const wall = project_.add_wall(0, contact::outer_wall, nullptr);
  qvi_opening* const door = project_.add_opening(wall, kind::door, nullptr);
  configuration_.apply_walls_to_scene(&scene_, project_.both(), false);
  configuration_.apply_openings_to_scene(&scene_, project_.both(), false);
  EXPECT_EQ(wall->get_composition(), brick);
  EXPECT_EQ(door->get_composition(), oak);
  EXPECT_EQ(names_of(scene_.get_items("composition")),
            (std::vector<std::string>{"stone", "brick"}));
  EXPECT_EQ(names_of(scene_.get_items("opening_composition")),
            (std::vector<std::string>{"fir", "oak"}));
}

// What a composition refers to gives way to what the scene has of it.
TEST_F(qvi_bim_configuration_test, announces_what_it_changes_in_what_it_brings) {
  auto* own_wool = project_.add<qvi_material>("wool");
  auto* own_leaf = project_.add<qvi_opaque>("leaf");
  qvi_wall* const wall = project_.add_wall(0, contact::outer_wall, nullptr);
  for (const bool record : {false, true}) {
    for (const bool by_table : {false, true}) {
      SCOPED_TRACE(testing::Message() << record << by_table);
      auto configuration = qv_test::make_item<qvi_bim_configuration>();
      const auto add = [&configuration](qv_item* item, const std::string& name) {
        item->set_name(name);
        configuration->add_child(item, -1);
      };
      auto* wool = new qvi_material;
      auto* leaf = new qvi_opaque;
      auto* brick = new qvi_composition;
      auto* door = new qvi_opening_composition;
      const std::string number = std::to_string(2 * record + by_table);
      add(wool, "wool");
      add(leaf, "leaf");
      add(brick, "brick " + number);
      add(door, "door " + number);
      brick->set_layers({wool});
      door->set_opaque(leaf);
      scene_.forget();
      if (by_table) {
        configuration->set_contact_types({contact::roof});
        configuration->set_wall_compositions({brick});
        configuration->set_opening_types({kind::door});
        configuration->set_opening_compositions({door});
        configuration->apply_walls_to_scene(&scene_, qv_list<qvi_wall*>{wall}, record);
        configuration->apply_openings_to_scene(&scene_, qv_list<qvi_opening*>{}, record);
      } else {
        configuration->apply_compositions_to_scene(&scene_, record);
        configuration->apply_opening_compositions_to_scene(&scene_, record);
      }
      EXPECT_EQ(brick->get_scene(), &scene_);
      EXPECT_EQ(door->get_scene(), &scene_);
      EXPECT_EQ(to_vector(brick->get_layers()), std::vector<qvi_matter*>{own_wool});
      EXPECT_EQ(door->get_opaque(), own_leaf);
      const std::vector<notification> changes = {{brick, "layers"}, {door, "opaque"}};
      EXPECT_EQ(scene_.announced, record ? changes : std::vector<notification>{});
    }
  }
}

TEST_F(qvi_bim_configuration_test, puts_its_copies_into_a_scene_that_lacks_them_once) {
  project source;
  source.add<qvi_composition>("brick")->set_layer_thicknesses({0.2f});
  source.add<qvi_composition>("stone");
  source.add<qvi_opening_composition>("oak");
  source.add<qvi_schedule>("day")->set_values({0, 1});
  configuration_.load_compositions_from_scene(&source.scene);
  configuration_.load_opening_compositions_from_scene(&source.scene);
  configuration_.load_schedules_from_scene(&source.scene);
  project_.add<qvi_composition>("stone");
  const auto apply = [this](bool record) {
    configuration_.apply_compositions_to_scene(&scene_, record);
    configuration_.apply_opening_compositions_to_scene(&scene_, record);
    configuration_.apply_schedules_to_scene(&scene_, record);
  };
  apply(false);
  EXPECT_EQ(names_of(scene_.get_items("composition")),
            (std::vector<std::string>{"stone", "brick"}));
  EXPECT_EQ(names_of(scene_.get_items("opening_composition")), std::vector<std::string>{"oak"});
  EXPECT_EQ(names_of(scene_.get_items("schedule")), std::vector<std::string>{"day"});
  scene_.forget();
  apply(true);
  EXPECT_TRUE(scene_.added.empty());
  EXPECT_TRUE(scene_.changed.empty());
  EXPECT_EQ(source.scene.get_items("composition").get_count(), 2);  // as it was
}

TEST_F(qvi_bim_configuration_test, collects_what_lies_deeper_below_it) {
  auto* folder = new qvi_bim_configuration;
  auto* brick = new qvi_composition;
  brick->set_name("brick");
  folder->add_child(brick, -1);
  configuration_.add_child(folder, -1);
  configuration_.apply_compositions_to_scene(&scene_, false);
  EXPECT_EQ(names_of(scene_.get_items("composition")), std::vector<std::string>{"brick"});
}

TEST_F(qvi_bim_configuration_test, carries_the_choices_of_one_project_into_another) {
  project source;
  auto* brick = source.add<qvi_composition>("brick");
  qvi_wall* const source_wall = source.add_wall(0, contact::outer_wall, brick);
  source.add_junction({source_wall}, junction::facade_angle_outer, 0.3f);
  configuration_.load_walls_from_scene(&source.scene, source.buildings[0]);
  configuration_.load_connexions_from_scene(&source.scene, source.buildings[0]);
  qvi_wall* const wall = project_.add_wall(1, contact::outer_wall, nullptr);
  qvi_connexion* const corner = project_.add_junction({wall}, junction::facade_angle_outer, 0.0f);
  qvi_connexion* const ridge = project_.add_junction({wall}, junction::roof_roof, 0.4f);
  configuration_.apply_walls_to_scene(&scene_, project_.both(), true);
  configuration_.apply_connexions_to_scene(&scene_, project_.both(), true);
  ASSERT_NE(wall->get_composition(), nullptr);
  EXPECT_EQ(wall->get_composition()->get_name(), "brick");
  EXPECT_EQ(wall->get_composition()->get_scene(), &scene_);
  EXPECT_EQ(corner->get_psi(), 0.3f);
  EXPECT_EQ(ridge->get_psi(), 0.0f);  // of a type without a value in the source
}

}  // namespace
