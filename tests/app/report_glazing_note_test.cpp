#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "app/readers/qv_glazing_notation.h"
#include "app/report/qv_glazing_note.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_glass.h"
#include "tests/app/qv_program.h"
#include "tests/app/qv_temporary_folder.h"
#include "tests/support/qv_glazing_standard.h"
#include "tests/support/qv_test_paths.h"

// Each line of the calculation note against the standards' formulas in double precision.

namespace {

using namespace qv;
using testing::HasSubstr;
using testing::Not;

qv_test::standard_stack to_stack(const qvi_glazing& glazing) {
  qv_test::standard_stack stack;
  for (qvi_glazing_layer* item : glazing.get_layers()) {
    qv_test::standard_layer layer;
    layer.thickness = item->get_thickness();
    layer.conductivity = item->get_conductivity();
    if (const auto* gap = dynamic_cast<const qvi_glazing_gaz*>(item)) {
      layer.sort = qv_test::standard_layer::kind::gap;
      const auto type = static_cast<std::size_t>(gap->get_gaz_type());
      for (std::size_t i = 0; i < 5; ++i)
        layer.gas_fractions[i] =
            type < 5 ? (i == type ? 1.0 : 0.0) : gap->get_gaz_mixing()[static_cast<int>(i)];
    } else {
      const auto& pane = dynamic_cast<const qvi_glazing_glass&>(*item);
      layer.solar = {pane.get_solar_transmittance(), pane.get_solar_reflectance_front(),
                     pane.get_solar_reflectance_back()};
      layer.visible = {pane.get_visible_transmittance(), pane.get_visible_reflectance_front(),
                       pane.get_visible_reflectance_back()};
      layer.emissivity_front = pane.get_thermal_emissivity_front();
      layer.emissivity_back = pane.get_thermal_emissivity_back();
    }
    stack.push_back(layer);
  }
  return stack;
}

// The numbers after `label` on its line; all of them when there are several.
std::vector<double> numbers_after(const std::string& note, const std::string& label,
                                  std::size_t from = 0) {
  const std::size_t at = note.find(label, from);
  EXPECT_NE(at, std::string::npos) << label;
  if (at == std::string::npos) return {};
  std::istringstream line(note.substr(at + label.size(), note.find('\n', at) - at - label.size()));
  std::vector<double> numbers;
  for (std::string word; line >> word;) {
    char* end = nullptr;
    const double number = std::strtod(word.c_str(), &end);
    if (end != word.c_str()) numbers.push_back(number);
  }
  return numbers;
}

void expect_near(double value, double expected, double relative) {
  EXPECT_NEAR(value, expected, relative * std::fabs(expected));
}

class glazing_note : public testing::TestWithParam<const char*> {
 protected:
  const qv_owned_glazing glazing = qv_read_glazing_notation(GetParam());
  const std::string note = qv_glazing_note(*glazing);
  const qv_test::standard_stack stack = to_stack(*glazing);
};

TEST_P(glazing_note, states_the_figures) {
  const auto expected = qv_test::work_out(stack, qv_test::all_departures);
  EXPECT_NEAR(numbers_after(note, "U vertical").at(0), expected.U_vertical, 6e-4);
  EXPECT_NEAR(numbers_after(note, "U at 45°").at(0), expected.U_inclined, 6e-4);
  EXPECT_NEAR(numbers_after(note, "U horizontal").at(0), expected.U_horizontal, 6e-4);
  EXPECT_NEAR(numbers_after(note, "solar factor g").at(0), expected.solar_factor, 6e-4);
  EXPECT_NEAR(numbers_after(note, "light transmittance").at(0), expected.visible.transmittance,
              6e-4);
  const auto sun = numbers_after(note, "  sun  ");
  ASSERT_EQ(sun.size(), 3u);
  EXPECT_NEAR(sun[0], expected.solar.transmittance, 2e-5);
  EXPECT_NEAR(sun[1], expected.solar.reflectance_front, 2e-5);
  EXPECT_NEAR(sun[2], expected.solar.reflectance_back, 2e-5);
  EXPECT_NEAR(numbers_after(note, "g = τe + qi").at(0), expected.solar_factor, 2e-5);
}

TEST_P(glazing_note, shows_each_step_across_each_gap) {
  std::size_t from = 0;
  for (std::size_t i = 0; i < stack.size(); ++i) {
    if (!stack[i].is_gap()) continue;
    from = note.find("  Gap, layer " + std::to_string(i + 1), from);
    ASSERT_NE(from, std::string::npos);
    const auto value = [&](const char* label) { return numbers_after(note, label, from); };
    const auto gas = qv_test::mix_gases(stack[i].gas_fractions);
    const double s = stack[i].thickness;
    const double Pr = gas.specific_heat * gas.viscosity / gas.conductivity;
    const double Gr =
        9.81 * s * s * s * 15 * gas.density * gas.density / (gas.viscosity * gas.viscosity * 283);
    expect_near(value("conductivity λ, W/(m.K)").at(0), gas.conductivity, 1e-5);
    expect_near(value("dynamic viscosity µ, kg/(m.s)").at(0), gas.viscosity, 1e-5);
    expect_near(value("specific heat c, J/(kg.K)").at(0), gas.specific_heat, 1e-5);
    expect_near(value("density ρ, kg/m³").at(0), gas.density, 1e-5);
    expect_near(value("Prandtl Pr = c µ / λ").at(0), Pr, 1e-5);
    expect_near(value("Grashof Gr = 9.81 s³ 15 ρ² / (µ² 283)").at(0), Gr, 1e-5);
    expect_near(value("Gr Pr ").at(0), Gr * Pr, 1e-5);
    const double hr =
        5.140465 / (1 / stack[i - 1].emissivity_back + 1 / stack[i + 1].emissivity_back - 1);
    expect_near(value("radiation hr = 5.140465 / (1/ε1 + 1/ε2 - 1)").at(0), hr, 1e-5);
    const double Nu[] = {std::max(1.0, 0.035 * std::pow(Gr * Pr, 0.38)),
                         std::max(1.0, 0.10 * std::pow(Gr * Pr, 0.31)),
                         std::max(1.0, 0.16 * std::pow(Gr * Pr, 0.28))};
    const auto printed_Nu = value("Nusselt Nu");
    const auto printed_hg = value("convection hg = Nu λ / s");
    const auto printed_sum = value("hr + hg");
    ASSERT_EQ(printed_Nu.size(), 3u);
    ASSERT_EQ(printed_hg.size(), 3u);
    ASSERT_EQ(printed_sum.size(), 3u);
    for (std::size_t slope = 0; slope < 3; ++slope) {
      EXPECT_NEAR(printed_Nu[slope], Nu[slope], 2e-5 * Nu[slope]);
      EXPECT_NEAR(printed_hg[slope], Nu[slope] * gas.conductivity / s, 4e-5);
      EXPECT_NEAR(printed_sum[slope], hr + Nu[slope] * gas.conductivity / s, 8e-5);
    }
    from += 1;
  }
}

TEST_P(glazing_note, has_resistances_that_add_up_to_U) {
  const std::size_t table = note.find("Resistances, m².K/W");
  ASSERT_NE(table, std::string::npos);
  for (std::size_t slope = 0; slope < 3; ++slope) {
    double sum = numbers_after(note, "  outside ", table).at(slope) +
                 numbers_after(note, "  inside 1 / hi", table).at(slope);
    for (std::size_t i = 0; i < stack.size(); ++i) {
      const std::string end = stack[i].is_gap() ? ": 1 / (hr + hg)" : ": s / λ";
      const std::size_t row = note.find("\n  " + std::to_string(i + 1) + " ", table);
      ASSERT_NE(row, std::string::npos);
      sum += numbers_after(note, end, row).at(slope);
    }
    EXPECT_NEAR(numbers_after(note, "sum R", table).at(slope), sum, 1e-5 * 6);
    expect_near(numbers_after(note, "U = 1 / R, W/(m².K)", table).at(slope), 1 / sum, 2e-4);
  }
  EXPECT_NEAR(numbers_after(note, "hi = 3.6 + 4.1 ε' / 0.837 =").at(0),
              3.6 + 4.1 * stack.back().emissivity_back / 0.837, 2e-5);
}

TEST_P(glazing_note, says_what_EN_673_makes_of_the_coating_behind_a_gap) {
  bool is_unread = false;
  std::size_t gap_count = 0;
  for (std::size_t i = 1; i < stack.size(); ++i) {
    gap_count += stack[i].is_gap() ? 1u : 0u;
    is_unread = is_unread ||
                (stack[i - 1].is_gap() && stack[i].emissivity_front != stack[i].emissivity_back);
  }
  const char* const label = "as in EN 673, U is";
  if (!is_unread) {
    EXPECT_THAT(note, Not(HasSubstr(label)));
  } else {
    const auto expected = qv_test::work_out(stack, {false, true, true, true});
    const auto printed = numbers_after(note, label);
    ASSERT_EQ(printed.size(), 4u);  // "… vertical, … at 45°, … horizontal": the third is 45
    EXPECT_NEAR(printed[0], expected.U_vertical, 6e-4);
    EXPECT_NEAR(printed[1], expected.U_inclined, 6e-4);
    EXPECT_NEAR(printed[3], expected.U_horizontal, 6e-4);
  }
  EXPECT_EQ(note.find("shares 15 K out") != std::string::npos, gap_count > 1);
}

INSTANTIATE_TEST_SUITE_P(
    glazings, glazing_note,
    testing::Values("4", "6 low-e", "4 / 16 argon / 4 low-e", "4 low-e / 16 argon / 4",
                    "6 sun-control / 14 argon 90% / 4 / 14 krypton 60% xenon 10% / 4 low-e",
                    "4 / 0.76 interlayer / 4 / 12 air / 6", "4 / 20 sf6 / 4 low-e both",
                    "4 / 8 xenon / 4 / 8 xenon / 4 / 8 xenon / 4"),
    [](const auto& glazing) { return std::to_string(glazing.index); });

TEST(glazing_note_parts, show_what_each_pane_absorbs_and_gives_off) {
  const auto glazing = qv_read_glazing_notation("4 low-e / 16 argon / 4");
  const std::string note = qv_glazing_note(*glazing);
  const auto stack = to_stack(*glazing);
  std::vector<double> absorbed;
  qv_test::follow_light({stack[0].solar, stack[2].solar}, &absorbed);
  EXPECT_NEAR(numbers_after(note, "α1 absorbed by 1 low-e back").at(0), absorbed[0], 2e-5);
  EXPECT_NEAR(numbers_after(note, "α3 absorbed by 3 clear").at(0), absorbed[1], 2e-5);
  const auto expected = qv_test::work_out(stack, qv_test::all_departures);
  EXPECT_NEAR(numbers_after(note, "given off inwards qi").at(0),
              expected.solar_factor - expected.solar.transmittance, 2e-5);
}

TEST(glazing_note_parts, say_that_nothing_is_given_off_by_laminated_panes) {
  const auto laminated = qv_read_glazing_notation("4 / 0.76 interlayer / 4");
  EXPECT_THAT(qv_glazing_note(*laminated), HasSubstr("nothing that panes give off inwards"));
}

// --- the command ---

TEST(qv_glazing_command, prints_the_note_of_the_notation_and_of_a_file) {
  const auto run = qv_run({"glazing", "4 low-e / 16 argon / 4"});
  EXPECT_EQ(run.exit_code, 0) << run.errors;
  const auto glazing = qv_read_glazing_notation("4 low-e / 16 argon / 4");
  EXPECT_EQ(run.output, qv_glazing_note(*glazing));
  const qv_temporary_folder place;
  const std::string path = place.path() / "window.json";
  std::ofstream(path)
      << R"({"name": "4 low-e / 16 argon / 4", "layers": ["4 low-e", "16 argon", "4"]})";
  EXPECT_EQ(qv_run({"glazing", path}).output, run.output);
}

// A pane that was forgotten makes a better glazing than any.
TEST(qv_glazing_command, says_where_a_gap_has_no_pane_on_one_side) {
  const auto count = [](const std::string& notation) {
    const std::string text = qv_run({"glazing", notation}).output;
    const std::string note = " has no pane on one side";
    std::size_t found = 0;
    for (auto at = text.find(note); at != std::string::npos; at = text.find(note, at + 1)) ++found;
    return found;
  };
  EXPECT_EQ(count("4 / 16 argon / 4"), 0u);
  EXPECT_EQ(count("4 low-e / 16 argon / 4 / 0.76 interlayer / 4"), 0u);
  EXPECT_EQ(count("4 / 16 argon"), 1u);
  EXPECT_EQ(count("16 argon"), 1u);
  EXPECT_EQ(count("4 / 10 air / 10 argon / 4"), 2u);
  EXPECT_THAT(qv_run({"glazing", "4 / 16 argon"}).output, HasSubstr("Note: gap 2 argon has no"));
}

TEST(qv_glazing_command, tells_what_is_wrong_in_one_line) {
  const qv_temporary_folder place;
  const auto expect_told = [](const std::vector<std::string>& words, int code, const char* told) {
    const auto run = qv_run(words);
    EXPECT_EQ(run.exit_code, code);
    EXPECT_EQ(run.output, "");
    EXPECT_THAT(run.errors, HasSubstr(told));
    EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 1);
  };
  expect_told({"glazing"}, 2, "LAYERS is required; `qv help glazing` explains");
  expect_told({"glazing", ""}, 2, "LAYERS is an empty name");
  expect_told({"glazing", "4", "5"}, 2, "unexpected argument \"5\"");
  expect_told({"glazing", "4 / 16 helium / 4"}, 3, "the glazing, layer \"16 helium\"");
  expect_told({"glazing", (place.path() / "none.json").string()}, 4, "there is no such file");
  std::ofstream(place.path() / "bad.json") << "{]";
  expect_told({"glazing", (place.path() / "bad.json").string()}, 3, "bad.json, line 1: is no JSON");
}

// The example and the file of the guide are what they are said to be.
TEST(qv_glazing_command, prints_what_the_guide_shows) {
  const std::string page = qv_file_content(QV_SOURCE_DIR "/docs/guide/glazing.md");
  const auto block = [&page](const std::string& begin) {
    const auto at = page.find(begin);
    EXPECT_NE(at, std::string::npos) << begin;
    return page.substr(at, page.find("```", at) - at);
  };
  EXPECT_EQ(qv_run({"glazing", "4 / 16 argon / 4 low-e"}).output, block("Glazing 4 / 16"));
  const qv_temporary_folder place;
  const std::string path = place.path() / "window.json";
  std::ofstream(path) << block("{\n  \"name\"");
  const auto run = qv_run({"glazing", path});
  EXPECT_EQ(run.exit_code, 0) << run.errors;
  EXPECT_EQ(run.output.substr(0, run.output.find('\n')), "Glazing Shop front");
}

}  // namespace
