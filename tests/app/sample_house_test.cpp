#include <gtest/gtest.h>

#include <map>
#include <set>

#include "app/study/qv_study.h"
#include "bim/qv_load_bim_items.h"
#include "tests/app/qv_markdown_table.h"
#include "tests/app/qv_program.h"
#include "tests/support/qv_test_paths.h"

// The study of samples/house.xml beside what samples/house.md works out on paper.
namespace {

constexpr double flat_tolerance = 1e-3;    // of volumes and areas under one height
constexpr double sloped_tolerance = 0.03;  // of the attic's volume, an average over rays
constexpr double share_tolerance = 0.15;   // of the attic's area, a share of rays
constexpr double sum_tolerance = 1e-4;     // of sums of areas, and of U values
constexpr double figure_tolerance = 1e-5;  // of glazings and panels

class sample_house : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    qv_load_bim_items();
    page_ = qv_file_content(QV_SOURCE_DIR "/samples/house.md");
    study_ = qv::qv_run_study({.model = QV_SOURCE_DIR "/samples/house.xml"});
  }
  static inline std::string page_;
  static inline qv::qv_study_results study_;
};

TEST_F(sample_house, has_the_areas_and_volumes_of_its_page) {
  const auto rows = qv_markdown_rows(page_, "space");
  ASSERT_EQ(rows.size(), study_.spaces.size());
  std::map<std::string, qv::qv_study_space> spaces;
  for (const auto& space : study_.spaces) spaces[space.id] = space;
  for (const auto& row : rows) {
    SCOPED_TRACE(row[0]);
    ASSERT_TRUE(spaces.contains(row[0]));
    const auto& space = spaces[row[0]];
    const bool attic = row[0] == "combles";
    const double area = qv_last_number(row[1]);
    const double volume = qv_last_number(row[2]);
    EXPECT_NEAR(space.area, area, area * (attic ? share_tolerance : flat_tolerance));
    EXPECT_NEAR(space.volume, volume, volume * (attic ? sloped_tolerance : flat_tolerance));
    EXPECT_NEAR(space.stated_volume.value(), volume, volume * sum_tolerance);
  }
}

TEST_F(sample_house, counts_less_floor_under_the_low_parts_of_its_roof) {
  const auto attic = std::find_if(study_.spaces.begin(), study_.spaces.end(),
                                  [](const auto& space) { return space.id == "combles"; });
  ASSERT_NE(attic, study_.spaces.end());
  EXPECT_LT(attic->area, 80.0 * 0.7);  // of the whole floor of 80 m²
}

TEST_F(sample_house, has_the_walls_of_its_page) {
  std::map<std::string, double> areas;
  double outside = 0.0;
  for (const auto& wall : study_.walls) {
    if (wall.space_0.has_value()) {
      areas[wall.contact_type] += wall.area;
    } else {
      outside += wall.area;
    }
  }
  const auto rows = qv_markdown_rows(page_, "contact");
  EXPECT_EQ(rows.size(), areas.size());
  for (const auto& row : rows) {
    const double area = qv_last_number(row[1]);
    EXPECT_NEAR(areas[row[0]], area, area * sum_tolerance) << row[0];
  }
  EXPECT_NEAR(outside, 8.0, 8.0 * sum_tolerance);
  EXPECT_NEAR(study_.get_loss_area(), 497.8, 497.8 * sum_tolerance);
}

