#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <optional>

#include "app/readers/qv_glazing_json.h"
#include "app/readers/qv_glazing_notation.h"
#include "app/readers/qv_input_error.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_interlayer.h"
#include "bim/materials/qvi_glazing_pv.h"

namespace {

using namespace qv;
using testing::HasSubstr;
using gas = qvi_glazing_gaz::gaz_type;

template <class Layer = qvi_glazing_glass>
const Layer& layer(const qv_owned_glazing& glazing, int index) {
  return dynamic_cast<const Layer&>(*glazing->get_layers()[index]);
}

std::optional<std::string> complaint(const std::string& text) {
  try {
    qv_read_glazing_notation(text);
  } catch (const qv_input_error& error) {
    EXPECT_EQ(error.get_exit_code(), 3);
    return error.what();
  }
  return std::nullopt;
}

TEST(qv_glazing_notation, reads_panes_and_gaps_from_the_outside_in) {
  const auto glazing = qv_read_glazing_notation("4 / 16 argon / 6 low-e");
  ASSERT_EQ(glazing->get_layers().get_count(), 3);
  EXPECT_EQ(glazing->get_name(), "4 / 16 argon / 6 low-e");
  EXPECT_EQ(glazing->get_children().get_count(), 3);
  EXPECT_EQ(layer(glazing, 0).get_thickness(), 0.004f);
  EXPECT_EQ(layer(glazing, 0).get_conductivity(), 1.0f);
  EXPECT_EQ(layer(glazing, 0).get_thermal_emissivity_back(), 0.837f);
  EXPECT_EQ(layer<qvi_glazing_gaz>(glazing, 1).get_gaz_type(), gas::argon);
  EXPECT_EQ(layer<qvi_glazing_gaz>(glazing, 1).get_thickness(), 0.016f);
  EXPECT_EQ(layer(glazing, 2).get_thickness(), 0.006f);
}

TEST(qv_glazing_notation, takes_blanks_capitals_and_units_as_they_come) {
  for (const char* text :
       {"4/16 argon/4", " 4mm /16mm Argon/ 4 mm clear ", "4 / 16 mm ARGON / 4.0"}) {
    const auto glazing = qv_read_glazing_notation(text);
    ASSERT_EQ(glazing->get_layers().get_count(), 3) << text;
    EXPECT_EQ(layer<qvi_glazing_gaz>(glazing, 1).get_gaz_type(), gas::argon);
    EXPECT_EQ(layer(glazing, 2).get_thickness(), 0.004f);
  }
}

// Textbook optics of a plane plate: n = 1.52, one face reflects (0.52/2.52)² = 0.042580; 4 mm let
// exp(−25·0.004) = 0.904837 of the sun and exp(−4.5·0.004) = 0.982161 of the light through.
TEST(qv_glazing_notation, knows_clear_glass_by_its_thickness) {
  const auto glazing = qv_read_glazing_notation("4");
  const auto& pane = layer(glazing, 0);
  // τ = (1 − r)² a/(1 − r² a²) = 0.916653·0.904837/(1 − 0.0014844) = 0.830655
  EXPECT_NEAR(pane.get_solar_transmittance(), 0.830655, 2e-6);
  // ρ = r + r (1 − r)² a²/(1 − r² a²) = 0.042580 + 0.042580·0.916653·0.818731/0.9985156 = 0.074584
  EXPECT_NEAR(pane.get_solar_reflectance_front(), 0.074584, 2e-6);
  EXPECT_EQ(pane.get_solar_reflectance_back(), pane.get_solar_reflectance_front());
  EXPECT_NEAR(pane.get_visible_transmittance(), 0.901879, 2e-6);
  EXPECT_NEAR(pane.get_visible_reflectance_front(), 0.080297, 2e-6);
  const auto thicker = qv_read_glazing_notation("10");
  EXPECT_LT(layer(thicker, 0).get_solar_transmittance(), pane.get_solar_transmittance());
}

TEST(qv_glazing_notation, puts_a_coating_into_the_gap_unless_told_otherwise) {
  struct placing {
    const char* text;
    int index;
    bool front, back;
  };
  for (const placing& p : {placing{"4 low-e", 0, false, true},
                           {"4 low-e / 16 air / 4", 0, false, true},
                           {"4 / 16 air / 4 low-e", 2, true, false},
                           {"4 / 16 air / 4 low-e back", 2, false, true},
                           {"4 low-e front / 16 air / 4", 0, true, false},
                           {"4 low-e both", 0, true, true},
                           {"4 / 12 air / 4 low-e / 12 air / 4", 2, true, false},
                           {"4 / 0.76 interlayer / 4 low-e / 12 air / 4", 2, false, true},
                           {"4 / 12 air / 4 / 12 air / 4 sun-control", 4, true, false}}) {
    SCOPED_TRACE(p.text);
    const auto glazing = qv_read_glazing_notation(p.text);
    const auto& pane = layer(glazing, p.index);
    EXPECT_EQ(pane.get_thermal_emissivity_front() < 0.1f, p.front);
    EXPECT_EQ(pane.get_thermal_emissivity_back() < 0.1f, p.back);
    EXPECT_LE(pane.get_solar_transmittance() + pane.get_solar_reflectance_front(), 1.0f);
    EXPECT_LE(pane.get_visible_transmittance() + pane.get_visible_reflectance_back(), 1.0f);
  }
}

TEST(qv_glazing_notation, reads_each_gas_and_mixtures) {
  for (int i = 0; i < 5; ++i) {
    const std::string name = qvi_glazing_gaz::get_gaz_type_list()[i];
    const auto glazing = qv_read_glazing_notation("4 / 10 " + name + " / 4");
    EXPECT_EQ(layer<qvi_glazing_gaz>(glazing, 1).get_gaz_type(), static_cast<gas>(i));
  }
  const auto shares = [](const std::string& text) {
    const auto glazing = qv_read_glazing_notation(text);
    EXPECT_EQ(layer<qvi_glazing_gaz>(glazing, 0).get_gaz_type(), gas::other);
    return layer<qvi_glazing_gaz>(glazing, 0).get_gaz_mixing();
  };
  const auto expect_shares = [&](const std::string& text, const double(&expected)[5]) {
    const auto found = shares(text);
    ASSERT_EQ(found.get_count(), 5);
    for (int i = 0; i < 5; ++i) EXPECT_NEAR(found[i], expected[i], 1e-6) << text;
  };
  expect_shares("16 argon 90%", {0.1, 0.9, 0, 0, 0});
  expect_shares("16 argon 90% air 10%", {0.1, 0.9, 0, 0, 0});
  expect_shares("16 krypton 60% xenon", {0, 0, 0.6, 0.4, 0});  // the last one fills up
  expect_shares("16 krypton 50% argon 30%", {0.2, 0.3, 0.5, 0, 0});
  expect_shares("16 sf6 12.5%", {0.875, 0, 0, 0, 0.125});
}

TEST(qv_glazing_notation, reads_films) {
  const auto glazing = qv_read_glazing_notation("4 / 0.76 interlayer / 1.5 pv / 4");
  EXPECT_EQ(layer<qvi_glazing_interlayer>(glazing, 1).get_thickness(), 0.76f * 0.001f);
  EXPECT_EQ(layer<qvi_glazing_interlayer>(glazing, 1).get_solar_transmittance(), 0.85f);
  EXPECT_EQ(layer<qvi_glazing_pv>(glazing, 2).get_thickness(), 0.0015f);
}

TEST(qv_glazing_notation, says_what_is_wrong_with_which_layer) {
  const std::pair<const char*, const char*> mistakes[] = {
      {"4 / / 4", "layer: is empty"},
      {"", "is empty"},
      {"4 /", "is empty"},
      {"glass", "layer \"glass\": does not begin with a thickness"},
      {"4 / argon / 4", "layer \"argon\": does not begin with a thickness"},
      {"0", "does not begin with a thickness"},
      {"-4", "does not begin with a thickness"},
      {"nan", "does not begin with a thickness"},
      {"1e9", "does not begin with a thickness"},
      {"4cm", "does not begin with a thickness"},
      {"4 / 16 helium / 4", "\"helium\" is no gas"},
      {"4 low-e inside", "has no side \"inside\""},
      {"4 clear back", "ends with \"back\""},
      {"4 low-e back 4", "ends with \"4\""},
      {"4 interlayer film", "ends with \"film\""},
      {"16 argon 120%", "\"120%\" is no share"},
      {"16 argon x%", "\"x%\" is no share"},
      {"16 argon 60% krypton 60%", "more than 100%"},
      {"16 argon krypton", "does not tell how much of it is argon"},
      {"4 16 argon 4", "\"16\" is no gas"},
  };
  for (const auto& [text, told] : mistakes) {
    const auto message = complaint(text);
    ASSERT_TRUE(message.has_value()) << text;
    EXPECT_THAT(*message, HasSubstr(told)) << text;
    EXPECT_EQ(message->find('\n'), std::string::npos);
  }
}

TEST(qv_glazing_notation, survives_whatever_is_typed) {
  std::uint32_t state = 7;
  const auto dice = [&state](std::uint32_t count) {
    state = state * 1664525u + 1013904223u;
    return (state >> 8) % count;
  };
  const char* const words[] = {"4",        "16", "argon", "air", "low-e", "/",
                               "90%",      "%",  "both",  "mm",  "pv",    "interlayer",
                               "\xC3\xA9", "-",  "1e400", "//",  "clear", "0.0001"};
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    for (std::uint32_t i = dice(9); i > 0; --i) {
      text += words[dice(std::size(words))];
      if (dice(4) != 0) text += ' ';
    }
    try {
      const auto glazing = qv_read_glazing_notation(text);
      EXPECT_GT(glazing->get_layers().get_count(), 0);
      glazing->precompute();
    } catch (const qv_input_error&) {
    }
  }
}

