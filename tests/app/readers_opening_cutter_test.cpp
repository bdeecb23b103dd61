#include "app/readers/qv_opening_cutter.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using qv::qv_polygon;

// A rectangle in the wall y = 0, seen from the south, counter-clockwise unless `clockwise`.
qv_polygon pane(float x0, float x1, float z0, float z1, bool clockwise = false) {
  qv_polygon polygon({0, 0, 0}, {0, -1, 0});
  if (clockwise) {
    polygon.add_contour({{x0, 0, z0}, {x0, 0, z1}, {x1, 0, z1}, {x1, 0, z0}});
  } else {
    polygon.add_contour({{x0, 0, z0}, {x1, 0, z0}, {x1, 0, z1}, {x0, 0, z1}});
  }
  return polygon;
}

const qv_polygon wall = pane(0, 10, 0, 3);

double sum_of(const qv::qv_cut_face& cut) {
  double sum = cut.rest.get_area();
  for (const auto& opening : cut.openings) sum += opening.region.get_area();
  return sum;
}

}  // namespace

TEST(qv_opening_cutter, panes_clear_of_everything_become_holes) {
  const auto cut = qv::qv_cut_openings(wall, {pane(1, 2, 1, 2), pane(3, 5, 1, 2, true)});
  EXPECT_EQ(cut.rest.get_contour_count(), 3);
  EXPECT_FLOAT_EQ(cut.rest.get_area(), 27);
  EXPECT_FLOAT_EQ(cut.openings[0].region.get_area(), 1);
  EXPECT_FLOAT_EQ(cut.openings[1].region.get_area(), 2);
  for (const auto& opening : cut.openings) {
    EXPECT_EQ(opening.outside, 0);
    EXPECT_EQ(opening.covered, 0);
  }
}

TEST(qv_opening_cutter, a_door_on_the_floor_leaves_a_notch) {
  const auto cut = qv::qv_cut_openings(wall, {pane(4, 5, 0, 2)});
  EXPECT_EQ(cut.rest.get_contour_count(), 1);
  EXPECT_FLOAT_EQ(cut.rest.get_area(), 28);
}

TEST(qv_opening_cutter, cuts_off_what_lies_outside) {
  const auto cut = qv::qv_cut_openings(wall, {pane(9, 12, 1, 2), pane(-3, -1, 1, 2)});
  EXPECT_FLOAT_EQ(cut.openings[0].region.get_area(), 1);
  EXPECT_NEAR(cut.openings[0].outside, 2, 1e-6);
  EXPECT_EQ(cut.openings[1].region.get_contour_count(), 0);
  EXPECT_NEAR(cut.openings[1].outside, 2, 1e-6);
  EXPECT_FLOAT_EQ(cut.rest.get_area(), 29);
}

TEST(qv_opening_cutter, an_opening_larger_than_the_face_is_the_face) {
  const auto cut = qv::qv_cut_openings(wall, {pane(-1, 11, -1, 4)});
  EXPECT_TRUE(cut.rest.is_empty());
  EXPECT_FLOAT_EQ(cut.openings[0].region.get_area(), 30);
  EXPECT_NEAR(cut.openings[0].outside, 30, 1e-4);
}

TEST(qv_opening_cutter, a_pane_in_a_door_keeps_its_place_whatever_the_order) {
  const qv_polygon door = pane(4, 5, 0, 2);
  const qv_polygon glass = pane(4.25F, 4.75F, 1, 1.5F);
  for (const bool door_first : {true, false}) {
    const auto cut = door_first ? qv::qv_cut_openings(wall, {door, glass})
                                : qv::qv_cut_openings(wall, {glass, door});
    const auto& leaf = cut.openings[door_first ? 0 : 1];
    const auto& light = cut.openings[door_first ? 1 : 0];
    EXPECT_FLOAT_EQ(light.region.get_area(), 0.25F);
    EXPECT_FLOAT_EQ(leaf.region.get_area(), 1.75F);
    EXPECT_NEAR(leaf.covered, 0.25, 1e-6);
    EXPECT_EQ(leaf.covered_by, std::vector<int>{door_first ? 1 : 0});
    EXPECT_FLOAT_EQ(cut.rest.get_area(), 28);
  }
}

