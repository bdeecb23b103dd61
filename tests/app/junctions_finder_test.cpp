#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <random>
#include <set>

#include "app/junctions/qv_junction_finder.h"

namespace {

using qv::dot;
using qv::length;
using qv::qv_double3;
using qv::qv_find_junctions;
using qv::qv_junction;
using qv::qv_wall_outline;

constexpr double tolerance = 1e-9;

qv_wall_outline outline(const std::vector<qv_double3>& corners) {
  return {{corners}};
}

// A rectangle by three of its corners, from `a` to `b` to `c`.
qv_wall_outline rectangle(const qv_double3& a, const qv_double3& b, const qv_double3& c) {
  return outline({a, b, c, a + c - b});
}

// Floor, roof, and the walls towards −y, +x, +y, −x.
std::vector<qv_wall_outline> box(const qv_double3& low, const qv_double3& high) {
  const auto at = [&](int x, int y, int z) {
    return qv_double3(x == 0 ? low.x : high.x, y == 0 ? low.y : high.y, z == 0 ? low.z : high.z);
  };
  return {rectangle(at(0, 0, 0), at(0, 1, 0), at(1, 1, 0)),
          rectangle(at(0, 0, 1), at(1, 0, 1), at(1, 1, 1)),
          rectangle(at(0, 0, 0), at(1, 0, 0), at(1, 0, 1)),
          rectangle(at(1, 0, 0), at(1, 1, 0), at(1, 1, 1)),
          rectangle(at(1, 1, 0), at(0, 1, 0), at(0, 1, 1)),
          rectangle(at(0, 1, 0), at(0, 0, 0), at(0, 0, 1))};
}

double length_of(const qv_junction& junction) {
  return length(junction.point_1 - junction.point_0);
}

double total_length(const std::vector<qv_junction>& junctions) {
  return std::accumulate(junctions.begin(), junctions.end(), 0.0,
                         [](double sum, const auto& j) { return sum + length_of(j); });
}

std::set<int> walls_of(const qv_junction& junction) {
  std::set<int> walls;
  for (const auto& branch : junction.branches) walls.insert(branch.wall);
  return walls;
}

const qv_double3* direction_of(const qv_junction& junction, int wall) {
  for (const auto& branch : junction.branches)
    if (branch.wall == wall) return &branch.direction;
  return nullptr;
}

void expect_near(const qv_double3& a, const qv_double3& b, double within = tolerance) {
  EXPECT_NEAR(a.x, b.x, within);
  EXPECT_NEAR(a.y, b.y, within);
  EXPECT_NEAR(a.z, b.z, within);
}

void turn(std::vector<qv_wall_outline>& walls, double yaw, double pitch) {
  for (auto& wall : walls) {
    for (auto& contour : wall.contours) {
      for (qv_double3& p : contour) {
        p = {p.x * std::cos(yaw) - p.y * std::sin(yaw), p.x * std::sin(yaw) + p.y * std::cos(yaw),
             p.z};
        p = {p.x, p.y * std::cos(pitch) - p.z * std::sin(pitch),
             p.y * std::sin(pitch) + p.z * std::cos(pitch)};
      }
    }
  }
}

TEST(qv_find_junctions, finds_each_edge_of_a_box_once) {
  const auto junctions = qv_find_junctions(box({0, 0, 0}, {4, 5, 3}));
  ASSERT_EQ(junctions.size(), 12u);
  EXPECT_NEAR(total_length(junctions), 4 * (4 + 5 + 3), tolerance);
  std::set<std::set<int>> pairs;
  for (const auto& junction : junctions) {
    EXPECT_EQ(junction.branches.size(), 2u);
    pairs.insert(walls_of(junction));
  }
  EXPECT_EQ(pairs.size(), 12u);
}

TEST(qv_find_junctions, says_in_which_direction_each_wall_leaves) {
  const auto junctions = qv_find_junctions(box({0, 0, 0}, {4, 5, 3}));
  const qv_junction& lowest = junctions[0];  // along −x at the bottom: floor and west wall
  ASSERT_EQ(walls_of(lowest), (std::set<int>{0, 5}));
  expect_near(lowest.point_0, {0, 0, 0});
  expect_near(lowest.point_1, {0, 5, 0});
  expect_near(*direction_of(lowest, 0), {1, 0, 0});
  expect_near(*direction_of(lowest, 5), {0, 0, 1});
  EXPECT_EQ(lowest.branches[0].wall, 5);  // what rises comes first
}

TEST(qv_find_junctions, does_not_mind_which_way_walls_are_wound) {
  auto walls = box({0, 0, 0}, {4, 5, 3});
  const auto before = qv_find_junctions(walls);
  for (const int turned : {0, 2, 3})
    std::reverse(walls[static_cast<std::size_t>(turned)].contours[0].begin(),
                 walls[static_cast<std::size_t>(turned)].contours[0].end());
  const auto after = qv_find_junctions(walls);
  ASSERT_EQ(before.size(), after.size());
  for (std::size_t i = 0; i < before.size(); ++i) {
    EXPECT_EQ(walls_of(before[i]), walls_of(after[i]));
    for (const auto& branch : before[i].branches) {
      ASSERT_NE(direction_of(after[i], branch.wall), nullptr);
      expect_near(branch.direction, *direction_of(after[i], branch.wall));
    }
  }
}

TEST(qv_find_junctions, cuts_where_the_set_of_walls_changes) {
  // A floor of 10 m, with walls of 4 m and 6 m on its edge, and a third one on the last 3 m.
  const std::vector<qv_wall_outline> walls = {
      rectangle({0, 0, 0}, {0, 5, 0}, {10, 5, 0}), rectangle({0, 0, 0}, {4, 0, 0}, {4, 0, 3}),
      rectangle({4, 0, 0}, {10, 0, 0}, {10, 0, 3}), rectangle({7, 0, 0}, {10, 0, 0}, {10, 0, -3})};
  std::map<std::set<int>, double> lengths;
  for (const auto& junction : qv_find_junctions(walls))
    lengths[walls_of(junction)] += length_of(junction);
  const std::map<std::set<int>, double> expected = {
      {{0, 1}, 4.0}, {{0, 2}, 3.0}, {{0, 2, 3}, 3.0}, {{1, 2}, 3.0}};
  ASSERT_EQ(lengths.size(), expected.size());
  for (const auto& [set, sum] : expected) EXPECT_NEAR(lengths[set], sum, tolerance);
}

TEST(qv_find_junctions, does_not_cut_at_corners_that_change_nothing) {
  // The floor's edge has a corner in the middle, and so has the wall's, elsewhere.
  const auto junctions =
      qv_find_junctions({outline({{0, 0, 0}, {0, 5, 0}, {10, 5, 0}, {10, 0, 0}, {6, 0, 0}}),
                         outline({{0, 0, 0}, {3, 0, 0}, {10, 0, 0}, {10, 0, 3}, {0, 0, 3}})});
  ASSERT_EQ(junctions.size(), 1u);
  EXPECT_NEAR(length_of(junctions[0]), 10.0, tolerance);
}

TEST(qv_find_junctions, finds_edges_that_lie_in_a_face) {
  // A partition against the middle of a façade, from the floor of the storey to its ceiling.
  const auto junctions = qv_find_junctions(
      {rectangle({0, 0, 0}, {10, 0, 0}, {10, 0, 3}), rectangle({4, 0, 0}, {4, 5, 0}, {4, 5, 3})});
  ASSERT_EQ(junctions.size(), 1u);
  expect_near(junctions[0].point_0, {4, 0, 0});
  expect_near(junctions[0].point_1, {4, 0, 3});
  expect_near(*direction_of(junctions[0], 1), {0, 1, 0});
  expect_near(*direction_of(junctions[0], 0), {1, 0, 0});  // where 6 of its 10 m are
}

TEST(qv_find_junctions, lets_a_wall_that_passes_leave_upwards) {
  // A low roof against a high façade.
  const auto junctions = qv_find_junctions(
      {rectangle({0, 0, 0}, {10, 0, 0}, {10, 0, 9}), rectangle({2, 0, 3}, {2, -4, 3}, {8, -4, 3})});
  ASSERT_EQ(junctions.size(), 1u);
  EXPECT_NEAR(length_of(junctions[0]), 6.0, tolerance);
  expect_near(*direction_of(junctions[0], 0), {0, 0, 1});
  expect_near(*direction_of(junctions[0], 1), {0, -1, 0});
}

TEST(qv_find_junctions, sees_the_part_of_an_edge_that_lies_in_a_face_with_a_hole) {
  qv_wall_outline slab = rectangle({0, 0, 0}, {10, 0, 0}, {10, 10, 0});
  slab.contours.push_back({{4, 4, 0}, {4, 6, 0}, {6, 6, 0}, {6, 4, 0}});
  const auto junctions = qv_find_junctions({slab, rectangle({0, 5, 0}, {10, 5, 0}, {10, 5, 3})});
  ASSERT_EQ(junctions.size(), 2u);  // on either side of the stairwell
  EXPECT_NEAR(length_of(junctions[0]), 4.0, tolerance);
  EXPECT_NEAR(length_of(junctions[1]), 4.0, tolerance);
}

TEST(qv_find_junctions, bridges_gaps_of_millimetres_and_no_more) {
  const auto pair = [](double gap) {
    return qv_find_junctions({rectangle({0, 0, 0}, {0, 5, 0}, {10, 5, 0}),
                              rectangle({0, -gap, 0}, {10, -gap, 0}, {10, -gap, 3})});
  };
  EXPECT_EQ(pair(0.004).size(), 1u);
  EXPECT_EQ(pair(0.006).size(), 0u);
}

TEST(qv_find_junctions, does_not_join_edges_that_would_meet_if_they_were_longer) {
  // Two slabs 18 cm apart, whose edges are a hair from parallel.
  EXPECT_TRUE(qv_find_junctions({rectangle({0, 0, 0}, {10, 0.001, 0}, {10, 5, 0}),
                                 rectangle({2, -0.18, 0}, {4, -0.18, 0}, {4, -3, 0})})
                  .empty());
}

TEST(qv_find_junctions, takes_no_point_and_no_crossing_for_a_junction) {
  // Two walls that touch at a corner only, and two that cross in the middle of their faces.
  EXPECT_TRUE(qv_find_junctions({rectangle({0, 0, 0}, {4, 0, 0}, {4, 0, 3}),
                                 rectangle({4, 0, 3}, {8, 0, 3}, {8, 0, 6})})
                  .empty());
  EXPECT_TRUE(qv_find_junctions({rectangle({0, 0, 0}, {4, 0, 0}, {4, 0, 3}),
                                 rectangle({2, -2, 1}, {2, 2, 1}, {2, 2, 2})})
                  .empty());
}

TEST(qv_find_junctions, finds_walls_that_continue_each_other) {
  const auto junctions = qv_find_junctions(
      {rectangle({0, 0, 0}, {4, 0, 0}, {4, 0, 3}), rectangle({4, 0, 0}, {9, 0, 0}, {9, 0, 3})});
  ASSERT_EQ(junctions.size(), 1u);
  EXPECT_NEAR(dot(junctions[0].branches[0].direction, junctions[0].branches[1].direction), -1.0,
              tolerance);
}

TEST(qv_find_junctions, leaves_out_what_is_no_wall) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  auto walls = box({0, 0, 0}, {4, 5, 3});
  walls.push_back(outline({}));
  walls.push_back({});
  walls.push_back(outline({{0, 0, 0}, {4, 0, 0}}));
  walls.push_back(outline({{0, 0, 0}, {2, 0, 0}, {4, 0, 0}}));
  walls.push_back(outline({{0, 0, 0}, {4, 0, 0}, {4, 0, nan}}));
  EXPECT_EQ(qv_find_junctions(walls).size(), 12u);
  EXPECT_TRUE(qv_find_junctions({}).empty());
}

