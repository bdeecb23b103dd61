#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "app/check/qv_finding.h"
#include "app/report/qv_study_csv.h"
#include "app/report/qv_study_json.h"
#include "app/report/qv_study_summary.h"
#include "app/report/qv_text_table.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

std::vector<std::string> keys_of(const nlohmann::ordered_json& object) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : object.items()) keys.push_back(key);
  return keys;
}

// Two spaces, one of them without anything known but what is measured.
qv::qv_study_results small_study() {
  qv::qv_study_results study;
  study.source = "a \"b\".xml";
  study.location.latitude = 48.85;
  study.buildings.push_back(
      {"Bâtiment 1", "new", {1.5f}, 30.5f, 76.25f, {{"Zone 1-1", {"s1", "s2"}}}, 2});
  study.spaces.push_back({"s1", "Salon, \"grand\"", "Bâtiment 1", "Zone 1-1", 0, 20.5f, 51.25f,
                          20.0, 50.0, "<h2>Salon</h2>"});
  study.spaces.push_back({"s2", "Cave", {}, {}, {}, 10.0f, 25.0f, {}, {}, ""});
  study.walls.push_back(
      {"w1", "façade", "wall", "outer_wall", "s1", {}, 12.0f, 90.0f, 90.0f, 0.5f, "Brique", {}});
  study.walls.push_back(
      {"w2", "dalle", "floor", "lower_floor", "s1", {}, 20.5f, {}, 180.0f, {}, {}, "Soil"});
  study.walls.push_back(
      {"w3", "cloison", "wall", "inner_wall", "s1", "s2", 8.0f, 0.0f, 90.0f, 2.0f, "Plâtre", {}});
  study.compositions.push_back(
      {"Brique", "wall", 0.5f, 2.0f, 0.2f, {{"Brique", 0.2f, 0.1f, 2.0f}, {"?", {}, {}, {}}}});
  study.openings.push_back({"o1",
                            "baie",
                            "w1",
                            "window",
                            "Double",
                            3.0f,
                            0.0f,
                            0.0f,
                            3.0f,
                            1.5f,
                            0.6f,
                            {},
                            "<table>",
                            "east",
                            true});
  study.openings.push_back(
      {"o2", "", "w1", "door", {}, 0.0f, 2.0f, 0.0f, 2.0f, {}, {}, {}, "", "east", true});
  study.glazings.push_back({"Double", 1.5f, 1.9f, 1.7f, 0.6f, 0.8f, 0.02f, {}});
  study.glazings[0].layers.push_back(
      {"Verre", "glass", 0.004f, 1.0f, {}, 0.85f, 0.08f, 0.08f, 0.9f, 0.08f, 0.08f, 0.84f, 0.84f});
  study.glazings[0].layers.push_back(
      {"Argon", "gas", 0.016f, 0.0168f, "argon", {}, {}, {}, {}, {}, {}, {}, {}});
  study.facades = {{"north"}, {"east", 1, 2, 17.0, 5.0, 3.0}, {"south"}, {"west"}};
  study.thermal_bridges.push_back({"bridge-1",
                                   "lower_floor_soil_facade",
                                   4.0f,
                                   0.5f,
                                   2.0,
                                   {"w1", "w2"},
                                   {0.0f, 0.0f, 0.0f},
                                   {4.0f, 0.0f, 0.0f},
                                   "interior"});
  study.heat_loss = qv::qv_sum_heat_loss(
      {{"outer_wall", "outside", 12.0, 0.5, 0.46}, {"lower_floor", "soil", 20.5, {}, {}}}, {},
      {{"lower_floor_soil_facade", 4.0, 0.5}});
  study.psi_catalogue = "Mine";
  study.ledger.tallies = {{"Space", "kept", 2},
                          {"Space", "dropped", 0},
                          {"Surface", "kept", 3},
                          {"Surface", "dropped", 1}};
  study.ledger.balance = {43.5, 40.5, 0.0, 0.0, 3.0, true};
  study.objects = {{"t1", "Tree", 4.5, "Shade"}};
  study.ledger.fates = {{"Surface", "x1", "dropped", "no area", 3.0},
                        {"Layer", "l1", "kept", "", {}}};
  return study;
}

