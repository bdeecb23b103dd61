#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "app/study/qv_study.h"
#include "bim/qv_load_bim_items.h"
#include "tests/app/qv_program.h"
#include "tests/app/qv_temporary_folder.h"
#include "tests/support/qv_test_paths.h"

// The sample house on sites that turn it.
namespace {

using namespace qv;

qv_study_results study_of(const std::string& azimuth, std::optional<double> north = {}) {
  qv_load_bim_items();
  std::string text = qv_file_content(QV_SOURCE_DIR "/samples/house.xml");
  const std::string stated = "<CADModelAzimuth>0<";
  text.replace(text.find(stated), stated.size(), "<CADModelAzimuth>" + azimuth + "<");
  const auto model = qv_read_gbxml_bytes("house.xml", text);
  qv_study_options options;
  options.north = north;
  return qv_gather_study(model, qv_compute_model(model, options));
}

void expect_turned(const qv_study_results& turned, double angle) {
  static const qv_study_results straight = study_of("0");
  ASSERT_EQ(turned.walls.size(), straight.walls.size());
  for (std::size_t i = 0; i < turned.walls.size(); ++i) {
    const auto& wall = turned.walls[i];
    ASSERT_EQ(wall.azimuth.has_value(), straight.walls[i].azimuth.has_value()) << wall.name;
    if (wall.azimuth.has_value()) {
      const double difference =
          std::remainder(*wall.azimuth - *straight.walls[i].azimuth - angle, 360.0);
      EXPECT_NEAR(difference, 0.0, 1e-2) << wall.name;
    }
    EXPECT_NEAR(wall.tilt.value(), straight.walls[i].tilt.value(), 1e-2);
    EXPECT_NEAR(wall.area, straight.walls[i].area, 1e-3);
    EXPECT_EQ(wall.contact_type, straight.walls[i].contact_type);
  }
  EXPECT_EQ(turned.thermal_bridges.size(), straight.thermal_bridges.size());
  EXPECT_NEAR(turned.heat_loss.h_t, straight.heat_loss.h_t, 1e-4 * straight.heat_loss.h_t);
  EXPECT_NEAR(turned.get_volume(), straight.get_volume(), 1e-2 * straight.get_volume());
}

TEST(qv_compute_model, turns_the_model_to_true_north) {
  expect_turned(study_of("30"), 30.0);
  expect_turned(study_of("-90"), -90.0);
  expect_turned(study_of("360"), 0.0);
}

TEST(qv_compute_model, prefers_the_north_that_the_user_gives) {
  expect_turned(study_of("30", 0.0), 0.0);
  expect_turned(study_of("30", 200.5), 200.5);
}

TEST(qv_compute_model, stays_as_drawn_where_the_file_says_nonsense) {
  expect_turned(study_of("north"), 0.0);
}

TEST(qv_study_command, takes_north_from_the_command_line) {
  const std::string sample = QV_SOURCE_DIR "/samples/house.xml";
  const qv_temporary_folder place;
  ASSERT_EQ(
      qv_run({"study", sample, "--no-pictures", "--out", place.path(), "--north", "90"}).exit_code,
      0);
  const auto study = nlohmann::json::parse(qv_file_content(place.path() / "study.json"));
  EXPECT_EQ(study["location"]["azimuth_deg"], 90);
  const qv::qv_study_results straight = qv::qv_run_study({.model = sample, .north = 0.0});
  ASSERT_EQ(study["walls"].size(), straight.walls.size());
  for (std::size_t i = 0; i < straight.walls.size(); ++i) {
    const auto& azimuth = study["walls"][i]["azimuth_deg"];
    ASSERT_EQ(azimuth.is_null(), !straight.walls[i].azimuth.has_value());
    if (azimuth.is_null()) continue;
    const double turn = azimuth.get<double>() - *straight.walls[i].azimuth - 90;
    EXPECT_NEAR(std::remainder(turn, 360.0), 0, 1e-3) << straight.walls[i].id;
  }
  EXPECT_EQ(
      qv_run({"study", sample, "--no-pictures", "--out", place.path(), "--north", "up"}).exit_code,
      2);
  EXPECT_EQ(
      qv_run({"study", sample, "--no-pictures", "--out", place.path(), "--north", "nan"}).exit_code,
      2);
}

}  // namespace