// --- JSON ---

qv_owned_glazing parse(const std::string& text) {
  return qv_parse_glazing_json(text, "w.json");
}

TEST(qv_glazing_json, reads_layers_in_words_and_in_numbers) {
  const auto glazing = parse(R"({"name": "Test", "supplier": "S", "model": "M", "layers": [
    "4 low-e",
    {"type": "gas", "mixture": {"argon": 0.9, "air": 0.1}, "thickness": 0.016},
    {"type": "glass", "name": "inner", "thickness": 0.006, "solar_transmittance": 0.7,
     "visible_reflectance_back": 0.1, "thermal_emissivity_front": 0.1, "conductivity": 0.9,
     "supplier": "T", "model": "N"},
    {"type": "interlayer"},
    {"type": "pv", "solar_transmittance": 0.5, "thickness": 0.002},
    {"type": "gas", "gas": "krypton", "thickness": 0.01},
    {"type": "gas", "gas": "by hand", "thickness": 0.01, "conductivity": 0.02, "viscosity": 2e-5,
     "specific_heat": 900, "volumic_mass": 1.5},
    "4 low-e"]})");
  EXPECT_EQ(glazing->get_name(), "Test");
  EXPECT_EQ(glazing->get_supplier(), "S");
  EXPECT_EQ(glazing->get_model(), "M");
  ASSERT_EQ(glazing->get_layers().get_count(), 8);
  EXPECT_LT(layer(glazing, 0).get_thermal_emissivity_back(), 0.1f);
  EXPECT_EQ(layer<qvi_glazing_gaz>(glazing, 1).get_gaz_mixing(),
            (qv_list<float>{0.1f, 0.9f, 0.0f, 0.0f, 0.0f}));
  const auto& pane = layer(glazing, 2);
  EXPECT_EQ(pane.get_name(), "inner");
  EXPECT_EQ(pane.get_thickness(), 0.006f);
  EXPECT_EQ(pane.get_solar_transmittance(), 0.7f);
  EXPECT_EQ(pane.get_visible_reflectance_back(), 0.1f);
  EXPECT_EQ(pane.get_thermal_emissivity_front(), 0.1f);
  EXPECT_EQ(pane.get_conductivity(), 0.9f);
  EXPECT_EQ(pane.get_supplier(), "T");
  EXPECT_EQ(pane.get_thermal_emissivity_back(), 0.837f);  // what is not said is clear glass
  EXPECT_EQ(layer<qvi_glazing_interlayer>(glazing, 3).get_thickness(), 0.00038f);
  EXPECT_EQ(layer<qvi_glazing_pv>(glazing, 4).get_solar_transmittance(), 0.5f);
  EXPECT_EQ(layer<qvi_glazing_gaz>(glazing, 5).get_gaz_type(), gas::krypton);
  EXPECT_EQ(layer<qvi_glazing_gaz>(glazing, 6).get_volumic_mass(), 1.5f);
  EXPECT_LT(layer(glazing, 7).get_thermal_emissivity_front(), 0.1f);  // behind a gap
}

