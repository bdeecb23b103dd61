#include "app/readers/qv_gbxml_windows.h"

#include <gtest/gtest.h>

#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_opening_composition.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_glass.h"
#include "bim/materials/qvi_opaque.h"
#include "tests/app/qv_gbxml_text.h"

namespace {

using kind = qv::qv_import_ledger::kind;
using outcome = qv::qv_import_ledger::outcome;
using typology = qv::qvi_opening_composition::opening_composition_typology;

std::string window_type(const std::string& id, const std::string& content) {
  return "<WindowType id=\"" + id + "\"><Name>name of " + id + "</Name>" + content +
         "</WindowType>\n";
}

std::string figures(const std::string& u, const std::string& solar, const std::string& visible) {
  std::string text;
  if (!u.empty()) text += "<U-value unit=\"WPerSquareMeterK\">" + u + "</U-value>";
  if (!solar.empty())
    text += "<SolarHeatGainCoeff unit=\"Fraction\">" + solar + "</SolarHeatGainCoeff>";
  if (!visible.empty())
    text += "<Transmittance unit=\"Fraction\" type=\"Visible\">" + visible + "</Transmittance>";
  return text;
}

std::string property(const char* element, const char* type, const std::string& value) {
  return std::string("<") + element + " unit=\"Fraction\" type=\"" + type + "\">" + value + "</" +
         element + ">";
}

// A pane of 4 mm with these emissivities.
std::string glaze(const std::string& id, const std::string& front, const std::string& back) {
  return "<Glaze id=\"" + id + "\"><Name>pane " + id +
         "</Name><Thickness unit=\"Millimeters\">4</Thickness>"
         "<Conductivity unit=\"WPerMeterK\">1</Conductivity>" +
         property("Transmittance", "Solar", "0.6") + property("Transmittance", "Visible", "0.8") +
         property("Transmittance", "IR", "0.01") + property("Reflectance", "ExtSolar", "0.25") +
         property("Reflectance", "IntSolar", "0.22") +
         property("Reflectance", "ExtVisible", "0.07") +
         property("Reflectance", "IntVisible", "0.06") + property("Emittance", "ExtIR", front) +
         property("Emittance", "IntIR", back) + "</Glaze>";
}

std::string gap(const std::string& gas, const std::string& millimetres = "16") {
  return "<Gap id=\"gap\" " + gas + "><Name>gap</Name><Thickness unit=\"Millimeters\">" +
         millimetres + "</Thickness></Gap>";
}

// A wall with one opening whose attributes and children are given.
qv::qv_gbxml_model read_with(const std::string& head, const std::string& attributes,
                             const std::string& type = "FixedWindow",
                             const std::string& content = {}) {
  return qv_gbxml_text()
      .head(head)
      .space("a")
      .surface("w", "ExteriorWall", {"a"},
               qv_gbxml_text::planar({{0, 0, 0}, {4, 0, 0}, {4, 0, 3}, {0, 0, 3}}) +
                   "<Opening id=\"o\" openingType=\"" + type + "\" " + attributes + ">" +
                   qv_gbxml_text::planar({{1, 0, 1}, {2, 0, 1}, {2, 0, 2}, {1, 0, 2}}) + content +
                   "</Opening>")
      .read();
}

qv::qvi_opening* opening_of(const qv::qv_gbxml_model& model) {
  return qv::qv_collect<qv::qvi_opening>(model.root, "opening")[0];
}

// After the scene has computed it.
qv::qvi_opening* computed_opening_of(const qv::qv_gbxml_model& model) {
  model.scene->precompute();
  return opening_of(model);
}

qv::qv_import_ledger::entry entry_of(const qv::qv_gbxml_model& model, const std::string& id = "t") {
  return qv_find_entry(model.ledger, kind::window_type, id);
}

const std::string with_t = "windowTypeIdRef=\"t\"";

}  // namespace