// Rooms of uneven sizes side by side and one above the other, whose floors and partitions do not
// meet corner to corner; turned as a whole.
std::vector<qv_wall_outline> uneven_block(std::mt19937& random) {
  std::vector<qv_wall_outline> walls;
  std::uniform_int_distribution<int> size(2, 5);
  for (int storey = 0; storey < 3; ++storey) {
    for (double x = 0; x < 12;) {
      const double width = std::min<double>(size(random), 12 - x);
      for (double y = 0; y < 10;) {
        const double depth = std::min<double>(size(random), 10 - y);
        auto room = box({x, y, storey * 3.0}, {x + width, y + depth, storey * 3.0 + 3});
        walls.insert(walls.end(), room.begin(), room.end());
        y += depth;
      }
      x += width;
    }
  }
  std::uniform_real_distribution<double> angle(0, 3);
  turn(walls, angle(random), angle(random));
  return walls;
}

TEST(qv_find_junctions, does_not_depend_on_the_order_of_the_walls) {
  std::mt19937 random(20261121);
  for (int round = 0; round < 5; ++round) {
    const auto walls = uneven_block(random);
    const auto expected = qv_find_junctions(walls);
    ASSERT_FALSE(expected.empty());
    std::vector<int> order(walls.size());
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), random);
    std::vector<qv_wall_outline> shuffled;
    shuffled.reserve(order.size());
    for (const int i : order) shuffled.push_back(walls[static_cast<std::size_t>(i)]);
    const auto junctions = qv_find_junctions(shuffled);
    ASSERT_EQ(junctions.size(), expected.size());
    for (std::size_t i = 0; i < junctions.size(); ++i) {
      expect_near(junctions[i].point_0, expected[i].point_0, 1e-6);
      expect_near(junctions[i].point_1, expected[i].point_1, 1e-6);
      std::set<int> walls_found;
      for (const auto& branch : junctions[i].branches) {
        const int wall = order[static_cast<std::size_t>(branch.wall)];
        walls_found.insert(wall);
        ASSERT_NE(direction_of(expected[i], wall), nullptr);
        expect_near(branch.direction, *direction_of(expected[i], wall), 1e-6);
      }
      EXPECT_EQ(walls_found, walls_of(expected[i]));
    }
  }
}

