#include "bim/materials/qvi_glazing.h"

#include <gtest/gtest.h>

#include <cmath>

#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_glass.h"
#include "bim/materials/qvi_glazing_interlayer.h"
#include "bim/materials/qvi_glazing_pv.h"
#include "core/items/qv_scene.h"

namespace {

using namespace qv;

/// A stack of layers that live below their glazing in a scene.
class stack {
 public:
  stack() {
    glazing = new qvi_glazing;
    scene.add_child(glazing, -1);
  }
  template <class Layer>
  Layer* add() {
    auto* const layer = new Layer;
    glazing->add_child(layer, -1);
    qv_list<qvi_glazing_layer*> layers = glazing->get_layers();
    layers.append(layer);
    glazing->set_layers(layers);
    return layer;
  }

  qv_scene scene;
  qvi_glazing* glazing;
};

double inner_coefficient(double emissivity) {
  return emissivity * 4.1 / 0.837 + 3.6;
}

constexpr double relative = 1e-5;  // single precision over some ten operations

void expect_close(double value, double expected) {
  EXPECT_NEAR(value, expected, relative * std::fabs(expected));
}

TEST(qvi_glazing, without_layers_has_its_surface_resistances_alone) {
  stack s;
  s.glazing->precompute();
  for (const float slope : {0.0f, 45.0f, 90.0f})
    expect_close(s.glazing->get_U(slope), 1.0 / (1.0 / 7.7 + 0.04));
  EXPECT_EQ(s.glazing->get_solar_factor(), 1.0f);
  EXPECT_EQ(s.glazing->get_visible_transmittance(), 1.0f);
}

TEST(qvi_glazing, of_one_clear_pane_has_the_same_U_at_every_slope) {
  stack s;
  s.add<qvi_glazing_glass>();
  s.glazing->precompute();
  const double hi = inner_coefficient(0.2);
  for (const float slope : {0.0f, 45.0f, 90.0f})
    expect_close(s.glazing->get_U(slope), 1.0 / (1.0 / hi + 0.04 + 0.005 / 0.05));
  // Absorbed: 1 - 0.8 - 0.2 = 0, nothing is given off inwards.
  EXPECT_NEAR(s.glazing->get_solar_factor(), 0.8, 1e-6);
}

TEST(qvi_glazing, changes_its_slope_at_22_5_and_67_5_degrees) {
  stack s;
  s.add<qvi_glazing_glass>();
  s.add<qvi_glazing_gaz>()->set_thickness(0.02f);
  s.add<qvi_glazing_glass>();
  s.glazing->precompute();
  const float flat = s.glazing->get_U(0.0f);
  const float inclined = s.glazing->get_U(45.0f);
  const float steep = s.glazing->get_U(90.0f);
  EXPECT_GT(flat, inclined);
  EXPECT_GT(inclined, steep);
  EXPECT_EQ(s.glazing->get_U(22.4f), flat);
  EXPECT_EQ(s.glazing->get_U(22.5f), inclined);
  EXPECT_EQ(s.glazing->get_U(67.4f), inclined);
  EXPECT_EQ(s.glazing->get_U(67.5f), steep);
}

TEST(qvi_glazing, of_two_panes_about_argon_follows_the_rules_worked_out_in_double_precision) {
  stack s;
  auto* const outer = s.add<qvi_glazing_glass>();
  auto* const gap = s.add<qvi_glazing_gaz>();
  auto* const inner = s.add<qvi_glazing_glass>();
  gap->set_gaz_type(qvi_glazing_gaz::gaz_type::argon);
  gap->set_thickness(0.016f);
  outer->set_solar_transmittance(0.7f);
  outer->set_solar_reflectance_front(0.1f);
  outer->set_solar_reflectance_back(0.15f);
  outer->set_thermal_emissivity_back(0.05f);
  outer->set_conductivity(1.0f);
  inner->set_conductivity(1.0f);
  inner->set_solar_transmittance(0.75f);
  inner->set_solar_reflectance_front(0.08f);
  inner->set_thermal_emissivity_back(0.837f);
  s.glazing->precompute();

  const double lambda = 0.01684, mu = 2.164e-5, c = 519, rho = 1.699, thickness = 0.016;
  const double rayleigh =
      9.81 * std::pow(thickness, 3) * 15 * rho * rho / (mu * mu * 283) * (c * mu / lambda);
  const double radiative = 5.140465 / (1 / 0.837 + 1 / 0.05 - 1);
  const double hi = inner_coefficient(0.837);
  const auto U = [&](double factor, double exponent) {
    const double convective =
        std::max(1.0, factor * std::pow(rayleigh, exponent)) * lambda / thickness;
    return 1 / (1 / hi + 0.04 + 2 * 0.005 / 1.0 + 1 / (radiative + convective));
  };
  expect_close(s.glazing->get_U(90.0f), U(0.035, 0.38));
  expect_close(s.glazing->get_U(0.0f), U(0.16, 0.28));
  expect_close(s.glazing->get_U(45.0f), U(0.10, 0.31));

  const double tau1 = 0.7, rf1 = 0.1, rb1 = 0.15, tau2 = 0.75, rf2 = 0.08;
  const double d = 1 - rb1 * rf2;
  const double a1 = (1 - tau1 - rf1) + (1 - tau1 - rb1) * tau1 * rf2 / d;
  const double a2 = (1 - tau2 - rf2) * tau1 / d;
  const double through = 2 * 0.005 / 1.0 + thickness / lambda;  // plain conductivity of the gap
  const double q = ((a1 + a2) / 25 + a2 * through) / (through + 1 / hi + 0.04);
  expect_close(s.glazing->get_solar_factor(), tau1 * tau2 / d + q);
}

TEST(qvi_glazing, reads_the_back_face_of_the_pane_behind_a_gap_deliberately) {
  stack s;
  auto* const outer = s.add<qvi_glazing_glass>();
  s.add<qvi_glazing_gaz>();
  auto* const inner = s.add<qvi_glazing_glass>();
  s.glazing->precompute();
  const float U = s.glazing->get_U(90.0f);

  outer->set_thermal_emissivity_front(0.9f);
  inner->set_thermal_emissivity_front(0.9f);
  s.glazing->precompute();
  EXPECT_EQ(s.glazing->get_U(90.0f), U);
  outer->set_thermal_emissivity_back(0.9f);
  s.glazing->precompute();
  EXPECT_GT(s.glazing->get_U(90.0f), U);
}

TEST(qvi_glazing, of_four_layers_has_its_solar_transmittance_as_solar_factor) {
  stack s;
  s.add<qvi_glazing_glass>()->set_solar_reflectance_front(0.05f);
  s.add<qvi_glazing_interlayer>();
  s.add<qvi_glazing_glass>();
  s.add<qvi_glazing_glass>();
  s.glazing->precompute();
  EXPECT_EQ(s.glazing->get_solar_factor(), s.glazing->get_solar_transmittance());
  EXPECT_EQ(s.glazing->get_direct_transmission(qv_spectrum::visible),
            s.glazing->get_solar_transmittance());
}

TEST(qvi_glazing, repairs_its_stack) {
  stack s;
  EXPECT_TRUE(s.glazing->check_glazing(false));  // a lone default pane
  ASSERT_EQ(s.glazing->get_layers().get_count(), 1);
  s.add<qvi_glazing_gaz>();
  s.add<qvi_glazing_gaz>();
  EXPECT_TRUE(s.glazing->check_glazing(true));
  const qv_list<qvi_glazing_layer*> layers = s.glazing->get_layers();
  const char* const expected[] = {"glazing_glass", "glazing_gaz",   "glazing_glass",
                                  "glazing_gaz",   "glazing_glass", "glazing_pv"};
  ASSERT_EQ(layers.get_count(), 6);
  for (int i = 0; i < 6; ++i) EXPECT_TRUE(layers[i]->has_exact_type(expected[i])) << i;
  EXPECT_FALSE(s.glazing->check_glazing(true));
  EXPECT_TRUE(s.glazing->check_glazing(false));
  EXPECT_EQ(s.glazing->get_layers().get_count(), 5);
  EXPECT_TRUE(s.scene.get_items("glazing_pv").is_empty());
}

TEST(qvi_glazing, counts_its_gaps_and_panes) {
  stack s;
  auto* const first = s.add<qvi_glazing_glass>();
  s.add<qvi_glazing_interlayer>();
  s.add<qvi_glazing_glass>();
  auto* const gap = s.add<qvi_glazing_gaz>();
  auto* const last = s.add<qvi_glazing_glass>();
  EXPECT_EQ(s.glazing->get_nb_gaz_layers(), 1);
  EXPECT_EQ(s.glazing->get_gaz_index(first), 0);
  EXPECT_EQ(s.glazing->get_gaz_index(gap), 0);
  EXPECT_EQ(s.glazing->get_gaz_index(last), 1);
  EXPECT_EQ(s.glazing->get_gaz_index(nullptr), -1);
  EXPECT_EQ(s.glazing->get_nb_glass_layers(0), 2);
  EXPECT_EQ(s.glazing->get_nb_glass_layers(1), 1);
  EXPECT_EQ(s.glazing->get_nb_glass_layers(2), 0);
  EXPECT_EQ(s.glazing->compute_solar_transmittance(0), 1.0f);
  EXPECT_NEAR(s.glazing->compute_solar_transmittance(1), 0.8, 1e-6);
}

TEST(qvi_glazing_gaz, is_air_at_first_and_mixes_by_normalised_fractions) {
  qvi_glazing_gaz gas;
  gas.precompute();
  EXPECT_EQ(gas.get_conductivity(), 0.02496f);
  EXPECT_EQ(gas.get_volumic_mass(), 1.232f);
  gas.set_gaz_type(qvi_glazing_gaz::gaz_type::other);
  gas.set_gaz_mixing({0.1f, 0.9f});
  gas.precompute();
  expect_close(gas.get_conductivity(), 0.1 * 0.02496 + 0.9 * 0.01684);
  gas.set_gaz_mixing({2.0f, 2.0f});
  gas.precompute();
  expect_close(gas.get_conductivity(), 0.5 * 0.02496 + 0.5 * 0.01684);
  EXPECT_EQ(gas.get_gaz_mixing(), (qv_list<float>{2.0f, 2.0f}));
  gas.set_gaz_mixing({0.0f});
  gas.precompute();
  EXPECT_EQ(gas.get_conductivity(), 0.02496f);
  gas.set_gaz_type(qvi_glazing_gaz::gaz_type::by_hand);
  gas.set_conductivity(0.5f);
  gas.precompute();
  EXPECT_EQ(gas.get_conductivity(), 0.5f);
}

TEST(qvi_glazing_glass, is_made_from_the_figures_of_a_data_sheet) {
  qvi_glazing_glass pane;
  pane.build_from_global_data(1.1f, 0.6f, 0.7f);
  const double h = inner_coefficient(0.89);
  EXPECT_NEAR(h, 7.959, 1e-3);
  EXPECT_EQ(pane.get_thickness(), 0.006f);
  expect_close(pane.get_conductivity(), 0.006 / (1 / 1.1 - 0.04 - 1 / h));
  expect_close(pane.get_solar_transmittance(), (0.6 - 0.8 * h / (h + 25)) / (1 - h / (h + 25)));
  EXPECT_EQ(pane.get_visible_transmittance(), 0.7f);
  pane.build_from_global_data(1000.0f, 0.6f, 0.7f);
  expect_close(pane.get_conductivity(), 0.006 / 0.001);
}

}  // namespace