TEST(qv_study_json, has_its_keys_in_their_order) {
  const auto study = nlohmann::ordered_json::parse(qv::qv_study_json(small_study()));
  using names = std::vector<std::string>;
  EXPECT_EQ(keys_of(study), (names{"format",
                                   "version",
                                   "source",
                                   "location",
                                   "totals",
                                   "buildings",
                                   "spaces",
                                   "walls",
                                   "compositions",
                                   "openings",
                                   "glazings",
                                   "facades",
                                   "generated_openings",
                                   "thermal_bridges",
                                   "heat_loss",
                                   "usages",
                                   "configuration_changes",
                                   "ledger",
                                   "findings",
                                   "weather",
                                   "solar_by_orientation",
                                   "objects"}));
  EXPECT_EQ(keys_of(study["objects"][0]), (names{"id", "name", "area_m2", "kind"}));
  EXPECT_EQ(keys_of(study["totals"]), (names{"spaces", "area_m2", "volume_m3", "loss_area_m2",
                                             "walls", "openings", "loss_opening_area_m2"}));
  EXPECT_EQ(keys_of(study["buildings"][0]),
            (names{"name", "status", "floors", "area_m2", "volume_m3", "zones"}));
  EXPECT_EQ(keys_of(study["buildings"][0]["zones"][0]), (names{"name", "spaces"}));
  EXPECT_EQ(keys_of(study["spaces"][0]),
            (names{"id", "name", "building", "zone", "floor", "area_m2", "volume_m3",
                   "stated_area_m2", "stated_volume_m3", "html", "leaking_share"}));
  EXPECT_EQ(keys_of(study["walls"][0]),
            (names{"id", "name", "wall_type", "contact_type", "space_0", "space_1", "area_m2",
                   "azimuth_deg", "tilt_deg", "u", "composition", "limit_condition", "boundary",
                   "u_with_surfaces", "solar"}));
  EXPECT_EQ(keys_of(study["thermal_bridges"][0]),
            (names{"id", "type", "length_m", "psi", "loss_w_per_k", "walls", "point_0", "point_1",
                   "insulation"}));
  EXPECT_EQ(keys_of(study["heat_loss"]),
            (names{"h_t_w_per_k", "h_t_with_surfaces_w_per_k", "mean_u", "mean_u_with_surfaces",
                   "area_m2", "unknown_u_area_m2", "bridges_w_per_k", "psi_catalogue", "walls",
                   "openings", "bridges", "boundaries"}));
  EXPECT_EQ(keys_of(study["compositions"][0]),
            (names{"name", "typology", "u", "resistance", "thickness", "layers"}));
  EXPECT_EQ(keys_of(study["compositions"][0]["layers"][0]),
            (names{"name", "thickness", "conductivity", "resistance"}));
  EXPECT_EQ(keys_of(study["openings"][0]),
            (names{"id", "name", "wall", "opening_type", "composition", "glazing_area_m2",
                   "opaque_area_m2", "frame_area_m2", "full_area_m2", "u", "solar_factor",
                   "visible_transmittance", "html", "solar"}));
  EXPECT_EQ(keys_of(study["glazings"][0]),
            (names{"name", "u_vertical", "u_horizontal", "u_inclined", "solar_factor",
                   "visible_transmittance", "thickness_m", "layers"}));
  EXPECT_EQ(keys_of(study["facades"][0]),
            (names{"orientation", "walls", "wall_area_m2", "openings", "opening_area_m2",
                   "window_area_m2", "window_to_wall_ratio"}));
  EXPECT_EQ(keys_of(study["ledger"]), (names{"counts", "area", "opening_area", "elements"}));
  EXPECT_EQ(keys_of(study["ledger"]["elements"][0]),
            (names{"kind", "id", "outcome", "reason", "area_m2", "cut_m2"}));
  EXPECT_EQ(study["format"], "qv-study");
  EXPECT_EQ(study["version"], 1);
}

TEST(qv_study_json, says_null_for_what_cannot_be_known) {
  const auto study = json::parse(qv::qv_study_json(small_study()));
  const auto& cellar = study["spaces"][1];
  for (const char* key : {"building", "zone", "floor", "stated_area_m2", "stated_volume_m3"}) {
    EXPECT_TRUE(cellar[key].is_null()) << key;
  }
  EXPECT_TRUE(study["location"]["longitude_deg"].is_null());
  EXPECT_TRUE(study["walls"][1]["azimuth_deg"].is_null());
  EXPECT_TRUE(study["walls"][1]["u"].is_null());
  EXPECT_TRUE(study["compositions"][0]["layers"][1]["thickness"].is_null());
  EXPECT_TRUE(study["ledger"]["elements"][1]["area_m2"].is_null());
  EXPECT_TRUE(study["openings"][1]["u"].is_null());
  EXPECT_TRUE(study["openings"][1]["composition"].is_null());
  EXPECT_TRUE(study["glazings"][0]["layers"][0]["gas"].is_null());
  EXPECT_TRUE(study["glazings"][0]["layers"][1]["emissivity_back"].is_null());
  EXPECT_TRUE(study["facades"][0]["window_to_wall_ratio"].is_null());
  EXPECT_TRUE(study["generated_openings"].is_null());
}

