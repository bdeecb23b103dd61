#include "app/study/qv_study_gather.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using qv::qv_3dvector;
using qv::qv_direction_of;

TEST(qv_direction_of, counts_azimuths_clockwise_from_plus_y) {
  EXPECT_FLOAT_EQ(qv_direction_of({0, 1, 0}).azimuth.value(), 0.0f);
  EXPECT_FLOAT_EQ(qv_direction_of({1, 0, 0}).azimuth.value(), 90.0f);
  EXPECT_FLOAT_EQ(qv_direction_of({0, -1, 0}).azimuth.value(), 180.0f);
  EXPECT_FLOAT_EQ(qv_direction_of({-1, 0, 0}).azimuth.value(), 270.0f);
  EXPECT_FLOAT_EQ(qv_direction_of({1, 1, 0}).azimuth.value(), 45.0f);
}

TEST(qv_direction_of, counts_tilts_from_the_upward_vertical) {
  EXPECT_FLOAT_EQ(qv_direction_of({0, 0, 1}).tilt.value(), 0.0f);
  EXPECT_FLOAT_EQ(qv_direction_of({0, 1, 0}).tilt.value(), 90.0f);
  EXPECT_FLOAT_EQ(qv_direction_of({0, 0, -1}).tilt.value(), 180.0f);
  EXPECT_FLOAT_EQ(qv_direction_of({0, 0.5f, 0.5f}).tilt.value(), 45.0f);
}

TEST(qv_direction_of, gives_no_azimuth_to_what_is_level) {
  EXPECT_FALSE(qv_direction_of({0, 0, 1}).azimuth.has_value());
  EXPECT_FALSE(qv_direction_of({0.0005f, 0, -1}).azimuth.has_value());
  EXPECT_TRUE(qv_direction_of({0.002f, 0, -1}).azimuth.has_value());
}

TEST(qv_direction_of, never_says_360) {
  const auto azimuth = qv_direction_of({-1e-9f, 1, 0}).azimuth;
  EXPECT_LT(azimuth.value(), 360.0f);
}

TEST(qv_direction_of, knows_nothing_of_what_is_no_direction) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinite = std::numeric_limits<float>::infinity();
  for (const qv_3dvector& normal :
       {qv_3dvector(0, 0, 0), qv_3dvector(nan, 0, 1), qv_3dvector(0, infinite, 0)}) {
    EXPECT_FALSE(qv_direction_of(normal).azimuth.has_value());
    EXPECT_FALSE(qv_direction_of(normal).tilt.has_value());
  }
}

TEST(qv_gather_ledger, tells_every_kind_with_every_outcome) {
  qv::qv_import_ledger ledger;
  ledger.add(
      {qv::qv_import_ledger::kind::surface, "s1", qv::qv_import_ledger::outcome::kept, "", 2.0});
  ledger.add({qv::qv_import_ledger::kind::surface, "s2", qv::qv_import_ledger::outcome::dropped,
              "no area", 0.0});
  ledger.add({qv::qv_import_ledger::kind::zone, "z", qv::qv_import_ledger::outcome::kept, "", 0.0});
  ledger.add_wall_area(2.0, false);
  const auto gathered = qv::qv_gather_ledger(ledger);
  EXPECT_EQ(gathered.tallies.size(), static_cast<std::size_t>(qv::qv_import_ledger::kind_count *
                                                              qv::qv_import_ledger::outcome_count));
  EXPECT_TRUE(gathered.balance.balanced);
  EXPECT_EQ(gathered.balance.source, 2.0);
  ASSERT_EQ(gathered.fates.size(), 3u);
  EXPECT_EQ(gathered.fates[1].reason, "no area");
  EXPECT_EQ(gathered.fates[1].area, 0.0);            // a surface has an area, be it none
  EXPECT_FALSE(gathered.fates[2].area.has_value());  // a zone has none
}

}  // namespace