TEST(qv_gbxml_windows, panes_and_gaps_become_layers_outside_first) {
  const auto model =
      read_with(window_type("t", glaze("outer", "0.837", "0.05") + gap("gas=\"Argon\"") +
                                     glaze("inner", "0.8", "0.837")),
                with_t);
  const auto* composition = opening_of(model)->get_composition();
  ASSERT_NE(composition, nullptr);
  EXPECT_EQ(composition->get_name(), "name of t");
  EXPECT_EQ(composition->get_unique_id(), "t");
  EXPECT_EQ(composition->get_typology(), typology::double_glazing);
  EXPECT_EQ(composition->get_forced_U(), -1);
  const auto& layers = composition->get_glazing()->get_layers();
  ASSERT_EQ(layers.get_count(), 3);
  ASSERT_TRUE(layers[0]->has_exact_type("glazing_glass"));
  ASSERT_TRUE(layers[1]->has_type("glazing_gaz"));
  const auto* outer = static_cast<const qv::qvi_glazing_glass*>(layers[0]);
  EXPECT_EQ(outer->get_name(), "pane outer");
  EXPECT_FLOAT_EQ(outer->get_thickness(), 0.004F);
  EXPECT_FLOAT_EQ(outer->get_conductivity(), 1);
  EXPECT_FLOAT_EQ(outer->get_solar_transmittance(), 0.6F);
  EXPECT_FLOAT_EQ(outer->get_visible_transmittance(), 0.8F);
  EXPECT_FLOAT_EQ(outer->get_thermal_transmittance(), 0.01F);
  EXPECT_FLOAT_EQ(outer->get_solar_reflectance_front(), 0.25F);
  EXPECT_FLOAT_EQ(outer->get_solar_reflectance_back(), 0.22F);
  EXPECT_FLOAT_EQ(outer->get_visible_reflectance_front(), 0.07F);
  EXPECT_FLOAT_EQ(outer->get_visible_reflectance_back(), 0.06F);
  EXPECT_FLOAT_EQ(outer->get_thermal_emissivity_front(), 0.837F);
  EXPECT_FLOAT_EQ(outer->get_thermal_emissivity_back(), 0.05F);
  const auto* argon = static_cast<const qv::qvi_glazing_gaz*>(layers[1]);
  EXPECT_FLOAT_EQ(argon->get_thickness(), 0.016F);
  EXPECT_EQ(argon->get_gaz_type(), qv::qvi_glazing_gaz::gaz_type::argon);
  EXPECT_EQ(layers[2]->get_name(), "pane inner");
  EXPECT_EQ(entry_of(model).result, outcome::kept);
}

TEST(qv_gbxml_windows, an_opening_shows_what_its_layers_give) {
  const auto model =
      read_with(window_type("t", glaze("outer", "0.837", "0.05") + gap("gas=\"Argon\"") +
                                     glaze("inner", "0.837", "0.837")),
                with_t);
  const auto* opening = computed_opening_of(model);
  qv::qvi_glazing* glazing = opening->get_composition()->get_glazing();
  EXPECT_FLOAT_EQ(opening->get_U(), glazing->get_U(90));
  EXPECT_FLOAT_EQ(opening->get_solar_factor(), glazing->get_solar_factor());
  EXPECT_FLOAT_EQ(opening->get_glazing_area(), 1);
  // EN 673 by hand: Prandtl 519 × 2.164e-5 / 0.01684 = 0.66693; Grashof 9.81 × 0.016³ × 15 ×
  // 1.699² / (2.164e-5² × 283) = 13128.2; Nusselt 0.035 × 8755.65^0.38 = 1.10189; gas 1.10189 ×
  // 0.01684 / 0.016 = 1.15974; radiation 5.140465 / (1 / 0.05 + 1 / 0.837 − 1) = 0.25454;
  // 1 / U = 1 / 7.7 + 0.04 + 0.008 + 1 / 1.41428 = 0.884942.
  EXPECT_NEAR(opening->get_U(), 1 / 0.884942, 1e-5);
}

TEST(qv_gbxml_windows, gases_are_told_by_attribute_then_by_words) {
  using gas = qv::qvi_glazing_gaz::gaz_type;
  const auto read_gas = [](const std::string& text) {
    const auto model = read_with(
        window_type("t", glaze("1", "0.8", "0.8") + text + glaze("2", "0.8", "0.8")), with_t);
    const auto& layers = opening_of(model)->get_composition()->get_glazing()->get_layers();
    return std::pair(static_cast<const qv::qvi_glazing_gaz*>(layers[1])->get_gaz_type(),
                     entry_of(model).result);
  };
  EXPECT_EQ(read_gas(gap("gas=\"Air\"")), std::pair(gas::air, outcome::kept));
  EXPECT_EQ(read_gas(gap("gas=\"Krypton\"")), std::pair(gas::krypton, outcome::kept));
  EXPECT_EQ(read_gas(gap("gas=\"SF6\"")), std::pair(gas::sf6, outcome::kept));
  EXPECT_EQ(read_gas(gap("gas=\"CO2\"")), std::pair(gas::air, outcome::repaired));
  EXPECT_EQ(
      read_gas("<Gap><Name>XENON 6MM</Name><Thickness unit=\"Meters\">0.006</Thickness></Gap>"),
      std::pair(gas::xenon, outcome::kept));
  EXPECT_EQ(read_gas("<Gap><Name>cavity</Name></Gap>"), std::pair(gas::air, outcome::repaired));
}

