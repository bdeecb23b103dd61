#include "utilities/qv_plane_snap.h"

#include <gtest/gtest.h>

#include "utilities/qv_tolerances.h"

using namespace qv;

namespace {

constexpr double near = tolerance::vertex_snap / 2;
constexpr double far = tolerance::vertex_snap * 2;

plane::region make_rectangle(double min_a, double min_b, double max_a, double max_b) {
  return {{{{min_a, min_b}, {max_a, min_b}, {max_a, max_b}, {min_a, max_b}}, {}}};
}

bool has(const plane::region& pieces, double a, double b) {
  for (const plane::point& p : pieces[0].outer)
    if (p.a == a && p.b == b) return true;
  return false;
}

}  // namespace

TEST(qv_plane_snap, moves_vertices_of_the_right_onto_those_of_the_left) {
  plane::region left = make_rectangle(0, 0, 2, 2);
  plane::region right = make_rectangle(2 + near, -near, 4, 2);
  left[0].outer[1].source = 5;
  plane::snap(left, right);
  EXPECT_TRUE(has(right, 2, 0));
  EXPECT_TRUE(has(right, 2, 2));
  EXPECT_EQ(right[0].outer[0].source, 5);
  EXPECT_EQ(right[0].outer.size(), 4u);
  EXPECT_EQ(left[0].outer.size(), 4u);
}

TEST(qv_plane_snap, leaves_what_is_farther_away) {
  plane::region left = make_rectangle(0, 0, 2, 2);
  plane::region right = make_rectangle(2 + far, 0, 4, 2);
  plane::snap(left, right);
  EXPECT_TRUE(has(right, 2 + far, 0));
  EXPECT_EQ(left[0].outer.size(), 4u);
}

TEST(qv_plane_snap, inserts_vertices_into_edges_that_they_nearly_touch) {
  plane::region left = make_rectangle(0, 0, 2, 4);
  plane::region right = make_rectangle(2 + near, 1, 4, 3);
  plane::snap(left, right);
  EXPECT_TRUE(has(left, 2 + near, 1));
  EXPECT_TRUE(has(left, 2 + near, 3));
  EXPECT_EQ(left[0].outer.size(), 6u);
  EXPECT_GT(plane::signed_area(left[0].outer), 0);
  EXPECT_EQ(right[0].outer.size(), 4u);
}

TEST(qv_plane_snap, exact_contact_needs_no_change) {
  plane::region left = make_rectangle(0, 0, 2, 4);
  plane::region right = make_rectangle(2, 1, 4, 3);
  plane::snap(left, right);
  EXPECT_EQ(left[0].outer.size(), 4u);
  EXPECT_EQ(right[0].outer.size(), 4u);
}

TEST(qv_plane_snap, a_region_thinner_than_the_reach_may_vanish) {
  plane::region left = make_rectangle(0, 0, 2, 2);
  plane::region right = make_rectangle(2 - near / 2, 0, 2 + near / 2, 2);
  plane::snap(left, right);
  EXPECT_TRUE(right.empty());
}
