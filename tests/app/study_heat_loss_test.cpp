#include "app/study/qv_heat_loss.h"

#include <gtest/gtest.h>

#include "app/readers/qv_gbxml_reader.h"
#include "app/study/qv_study.h"
#include "app/study/qv_study_gather.h"
#include "bim/qv_load_bim_items.h"
#include "tests/support/qv_test_paths.h"

namespace {

using namespace qv;

// Two façades, one of unknown U, a roof, slabs on the ground and over a neighbour, a window, and
// bridges, one of them of unknown ψ.
qv_heat_loss small_house() {
  return qv_sum_heat_loss({{"outer_wall", "outside", 40.0, 0.5, 0.4},
                           {"outer_wall", "outside", 10.0, {}, {}},
                           {"roof", "outside", 50.0, 0.2, 0.19},
                           {"lower_floor", "soil", 30.0, 0.3, 0.28},
                           {"lower_floor", "adiabatic", 20.0, 1.0, 0.8}},
                          {{"window", "outside", 8.0, 1.5, 1.5}},
                          {{"roof_facade", 10.0, 0.2},
                           {"roof_facade", 5.0, 0.4},
                           {"unknown", 7.0, {}},
                           {"no_loss", 3.0, 0.0}});
}

TEST(qv_sum_heat_loss, sums_by_type_and_boundary) {
  const qv_heat_loss sums = small_house();
  ASSERT_EQ(sums.walls.size(), 4u);
  EXPECT_EQ(sums.walls[0].type, "outer_wall");
  EXPECT_EQ(sums.walls[0].count, 2u);
  EXPECT_DOUBLE_EQ(sums.walls[0].area, 50.0);
  EXPECT_DOUBLE_EQ(sums.walls[0].unknown_area, 10.0);
  EXPECT_DOUBLE_EQ(sums.walls[0].loss, 20.0);  // 40 × 0.5
  EXPECT_DOUBLE_EQ(sums.walls[0].get_mean_u().value(), 0.5);
  EXPECT_DOUBLE_EQ(sums.walls[0].loss_with_surfaces, 16.0);
  EXPECT_EQ(sums.walls[2].boundary, "soil");
  EXPECT_EQ(sums.walls[3].boundary, "adiabatic");
  ASSERT_EQ(sums.openings.size(), 1u);
  EXPECT_DOUBLE_EQ(sums.openings[0].loss, 12.0);
  ASSERT_EQ(sums.bridges.size(), 3u);
  EXPECT_DOUBLE_EQ(sums.bridges[0].length, 15.0);
  EXPECT_DOUBLE_EQ(sums.bridges[0].loss, 4.0);  // 10 × 0.2 + 5 × 0.4
  EXPECT_DOUBLE_EQ(sums.bridges[0].get_mean_psi().value(), 4.0 / 15.0);
  EXPECT_DOUBLE_EQ(sums.bridges[1].unknown_length, 7.0);
  EXPECT_FALSE(sums.bridges[1].get_mean_psi().has_value());
  ASSERT_EQ(sums.boundaries.size(), 3u);
  EXPECT_DOUBLE_EQ(sums.boundaries[0].loss, 20.0 + 10.0 + 12.0);
  EXPECT_DOUBLE_EQ(sums.boundaries[1].loss, 9.0);
}

TEST(qv_sum_heat_loss, totals_everything_but_adiabatic_boundaries) {
  const qv_heat_loss sums = small_house();
  EXPECT_DOUBLE_EQ(sums.bridge_loss, 4.0);
  EXPECT_DOUBLE_EQ(sums.h_t, 20.0 + 10.0 + 9.0 + 12.0 + 4.0);
  EXPECT_DOUBLE_EQ(sums.h_t_with_surfaces, 16.0 + 9.5 + 8.4 + 12.0 + 4.0);
  EXPECT_DOUBLE_EQ(sums.area, 50.0 + 50.0 + 30.0 + 8.0);
  EXPECT_DOUBLE_EQ(sums.get_mean_u().value(), 55.0 / 128.0);  // without the 10 m² of unknown U
}

TEST(qv_sum_heat_loss, of_nothing_has_no_mean) {
  const qv_heat_loss sums = qv_sum_heat_loss({}, {}, {});
  EXPECT_EQ(sums.h_t, 0.0);
  EXPECT_FALSE(sums.get_mean_u().has_value());
  EXPECT_FALSE(sums.get_mean_u_with_surfaces().has_value());
}

TEST(qv_surface_resistances, follow_the_direction_of_the_heat) {
  EXPECT_DOUBLE_EQ(qv_surface_resistances(0.0), 0.14);  // a flat roof
  EXPECT_DOUBLE_EQ(qv_surface_resistances(59.9), 0.14);
  EXPECT_DOUBLE_EQ(qv_surface_resistances(60.0), 0.17);  // within 30° of the horizontal
  EXPECT_DOUBLE_EQ(qv_surface_resistances(90.0), 0.17);  // a façade
  EXPECT_DOUBLE_EQ(qv_surface_resistances(120.0), 0.17);
  EXPECT_DOUBLE_EQ(qv_surface_resistances(180.0), 0.21);  // a floor
  EXPECT_DOUBLE_EQ(qv_surface_resistances(std::nullopt), 0.17);
}

TEST(qv_surface_resistances, are_those_of_rooms_on_both_sides_between_two_rooms) {
  EXPECT_DOUBLE_EQ(qv_inner_surface_resistances(0.0), 0.20);
  EXPECT_DOUBLE_EQ(qv_inner_surface_resistances(90.0), 0.26);
  EXPECT_DOUBLE_EQ(qv_inner_surface_resistances(180.0), 0.34);
}

// Beyond a partition lies a room, and no outside air cools its surface.
TEST(qv_gather_study, tells_partitions_from_walls_towards_the_outside) {
  qv_load_bim_items();
  const auto model = qv_read_gbxml(QV_SOURCE_DIR "/samples/house.xml");
  qv_compute_model(model, {});
  std::size_t partitions = 0;
  for (const qv_study_wall& wall : qv_gather_study(model).walls) {
    const bool is_partition = wall.contact_type == "inner_wall";
    const bool is_between_rooms = is_partition || wall.contact_type == "intermediate_floor";
    EXPECT_EQ(wall.boundary == "space", is_between_rooms) << wall.id;
    if (!is_partition) continue;
    ++partitions;
    EXPECT_FLOAT_EQ(wall.u_with_surfaces.value(), 1 / (1 / wall.u.value() + 0.26f)) << wall.id;
  }
  EXPECT_EQ(partitions, 15u);
}

TEST(qv_u_with_surfaces, adds_their_resistances) {
  EXPECT_DOUBLE_EQ(qv_u_with_surfaces(0.5, 0.17), 1.0 / 2.17);
  EXPECT_DOUBLE_EQ(qv_u_with_surfaces(0.0, 0.17), 0.0);
}

}  // namespace
