#include "bim/project/qvi_bim_configuration.h"

#include <gtest/gtest.h>

#include "bim/envelope/qvi_opening_composition.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_material.h"
#include "bim/materials/qvi_opaque.h"
#include "core/light/qvi_schedule.h"
#include "tests/bim/project/qv_configured_project.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_shapes.h"

using namespace qv;
using namespace qv_test;

namespace {

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
