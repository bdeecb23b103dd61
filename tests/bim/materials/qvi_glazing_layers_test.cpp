#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_interlayer.h"
#include "bim/materials/qvi_glazing_pv.h"
#include "bim/materials/qvi_opaque.h"
#include "core/items/qv_scene.h"
#include "tests/support/qv_recorders.h"

namespace {

using namespace qv;
using type = qvi_glazing_gaz::gaz_type;
using qv_test::recording_scene;

struct properties {
  float conductivity, viscosity, specific_heat, volumic_mass;
  friend bool operator==(const properties&, const properties&) = default;
};
void PrintTo(const properties& p, std::ostream* out) {
  *out << p.conductivity << ' ' << p.viscosity << ' ' << p.specific_heat << ' ' << p.volumic_mass;
}

constexpr properties pure[5] = {{0.02496f, 1.761e-5f, 1008.0f, 1.232f},
                                {0.01684f, 2.164e-5f, 519.0f, 1.699f},
                                {0.009f, 2.4e-5f, 245.0f, 3.56f},
                                {0.0054f, 2.28e-5f, 340.0f, 5.897f},
                                {0.01275f, 1.459e-5f, 614.0f, 6.118f}};
constexpr properties by_hand = {0.5f, 0.25f, 100.0f, 2.0f};

class gap : public testing::Test {
 protected:
  gap() { scene.add_child(gas, -1); }
  properties found() {
    gas->precompute();
    return {gas->get_conductivity(), gas->get_viscosity(), gas->get_specific_heat(),
            gas->get_volumic_mass()};
  }
  void set_by_hand() {
    gas->set_conductivity(by_hand.conductivity);
    gas->set_viscosity(by_hand.viscosity);
    gas->set_specific_heat(by_hand.specific_heat);
    gas->set_volumic_mass(by_hand.volumic_mass);
  }
  void expect_mixture(const double (&fractions)[5]) {
    double sums[4] = {0, 0, 0, 0};
    for (int i = 0; i < 5; ++i) {
      sums[0] += fractions[i] * pure[i].conductivity;
      sums[1] += fractions[i] * pure[i].viscosity;
      sums[2] += fractions[i] * pure[i].specific_heat;
      sums[3] += fractions[i] * pure[i].volumic_mass;
    }
    const properties p = found();
    EXPECT_NEAR(p.conductivity, sums[0], 1e-6 * sums[0]);
    EXPECT_NEAR(p.viscosity, sums[1], 1e-6 * sums[1]);
    EXPECT_NEAR(p.specific_heat, sums[2], 1e-6 * sums[2]);
    EXPECT_NEAR(p.volumic_mass, sums[3], 1e-6 * sums[3]);
  }

