#include "utilities/qv_plain_difference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "utilities/qv_plane_snap.h"
#include "utilities/qv_polygon_overlay.h"
#include "utilities/qv_random.h"

using namespace qv;

namespace {

plane::ring make_rectangle(double min_a, double min_b, double max_a, double max_b) {
  return {{min_a, min_b}, {max_a, min_b}, {max_a, max_b}, {min_a, max_b}};
}

plane::region make_region(const std::vector<plane::ring>& contours) {
  return plane::normalise(contours);
}

bool is_same(const plane::ring& p, const plane::ring& q) {
  return std::equal(
      p.begin(), p.end(), q.begin(), q.end(),
      [](const plane::point& a, const plane::point& b) { return a.a == b.a && a.b == b.b; });
}

// Contours, their order and their first points.
bool is_same(const plane::region& p, const plane::region& q) {
  return std::equal(
      p.begin(), p.end(), q.begin(), q.end(), [](const plane::part& a, const plane::part& b) {
        return is_same(a.outer, b.outer) &&
               std::equal(a.holes.begin(), a.holes.end(), b.holes.begin(), b.holes.end(),
                          [](const plane::ring& c, const plane::ring& d) { return is_same(c, d); });
      });
}

// Whether the plain way was taken. It must agree with the overlay.
bool takes_plain_way(plane::region left, plane::region right) {
  if (left.empty() || right.empty()) return false;
  plane::snap(left, right);
  const auto plain = plane::subtract_plainly(left, right);
  if (!plain) return false;
  const plane::region slow = plane::overlay(plane::boolean_operation::subtract, left, right);
  EXPECT_TRUE(is_same(*plain, slow)) << plain->size() << " parts instead of " << slow.size();
  return true;
}

plane::ring turned(plane::ring contour, double angle) {
  for (plane::point& p : contour)
    p = {p.a * std::cos(angle) - p.b * std::sin(angle),
         p.a * std::sin(angle) + p.b * std::cos(angle)};
  return contour;
}

const plane::ring wall = make_rectangle(0, 0, 6, 3);

}  // namespace

TEST(qv_plain_difference, a_door_leaves_a_notch) {
  EXPECT_TRUE(takes_plain_way(make_region({wall}), make_region({make_rectangle(1, 0, 2, 2)})));
}

TEST(qv_plain_difference, a_door_and_a_window_leave_a_notch_and_a_hole) {
  EXPECT_TRUE(takes_plain_way(make_region({wall}),
                              make_region({make_rectangle(1, 0, 2, 2), make_rectangle(3, 1, 4, 2),
                                           make_rectangle(5, 1, 5.5, 2)})));
}

TEST(qv_plain_difference, openings_in_the_corners) {
  EXPECT_TRUE(takes_plain_way(make_region({wall}), make_region({make_rectangle(0, 0, 2, 2)})));
  EXPECT_TRUE(takes_plain_way(
      make_region({wall}), make_region({make_rectangle(5, 2, 6, 3), make_rectangle(0, 0, 6, 1)})));
}

TEST(qv_plain_difference, a_strip_from_border_to_border_leaves_two_parts) {
  EXPECT_TRUE(takes_plain_way(make_region({wall}), make_region({make_rectangle(2, 0, 3, 3)})));
  EXPECT_TRUE(takes_plain_way(make_region({wall}), make_region({make_rectangle(0, 1, 6, 2)})));
}

TEST(qv_plain_difference, a_pane_as_large_as_the_wall_leaves_nothing) {
  EXPECT_TRUE(takes_plain_way(make_region({wall}), make_region({wall})));
}

TEST(qv_plain_difference, leaves_to_the_overlay_what_is_not_plain) {
  const auto is_left = [](const plane::ring& contour) {
    return !takes_plain_way(make_region({wall}), make_region({contour}));
  };
  EXPECT_TRUE(is_left(make_rectangle(-1, 1, 2, 2)));  // beyond the border
  EXPECT_TRUE(is_left({{3, 0}, {4, 2}, {2, 2}}));     // touches with a corner alone
  EXPECT_TRUE(is_left({{0, 0}, {6, 3}, {0, 3.5}}));   // beyond it between two corners
  EXPECT_FALSE(takes_plain_way({{wall, {turned(make_rectangle(1, 1, 2, 2), 0)}}},
                               make_region({make_rectangle(4, 0, 5, 2)})));  // a hole already
  // A window that a wall with a re-entrant corner does not see as a whole.
  EXPECT_FALSE(takes_plain_way(make_region({{{0, 0}, {6, 0}, {6, 3}, {3, 3}, {3, 1}, {0, 1}}}),
                               make_region({make_rectangle(2, 0.2, 5, 0.8)})));
}

// Walls of any direction with openings at random places of a coarse grid, many of them on the
// border.
TEST(qv_plain_difference, agrees_with_the_overlay) {
  constexpr int seed = 20261122;
  SCOPED_TRACE(seed);
  qv_random random(seed);
  const auto pick = [&random](int count) {
    return static_cast<double>(static_cast<int>(random.dice_double() * count));
  };
  int plain = 0;
  for (int i = 0; i < 400; ++i) {
    const double angle = i % 2 == 0 ? 0 : random.dice_double() * 3;
    plane::ring outline = make_rectangle(0, 0, 6, 4);
    if (i % 3 == 0) outline[2].a = 4;                                 // a slanting side
    if (i % 5 == 0) outline.insert(outline.begin() + 3, {3.0, 5.0});  // a gable
    std::vector<plane::ring> openings;
    const int count = 1 + static_cast<int>(pick(3));
    for (int k = 0; k < count; ++k) {
      const double a = pick(5);
      const double b = pick(3);
      openings.push_back(turned(make_rectangle(a, b, a + 1 + pick(2), b + 1 + pick(2)), angle));
    }
    if (takes_plain_way(make_region({turned(outline, angle)}), make_region(openings))) ++plain;
  }
  EXPECT_GT(plain, 100);
}