TEST(qv_gbxml_windows, what_a_pane_does_not_say_is_that_of_clear_glass_and_in_the_ledger) {
  const auto model =
      read_with(window_type("t", "<Glaze id=\"g\"><Thickness unit=\"Meters\">0.006</Thickness>" +
                                     property("Transmittance", "Visible", "0.95") + "</Glaze>"),
                with_t);
  const auto* pane = static_cast<const qv::qvi_glazing_glass*>(
      opening_of(model)->get_composition()->get_glazing()->get_layers()[0]);
  EXPECT_FLOAT_EQ(pane->get_thickness(), 0.006F);
  EXPECT_FLOAT_EQ(pane->get_conductivity(), 1);
  EXPECT_FLOAT_EQ(pane->get_solar_transmittance(), 0.85F);
  EXPECT_FLOAT_EQ(pane->get_visible_transmittance(), 0.95F);
  EXPECT_FLOAT_EQ(pane->get_visible_reflectance_front(), 0.05F);  // what 0.95 leaves
  EXPECT_FLOAT_EQ(pane->get_thermal_emissivity_back(), 0.837F);
  EXPECT_EQ(entry_of(model).result, outcome::repaired);
  EXPECT_NE(entry_of(model).reason.find("Glaze \"g\" does not say conductivity, solar "
                                        "transmittance"),
            std::string::npos)
      << entry_of(model).reason;
}

TEST(qv_gbxml_windows, a_gap_without_a_pane_gets_one_and_gaps_alone_are_left_out) {
  const auto half =
      read_with(window_type("t", glaze("1", "0.8", "0.8") + gap("gas=\"Air\"")), with_t);
  EXPECT_EQ(opening_of(half)->get_composition()->get_glazing()->get_layers().get_count(), 3);
  EXPECT_EQ(entry_of(half).result, outcome::repaired);
  const auto none = read_with(window_type("t", gap("gas=\"Air\"")), with_t);
  EXPECT_EQ(opening_of(none)->get_composition()->get_glazing(), nullptr);
  EXPECT_EQ(entry_of(none).result, outcome::repaired);
}

TEST(qv_gbxml_windows, three_figures_become_a_pane_that_shows_them) {
  const struct {
    const char* u;
    const char* solar;
    const char* visible;
  } sheets[] = {{"1.1", "0.6", "0.7"},   {"2.9214", "0.13", "0.07"},
                {"5.5", "0.05", "0.03"}, {"0.5", "0.85", "0.95"},
                {"3", "1", "1"},         {"1.527", "0.401", "0.712"}};
  for (const auto& sheet : sheets) {
    SCOPED_TRACE(std::string(sheet.u) + " " + sheet.solar);
    const auto model =
        read_with(window_type("t", figures(sheet.u, sheet.solar, sheet.visible)), with_t);
    const auto* opening = computed_opening_of(model);
    EXPECT_NEAR(opening->get_U(), std::stod(sheet.u), 1e-4 * std::stod(sheet.u));
    EXPECT_NEAR(opening->get_solar_factor(), std::stod(sheet.solar), 1e-5);
    EXPECT_NEAR(opening->get_visible_transmittance(), std::stod(sheet.visible), 1e-6);
    const auto& layers = opening->get_composition()->get_glazing()->get_layers();
    ASSERT_EQ(layers.get_count(), 1);
    const auto* pane = static_cast<const qv::qvi_glazing_glass*>(layers[0]);
    for (const float fraction :
         {pane->get_solar_transmittance(), pane->get_solar_reflectance_front(),
          1 - pane->get_solar_transmittance() - pane->get_solar_reflectance_front(),
          1 - pane->get_visible_transmittance() - pane->get_visible_reflectance_front()}) {
      EXPECT_GE(fraction, -1e-6F);
      EXPECT_LE(fraction, 1);
    }
    EXPECT_EQ(opening->get_composition()->get_forced_U(), -1);
    EXPECT_EQ(entry_of(model).result, outcome::kept);
  }
}