TEST(qv_find_junctions, covers_every_edge_of_a_block_of_rooms_once) {
  // Every edge of every room bounds two walls of that room at least, so the junctions are the union
  // of all edges: on each of their lines the pieces fill it without overlapping.
  std::mt19937 random(7);
  const auto walls = uneven_block(random);
  const auto junctions = qv_find_junctions(walls);
  const auto covering = [&](const qv_double3& p) {
    int count = 0;
    for (const auto& j : junctions) {
      const qv_double3 way = j.point_1 - j.point_0;
      const double place = dot(p - j.point_0, way) / dot(way, way);
      if (place > 0 && place < 1 && length(p - (j.point_0 + way * place)) < 1e-6) ++count;
    }
    return count;
  };
  for (const auto& wall : walls) {
    const auto& contour = wall.contours[0];
    for (std::size_t i = 0; i < contour.size(); ++i) {
      const qv_double3 way = contour[(i + 1) % contour.size()] - contour[i];
      for (const double share : {0.0137, 0.31, 0.5171, 0.79, 0.9863})
        EXPECT_EQ(covering(contour[i] + way * share), 1);
    }
  }
}

TEST(qv_find_junctions, keeps_every_wall_where_edges_differ_by_millimetres) {
  std::mt19937 random(99);
  auto walls = uneven_block(random);
  const auto exact = qv_find_junctions(walls);
  std::uniform_real_distribution<double> shift(-0.0008, 0.0008);
  for (auto& wall : walls)
    for (auto& p : wall.contours[0])
      p = p + qv_double3(shift(random), shift(random), shift(random));
  const auto shaken = qv_find_junctions(walls);
  EXPECT_EQ(shaken.size(), exact.size());
  EXPECT_NEAR(total_length(shaken), total_length(exact), 1e-3 * total_length(exact));
}

}  // namespace