TEST(qv_glazing_json, fills_a_mixture_up_with_air) {
  const auto u_of = [](const std::string& mixture) {
    const auto glazing =
        parse(R"({"layers": ["4", {"type": "gas", "thickness": 0.016, "mixture": )" + mixture +
              R"(}, "4"]})");
    glazing->precompute();
    return glazing->get_U(90);
  };
  const float mixed = u_of(R"({"argon": 0.9, "air": 0.1})");
  EXPECT_NEAR(u_of(R"({"argon": 0.9})"), mixed, 1e-5);
  EXPECT_GT(mixed, u_of(R"({"argon": 1})") + 1e-3);
}

TEST(qv_glazing_json, reads_the_figures_of_a_data_sheet) {
  const auto glazing = parse(R"({"layers": [{"type": "glass",
    "data_sheet": {"u": 1.1, "solar_factor": 0.6, "visible_transmittance": 0.7}}]})");
  glazing->precompute();
  EXPECT_NEAR(glazing->get_U(90), 1.1, 1e-5);
  EXPECT_NEAR(glazing->get_solar_factor(), 0.6, 1e-5);
  EXPECT_NEAR(glazing->get_visible_transmittance(), 0.7, 1e-6);
  EXPECT_EQ(glazing->get_name(), "w.json");
}

