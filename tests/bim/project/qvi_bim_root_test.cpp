#include "bim/project/qvi_bim_root.h"

#include <gtest/gtest.h>

#include "bim/envelope/qvi_wall.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_material.h"
#include "tests/support/qv_recorders.h"
#include "utilities/qv_date.h"

using namespace qv;
using layers = qv_list<qvi_matter*>;
using role = qvi_matter::material_typology;
using element = qvi_composition::composition_typology;

namespace {

class qvi_bim_root_test : public ::testing::Test {
 protected:
  qvi_bim_root_test() { scene_.add_child(root_, -1); }
  template <class T>
  T* add(const std::string& name = "") {
    auto* item = new T;
    item->set_name(name);
    root_->add_child(item, -1);
    return item;
  }
  qvi_composition* add_composition(const std::string& name, const layers& of) {
    auto* composition = add<qvi_composition>(name);
    composition->set_layers(of);
    return composition;
  }
  qvi_material* add_material(float conductivity, float density) {
    auto* material = add<qvi_material>();
    material->set_conductivity(conductivity);
    material->set_density(density);
    return material;
  }
  void add_walls(qvi_composition* composition, qvi_wall::wall_type type, int count) {
    for (int i = 0; i < count; ++i) {
      auto* wall = add<qvi_wall>();
      wall->set_composition(composition);
      wall->set_wall_type(type);
    }
  }
  qv_test::recording_scene scene_;
  qvi_bim_root* root_ = new qvi_bim_root;
};

// --- the reverse of a composition ---

TEST_F(qvi_bim_root_test, finds_the_composition_with_the_same_layers_the_other_way_round) {
  auto* a = add<qvi_matter>();
  auto* b = add<qvi_matter>();
  auto* c = add<qvi_matter>();
  auto* forth = add_composition("forth", {a, b, c});
  add_composition("shorter", {c, b});
  add_composition("other", {c, a, b});
  auto* back = add_composition("back", {c, b, a});
  add_composition("back again", {c, b, a});
  const int count = root_->get_children().get_count();
  EXPECT_EQ(root_->find_reverse_composition(forth, false), back);
  EXPECT_EQ(root_->find_reverse_composition(forth, true), back);
  EXPECT_EQ(root_->find_reverse_composition(back, true), forth);
  EXPECT_EQ(root_->get_children().get_count(), count);
}

TEST_F(qvi_bim_root_test, finds_a_composition_itself_when_it_reads_the_same_both_ways) {
  auto* a = add<qvi_matter>();
  auto* b = add<qvi_matter>();
  auto* sandwich = add_composition("sandwich", {a, b, a});
  auto* single = add_composition("single", {b});
  auto* empty = add_composition("empty", {});
  auto* other_empty = add_composition("other empty", {});
  EXPECT_EQ(root_->find_reverse_composition(sandwich, false), sandwich);
  EXPECT_EQ(root_->find_reverse_composition(single, true), single);
  EXPECT_EQ(root_->find_reverse_composition(other_empty, true), empty);
}

TEST_F(qvi_bim_root_test, knows_compositions_below_it_alone) {
  auto* a = add<qvi_matter>();
  auto* b = add<qvi_matter>();
  auto* forth = add_composition("forth", {a, b});
  auto* elsewhere = new qvi_composition;
  elsewhere->set_layers({b, a});
  scene_.add_child(elsewhere, -1);
  EXPECT_EQ(root_->find_reverse_composition(forth, false), nullptr);
  auto* folder = add<qvi_composition>("folder");
  folder->add_child(elsewhere, -1);
  EXPECT_EQ(root_->find_reverse_composition(forth, false), elsewhere);
}

TEST_F(qvi_bim_root_test, makes_the_reverse_of_a_composition_on_demand) {
  auto* a = add<qvi_matter>();
  auto* b = add<qvi_matter>();
  auto* wall = add_composition("Ext", {a, b});
  wall->set_layer_thicknesses({0.2f, 0.1f});
  wall->set_typology(element::roof);
  wall->set_insulation(qvi_composition::composition_insulation::exterior);
  qvi_composition* const reverse = root_->find_reverse_composition(wall, true);
  ASSERT_NE(reverse, nullptr);
  EXPECT_EQ(reverse->get_name(), "Ext-");
  EXPECT_EQ(reverse->get_layers(), (layers{b, a}));
  // Deliberately in the order of the original.
  EXPECT_EQ(reverse->get_layer_thicknesses(), (qv_list<float>{0.2f, 0.1f}));
  EXPECT_EQ(reverse->get_typology(), element::roof);
  EXPECT_EQ(reverse->get_insulation(), qvi_composition::composition_insulation::exterior);
  EXPECT_EQ(root_->get_children()[root_->get_children().get_count() - 1], reverse);
  EXPECT_EQ(root_->find_reverse_composition(wall, true), reverse);
  EXPECT_EQ(wall->get_layers(), (layers{a, b}));
}

TEST_F(qvi_bim_root_test, names_the_reverse_of_a_reverse_with_a_zero) {
  auto* a = add<qvi_matter>();
  auto* b = add<qvi_matter>();
  const std::pair<const char*, const char*> names[] = {
      {"Ext-", "Ext0"}, {"Mur-", "Mur0"}, {"-", "0"}, {"", "-"}, {"A--", "A-0"}, {"B0", "B0-"}};
  for (const auto& [name, expected] : names) {
    auto* composition = add_composition(name, {a, b});
    qvi_composition* const reverse = root_->find_reverse_composition(composition, true);
    EXPECT_EQ(reverse->get_name(), expected);
    qv_item::destroy(reverse);
    qv_item::destroy(composition);
  }
}

// --- typing materials ---

TEST_F(qvi_bim_root_test, types_materials_by_conductivity_and_density) {
  struct sample {
    float conductivity;
    float density;
    role expected;
  };
  const sample samples[] = {{0.005f, 100, role::insulator},
                            {0.005f, 2500, role::insulator},  // whatever its density
                            {-1, 2000, role::insulator},
                            {0.01f, 2500, role::heavy_structure},
                            {2, 2000.5f, role::heavy_structure},
                            {2, 2000, role::other},
                            {0.04f, 30, role::other}};  // light, and in no composition
  std::vector<qvi_material*> materials;
  for (const sample& s : samples) materials.push_back(add_material(s.conductivity, s.density));
  root_->set_auto_compositions_typology();
  for (std::size_t i = 0; i < materials.size(); ++i)
    EXPECT_EQ(materials[i]->get_typology(), samples[i].expected) << i;
}

TEST_F(qvi_bim_root_test, types_light_materials_by_their_place_in_the_first_composition) {
  auto* outside = add_material(0.5f, 900);
  auto* middle = add_material(0.5f, 900);
  auto* inside = add_material(0.5f, 900);
  auto* alone = add_material(0.5f, 900);
  auto* exact = add_material(0.5f, 2000);
  auto* twice = add_material(0.5f, 900);
  add_composition("first", {outside, middle, exact, inside});
  add_composition("second", {inside, middle, outside, exact});
  add_composition("single", {alone});
  add_composition("both ends", {twice, middle, twice});
  root_->set_auto_compositions_typology();
  EXPECT_EQ(outside->get_typology(), role::facing);
  EXPECT_EQ(middle->get_typology(), role::other);
  EXPECT_EQ(inside->get_typology(), role::inner_facing);
  EXPECT_EQ(alone->get_typology(), role::facing);  // first and last: the first place counts
  EXPECT_EQ(exact->get_typology(), role::other);
  EXPECT_EQ(twice->get_typology(), role::facing);
}

TEST_F(qvi_bim_root_test, leaves_materials_that_are_typed_and_matters) {
  auto* typed = add_material(0.001f, 3000);
  typed->set_typology(role::light_structure);
  auto* matter = add<qvi_matter>();
  matter->set_conductivity(0.001f);
  auto* outside = new qvi_material;  // not below the root
  scene_.add_child(outside, -1);
  root_->set_auto_compositions_typology();
  EXPECT_EQ(typed->get_typology(), role::light_structure);
  EXPECT_EQ(matter->get_typology(), role::other);
  EXPECT_EQ(outside->get_typology(), role::other);
}

// --- typing compositions ---

TEST_F(qvi_bim_root_test, types_compositions_by_the_walls_that_use_them_most) {
  using kind = qvi_wall::wall_type;
  struct sample {
    int walls;
    int floors;
    int roofs;
    element before;
    element expected;
  };
  const sample samples[] = {{2, 2, 0, element::roof, element::wall},  // ties go to the first
                            {1, 2, 2, element::wall, element::floor},
                            {1, 0, 1, element::roof, element::wall},
                            {0, 0, 1, element::wall, element::roof},
                            {1, 2, 3, element::wall, element::roof},
                            {0, 3, 1, element::wall, element::floor},
                            {0, 0, 0, element::floor, element::floor}};  // unused
  std::vector<qvi_composition*> compositions;
  for (const sample& s : samples) {
    auto* composition = add<qvi_composition>();
    composition->set_typology(s.before);
    add_walls(composition, kind::roof, s.roofs);
    add_walls(composition, kind::floor, s.floors);
    add_walls(composition, kind::wall, s.walls);
    compositions.push_back(composition);
  }
  root_->set_auto_compositions_typology();
  for (std::size_t i = 0; i < compositions.size(); ++i)
    EXPECT_EQ(compositions[i]->get_typology(), samples[i].expected) << i;
}

TEST_F(qvi_bim_root_test, counts_walls_and_compositions_below_it_alone) {
  auto* composition = add<qvi_composition>();
  auto* elsewhere = new qvi_composition;
  scene_.add_child(elsewhere, -1);
  auto* wall = new qvi_wall;  // a floor
  wall->set_composition(composition);
  scene_.add_child(wall, -1);
  add_walls(elsewhere, qvi_wall::wall_type::floor, 1);
  root_->set_auto_compositions_typology();
  EXPECT_EQ(composition->get_typology(), element::wall);
  EXPECT_EQ(elsewhere->get_typology(), element::wall);
}

TEST_F(qvi_bim_root_test, typing_again_changes_no_date) {
  auto* material = add_material(0.005f, 20);
  auto* composition = add_composition("roof", {material});
  add_walls(composition, qvi_wall::wall_type::roof, 1);
  root_->set_auto_compositions_typology();
  EXPECT_EQ(composition->get_typology(), element::roof);
  scene_.forget();
  const unsigned int date = qv_get_date();
  root_->set_auto_compositions_typology();
  EXPECT_EQ(qv_get_date(), date);
  EXPECT_TRUE(scene_.changed.empty());
}

}  // namespace
