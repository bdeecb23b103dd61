#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_interlayer.h"
#include "bim/materials/qvi_glazing_pv.h"
#include "tests/support/qv_recorders.h"

// Which layers a glazing counts, computes and repairs.

namespace {

using namespace qv;
using qv_test::recording_scene;

// A glazing in a scene, its layers written by one letter each: pane, gap, interlayer, photovoltaic
// film, and a bare layer of no kind.
class stack : public testing::Test {
 protected:
  stack() { scene.add_child(glazing, -1); }

  static qvi_glazing_layer* make(char letter) {
    switch (letter) {
      case 'p':
        return new qvi_glazing_glass;
      case 'g':
        return new qvi_glazing_gaz;
      case 'i':
        return new qvi_glazing_interlayer;
      case 'v':
        return new qvi_glazing_pv;
      default:
        return new qvi_glazing_layer;
    }
  }
  void build(const std::string& letters) {
    qv_list<qvi_glazing_layer*> layers;
    for (const char letter : letters) {
      layers.append(make(letter));
      scene.add_child(layers[layers.get_count() - 1], -1);
    }
    glazing->set_layers(layers);
  }
  template <class Layer = qvi_glazing_glass>
  Layer* at(int index) {
    return dynamic_cast<Layer*>(glazing->get_layers()[index]);
  }
  std::string letters() const {
    std::string result;
    for (const qvi_glazing_layer* layer : glazing->get_layers())
      result += layer->has_type("glazing_pv")           ? 'v'
                : layer->has_type("glazing_interlayer") ? 'i'
                : layer->has_type("glazing_glass")      ? 'p'
                : layer->has_type("glazing_gaz")        ? 'g'
                                                        : '?';
    return result;
  }
  bool is_below_glazing(const qv_item* layer) const { return layer->get_parent() == glazing; }