TEST(qv_opening_cutter, of_two_equal_panes_the_later_one_gives_way) {
  const auto cut = qv::qv_cut_openings(wall, {pane(1, 3, 1, 2), pane(2, 4, 1, 2)});
  EXPECT_FLOAT_EQ(cut.openings[0].region.get_area(), 2);
  EXPECT_FLOAT_EQ(cut.openings[1].region.get_area(), 1);
  EXPECT_NEAR(cut.openings[1].covered, 1, 1e-6);
}

TEST(qv_opening_cutter, a_hundred_panels_side_by_side_take_the_whole_wall) {
  std::vector<qv_polygon> panels;
  for (int i = 0; i < 20; ++i)
    for (int k = 0; k < 5; ++k) {
      const auto x = static_cast<float>(i) * 0.5F;
      const auto z = static_cast<float>(k) * 0.6F;
      panels.push_back(pane(x, x + 0.5F, z, z + 0.6F));
    }
  const auto cut = qv::qv_cut_openings(wall, panels);
  EXPECT_NEAR(cut.rest.get_area(), 0, 3e-4);
  EXPECT_NEAR(sum_of(cut), 30, 3e-4);
  for (const auto& opening : cut.openings) EXPECT_NEAR(opening.region.get_area(), 0.3, 1e-5);
}

TEST(qv_opening_cutter, an_opening_without_area_takes_nothing) {
  const auto cut = qv::qv_cut_openings(wall, {pane(4, 4, 0, 2), qv_polygon({0, 0, 0}, {0, -1, 0})});
  EXPECT_FLOAT_EQ(cut.rest.get_area(), 30);
  EXPECT_EQ(cut.openings[1].region.get_contour_count(), 0);
}

TEST(qv_opening_cutter, what_is_left_and_the_openings_add_up_to_any_face) {
  const unsigned int seed = 20231;
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  const auto between = [&random](double low, double high) {
    return static_cast<float>(low + (high - low) * (static_cast<double>(random()) / 4294967296.0));
  };
  // An L, which is not convex, far from the origin.
  const auto shifted = [](float x, float z) { return qv::qv_3dvector(x + 200, 0, z - 80); };
  qv_polygon corner({200, 0, -80}, {0, -1, 0});
  corner.add_contour(
      {shifted(0, 0), shifted(10, 0), shifted(10, 3), shifted(6, 3), shifted(6, 6), shifted(0, 6)});
  for (int round = 0; round < 60; ++round) {
    std::vector<qv_polygon> openings;
    const int count = 1 + static_cast<int>(random() % 6);
    for (int i = 0; i < count; ++i) {
      const float x = between(-1, 9);
      const float z = between(-1, 5);
      const float width = between(0.3, 3);
      const float height = between(0.3, 3);
      qv_polygon opening({200, 0, -80}, {0, -1, 0});
      opening.add_contour({shifted(x, z), shifted(x + width, z), shifted(x + width, z + height),
                           shifted(x, z + height)});
      openings.push_back(opening);
    }
    const auto cut = qv::qv_cut_openings(corner, openings);
    EXPECT_NEAR(sum_of(cut), corner.get_area(), 1e-5 * corner.get_area()) << round;
    qv_polygon all({200, 0, -80}, {0, -1, 0});
    for (const qv_polygon& opening : openings) all.unites(opening);
    all.intersects(corner);
    EXPECT_NEAR(cut.rest.get_area() + all.get_area(), corner.get_area(), 1e-3) << round;
    for (const auto& opening : cut.openings)
      EXPECT_NEAR(opening.region.get_area(), opening.asked - opening.outside - opening.covered,
                  1e-4);
  }
}

TEST(qv_opening_cutter, takes_an_opening_with_its_reveal_for_the_same) {
  EXPECT_TRUE(qv::qv_is_same_opening(pane(1, 2, 1, 2), pane(1, 2, 1, 2, true)));
  EXPECT_TRUE(qv::qv_is_same_opening(pane(1, 2, 1, 2), pane(0.99F, 2.01F, 0.99F, 2.01F)));
  EXPECT_FALSE(qv::qv_is_same_opening(pane(1, 2, 1, 2), pane(1.2F, 2.2F, 1, 2)));
  EXPECT_FALSE(qv::qv_is_same_opening(pane(1, 2, 1, 2), pane(1, 2, 1, 1.5F)));
}