TEST(qv_gbxml_windows, a_u_value_beyond_any_pane_is_imposed) {
  const auto model = read_with(window_type("t", figures("6.17", "0.61", "0.75")), with_t);
  const auto* opening = computed_opening_of(model);
  EXPECT_FLOAT_EQ(opening->get_U(), 6.17F);
  EXPECT_NEAR(opening->get_solar_factor(), 0.61, 1e-5);
  EXPECT_EQ(opening->get_composition()->get_forced_solar_factor(), -1);
}

TEST(qv_gbxml_windows, fewer_figures_are_imposed_and_the_rest_stays_unknown) {
  const auto model = read_with(window_type("t", figures("2.5", "0.38", "")), with_t);
  const auto* composition = opening_of(model)->get_composition();
  EXPECT_FLOAT_EQ(composition->get_forced_U(), 2.5F);
  EXPECT_FLOAT_EQ(composition->get_forced_solar_factor(), 0.38F);
  EXPECT_EQ(composition->get_forced_visible_transmittance(), -1);
  EXPECT_EQ(composition->get_glazing(), nullptr);
  EXPECT_EQ(entry_of(model).reason,
            "U 2.5, solar factor 0.38 imposed; it does not say its visible transmittance");
}

TEST(qv_gbxml_windows, figures_of_a_window_with_its_frame_are_imposed_beside_its_layers) {
  const std::string layers =
      glaze("1", "0.837", "0.837") + gap("gas=\"Air\"") + glaze("2", "0.837", "0.837");
  const auto framed = read_with(
      window_type("t", figures("1.9", "0.5", "0.6") + layers + "<Frame id=\"f\"/>"), with_t);
  const auto* composition = opening_of(framed)->get_composition();
  EXPECT_FLOAT_EQ(composition->get_forced_U(), 1.9F);
  EXPECT_FLOAT_EQ(composition->get_forced_solar_factor(), 0.5F);
  EXPECT_FLOAT_EQ(composition->get_forced_visible_transmittance(), 0.6F);
  EXPECT_EQ(composition->get_glazing()->get_layers().get_count(), 3);

  // Without a frame the layers count, and the ledger says that they give something else.
  const auto bare = read_with(window_type("t", figures("1.9", "0.5", "0.6") + layers), with_t);
  EXPECT_EQ(opening_of(bare)->get_composition()->get_forced_U(), -1);
  EXPECT_NE(entry_of(bare).reason.find("though it states 1.9"), std::string::npos);
}

TEST(qv_gbxml_windows, a_name_only_stays_a_name) {
  const auto model = read_with(window_type("t", "<Frame id=\"f\"/>"), with_t);
  const auto* composition = opening_of(model)->get_composition();
  EXPECT_EQ(composition->get_name(), "name of t");
  EXPECT_EQ(composition->get_glazing(), nullptr);
  EXPECT_EQ(composition->get_forced_U(), -1);
}

TEST(qv_gbxml_windows, the_solar_factor_is_that_at_normal_incidence) {
  const std::string angles =
      "<SolarHeatGainCoeff solarIncidentAngle=\"40\">0.5</SolarHeatGainCoeff>"
      "<SolarHeatGainCoeff unit=\"Fraction\">0.44</SolarHeatGainCoeff>"
      "<SolarHeatGainCoeff unit=\"Percent\" solarIncidentAngle=\"0\">53</SolarHeatGainCoeff>";
  const auto model = read_with(window_type("t", angles), with_t);
  EXPECT_FLOAT_EQ(opening_of(model)->get_composition()->get_forced_solar_factor(), 0.53F);
}

TEST(qv_gbxml_windows, reads_imperial_units) {
  const auto model =
      read_with(window_type("t", "<U-value unit=\"BtuPerHourSquareFtF\">0.35</U-value>" +
                                     figures("", "0.4", "0.6")),
                with_t);
  // 0.35 Btu/(h·ft²·°F) = 0.35 × 5.678263 W/(m²·K).
  EXPECT_NEAR(computed_opening_of(model)->get_U(), 1.987392, 1e-4);
}

