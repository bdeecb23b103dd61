#include "app/readers/qv_import_ledger.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using qv::qv_import_ledger;
using kind = qv_import_ledger::kind;
using outcome = qv_import_ledger::outcome;

}  // namespace

TEST(qv_import_ledger, an_empty_one_is_balanced) {
  const qv_import_ledger ledger;
  EXPECT_EQ(ledger.get_balance().get_relative_error(), 0);
  EXPECT_TRUE(ledger.get_balance().is_balanced());
}

TEST(qv_import_ledger, an_outcome_only_moves_away_from_kept) {
  qv_import_ledger ledger;
  const auto at = ledger.add({kind::surface, "s", outcome::kept, "", 1, 7});
  ledger.amend(at, outcome::repaired, "turned");
  ledger.amend(at, outcome::kept, "noted");
  EXPECT_EQ(ledger.get_entries()[at].result, outcome::repaired);
  EXPECT_EQ(ledger.get_entries()[at].reason, "turned; noted");
  ledger.amend(at, outcome::dropped, "turned");
  EXPECT_EQ(ledger.get_entries()[at].result, outcome::dropped);
  EXPECT_EQ(ledger.get_entries()[at].reason, "turned; noted");
}

TEST(qv_import_ledger, counts_and_sums_by_kind_and_outcome) {
  qv_import_ledger ledger;
  ledger.add({kind::surface, "a", outcome::kept, "", 10, 0});
  ledger.add({kind::surface, "b", outcome::merged, "", 4, 0});
  ledger.add({kind::opening, "c", outcome::not_read, "", 2, 0});
  EXPECT_EQ(ledger.get_count(kind::surface), 2U);
  EXPECT_EQ(ledger.get_count(kind::surface, outcome::merged), 1U);
  EXPECT_EQ(ledger.get_count(kind::opening, outcome::not_read), 1U);
  EXPECT_EQ(ledger.get_area(kind::surface), 14);
  EXPECT_EQ(ledger.get_area(kind::surface, outcome::kept), 10);
}

TEST(qv_import_ledger, holds_the_source_against_walls_merged_and_dropped) {
  qv_import_ledger ledger;
  ledger.add({kind::surface, "a", outcome::kept, "", 10, 0});
  ledger.add({kind::surface, "b", outcome::repaired, "", 5, 0});
  ledger.add({kind::surface, "c", outcome::merged, "", 4, 0});
  ledger.add({kind::surface, "d", outcome::dropped, "", 1, 0});
  ledger.add_wall_area(10, false);
  EXPECT_FALSE(ledger.get_balance().is_balanced());
  EXPECT_NEAR(ledger.get_balance().get_relative_error(), -5.0 / 20, 1e-15);
  ledger.add_wall_area(5, true);
  EXPECT_TRUE(ledger.get_balance().is_balanced());
  EXPECT_EQ(ledger.get_balance().shading, 5);
  ledger.add_wall_area(1e-4, false);
  EXPECT_FALSE(ledger.get_balance().is_balanced());
}

TEST(qv_import_ledger, walls_from_nothing_are_no_balance) {
  qv_import_ledger ledger;
  ledger.add_wall_area(1, false);
  EXPECT_FALSE(ledger.get_balance().is_balanced());
}

TEST(qv_import_ledger, names_kinds_as_the_format_does) {
  EXPECT_STREQ(qv_import_ledger::get_kind_name(kind::space), "Space");
  EXPECT_STREQ(qv_import_ledger::get_kind_name(kind::zone), "Zone");
  EXPECT_STREQ(qv_import_ledger::get_outcome_name(outcome::kept), "kept");
  EXPECT_STREQ(qv_import_ledger::get_outcome_name(outcome::not_read), "not read yet");
}