  recording_scene scene;
  qvi_glazing_gaz* gas = new qvi_glazing_gaz;
};

TEST_F(gap, takes_the_properties_of_each_pure_gas_to_the_last_bit) {
  EXPECT_EQ(found(), pure[0]);  // air without being asked
  for (int i = 0; i < 5; ++i) {
    gas->set_gaz_type(static_cast<type>(i));
    EXPECT_EQ(found(), pure[i]) << qvi_glazing_gaz::get_gaz_type_list()[i];
  }
}

TEST_F(gap, is_computed_only_when_its_gas_changed) {
  gas->set_gaz_type(type::argon);
  EXPECT_EQ(found(), pure[1]);
  scene.forget();
  EXPECT_EQ(found(), pure[1]);
  EXPECT_TRUE(scene.changed.empty());
  set_by_hand();  // a pure gas keeps what was written over it until its type changes
  gas->set_gaz_mixing({0.0f, 0.0f, 1.0f});
  EXPECT_EQ(found(), by_hand);
  gas->set_gaz_type(type::krypton);
  EXPECT_EQ(found(), pure[2]);
}

TEST_F(gap, tells_the_scene_of_the_properties_that_it_sets) {
  scene.forget();
  gas->precompute();
  for (const char* name : {"conductivity", "viscosity", "specific_heat", "volumic_mass"})
    EXPECT_EQ(scene.count_changes(gas, name), 1) << name;
  EXPECT_EQ(scene.count_changes(gas), 4);
}

TEST_F(gap, of_a_mixture_is_computed_again_when_its_fractions_change) {
  gas->set_gaz_type(type::other);
  gas->set_gaz_mixing({0.0f, 1.0f});
  expect_mixture({0, 1, 0, 0, 0});
  set_by_hand();
  EXPECT_EQ(found(), by_hand);
  gas->set_gaz_mixing({0.0f, 0.0f, 0.0f, 1.0f});
  expect_mixture({0, 0, 0, 1, 0});
}

TEST_F(gap, mixes_every_property_linearly) {
  gas->set_gaz_type(type::other);
  gas->set_gaz_mixing({0.1f, 0.2f, 0.3f, 0.25f, 0.15f});
  expect_mixture({0.1, 0.2, 0.3, 0.25, 0.15});
  gas->set_gaz_mixing({0.1f, 0.9f});  // the missing ones are 0
  expect_mixture({0.1, 0.9, 0, 0, 0});
  gas->set_gaz_mixing({2.0f, 2.0f});  // brought to a sum of 1
  expect_mixture({0.5, 0.5, 0, 0, 0});
  gas->set_gaz_mixing({0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 7.0f, 9.0f});  // surplus ones do not count
  expect_mixture({0, 0, 1, 0, 0});
  EXPECT_EQ(gas->get_gaz_mixing().get_count(), 7);  // what was given stays
}

TEST_F(gap, without_any_fraction_holds_air) {
  gas->set_gaz_type(type::other);
  EXPECT_EQ(found(), pure[0]);
  gas->set_gaz_mixing({0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 3.0f});
  EXPECT_EQ(found(), pure[0]);
}

TEST_F(gap, given_by_hand_is_left_alone) {
  gas->set_gaz_type(type::by_hand);
  set_by_hand();
  scene.forget();
  EXPECT_EQ(found(), by_hand);
  EXPECT_TRUE(scene.changed.empty());
  gas->set_gaz_type(type::argon);
  EXPECT_EQ(found(), pure[1]);
  gas->set_gaz_type(type::by_hand);
  EXPECT_EQ(found(), pure[1]);  // the properties that stand are those given by hand from now on
}

TEST(qvi_glazing_gaz, has_a_name_for_each_gas_and_none_for_the_one_by_hand) {
  EXPECT_EQ(qvi_glazing_gaz::get_gaz_type_list(),
            (qv_list<std::string>{"air", "argon", "krypton", "xenon", "sf6", "other"}));
  EXPECT_EQ(static_cast<int>(type::by_hand), 6);
}

TEST(qvi_glazing_glass, takes_fixed_figures_where_a_data_sheet_gives_none) {
  qvi_glazing_glass pane;
  pane.set_solar_reflectance_front(0.6f);
  pane.set_visible_reflectance_back(0.6f);
  pane.build_from_global_data(2.8f, 0.7f, 0.75f);
  EXPECT_EQ(pane.get_thermal_transmittance(), 0.11f);
  EXPECT_EQ(pane.get_thermal_emissivity_front(), 0.89f);
  EXPECT_EQ(pane.get_thermal_emissivity_back(), 0.89f);
  for (const float reflectance :
       {pane.get_solar_reflectance_front(), pane.get_solar_reflectance_back(),
        pane.get_visible_reflectance_front(), pane.get_visible_reflectance_back()})
    EXPECT_EQ(reflectance, 0.2f);
  EXPECT_EQ(pane.get_visible_transmittance(), 0.75f);
  EXPECT_EQ(pane.get_thickness(), 0.006f);
  // h = 0.89·4.1/0.837 + 3.6 = 7.95962; τ = (0.7 − 0.8·h/(h + 25))/(1 − h/(h + 25)) = 0.66816.
  EXPECT_NEAR(pane.get_solar_transmittance(), 0.66816, 1e-5);
  // r = 1/2.8 − 0.04 − 1/h = 0.191509; λ = 0.006/r = 0.031330.
  EXPECT_NEAR(pane.get_conductivity(), 0.031330, 1e-6);
}

TEST(qvi_glazing_glass, shows_a_data_sheets_solar_transmittance_below_nothing_as_it_comes_out) {
  qvi_glazing_glass pane;
  pane.build_from_global_data(1.1f, 0.1f, 0.1f);  // less than what is given off inwards
  // q = 0.8·0.241496 = 0.193197; τ = (0.1 − 0.193197)/(1 − 0.241496) = −0.12287.
  EXPECT_NEAR(pane.get_solar_transmittance(), -0.12287, 1e-5);
}

// A new one has a name of its own, which must not come in the place of the copied one's.
TEST(qvi_glazing_interlayer, copied_in_full_has_the_name_that_it_has_and_be_it_none) {
  qvi_glazing_interlayer film;
  for (const char* name : {"Interlayer", "PVB", ""}) {
    film.set_name(name);
    qv_item* const copy = film.full_copy();
    EXPECT_EQ(copy->get_name(), name);
    qv_item::destroy(copy);
  }
}

TEST(qvi_glazing_pv, knows_the_share_of_its_cells) {
  EXPECT_EQ(qvi_glazing_pv().get_occupancy(), 0.3f);
}

TEST(qvi_opaque, conducts_over_its_thickness_at_every_slope) {
  qvi_opaque panel;
  for (const float slope : {0.0f, 45.0f, 90.0f, 180.0f})
    EXPECT_EQ(panel.get_U(slope), 0.05f / 0.01f);
  EXPECT_EQ(panel.get_U(90), 5.0f);
  EXPECT_EQ(panel.get_solar_factor(), 0.0f);
  EXPECT_EQ(panel.get_visible_transmittance(), 0.0f);
  panel.set_thickness(0.04f);
  panel.set_conductivity(0.036f);
  EXPECT_EQ(panel.get_U(90), 0.036f / 0.04f);
  panel.set_thickness(0.0f);
  EXPECT_EQ(panel.get_U(90), std::numeric_limits<float>::infinity());
}

TEST(qvi_opening_shader, lets_nothing_through_of_itself) {
  qvi_opening_shader filling;
  EXPECT_EQ(filling.get_U(90), 0.0f);
  EXPECT_EQ(filling.get_solar_factor(), 0.0f);
  EXPECT_EQ(filling.get_visible_transmittance(), 0.0f);
  EXPECT_TRUE(filling.has_type("shader"));
  EXPECT_TRUE(qvi_opaque().has_type("opening_shader"));
}

}  // namespace