TEST(qv_gbxml_windows, a_fraction_that_is_none_is_left_out_with_a_warning) {
  const auto model = read_with(window_type("t", figures("1.4", "62", "x")), with_t);
  const auto* composition = opening_of(model)->get_composition();
  EXPECT_FLOAT_EQ(composition->get_forced_U(), 1.4F);
  EXPECT_EQ(composition->get_forced_solar_factor(), -1);
  EXPECT_EQ(model.warnings.size(), 2U);
}

TEST(qv_gbxml_windows, what_the_opening_states_itself_wins) {
  const auto model = read_with(window_type("t", figures("1.1", "0.6", "0.7")), with_t,
                               "FixedWindow", figures("1.6", "", "0.5"));
  const auto* opening = computed_opening_of(model);
  EXPECT_FLOAT_EQ(opening->get_forced_U(), 1.6F);
  EXPECT_FLOAT_EQ(opening->get_U(), 1.6F);
  EXPECT_NEAR(opening->get_solar_factor(), 0.6, 1e-5);
  EXPECT_FLOAT_EQ(opening->get_visible_transmittance(), 0.5F);
}

TEST(qv_gbxml_windows, equal_window_types_become_one_composition) {
  const auto content = "<Name>twin</Name>" + figures("1.1", "0.6", "0.7");
  const auto model = read_with("<WindowType id=\"s\">" + content +
                                   "</WindowType><WindowType id=\"t\">" + content + "</WindowType>",
                               with_t);
  EXPECT_EQ(entry_of(model, "t").result, outcome::merged);
  EXPECT_EQ(opening_of(model)->get_composition()->get_unique_id(), "s");
  EXPECT_EQ(
      qv::qv_collect<qv::qvi_opening_composition>(model.root, "opening_composition").get_count(),
      1);
}

TEST(qv_gbxml_windows, one_id_for_two_window_types_ends_the_reading) {
  EXPECT_THROW(read_with(window_type("t", figures("1", "0.5", "0.5")) +
                             window_type("t", figures("2", "0.5", "0.5")),
                         with_t),
               qv::qv_input_error);
}

TEST(qv_gbxml_windows, a_reference_that_leads_nowhere_is_in_the_ledger) {
  const auto model = read_with("", "windowTypeIdRef=\"ghost\" constructionIdRef=\"spook\"");
  const auto entry = qv_find_entry(model.ledger, kind::opening, "o");
  EXPECT_EQ(entry.result, outcome::repaired);
  EXPECT_EQ(entry.reason,
            "WindowType \"ghost\" is not in the file; Construction \"spook\" is not in the file; "
            "the file does not say what fills it");
  EXPECT_EQ(opening_of(model)->get_composition(), nullptr);
}

// --- doors ---

namespace {

const std::string oak =
    "<Material id=\"m\"><Name>oak</Name><Thickness unit=\"Meters\">0.05</Thickness>"
    "<Conductivity unit=\"WPerMeterK\">0.2</Conductivity></Material>"
    "<Layer id=\"l\"><MaterialId materialIdRef=\"m\"/></Layer>"
    "<Construction id=\"c\"><Name>oak door</Name><LayerId layerIdRef=\"l\"/></Construction>";
const std::string with_c = "constructionIdRef=\"c\"";

}  // namespace

TEST(qv_gbxml_windows, a_doors_construction_becomes_an_opaque_panel) {
  for (const char* type : {"NonSlidingDoor", "SlidingDoor"}) {
    const auto model = read_with(oak, with_c, type);
    const auto* opening = computed_opening_of(model);
    const auto* composition = opening->get_composition();
    ASSERT_NE(composition, nullptr);
    EXPECT_EQ(composition->get_name(), "oak door");
    EXPECT_EQ(composition->get_typology(), typology::door);
    EXPECT_FLOAT_EQ(composition->get_opaque()->get_thickness(), 0.05F);
    EXPECT_FLOAT_EQ(composition->get_opaque()->get_conductivity(), 0.2F);
    EXPECT_FLOAT_EQ(opening->get_opaque_area(), 1);
    EXPECT_EQ(opening->get_glazing_area(), 0);
    EXPECT_FLOAT_EQ(opening->get_U(), 4);  // 0.2 / 0.05
    EXPECT_EQ(opening->get_solar_factor(), 0);
  }
}