TEST_F(sample_house, has_the_openings_of_its_page) {
  std::map<std::string, qv::qv_study_opening> openings;
  for (const auto& opening : study_.openings) openings[opening.id] = opening;
  const auto rows = qv_markdown_rows(page_, "opening");
  ASSERT_EQ(rows.size(), openings.size());
  double sum = 0.0;
  for (const auto& row : rows) {
    SCOPED_TRACE(row[0]);
    ASSERT_TRUE(openings.contains(row[0]));
    const auto& opening = openings[row[0]];
    EXPECT_EQ(opening.opening_type, row[1]);
    EXPECT_EQ(opening.facing, row[2]);
    const double area = qv_last_number(row[3]);
    EXPECT_NEAR(opening.full_area, area, area * sum_tolerance);
    EXPECT_NEAR(opening.u.value(), qv_last_number(row[4]), figure_tolerance);
    EXPECT_NEAR(opening.solar_factor.value(), qv_last_number(row[5]), figure_tolerance);
    ASSERT_EQ(opening.visible_transmittance.has_value(), row[6] != "–");
    if (opening.visible_transmittance.has_value()) {
      EXPECT_NEAR(*opening.visible_transmittance, qv_last_number(row[6]), figure_tolerance);
    }
    sum += opening.full_area;
  }
  EXPECT_NEAR(sum, 28.73, 28.73 * sum_tolerance);
}

TEST_F(sample_house, has_the_double_glazing_of_its_page) {
  ASSERT_EQ(study_.glazings.size(), 2u);  // the other one is the patio door's pane
  const qv::qv_study_glazing& glazing = study_.glazings[0];
  EXPECT_EQ(glazing.name, "Double vitrage 4/16/4");
  std::map<std::string, double> values;
  for (const auto& row : qv_markdown_rows(page_, "double glazing"))
    values[row[0]] = qv_last_number(row[1]);
  EXPECT_NEAR(glazing.u_vertical, values.at("U upright"), figure_tolerance);
  EXPECT_NEAR(glazing.u_horizontal, values.at("U lying"), figure_tolerance);
  EXPECT_NEAR(glazing.u_inclined, values.at("U at 45°"), figure_tolerance);
  EXPECT_NEAR(glazing.visible_transmittance, values.at("light"), figure_tolerance);
  EXPECT_NEAR(glazing.solar_factor, values.at("solar factor"), figure_tolerance);
  EXPECT_NEAR(glazing.thickness, 0.024, figure_tolerance);
  ASSERT_EQ(glazing.layers.size(), 3u);
  EXPECT_EQ(glazing.layers[1].gas, "argon");
}

TEST_F(sample_house, has_the_facades_of_its_page) {
  const auto rows = qv_markdown_rows(page_, "façade");
  ASSERT_EQ(rows.size(), study_.facades.size());
  for (std::size_t index = 0; index < rows.size(); ++index) {
    const auto& row = rows[index];
    const auto& facade = study_.facades[index];
    SCOPED_TRACE(row[0]);
    EXPECT_EQ(facade.orientation, row[0]);
    const double walls = qv_last_number(row[1]);
    EXPECT_NEAR(facade.wall_area, walls, walls * sum_tolerance);
    EXPECT_NEAR(facade.window_area, qv_last_number(row[2]), walls * sum_tolerance);
    EXPECT_NEAR(facade.get_window_to_wall_ratio().value(), qv_last_number(row[3]), sum_tolerance);
  }
}

TEST_F(sample_house, has_the_u_values_of_its_page) {
  std::map<std::string, qv::qv_study_composition> compositions;
  for (const auto& composition : study_.compositions) compositions[composition.name] = composition;
  const auto rows = qv_markdown_rows(page_, "composition");
  ASSERT_EQ(rows.size(), compositions.size());
  for (const auto& row : rows) {
    SCOPED_TRACE(row[0]);
    const auto& composition = compositions[row[0]];
    const double resistance = qv_last_number(row[1]);
    const double u = qv_last_number(row[2]);
    ASSERT_TRUE(composition.u.has_value());
    EXPECT_NEAR(*composition.u, u, u * sum_tolerance);
    EXPECT_NEAR(composition.resistance.value(), resistance, resistance * sum_tolerance);
  }
}

TEST_F(sample_house, has_the_thermal_bridges_of_its_page) {
  std::map<std::string, double> lengths;
  double sum = 0.0;
  for (const auto& bridge : study_.thermal_bridges) {
    lengths[bridge.type] += bridge.length;
    sum += bridge.length;
  }
  const auto rows = qv_markdown_rows(page_, "bridge");
  ASSERT_EQ(rows.size(), lengths.size());
  for (const auto& row : rows) {
    EXPECT_NEAR(lengths[row[0]], qv_last_number(row[1]), 1e-3) << row[0];
  }
  EXPECT_NEAR(sum, 336.4, 1e-3);
}

