#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "app/readers/qv_input_error.h"
#include "app/study/qv_project_configuration.h"
#include "app/study/qv_study.h"
#include "bim/qv_load_bim_items.h"
#include "tests/app/qv_program.h"
#include "tests/app/qv_temporary_folder.h"
#include "tests/support/qv_test_paths.h"

namespace {

using namespace qv;
using nlohmann::json;
using testing::HasSubstr;

const std::string sample = QV_SOURCE_DIR "/samples/house.xml";

std::string with_table(const std::string& content) {
  return R"({"format": "qv-configuration", "version": 1, )" + content + "}";
}

std::string complaint_about(const std::string& text) {
  qv_load_bim_items();
  try {
    qv_project_configuration configuration("c.json", text);
  } catch (const qv_input_error& error) {
    return error.what();
  }
  return "none";
}

const char* const one_choice = R"("items": [
  {"number": 1, "type": "material", "name": "Chanvre", "params": {"conductivity": 0.04,
   "thickness": 0.2, "resistance": 5, "typology": "insulator"}},
  {"number": 0, "type": "composition", "name": "Mur neuf",
   "params": {"layers": [1], "layer_thicknesses": [0.2], "insulation": "integrated"}}],
  "walls": [{"contact_type": "outer_wall", "composition": 0}],
  "connexions": [{"type": "roof_roof", "psi": 0.5}, {"type": "unknown", "psi": 0.25}])";

TEST(qv_project_configuration, replaces_choices_and_lists_each_change) {
  qv_load_bim_items();
  qv_study_options options;
  options.model = sample;
  options.configuration_name = "c.json";
  options.configuration = with_table(one_choice);
  const auto study = qv_run_study(options);
  std::size_t outer_walls = 0;
  for (const auto& wall : study.walls) {
    if (wall.contact_type != "outer_wall") continue;
    ++outer_walls;
    EXPECT_EQ(wall.composition, "Mur neuf");
    EXPECT_NEAR(wall.u.value(), 0.2f, 1e-6);
  }
  std::size_t walls = 0;
  std::size_t bridges = 0;
  for (const auto& change : study.changes) {
    if (change.element == "wall") {
      ++walls;
      EXPECT_EQ(change.param, "composition");
      EXPECT_TRUE(change.before.has_value());
      EXPECT_EQ(change.after, "Mur neuf");
    } else {
      ++bridges;
      EXPECT_EQ(change.element, "thermal_bridge");
      EXPECT_EQ(change.before.has_value(), change.after == "0.5") << change.id;
    }
  }
  EXPECT_EQ(walls, outer_walls);
  std::size_t expected = 0;
  for (const auto& bridge : study.thermal_bridges) {
    if (bridge.type != "roof_roof" && bridge.type != "unknown") continue;
    EXPECT_EQ(bridge.psi, bridge.type == "roof_roof" ? 0.5f : 0.25f);
    ++expected;
  }
  EXPECT_EQ(bridges, expected);
}

TEST(qv_project_configuration, comes_back_as_it_was_saved) {
  qv_load_bim_items();
  const auto study_with = [](const std::string& configuration) {
    auto model = qv_read_gbxml(sample);
    qv_study_options options;
    options.configuration_name = "c.json";
    options.configuration = configuration;
    qv_compute_model(model, options);
    return model;
  };
  const auto first = study_with(with_table(one_choice));
  const std::string saved = qv_save_configuration(*first.scene, "house");
  const json document = json::parse(saved);
  EXPECT_EQ(document["source"], "house");
  bool named = false;
  for (const auto& row : document["walls"]) named = named || row["contact_type"] == "outer_wall";
  EXPECT_TRUE(named);
  const auto second = study_with(saved);
  EXPECT_EQ(qv_save_configuration(*second.scene, "house"), saved);
}

TEST(qv_project_configuration, changes_nothing_in_the_model_that_it_comes_from) {
  qv_load_bim_items();
  const auto model = qv_read_gbxml(sample);
  qv_compute_model(model, {});
  qv_study_options options;
  options.model = sample;
  options.configuration_name = "c.json";
  options.configuration = qv_save_configuration(*model.scene, "house");
  for (const auto& change : qv_run_study(options).changes)
    ADD_FAILURE() << change.element << " " << change.id << ": " << change.before.value_or("–")
                  << " became " << change.after.value_or("–");
}