TEST(qv_gbxml_windows, doors_of_equal_constructions_share_a_panel) {
  const auto model =
      qv_gbxml_text()
          .head(oak +
                "<Construction id=\"d\"><Name>oak door</Name>"
                "<LayerId layerIdRef=\"l\"/></Construction>")
          .space("a")
          .surface("w", "ExteriorWall", {"a"},
                   qv_gbxml_text::planar({{0, 0, 0}, {4, 0, 0}, {4, 0, 3}, {0, 0, 3}}) +
                       "<Opening id=\"o\" openingType=\"NonSlidingDoor\" " + with_c + ">" +
                       qv_gbxml_text::planar({{1, 0, 0}, {2, 0, 0}, {2, 0, 2}, {1, 0, 2}}) +
                       "</Opening><Opening id=\"p\" openingType=\"NonSlidingDoor\" "
                       "constructionIdRef=\"d\">" +
                       qv_gbxml_text::planar({{3, 0, 0}, {3.5, 0, 0}, {3.5, 0, 2}, {3, 0, 2}}) +
                       "</Opening>")
          .read();
  const auto doors = qv::qv_collect<qv::qvi_opening>(model.root, "opening");
  ASSERT_EQ(doors.get_count(), 2);
  EXPECT_EQ(doors[0]->get_composition(), doors[1]->get_composition());
  EXPECT_EQ(qv::qv_collect<qv::qvi_opaque>(model.root, "opaque").get_count(), 1);
}

TEST(qv_gbxml_windows, a_u_value_alone_makes_a_leaf_of_usual_thickness) {
  const auto model = read_with(
      "<Construction id=\"c\"><Name>door</Name><U-value "
      "unit=\"WPerSquareMeterK\">2.6</U-value></Construction>",
      with_c, "NonSlidingDoor");
  const auto* opening = computed_opening_of(model);
  EXPECT_NEAR(opening->get_U(), 2.6, 1e-5);
  EXPECT_FLOAT_EQ(opening->get_composition()->get_opaque()->get_thickness(), 0.04F);
}

TEST(qv_gbxml_windows, a_door_with_a_window_type_is_glazed) {
  const auto model =
      read_with(window_type("t", figures("1.1", "0.6", "0.7")), with_t, "NonSlidingDoor");
  const auto* opening = computed_opening_of(model);
  EXPECT_FLOAT_EQ(opening->get_glazing_area(), 1);
  EXPECT_NEAR(opening->get_U(), 1.1, 1e-4);
}

TEST(qv_gbxml_windows, a_door_of_which_nothing_is_said_is_opaque_a_sliding_one_glazed) {
  const auto leaf = read_with("", "", "NonSlidingDoor");
  EXPECT_FLOAT_EQ(computed_opening_of(leaf)->get_opaque_area(), 1);
  EXPECT_EQ(opening_of(leaf)->get_composition(), nullptr);
  const auto sliding = read_with("", "", "SlidingDoor");
  EXPECT_FLOAT_EQ(computed_opening_of(sliding)->get_glazing_area(), 1);
}

TEST(qv_gbxml_windows, a_windows_construction_gives_it_its_u_and_leaves_it_glazed) {
  const auto model = read_with(oak, with_c, "FixedWindow");
  const auto* opening = computed_opening_of(model);
  EXPECT_FLOAT_EQ(opening->get_U(), 4);
  EXPECT_FLOAT_EQ(opening->get_glazing_area(), 1);
  EXPECT_EQ(opening->get_composition()->get_opaque(), nullptr);
}

TEST(qv_gbxml_windows, air_lets_everything_through_but_for_the_surface_resistances) {
  const auto model = read_with(window_type("t", figures("1.1", "0.6", "0.7")), with_t, "Air");
  const auto* opening = computed_opening_of(model);
  EXPECT_EQ(opening->get_composition()->get_name(), "Air");
  EXPECT_NEAR(opening->get_U(), 1 / (1 / 7.7 + 0.04), 1e-4);
  EXPECT_FLOAT_EQ(opening->get_solar_factor(), 1);
  EXPECT_FLOAT_EQ(opening->get_visible_transmittance(), 1);
}