TEST(qv_glazing_json, says_what_is_wrong_where) {
  const auto in_layers = [](const std::string& content) {
    return "{\"layers\": [" + content + "]}";
  };
  const std::pair<std::string, const char*> mistakes[] = {
      {"{\n\"layers\": [\n", "w.json, line 3: is no JSON"},
      {"[]", "w.json: is no JSON object"},
      {"{\"layers\": [\"4\"],\n\"layers\": [\"6\"]}", "w.json, line 2: gives \"layers\" twice"},
      {"{}", "has no list of layers"},
      {"{\"layers\": []}", "has no list of layers"},
      {"{\"layers\": \"4\"}", "has no list of layers"},
      {"{\"layer\": [\"4\"]}", "has an unknown key \"layer\""},
      {"{\"layers\": [\"4\"], \"name\": 4}", "has a \"name\" that is no text"},
      {in_layers("\"4\", 5"), "w.json, layer \"2\": is no text and no object"},
      {in_layers("\"4\", \"5 x\""), "w.json, layer \"5 x\": \"x\" is no gas"},
      {in_layers("{}"), "is of no known type"},
      {in_layers(R"({"type": "wood"})"), "is of no known type"},
      {in_layers(R"({"type": "glass"})"), "has no thickness"},
      {in_layers(R"({"type": "gas", "gas": "air"})"), "has no thickness"},
      {in_layers(R"({"type": "glass", "thickness": 0})"),
       "\"thickness\" that is no number above 0"},
      {in_layers(R"({"type": "glass", "thickness": "4"})"), "no number above 0"},
      {in_layers(R"({"type": "glass", "thickness": 0.004, "solar_transmittance": 1.5})"),
       "\"solar_transmittance\" that is no number from 0 to 1"},
      {in_layers(R"({"type": "glass", "thickness": 0.004, "solar_transmittance": 0.99})"),
       "transmits and reflects more than arrives"},
      {in_layers(R"({"type": "glass", "thickness": 0.004, "emissivity": 0.9})"),
       "unknown key \"emissivity\""},
      {in_layers(R"({"type": "gas", "thickness": 0.01, "gas": "helium"})"), "holds no known gas"},
      {in_layers(R"({"type": "gas", "thickness": 0.01, "gas": "air", "viscosity": 1})"),
       "gives the \"viscosity\" of a gas that is known"},
      {in_layers(R"({"type": "gas", "thickness": 0.01, "gas": "by hand", "viscosity": 1})"),
       "without its \"conductivity\""},
      {in_layers(R"({"type": "gas", "thickness": 0.01, "mixture": {"argon": 2}})"),
       "\"argon\" that is no number from 0 to 1"},
      {in_layers(R"({"type": "gas", "thickness": 0.01, "mixture": {"helium": 1}})"),
       "unknown key \"helium\""},
      {in_layers(R"({"type": "gas", "thickness": 0.01, "mixture": {"air": 1}, "gas": "air"})"),
       "both a gas and a mixture"},
      {in_layers(R"({"type": "gas", "thickness": 0.01, "mixture": {"air": 0.3, "argon": 0.9}})"),
       "the shares add up to 1.2"},
      {in_layers(R"({"type": "glass", "thickness": 4})"), "is more than a metre thick"},
      {in_layers(R"({"type": "gas", "thickness": 16, "gas": "air"})"), "more than a metre thick"},
      {in_layers(R"({"type": "glass", "data_sheet":
        {"u": 7.1, "solar_factor": 0.6, "visible_transmittance": 0.7}})"),
       "more than the surfaces of a pane let through"},
      {in_layers(R"({"type": "glass", "data_sheet": {"u": 1.1}})"), "without its three figures"},
      {in_layers(R"({"type": "glass", "data_sheet":
        {"u": 1.1, "solar_factor": 0.05, "visible_transmittance": 0.1}})"),
       "would transmit less than nothing"},
  };
  for (const auto& [text, told] : mistakes) {
    try {
      parse(text);
      ADD_FAILURE() << text;
    } catch (const qv_input_error& error) {
      EXPECT_EQ(error.get_exit_code(), 3);
      EXPECT_THAT(error.what(), HasSubstr(told)) << text;
    }
  }
}

}  // namespace