TEST_F(sample_house, has_its_storeys_zones_and_building) {
  ASSERT_EQ(study_.buildings.size(), 1u);
  const auto& building = study_.buildings[0];
  EXPECT_EQ(building.name, "Maison");
  ASSERT_EQ(building.floors.size(), 3u);  // bottoms at 0, 2.7 and 5.3, and 1.5 m above each
  EXPECT_FLOAT_EQ(building.floors[0], 1.5f);
  EXPECT_FLOAT_EQ(building.floors[1], 4.2f);
  EXPECT_FLOAT_EQ(building.floors[2], 6.8f);
  std::set<std::string> zones;
  for (const auto& zone : building.zones) zones.insert(zone.name);
  EXPECT_EQ(zones, (std::set<std::string>{"Zone jour", "Zone nuit", "Annexes"}));
  for (const auto& space : study_.spaces) {
    const int storey = space.id == "combles" ? 2 : space.zone == "Zone nuit" ? 1 : 0;
    EXPECT_EQ(space.floor, storey) << space.id;
  }
}

TEST_F(sample_house, looks_where_it_was_drawn_to_look) {
  std::map<std::string, qv::qv_study_wall> walls;
  for (const auto& wall : study_.walls) walls[wall.name] = wall;
  const auto expect = [&walls](const char* name, std::optional<float> azimuth, float tilt) {
    SCOPED_TRACE(name);
    ASSERT_TRUE(walls.contains(name));
    const auto& wall = walls[name];
    ASSERT_EQ(wall.azimuth.has_value(), azimuth.has_value());
    EXPECT_NEAR(wall.azimuth.value_or(0.0f), azimuth.value_or(0.0f), 0.01);
    EXPECT_NEAR(wall.tilt.value(), tilt, 0.01);
  };
  expect("Salon, façade sud", 180.0f, 90.0f);
  expect("Salon, façade ouest", 270.0f, 90.0f);
  expect("Salon, façade nord", 0.0f, 90.0f);
  expect("Chambre 2, façade est", 90.0f, 90.0f);
  expect("Salon, dallage", std::nullopt, 180.0f);
  expect("Garage, toiture-terrasse", std::nullopt, 0.0f);
  expect("Combles, toiture sud", 180.0f, 36.8699f);  // slope 3 in 4
  expect("Combles, toiture nord", 0.0f, 36.8699f);
}

TEST_F(sample_house, lies_on_the_ground_with_its_slabs_only) {
  for (const auto& wall : study_.walls) {
    const bool slab = wall.contact_type == "lower_floor";
    EXPECT_EQ(wall.limit_condition, slab ? std::optional<std::string>("Soil") : std::nullopt)
        << wall.name;
  }
}

TEST_F(sample_house, loses_nothing_of_its_file) {
  EXPECT_TRUE(study_.ledger.balance.balanced);
  EXPECT_NEAR(study_.ledger.balance.source, 786.6, 786.6 * sum_tolerance);
  EXPECT_EQ(study_.ledger.balance.dropped, 0.0);
  for (const auto& fate : study_.ledger.fates) {
    EXPECT_EQ(fate.outcome, "kept") << fate.kind << " " << fate.id << ": " << fate.reason;
  }
  EXPECT_TRUE(study_.ledger.opening_balance.balanced);
  EXPECT_NEAR(study_.ledger.opening_balance.openings, 28.73, 28.73 * sum_tolerance);
  EXPECT_EQ(study_.closed_space_count, 11);
}

TEST(sample_house_file, is_what_its_script_writes) {
  const auto script = qv_run_shell("python3 '" QV_SOURCE_DIR "/samples/make_house.py'");
  EXPECT_EQ(script.exit_code, 0) << script.errors;
  EXPECT_TRUE(script.output == qv_file_content(QV_SOURCE_DIR "/samples/house.xml"));
}

}  // namespace
