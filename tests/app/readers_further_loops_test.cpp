#include "app/readers/qv_further_loops.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"
#include "core/shapes/qvi_polygon.h"
#include "tests/app/qv_gbxml_text.h"

namespace {

using point = qv_gbxml_text::point;
using kind = qv::qv_import_ledger::kind;
using outcome = qv::qv_import_ledger::outcome;

std::vector<point> level(double x0, double x1, double y0, double y1, double z = 3) {
  return {{x0, y0, z}, {x1, y0, z}, {x1, y1, z}, {x0, y1, z}};
}

std::vector<point> reversed(std::vector<point> corners) {
  std::reverse(corners.begin(), corners.end());
  return corners;
}

// A roof of these loops; the first is 10 m by 6 m.
qv::qv_gbxml_model read_roof(const std::vector<std::vector<point>>& further,
                             const std::string& openings = {}) {
  std::string loops = qv_gbxml_text::loop(level(0, 10, 0, 6));
  for (const auto& loop : further) loops += qv_gbxml_text::loop(loop);
  return qv_gbxml_text()
      .space("a")
      .surface("r", "Roof", {"a"}, "<PlanarGeometry>" + loops + "</PlanarGeometry>" + openings)
      .read();
}

qv::qv_list<qv::qvi_wall*> walls_of(const qv::qv_gbxml_model& model) {
  return qv::qv_collect<qv::qvi_wall>(model.root, "wall");
}

// Area of each wall, "60 4 ".
std::string areas_of(const qv::qv_gbxml_model& model) {
  std::string text;
  for (const qv::qvi_wall* wall : walls_of(model)) {
    const double area = wall->get_face_0()->get_area();
    EXPECT_NEAR(area, std::round(area), 1e-4);
    text += std::to_string(std::lround(area)) + " ";
  }
  return text;
}

void expect(const qv::qv_gbxml_model& model, const std::string& areas, const char* reason) {
  SCOPED_TRACE(reason);
  EXPECT_EQ(areas_of(model), areas);
  const auto entry = qv_find_entry(model.ledger, kind::surface, "r");
  EXPECT_EQ(entry.result, outcome::repaired);
  EXPECT_NE(entry.reason.find(reason), std::string::npos) << entry.reason;
  EXPECT_TRUE(model.ledger.get_balance().is_balanced());
  for (const qv::qvi_wall* wall : walls_of(model)) EXPECT_GT(wall->get_normal().z, 0.9);
}

}  // namespace

TEST(qv_further_loops, one_within_is_a_hole_whichever_way_it_runs) {
  for (const auto& hole : {level(2, 4, 2, 4), reversed(level(2, 4, 2, 4))}) {
    const auto model = read_roof({hole});
    expect(model, "56 ", "its further loops are holes");
    EXPECT_EQ(walls_of(model)[0]->get_face_0()->get_contour_sizes().get_count(), 2);
  }
}

TEST(qv_further_loops, several_are_several_holes) {
  expect(read_roof({level(2, 4, 2, 4), level(6, 8, 2, 4), level(8, 9, 2, 4)}), "50 ",
         "its further loops are holes");
}

TEST(qv_further_loops, one_within_that_touches_the_border_is_a_notch) {
  expect(read_roof({level(8, 10, 0, 6)}), "48 ", "its further loops are holes");
}

TEST(qv_further_loops, one_beside_is_a_wall_of_its_own) {
  expect(read_roof({level(20, 22, 0, 2)}), "60 4 ", "its further loops are pieces of their own");
  expect(read_roof({reversed(level(20, 22, 0, 2))}), "60 4 ",
         "its further loops are pieces of their own");
}

TEST(qv_further_loops, one_in_another_plane_is_a_wall_of_its_own) {
  expect(read_roof({level(2, 4, 2, 4, 5)}), "60 4 ", "its further loops are pieces of their own");
}

TEST(qv_further_loops, one_said_twice_changes_nothing) {
  expect(read_roof({level(0, 10, 0, 6)}), "60 ", "a loop was said twice");
  expect(read_roof({reversed(level(0, 10, 0, 6))}), "60 ", "a loop was said twice");
}

TEST(qv_further_loops, of_one_that_overlaps_only_the_rest_counts) {
  expect(read_roof({level(9, 12, 0, 2)}), "60 4 ", "a further loop overlapped another one");
}

TEST(qv_further_loops, one_that_bounds_nothing_is_left_out) {
  expect(read_roof({{{0, 0, 3}, {1, 0, 3}}}), "60 ",
         "a further loop was left out: it has fewer than three distinct points");
}

TEST(qv_further_loops, the_outline_of_an_opening_is_no_hole) {
  const std::string opening = "<Opening id=\"o\" openingType=\"FixedSkylight\">" +
                              qv_gbxml_text::planar(level(2, 4, 2, 4)) + "</Opening>";
  const auto model = read_roof({reversed(level(2, 4, 2, 4)), level(6, 8, 2, 4)}, opening);
  expect(model, "56 ", "a further loop is the outline of an Opening");
  EXPECT_EQ(qv::qv_collect<qv::qvi_opening>(model.root, "opening").get_count(), 1);
  EXPECT_NEAR(walls_of(model)[0]->get_pierced_face_0()->get_area(), 52, 1e-4);
}

TEST(qv_further_loops, an_opening_has_holes_too) {
  const std::string ring = "<Opening id=\"o\" openingType=\"FixedSkylight\"><PlanarGeometry>" +
                           qv_gbxml_text::loop(level(2, 5, 2, 5)) +
                           qv_gbxml_text::loop(level(3, 4, 3, 4)) + "</PlanarGeometry></Opening>";
  const auto model = read_roof({}, ring);
  EXPECT_NEAR(qv_find_entry(model.ledger, kind::opening, "o").area, 8, 1e-6);
  EXPECT_NEAR(walls_of(model)[0]->get_pierced_face_0()->get_area(), 52, 1e-4);
  EXPECT_TRUE(model.ledger.get_opening_balance().is_balanced());
}