TEST(qv_study_json, sums_spaces_and_the_walls_with_a_space_on_one_side_only) {
  const auto totals = json::parse(qv::qv_study_json(small_study()))["totals"];
  EXPECT_EQ(totals["spaces"], 2);
  EXPECT_EQ(totals["walls"], 3);
  EXPECT_EQ(totals["area_m2"], 30.5);
  EXPECT_EQ(totals["volume_m3"], 76.25);
  EXPECT_EQ(totals["loss_area_m2"], 37.5);  // 12 + 20.5 and the openings, not the partition's 8
  EXPECT_EQ(totals["loss_opening_area_m2"], 5.0);
  EXPECT_EQ(totals["openings"], 2);
}

TEST(qv_study_json, counts_by_kind_and_outcome) {
  const auto ledger = json::parse(qv::qv_study_json(small_study()))["ledger"];
  EXPECT_EQ(ledger["counts"]["Surface"]["dropped"], 1);
  EXPECT_EQ(ledger["counts"]["Space"]["kept"], 2);
  EXPECT_EQ(ledger["area"]["source_m2"], 43.5);
  EXPECT_EQ(ledger["area"]["dropped_m2"], 3.0);
}

TEST(qv_study_json, is_valid_for_an_empty_study) {
  const auto study = json::parse(qv::qv_study_json({}));
  EXPECT_TRUE(study["spaces"].is_array());
  EXPECT_EQ(study["totals"]["area_m2"], 0.0);
}

TEST(qv_study_csv, quotes_what_needs_quotes_and_leaves_out_long_texts) {
  EXPECT_EQ(qv::qv_spaces_csv(small_study()),
            "id,name,building,zone,floor,area_m2,volume_m3,stated_area_m2,stated_volume_m3,"
            "leaking_share\r\n"
            "s1,\"Salon, \"\"grand\"\"\",Bâtiment 1,Zone 1-1,0,20.5,51.25,20,50,\r\n"
            "s2,Cave,,,,10,25,,,\r\n");
}

TEST(qv_study_csv, has_a_line_for_each_wall) {
  EXPECT_EQ(qv::qv_walls_csv(small_study()),
            "id,name,wall_type,contact_type,space_0,space_1,area_m2,azimuth_deg,tilt_deg,u,"
            "composition,limit_condition,boundary,u_with_surfaces\r\n"
            "w1,façade,wall,outer_wall,s1,,12,90,90,0.5,Brique,,outside,\r\n"
            "w2,dalle,floor,lower_floor,s1,,20.5,,180,,,Soil,outside,\r\n"
            "w3,cloison,wall,inner_wall,s1,s2,8,0,90,2,Plâtre,,outside,\r\n");
}

TEST(qv_study_csv, keeps_line_breaks_of_a_name_inside_quotes) {
  qv::qv_study_results study;
  study.spaces.push_back({"s", "a\nb", {}, {}, {}, 0.0f, 0.0f, {}, {}, ""});
  EXPECT_THAT(qv::qv_spaces_csv(study), HasSubstr("s,\"a\nb\",,"));
}

TEST(qv_study_summary, shows_stated_beside_measured) {
  const std::string text = qv::qv_study_summary(small_study());
  // 20.5 is 2.5 % more than 20, and 51.25 than 50.
  EXPECT_THAT(text, HasSubstr("20.50   20.00      +2.5 %"));
  EXPECT_THAT(text, HasSubstr("51.25   50.00      +2.5 %"));
  EXPECT_THAT(text, HasSubstr("1 building, 1 storey, 1 zone, 2 spaces, 3 walls, 2 openings, "
                              "1 composition"));
}

TEST(qv_study_summary, lists_openings_by_type_and_by_what_they_look_to) {
  const std::string text = qv::qv_study_summary(small_study());
  EXPECT_THAT(text, testing::ContainsRegex("window +east +1 +3\\.00 +3\\.00 +1\\.50 +0\\.60 +–"));
  EXPECT_THAT(text, testing::ContainsRegex("door +east +1 +2\\.00 +0\\.00 +– +– +–"));
  // Means over what is known: the window alone.
  EXPECT_THAT(text, testing::ContainsRegex("all openings +2 +5\\.00 +3\\.00 +1\\.50 +0\\.60 +–"));
  EXPECT_THAT(text, testing::ContainsRegex("east +1 +17\\.00 +2 +5\\.00 +3\\.00 +17\\.6 %"));
  EXPECT_THAT(text, testing::ContainsRegex("north +0 +0\\.00 +0 +0\\.00 +0\\.00 +–"));
  EXPECT_THAT(text, HasSubstr("With the openings in them, 5.00 m², the loss area is 37.50 m²."));
  EXPECT_THAT(text, HasSubstr("  The U of 1 opening, 2.00 m², is not known.\n"));
  EXPECT_THAT(text, Not(HasSubstr("generated")));
}