// A panel in a door stays what it is when its composition changes: the study has to change it too.
TEST(qv_project_configuration, puts_its_panels_and_glazings_into_the_openings) {
  qv_load_bim_items();
  const char* const items = R"("items": [
    {"number": 0, "type": "opening_composition", "name": "Leaf", "params": {"opaque": 1}},
    {"number": 1, "type": "opaque", "name": "Oak", "params": {"thickness": 0.04,
     "conductivity": 0.16}},
    {"number": 2, "type": "opening_composition", "name": "Pane", "params": {"glazing": 3}},
    {"number": 3, "type": "glazing", "name": "Float", "params": {"layers": [4]}},
    {"number": 4, "type": "glazing_glass", "name": "4", "params": {"thickness": 0.004,
     "conductivity": 1}}],
    "openings": )";
  qv_study_options options;
  options.model = sample;
  options.configuration_name = "c.json";
  options.configuration =
      with_table(items + std::string(R"([{"opening_type": "door", "composition": 0},
                              {"opening_type": "skylight", "composition": 0}])"));
  for (const auto& opening : qv_run_study(options).openings) {
    if (opening.opening_type == "window") {
      EXPECT_NE(opening.composition, "Leaf");
      EXPECT_GT(opening.glazing_area, 0);
      continue;
    }
    EXPECT_EQ(opening.composition, "Leaf");
    EXPECT_NEAR(opening.u.value(), 4.0f, 1e-5) << opening.id;
    EXPECT_EQ(opening.solar_factor, 0.0f) << opening.id;
    EXPECT_EQ(opening.glazing_area, 0) << opening.id;
    EXPECT_EQ(opening.opaque_area, opening.full_area) << opening.id;
  }
  options.configuration =
      with_table(items + std::string(R"([{"opening_type": "door", "composition": 2}])"));
  const auto study = qv_run_study(options);
  const auto pane = std::find_if(study.glazings.begin(), study.glazings.end(),
                                 [](const auto& glazing) { return glazing.name == "Float"; });
  ASSERT_NE(pane, study.glazings.end());
  std::size_t doors = 0;
  for (const auto& opening : study.openings) {
    if (opening.opening_type != "door") continue;
    ++doors;
    EXPECT_NEAR(opening.u.value(), pane->u_vertical, 1e-5) << opening.id;
    EXPECT_EQ(opening.solar_factor, pane->solar_factor) << opening.id;
    EXPECT_EQ(opening.opaque_area, 0) << opening.id;
    EXPECT_EQ(opening.glazing_area, opening.full_area) << opening.id;
  }
  EXPECT_EQ(doors, 5u);
}

TEST(qv_project_configuration, lists_a_composition_of_the_same_name_with_other_layers) {
  qv_load_bim_items();
  const auto model = qv_read_gbxml(sample);
  qv_compute_model(model, {});
  json document = json::parse(qv_save_configuration(*model.scene, "house"));
  for (json& item : document["items"])
    if (item["params"].contains("conductivity")) item["params"]["conductivity"] = 0.01;
  qv_study_options options;
  options.model = sample;
  options.configuration_name = "c.json";
  options.configuration = document.dump();
  const auto study = qv_run_study(options);
  EXPECT_THAT(study.changes, testing::Not(testing::IsEmpty()));
  for (const auto& change : study.changes) EXPECT_EQ(change.before, change.after) << change.id;
}

TEST(qv_project_configuration, says_what_is_wrong_with_a_file) {
  EXPECT_THAT(complaint_about("{\n"), HasSubstr("line 2: is no JSON"));
  EXPECT_THAT(complaint_about("[]"), HasSubstr("is no configuration"));
  EXPECT_THAT(
      complaint_about("{\"version\": 1,\n\"format\": \"qv-configuration\",\n\"version\": 2}"),
      HasSubstr("line 3: gives \"version\" twice"));
  EXPECT_THAT(complaint_about(R"({"format": "qv-configuration", "version": 7})"),
              HasSubstr("another version"));
  EXPECT_THAT(complaint_about(with_table(R"("walls": [{"contact_type": "moat"}])")),
              HasSubstr("knows no contact_type \"moat\""));
  EXPECT_THAT(
      complaint_about(with_table(R"("walls": [{"contact_type": "roof", "composition": 3}])")),
      HasSubstr("no composition of number 3"));
  EXPECT_THAT(complaint_about(with_table(R"("connexions": [{"type": "roof_roof"}])")),
              HasSubstr("where a number belongs"));
  EXPECT_THAT(complaint_about(with_table(
                  R"("items": [{"number": 0, "type": "wall", "name": "", "params": {}}])")),
              HasSubstr("no known type"));
  EXPECT_THAT(complaint_about(with_table(
                  R"("items": [{"number": 0, "type": "composition", "name": "c",
                                "params": {"layers": [0]}}])")),
              HasSubstr("no matter of number 0"));
  EXPECT_EQ(complaint_about(with_table(one_choice)), "none");
}

TEST(qv_configure_command, saves_what_a_study_takes) {
  const qv_temporary_folder place;
  const std::string file = place.path() / "choices.json";
  const auto saved = qv_run({"configure", "save", sample, file});
  EXPECT_EQ(saved.exit_code, 0) << saved.errors;
  const json document = json::parse(qv_file_content(file));
  EXPECT_EQ(document["format"], "qv-configuration");
  const std::string out = place.path() / "out";
  const auto study =
      qv_run({"study", sample, "--no-pictures", "--out", out, "--configuration", file});
  EXPECT_EQ(study.exit_code, 0) << study.errors;
  EXPECT_EQ(
      qv_run({"study", sample, "--no-pictures", "--out", out, "--configuration", sample}).exit_code,
      3);
  EXPECT_EQ(qv_run({"configure", "save", "/nowhere.xml", file}).exit_code, 4);
  EXPECT_EQ(qv_run({"configure"}).exit_code, 2);
}

}  // namespace
