#include "bim/materials/qvi_material_mix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"
#include "utilities/qv_date.h"

using namespace qv;
using qv_test::recording_scene;

namespace {

qvi_material* make_material(float conductivity, float density, float specific_heat) {
  auto* material = new qvi_material;
  material->set_conductivity(conductivity);
  material->set_density(density);
  material->set_specific_heat(specific_heat);
  return material;
}

// Wool and timber in the ratio 1 : 3, 0.1 m thick.
class qvi_material_mix_test : public ::testing::Test {
 protected:
  qvi_material_mix_test() {
    for (qv_item* item : std::initializer_list<qv_item*>{wool_, timber_, mix_})
      scene_.add_child(item, -1);
    wool_->set_diffuse_reflexion(0.8f, qv_spectrum::solar);
    mix_->set_materials({wool_, timber_});
    mix_->set_materials_ratios({1, 3});
    mix_->set_thickness(0.1f);
  }
  recording_scene scene_;
  qvi_material* wool_ = make_material(0.04f, 40, 800);
  qvi_material* timber_ = make_material(0.2f, 500, 1600);
  qvi_material_mix* mix_ = new qvi_material_mix;
};

TEST_F(qvi_material_mix_test, takes_the_weighted_mean_of_its_materials) {
  mix_->precompute();
  EXPECT_EQ(mix_->get_materials_ratios(), (qv_list<float>{0.25f, 0.75f}));
  EXPECT_FLOAT_EQ(mix_->get_conductivity(), 0.16f);     // 0.25 × 0.04 + 0.75 × 0.2
  EXPECT_FLOAT_EQ(mix_->get_resistance(), 0.625f);      // 0.1 / 0.16
  EXPECT_FLOAT_EQ(mix_->get_density(), 385.0f);         // 0.25 × 40 + 0.75 × 500
  EXPECT_FLOAT_EQ(mix_->get_specific_heat(), 1400.0f);  // 0.25 × 800 + 0.75 × 1600
  EXPECT_FLOAT_EQ(mix_->get_diffuse_reflexion(qv_spectrum::solar), 0.5f);  // 0.25·0.8 + 0.75·0.4
  EXPECT_FLOAT_EQ(mix_->get_diffuse_reflexion(qv_spectrum::visible), 0.4f);
  EXPECT_FLOAT_EQ(mix_->get_diffuse_reflexion(qv_spectrum::thermal), 0.4f);
}

TEST_F(qvi_material_mix_test, leaves_thickness_and_the_rest_of_the_surface_alone) {
  mix_->set_diffuse_color({1, 0, 0, 1});
  mix_->set_direct_reflexion(0.1f, qv_spectrum::solar);
  mix_->set_diffuse_transmission(0.2f, qv_spectrum::visible);
  mix_->precompute();
  EXPECT_EQ(mix_->get_thickness(), 0.1f);
  EXPECT_EQ(mix_->get_diffuse_color(), qv_color(1, 0, 0, 1));
  EXPECT_EQ(mix_->get_direct_reflexion(qv_spectrum::solar), 0.1f);
  EXPECT_EQ(mix_->get_diffuse_transmission(qv_spectrum::visible), 0.2f);
}

TEST_F(qvi_material_mix_test, announces_what_it_sets_in_order) {
  scene_.forget();
  mix_->precompute();
  std::vector<std::string> names;
  for (const auto& change : scene_.changed) {
    EXPECT_EQ(change.item, mix_);
    if (names.empty() || names.back() != change.name) names.push_back(change.name);
  }
  EXPECT_EQ(names, (std::vector<std::string>{"materials_ratios", "conductivity", "resistance",
                                             "density", "specific_heat", "diffuse_reflexion"}));
}

TEST_F(qvi_material_mix_test, does_nothing_when_nothing_changed) {
  mix_->precompute();
  scene_.forget();
  const unsigned int date = qv_get_date();
  mix_->precompute();
  EXPECT_EQ(qv_get_date(), date);
  EXPECT_TRUE(scene_.changed.empty());
}

TEST_F(qvi_material_mix_test, does_nothing_when_something_else_changed) {
  mix_->precompute();
  mix_->find_param("conductivity")->store_float(99);  // would be put right by a computation
  auto* stranger = new qv_test::probe_item;
  scene_.add_child(stranger, -1);
  scene_.forget();
  mix_->precompute();
  EXPECT_EQ(mix_->get_conductivity(), 99.0f);
  EXPECT_EQ(scene_.count_changes(mix_), 0);
}

TEST_F(qvi_material_mix_test, follows_a_change_of_a_material) {
  mix_->precompute();
  wool_->set_conductivity(0.2f);
  mix_->precompute();
  EXPECT_FLOAT_EQ(mix_->get_conductivity(), 0.2f);
}

TEST_F(qvi_material_mix_test, follows_a_change_of_its_own) {
  mix_->precompute();
  mix_->set_thickness(0.32f);
  mix_->precompute();
  EXPECT_FLOAT_EQ(mix_->get_resistance(), 2.0f);  // 0.32 / 0.16
  mix_->set_materials_ratios({1, 1});
  mix_->precompute();
  EXPECT_EQ(mix_->get_materials_ratios(), (qv_list<float>{0.5f, 0.5f}));
  EXPECT_FLOAT_EQ(mix_->get_conductivity(), 0.12f);
}

TEST_F(qvi_material_mix_test, undoes_a_property_set_by_hand) {
  mix_->precompute();
  mix_->set_conductivity(7);
  mix_->precompute();
  EXPECT_FLOAT_EQ(mix_->get_conductivity(), 0.16f);
}

TEST_F(qvi_material_mix_test, works_without_a_scene) {
  mix_->remove();
  mix_->precompute();
  EXPECT_FLOAT_EQ(mix_->get_conductivity(), 0.16f);
  const unsigned int date = qv_get_date();
  mix_->precompute();
  EXPECT_EQ(qv_get_date(), date);
  timber_->set_conductivity(0.04f);
  mix_->precompute();
  EXPECT_FLOAT_EQ(mix_->get_conductivity(), 0.04f);
  qv_item::destroy(mix_);
}

TEST_F(qvi_material_mix_test, leaves_the_other_materials_their_ratios_where_one_is_destroyed) {
  qv_item::destroy(wool_);
  mix_->precompute();
  EXPECT_FLOAT_EQ(mix_->get_conductivity(), 0.75f * 0.2f);
  EXPECT_FLOAT_EQ(mix_->get_density(), 0.75f * 500);
}

TEST_F(qvi_material_mix_test, a_mix_may_hold_another_mix) {
  auto* outer = new qvi_material_mix;
  outer->set_materials({mix_, wool_});
  outer->set_materials_ratios({2, 2});
  scene_.add_child(outer, 0);  // before the inner one, so that one pass cannot do
  scene_.precompute();
  EXPECT_FLOAT_EQ(outer->get_conductivity(), 0.1f);  // (0.16 + 0.04) / 2
}

TEST_F(qvi_material_mix_test, divides_by_the_sum_of_all_ratios_also_of_surplus_ones) {
  mix_->set_materials_ratios({1, 1, 2});
  mix_->precompute();
  EXPECT_EQ(mix_->get_materials_ratios(), (qv_list<float>{0.25f, 0.25f, 0.5f}));
  EXPECT_FLOAT_EQ(mix_->get_conductivity(), 0.06f);  // 0.25 × (0.04 + 0.2)
}

TEST_F(qvi_material_mix_test, deliberately_does_not_guard_ratios_that_sum_to_nothing) {
  mix_->set_materials_ratios({0, 0});
  mix_->precompute();
  EXPECT_TRUE(std::isnan(mix_->get_materials_ratios()[0]));
  EXPECT_TRUE(std::isnan(mix_->get_conductivity()));
  mix_->set_materials_ratios({1, -1});
  mix_->precompute();
  EXPECT_TRUE(std::isinf(mix_->get_materials_ratios()[0]));
}

TEST_F(qvi_material_mix_test, a_conductivity_of_zero_makes_an_infinite_resistance) {
  wool_->set_conductivity(0);
  timber_->set_conductivity(0);
  mix_->precompute();
  EXPECT_TRUE(std::isinf(mix_->get_resistance()));
  EXPECT_NE(mix_->get_html_information().find("<td>inf K.m<sup>2</sup>/W</td>"), std::string::npos);
}

TEST_F(qvi_material_mix_test, describes_itself_as_a_material) {
  auto* const mix = new qvi_material_mix;
  scene_.add_child(mix, -1);
  mix->set_name("Briques et mortier");
  mix->set_typology(qvi_matter::material_typology::heavy_structure);
  mix->set_thickness(0.15f);
  mix->set_resistance(0.25f);
  mix->set_conductivity(0.6f);
  EXPECT_EQ(mix->get_html_information(),
            "<h2>Briques et mortier</h2>"
            "<table width=100% border=0>"
            "<tr><td><b>Typologie :<b></td><td>Structure lourde</td></tr>"
            "<tr><td><b>Epaisseur :<b></td><td>150 mm</td></tr>"
            "<tr><td><b>Résistance :<b></td><td>0.250 K.m<sup>2</sup>/W</td></tr>"
            "<tr><td><b>Conductivité :<b></td><td>0.600 W/m/K</td></tr>"
            "<tr><td><b>Chaleur massique :<b></td><td>0 J/(Kg.K)</td></tr>"
            "<tr><td><b>Masse volumique :<b></td><td>0 Kg/m<sup>3</sup></td></tr>"
            "<tr><td><b>Albedo :<b></td><td>0.40</td></tr>"
            "<tr><td><b>Reflectance visible :<b></td><td>0.40</td></tr>"
            "<tr><td><b>Emissivité thermique :<b></td><td>0.40</td></tr>"
            "</table>");
}

TEST_F(qvi_material_mix_test, a_mix_of_nothing_has_no_properties) {
  auto* empty = new qvi_material_mix;
  empty->set_density(12);
  scene_.add_child(empty, -1);
  empty->precompute();
  EXPECT_EQ(empty->get_conductivity(), 0.0f);
  EXPECT_EQ(empty->get_density(), 0.0f);
  EXPECT_EQ(empty->get_materials_ratios().get_count(), 0);
  EXPECT_EQ(empty->get_diffuse_reflexion(qv_spectrum::solar), 0.0f);
  EXPECT_TRUE(std::isnan(empty->get_resistance()));  // 0 / 0
  const unsigned int date = qv_get_date();
  empty->precompute();
  EXPECT_EQ(qv_get_date(), date);
}

TEST(qvi_material_mix_random, agrees_with_a_plain_sum) {
  constexpr unsigned int seed = 4242;
  RecordProperty("seed", static_cast<int>(seed));
  std::mt19937 random(seed);
  const auto dice = [&](float low, float high) {
    return low + (high - low) * static_cast<float>(random() % 1000) / 999.0f;
  };
  for (int run = 0; run < 200; ++run) {
    qv_scene scene;
    auto* mix = new qvi_material_mix;
    scene.add_child(mix, -1);
    qv_list<qvi_material*> materials;
    qv_list<float> ratios;
    const int count = 1 + static_cast<int>(random() % 6);
    for (int i = 0; i < count; ++i) {
      materials.append(make_material(dice(0.02f, 3), dice(10, 3000), dice(500, 2000)));
      scene.add_child(materials[i], -1);
      ratios.append(dice(0.1f, 5));
    }
    mix->set_materials(materials);
    mix->set_materials_ratios(ratios);
    mix->set_thickness(dice(0.01f, 0.5f));
    mix->precompute();

    float sum = 0;
    for (float ratio : ratios) sum += ratio;
    float conductivity = 0;
    float density = 0;
    float specific_heat = 0;
    for (int i = 0; i < count; ++i) {
      const float share = ratios[i] / sum;
      ASSERT_EQ(mix->get_materials_ratios()[i], share);
      conductivity += share * materials[i]->get_conductivity();
      density += share * materials[i]->get_density();
      specific_heat += share * materials[i]->get_specific_heat();
    }
    ASSERT_EQ(mix->get_conductivity(), conductivity);
    ASSERT_EQ(mix->get_density(), density);
    ASSERT_EQ(mix->get_specific_heat(), specific_heat);
    ASSERT_EQ(mix->get_resistance(), mix->get_thickness() / conductivity);
  }
}

}  // namespace