TEST(qv_study_summary, says_where_no_opening_could_be_generated) {
  auto study = small_study();
  study.generation = {true, 12, 1, {{"it is in the ground", 3}}};
  const std::string text = qv::qv_study_summary(study);
  EXPECT_THAT(text,
              HasSubstr("  12 openings generated; 1 outer wall with openings of the file left "
                        "as they are\n"
                        "  None on 3 outer walls: it is in the ground\n"));
  const auto parsed = json::parse(qv::qv_study_json(study))["generated_openings"];
  EXPECT_EQ(parsed["made"], 12);
  EXPECT_EQ(parsed["refused"][0]["reason"], "it is in the ground");
}

TEST(qv_study_summary, says_how_much_of_openings_was_cut_off) {
  auto study = small_study();
  study.ledger.opening_balance = {6.0, 5.0, 0.0, 0.25, 0.75, true};
  study.ledger.fates.push_back({"Opening", "o1", "repaired", "cut", 3.75, 0.75});
  const std::string text = qv::qv_study_summary(study);
  EXPECT_THAT(text, HasSubstr("Openings: 6.00 m² in the file = 5.00 m² of openings + 0.75 m² cut "
                              "off + 0.25 m² dropped"));
  EXPECT_THAT(text, HasSubstr("1 Opening repaired (3.75 m², 0.75 m² of it cut off): cut"));
}

TEST(qv_study_csv, has_a_line_for_each_opening) {
  EXPECT_EQ(qv::qv_openings_csv(small_study()),
            "id,name,wall,opening_type,composition,glazing_area_m2,opaque_area_m2,frame_area_m2,"
            "full_area_m2,u,solar_factor,visible_transmittance\r\n"
            "o1,baie,w1,window,Double,3,0,0,3,1.5,0.6,\r\n"
            "o2,,w1,door,,0,2,0,2,,,\r\n");
}

TEST(qv_study_summary, weights_u_by_area_and_says_how_much_is_unknown) {
  auto study = small_study();
  study.walls.push_back(
      {"w4", "", "wall", "outer_wall", "s2", {}, 4.0f, 0.0f, 90.0f, 1.5f, "x", {}});
  // (12 × 0.5 + 4 × 1.5) / 16 = 0.75
  const std::string text = qv::qv_study_summary(study);
  EXPECT_THAT(text, testing::ContainsRegex("outer_wall +2 +16\\.00 +0\\.750 +–"));
  EXPECT_THAT(text, testing::ContainsRegex("lower_floor +1 +20\\.50 +– +20\\.50"));
}

TEST(qv_study_summary, tells_what_was_dropped_and_why) {
  const std::string text = qv::qv_study_summary(small_study());
  EXPECT_THAT(text, HasSubstr("1 Surface dropped (3.00 m²): no area"));
  EXPECT_THAT(text, HasSubstr("43.50 m² in the file = 40.50 m² of walls + 3.00 m² dropped"));
}

TEST(qv_study_summary, cuts_a_long_list_and_says_where_the_rest_is) {
  qv::qv_study_results study;
  for (std::size_t count = 0; count < qv::qv_summary_space_count + 5; ++count) {
    study.spaces.push_back({"s" + std::to_string(count), "", {}, {}, {}, 1.0f, 1.0f, {}, {}, ""});
  }
  const std::string text = qv::qv_study_summary(study);
  EXPECT_THAT(text, HasSubstr("… 5 more, see spaces.csv"));
  EXPECT_THAT(text, Not(HasSubstr("  s60 ")));
}

TEST(qv_study_summary, says_what_a_finding_is_to_the_end) {
  qv::qv_study_results study;
  for (const qv::qv_check_code& code : qv::qv_check_codes())
    study.findings.push_back({code.code, "Space", "s", std::nullopt, "m"});
  const std::string text = qv::qv_study_summary(study);
  for (const qv::qv_check_code& code : qv::qv_check_codes())
    EXPECT_THAT(text, HasSubstr(std::string(code.meaning) + "\n"));
}

TEST(qv_text_table, aligns_by_columns_not_bytes) {
  qv::qv_text_table table({{"Nom"}, {"m²", qv::qv_text_table::align::right}});
  table.add_row({"Pièce", "1.00"});
  table.add_row({"房间", "10.00"});
  table.add_rule();
  table.add_row({"total"});
  EXPECT_EQ(table.text(),
            "  Nom       m²\n"
            "  Pièce   1.00\n"
            "  房间   10.00\n"
            "  -----  -----\n"
            "  total\n");
}

}  // namespace