  recording_scene scene;
  qvi_glazing* glazing = new qvi_glazing;
};

// --- counting ---

TEST_F(stack, counts_gaps_and_ranks_layers_by_the_gaps_before_them) {
  build("pgipgp");
  EXPECT_EQ(glazing->get_nb_gaz_layers(), 2);
  const int ranks[] = {0, 0, 1, 1, 1, 2};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(glazing->get_gaz_index(at<qvi_glazing_layer>(i)), ranks[i]);
  qvi_glazing_gaz stranger;
  EXPECT_EQ(glazing->get_gaz_index(&stranger), -1);
  glazing->set_layers({});
  EXPECT_EQ(glazing->get_nb_gaz_layers(), 0);
  EXPECT_EQ(glazing->get_nb_glass_layers(0), 0);
}

TEST_F(stack, counts_only_panes_proper_between_gaps) {
  build("pipvgvgpp");
  const int counts[] = {2, 0, 2, 0};
  for (int group = 0; group < 4; ++group)
    EXPECT_EQ(glazing->get_nb_glass_layers(group), counts[group]);
  EXPECT_EQ(glazing->get_nb_glass_layers(-1), 0);
}

// --- the transmittance of the first layers ---

TEST_F(stack, computes_the_solar_transmittance_of_its_first_layers) {
  build("pgpip");
  // Transmittance and back reflectance 0.8 and 0.2 for a pane, 0.85 and 0 for an interlayer.
  const double one = 0.8;
  const double two = 0.8 * one / (1 - 0.2 * 0.2);          // 2/3
  const double back = 0.2 + 0.8 * 0.8 * 0.2 / (1 - 0.04);  // 1/3
  const double three = two * 0.85;                         // the film's front reflects nothing
  const double back_3 = 0.85 * 0.85 * back;
  const double four = 0.8 * three / (1 - 0.2 * back_3);
  const double expected[] = {1, one, one, two, three, four, four, four};
  for (int count = 0; count < 8; ++count)
    EXPECT_NEAR(glazing->compute_solar_transmittance(count), expected[count], 1e-6) << count;
  EXPECT_EQ(glazing->compute_solar_transmittance(-3), 1.0f);
  glazing->precompute();
  EXPECT_EQ(glazing->compute_solar_transmittance(5), glazing->get_solar_transmittance());
}

// --- what precompute makes of unusual stacks ---

TEST_F(stack, that_does_not_end_with_a_pane_has_the_plain_inner_coefficient) {
  build("pg");
  at(0)->set_thermal_emissivity_back(0.5f);
  glazing->precompute();
  // The gap has a pane before it and none behind: radiation 5.140465/(1/0.0001 + 1/0.5 − 1); its
  // air does not convect at 10 mm.
  const double hr = 5.140465 / (1 / 0.0001 + 1 / 0.5 - 1);
  const double expected = 1 / (1 / 7.7 + 0.04 + 0.005 / 0.05 + 1 / (hr + 0.02496 / 0.01));
  EXPECT_NEAR(glazing->get_U(90), expected, 1e-5 * expected);
  EXPECT_EQ(glazing->get_solar_factor(), glazing->get_solar_transmittance());
}

TEST_F(stack, with_an_emissivity_of_nothing_radiates_next_to_nothing) {
  build("pgp");
  at(0)->set_thermal_emissivity_back(0.0f);
  at(2)->set_thermal_emissivity_back(0.0f);
  glazing->precompute();
  const double hr = 5.140465 / (2 / 0.0001 - 1);
  const double expected = 1 / (1 / 3.6 + 0.04 + 0.2 + 1 / (hr + 0.02496 / 0.01));
  EXPECT_NEAR(glazing->get_U(90), expected, 1e-5 * expected);
}

TEST_F(stack, of_a_film_takes_the_inner_coefficient_from_the_films_back) {
  build("pi");
  glazing->precompute();
  const double expected = 1 / (1 / 3.6 + 0.04 + 0.005 / 0.05 + 0.00038 / 0.05);
  EXPECT_NEAR(glazing->get_U(90), expected, 1e-5 * expected);
  EXPECT_NEAR(glazing->get_thickness(), 0.00538, 1e-8);
}

TEST_F(stack, counts_a_layer_of_no_kind_as_a_resistance_alone) {
  build("p?p");
  at<qvi_glazing_layer>(1)->set_thickness(0.02f);
  at<qvi_glazing_layer>(1)->set_conductivity(0.04f);
  glazing->precompute();
  const double hi = 0.2 * 4.1 / 0.837 + 3.6;
  const double expected = 1 / (1 / hi + 0.04 + 0.2 + 0.5);
  EXPECT_NEAR(glazing->get_U(90), expected, 1e-5 * expected);
  EXPECT_NEAR(glazing->get_thickness(), 0.03, 1e-7);
  EXPECT_NEAR(glazing->get_solar_transmittance(), 0.64 / 0.96, 1e-6);
  EXPECT_EQ(glazing->get_solar_factor(), glazing->get_solar_transmittance());
}

TEST_F(stack, gives_off_heat_inwards_for_three_shapes_only) {
  const auto gives_off_heat = [&](const std::string& shape) {
    build(shape);
    for (int i = 0; i < glazing->get_layers().get_count(); ++i)
      if (auto* pane = at(i)) pane->set_solar_transmittance(0.4f);
    glazing->precompute();
    return glazing->get_solar_factor() > glazing->get_solar_transmittance() + 1e-3f;
  };
  for (const char* shape : {"p", "pgp", "pgpgp"}) EXPECT_TRUE(gives_off_heat(shape)) << shape;
  for (const char* shape : {"", "g", "pp", "pg", "ppg", "gpp", "pip", "pppp", "pgpp", "pigp",
                            "pgpgpgp", "gpg", "ppgpp", "p?p"})
    EXPECT_FALSE(gives_off_heat(shape)) << shape;
}

TEST_F(stack, that_absorbs_in_one_pane_gives_off_its_inner_share) {
  build("p");
  at(0)->set_solar_transmittance(0.5f);
  at(0)->set_solar_reflectance_front(0.1f);
  at(0)->set_thermal_emissivity_back(0.837f);
  glazing->precompute();
  // 0.4 absorbed, 7.7/(7.7 + 25) of it inwards.
  EXPECT_NEAR(glazing->get_solar_factor(), 0.5 + 0.4 * 7.7 / 32.7, 1e-6);
}

TEST_F(stack, is_computed_by_each_call) {
  build("p");
  glazing->precompute();
  at(0)->set_solar_transmittance(0.5f);
  glazing->precompute();
  EXPECT_EQ(glazing->get_solar_transmittance(), 0.5f);
  glazing->set_diffuse_color(qv_color(0, 0, 0, 1));
  glazing->precompute();  // nothing in the layers changed
  EXPECT_NE(glazing->get_diffuse_color(), qv_color(0, 0, 0, 1));
}

// --- the surface that rays and eyes meet ---

TEST_F(stack, gives_every_spectrum_its_solar_figures) {
  build("pgp");
  at(0)->set_visible_transmittance(0.3f);
  at(2)->set_solar_reflectance_back(0.4f);
  glazing->set_diffuse_reflexion(0.3f, qv_spectrum::visible);
  glazing->set_diffuse_transmission(0.3f, qv_spectrum::solar);
  glazing->precompute();
  for (const auto spectrum : {qv_spectrum::thermal, qv_spectrum::visible, qv_spectrum::solar}) {
    EXPECT_EQ(glazing->get_direct_transmission(spectrum), glazing->get_solar_transmittance());
    EXPECT_EQ(
        glazing->get_direct_reflexion(spectrum),
        (glazing->get_solar_reflectance_front() + glazing->get_solar_reflectance_back()) * 0.5f);
    EXPECT_EQ(glazing->get_diffuse_reflexion(spectrum), 0.0f);
    EXPECT_EQ(glazing->get_diffuse_transmission(spectrum), 0.0f);
  }
}

TEST_F(stack, is_coloured_from_the_inside_outwards_by_what_each_pane_keeps_of_the_light) {
  build("pgp");
  at(0)->set_diffuse_color(qv_color(1.0f, 0.0f, 0.0f, 0.5f));
  at(0)->set_visible_transmittance(0.75f);
  at<qvi_glazing_gaz>(1)->set_diffuse_color(qv_color(0.0f, 0.0f, 1.0f, 1.0f));  // does not count
  at(2)->set_diffuse_color(qv_color(0.0f, 1.0f, 0.0f, 0.5f));
  at(2)->set_visible_transmittance(0.5f);
  glazing->precompute();
  // Inner pane: (1, 1, 1)·0.5 + 0.5·(0, 1, 0) = (0.5, 1, 0.5), alpha 1 − 1·0.5 = 0.5.
  // Outer pane: that·0.75 + 0.25·(1, 0, 0) = (0.625, 0.75, 0.375), alpha 1 − 0.5·0.75 = 0.625.
  const qv_color color = glazing->get_diffuse_color();
  EXPECT_NEAR(color.r, 0.625, 1e-6);
  EXPECT_NEAR(color.g, 0.75, 1e-6);
  EXPECT_NEAR(color.b, 0.375, 1e-6);
  EXPECT_NEAR(color.a, 0.625, 1e-6);
}

TEST_F(stack, without_layers_cannot_be_seen) {
  EXPECT_EQ(glazing->get_diffuse_color(), qv_color(1.0f, 1.0f, 1.0f, 0.2f));
  EXPECT_EQ(glazing->get_specular_color(), qv_color(1.0f, 1.0f, 1.0f, 1.0f));
  EXPECT_EQ(glazing->get_shininess(), 20.0f);
  glazing->precompute();
  EXPECT_EQ(glazing->get_diffuse_color(), qv_color(1.0f, 1.0f, 1.0f, 0.0f));
  EXPECT_EQ(glazing->get_direct_transmission(qv_spectrum::solar), 1.0f);
}

// --- repair ---

TEST_F(stack, that_is_right_is_left_alone) {
  for (const char* right : {"p", "pgp", "pgpgp", "pip", "pppgip", "ipgp", "p?"}) {
    build(right);
    scene.forget();
    EXPECT_FALSE(glazing->check_glazing(false)) << right;
    EXPECT_EQ(letters(), right);
    EXPECT_TRUE(scene.changed.empty() && scene.added.empty()) << right;
  }
}

TEST_F(stack, is_repaired_to_a_pane_before_between_and_after_the_gaps) {
  const std::pair<const char*, const char*> repairs[] = {
      {"", "p"},        {"g", "pgp"},      {"gg", "pgpgp"},   {"pg", "pgp"},   {"gp", "pgp"},
      {"pgg", "pgpgp"}, {"pggp", "pgpgp"}, {"i", "ip"},       {"igp", "ipgp"}, {"pgi", "pgip"},
      {"?", "?p"},      {"p?g", "p?gp"},   {"ppgg", "ppgpgp"}};
  for (const auto& [given, repaired] : repairs) {
    build(given);
    EXPECT_TRUE(glazing->check_glazing(false)) << given;
    EXPECT_EQ(letters(), repaired) << given;
    EXPECT_FALSE(glazing->check_glazing(false)) << given;
  }
}

TEST_F(stack, is_repaired_with_copies_of_the_pane_before) {
  build("pggi");
  at(0)->set_model("X");
  at(0)->set_thickness(0.008f);
  at(0)->set_solar_transmittance(0.33f);
  ASSERT_TRUE(glazing->check_glazing(false));
  ASSERT_EQ(letters(), "pgpgip");
  for (const int added : {2, 5}) {
    EXPECT_EQ(at(added)->get_model(), "X");
    EXPECT_EQ(at(added)->get_thickness(), 0.008f);
    EXPECT_EQ(at(added)->get_solar_transmittance(), 0.33f);
    EXPECT_TRUE(is_below_glazing(at(added)));
    EXPECT_NE(at(added), at(0));
  }
  EXPECT_FALSE(is_below_glazing(at(0)));  // a shared layer stays where it was
  EXPECT_EQ(glazing->get_children().get_count(), 2);
  EXPECT_EQ(glazing->get_children()[0], at(2));
  EXPECT_EQ(glazing->get_children()[1], at(5));
}

TEST_F(stack, is_repaired_with_a_default_pane_before_the_first_one) {
  build("gp");
  at(1)->set_model("X");
  ASSERT_TRUE(glazing->check_glazing(false));
  EXPECT_EQ(at(0)->get_model(), "");
  EXPECT_EQ(at(0)->get_thickness(), 0.005f);
}

TEST_F(stack, is_given_one_photovoltaic_film_at_the_inside) {
  build("pgp");
  EXPECT_TRUE(glazing->check_glazing(true));
  EXPECT_EQ(letters(), "pgpv");
  EXPECT_TRUE(is_below_glazing(at(3)));
  EXPECT_FALSE(glazing->check_glazing(true));
  build("pvgp");
  EXPECT_FALSE(glazing->check_glazing(true));  // it may lie anywhere
  build("");
  EXPECT_TRUE(glazing->check_glazing(true));
  EXPECT_EQ(letters(), "pv");
}

TEST_F(stack, loses_the_photovoltaic_films_that_are_too_many) {
  build("pvgvp");
  auto* const first = at(1);
  EXPECT_TRUE(glazing->check_glazing(true));
  EXPECT_EQ(letters(), "pvgp");
  EXPECT_EQ(at(1), first);
  EXPECT_EQ(scene.get_items("glazing_pv").get_count(), 1);
  EXPECT_TRUE(glazing->check_glazing(false));
  EXPECT_EQ(letters(), "pgp");
  EXPECT_TRUE(scene.get_items("glazing_pv").is_empty());
}

TEST_F(stack, does_not_take_a_film_for_the_pane_that_a_gap_needs) {
  build("vgp");
  EXPECT_TRUE(glazing->check_glazing(true));
  EXPECT_EQ(letters(), "vpgp");
}

TEST(qvi_glazing, is_repaired_outside_a_scene_too) {
  qvi_glazing glazing;
  EXPECT_TRUE(glazing.check_glazing(true));
  EXPECT_EQ(glazing.get_layers().get_count(), 2);
  EXPECT_EQ(glazing.get_children().get_count(), 2);
  EXPECT_TRUE(glazing.check_glazing(false));
  EXPECT_EQ(glazing.get_children().get_count(), 1);
}

TEST(qvi_glazing, has_no_figures_before_it_is_computed) {
  qvi_glazing glazing;
  EXPECT_EQ(glazing.get_U(90), 0.0f);
  EXPECT_EQ(glazing.get_thickness(), 0.0f);
}

}  // namespace
