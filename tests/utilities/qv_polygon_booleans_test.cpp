#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <thread>
#include <vector>

#include "tests/utilities/qv_polygon_makers.h"
#include "utilities/qv_polygon.h"
#include "utilities/qv_tolerances.h"

using namespace qv;
using qv_test::contour;
using qv_test::make_polygon;
using qv_test::make_rectangle;
using qv_test::test_plane;

namespace {

qv_polygon unite(qv_polygon a, const qv_polygon& b) {
  a.unites(b);
  return a;
}

qv_polygon intersect(qv_polygon a, const qv_polygon& b) {
  a.intersects(b);
  return a;
}

qv_polygon subtract(qv_polygon a, const qv_polygon& b) {
  a.substracts(b);
  return a;
}

struct pair_of_polygons {
  test_plane plane;
  qv_polygon a;
  qv_polygon b;
};

pair_of_polygons make_random_pair(qv_random& random, float hole_size = 1) {
  const test_plane plane = qv_test::make_random_plane(random);
  const auto corners = [&random] { return 3 + static_cast<int>(random.dice() % 20); };
  const contour a = qv_test::make_star(random, corners(), 0, 0, 5);
  const contour b = qv_test::make_star(random, corners(), 6 * random.dice_float() - 3,
                                       6 * random.dice_float() - 3, 5);
  const contour hole = qv_test::make_star(random, corners(), 0, 0, hole_size);
  return {plane, plane.make_polygon({a, hole}), plane.make_polygon({b})};
}

const qv_polygon square = make_polygon({make_rectangle(0, 0, 4, 4)});
const qv_polygon shifted = make_polygon({make_rectangle(2, 2, 6, 6)});

}  // namespace

TEST(qv_polygon_booleans, of_two_squares) {
  EXPECT_EQ(unite(square, shifted).get_area(), 28);
  EXPECT_EQ(intersect(square, shifted).get_area(), 4);
  EXPECT_EQ(subtract(square, shifted).get_area(), 12);
  EXPECT_EQ(unite(square, shifted).get_contour_sizes(), qv_list<unsigned int>{8});
  EXPECT_EQ(intersect(square, shifted).get_contour_sizes(), qv_list<unsigned int>{4});
  EXPECT_EQ(subtract(square, shifted).get_contour_sizes(), qv_list<unsigned int>{6});
}

TEST(qv_polygon_booleans, keep_the_plane_of_the_receiver) {
  qv_polygon receiver({1, 1, 0}, {0, 0, -1});
  receiver.add_contour(make_rectangle(0, 0, 4, 4));
  const qv_polygon result = unite(receiver, shifted);
  EXPECT_EQ(result.get_normal(), qv_3dvector(0, 0, -1));
  EXPECT_EQ(result.get_point(), qv_3dvector(1, 1, 0));
  EXPECT_EQ(result.get_area(), 28);
  EXPECT_NEAR(qv_test::get_oriented_area(result), 28, 1e-6);
}

TEST(qv_polygon_booleans, piercing_leaves_the_outer_contour_and_a_clockwise_hole) {
  const qv_polygon window = make_polygon({make_rectangle(1, 1, 2, 2)});
  const qv_polygon wall = subtract(square, window);
  EXPECT_EQ(wall.get_contour_sizes(), (qv_list<unsigned int>{4, 4}));
  EXPECT_EQ(wall.get_area(), 15);
  EXPECT_NEAR(qv_test::get_oriented_area(wall), 15, 1e-6);
  EXPECT_EQ(unite(wall, window).get_area(), 16);
  EXPECT_EQ(unite(wall, window).get_contour_count(), 1);
}

TEST(qv_polygon_booleans, of_polygons_apart_need_no_overlay_and_orient_contours) {
  qv_polygon clockwise;
  clockwise.add_contour({{20, 0, 0}, {20, 1, 0}, {21, 1, 0}, {21, 0, 0}});
  const qv_polygon both = unite(square, clockwise);
  EXPECT_EQ(both.get_contour_count(), 2);
  EXPECT_NEAR(qv_test::get_oriented_area(both), 17, 1e-6);
  EXPECT_EQ(subtract(square, clockwise).get_area(), 16);
  EXPECT_TRUE(intersect(square, clockwise).is_empty());
  EXPECT_EQ(intersect(square, clockwise).get_contour_count(), 0);
}

TEST(qv_polygon_booleans, with_an_empty_polygon) {
  const qv_polygon nothing({7, 8, 9}, {0, 0, 1});
  EXPECT_EQ(unite(square, nothing).get_area(), 16);
  EXPECT_EQ(subtract(square, nothing).get_area(), 16);
  EXPECT_TRUE(intersect(square, nothing).is_empty());
  EXPECT_TRUE(intersect(nothing, square).is_empty());
  EXPECT_TRUE(subtract(nothing, square).is_empty());
  const qv_polygon filled = unite(nothing, square);
  EXPECT_EQ(filled.get_area(), 16);
  EXPECT_EQ(filled.get_point(), qv_3dvector(7, 8, 9));
  for (const qv_3dvector& vertex : filled.get_contour_vertices()) EXPECT_EQ(vertex.z, 9);
}

TEST(qv_polygon_booleans, a_receiver_without_a_plane_takes_that_of_what_it_is_united_with) {
  const qv_polygon result = unite(qv_polygon({0, 0, 0}, {0, 0, 0}), square);
  EXPECT_EQ(result.get_normal(), square.get_normal());
  EXPECT_EQ(result.get_area(), 16);
}

TEST(qv_polygon_booleans, of_a_polygon_with_itself) {
  qv_polygon polygon = square;
  polygon.unites(polygon);
  EXPECT_EQ(polygon.get_area(), 16);
  polygon.intersects(polygon);
  EXPECT_EQ(polygon.get_area(), 16);
  polygon.substracts(polygon);
  EXPECT_TRUE(polygon.is_empty());
  EXPECT_EQ(polygon.get_contour_count(), 0);
}

TEST(qv_polygon_booleans, project_the_other_polygon_along_the_normal) {
  qv_polygon above({0, 0, 7}, {0, 0, 1});
  above.add_contour({{2, 2, 7}, {6, 2, 7}, {6, 6, 7}, {2, 6, 7}});
  const qv_polygon result = unite(square, above);
  EXPECT_EQ(result.get_area(), 28);
  for (const qv_3dvector& vertex : result.get_contour_vertices()) EXPECT_EQ(vertex.z, 0);
  // A slope of 45° over 2 m of floor.
  qv_polygon slope({0, 0, 0}, {-1, 0, 1});
  slope.add_contour({{3, 0, 3}, {5, 0, 5}, {5, 4, 5}, {3, 4, 3}});
  EXPECT_EQ(intersect(square, slope).get_area(), 4);
  // A wall has no extent seen from above.
  qv_polygon wall({0, 0, 0}, {0, 1, 0});
  wall.add_contour({{0, 1, 0}, {4, 1, 0}, {4, 1, 3}, {0, 1, 3}});
  EXPECT_EQ(subtract(square, wall).get_area(), 16);
}

TEST(qv_polygon_booleans, areas_add_up) {
  qv_random random(31);
  for (int i = 0; i < 500; ++i) {
    const auto [plane, a, b] = make_random_pair(random);
    const double common = intersect(a, b).get_area();
    const double without = subtract(a, b).get_area();
    // New vertices are rounded to floats of some 4e-6 m; perimeters stay below 250 m.
    constexpr double rounding = 1e-3;
    EXPECT_NEAR(unite(a, b).get_area(), a.get_area() + b.get_area() - common, rounding)
        << "seed 31, pair " << i;
    EXPECT_NEAR(without + common, a.get_area(), rounding) << "seed 31, pair " << i;
    EXPECT_NEAR(unite(subtract(a, b), intersect(a, b)).get_area(), a.get_area(), rounding)
        << "seed 31, pair " << i;
    EXPECT_NEAR(subtract(a, subtract(a, b)).get_area(), common, rounding) << "seed 31, pair " << i;
  }
}

TEST(qv_polygon_booleans, hold_the_points_that_logic_says) {
  qv_random random(32);
  int tested = 0;
  for (int i = 0; i < 200; ++i) {
    const auto [plane, a, b] = make_random_pair(random);
    const qv_polygon both = unite(a, b), common = intersect(a, b), without = subtract(a, b);
    for (int k = 0; k < 100; ++k) {
      const double x = 18 * random.dice_double() - 9, y = 18 * random.dice_double() - 9;
      if (qv_test::get_distance_from_edges(a, plane, x, y) < 1e-4 ||
          qv_test::get_distance_from_edges(b, plane, x, y) < 1e-4)
        continue;
      ++tested;
      const bool in_a = qv_test::is_inside(a, plane, x, y);
      const bool in_b = qv_test::is_inside(b, plane, x, y);
      ASSERT_EQ(qv_test::is_inside(both, plane, x, y), in_a || in_b) << "seed 32, pair " << i;
      ASSERT_EQ(qv_test::is_inside(common, plane, x, y), in_a && in_b) << "seed 32, pair " << i;
      ASSERT_EQ(qv_test::is_inside(without, plane, x, y), in_a && !in_b) << "seed 32, pair " << i;
    }
  }
  EXPECT_GT(tested, 19'000);
}

TEST(qv_polygon_booleans, run_outer_contours_counter_clockwise_and_holes_clockwise) {
  qv_random random(33);
  for (int i = 0; i < 200; ++i) {
    const auto [plane, a, b] = make_random_pair(random);
    for (const qv_polygon& result : {unite(a, b), intersect(a, b), subtract(a, b)})
      EXPECT_NEAR(qv_test::get_oriented_area(result), result.get_area(), 1e-4)
          << "seed 33, pair " << i;
  }
}

TEST(qv_polygon_booleans, vertices_come_back_as_the_same_floats) {
  qv_random random(34);
  int kept = 0;
  for (int i = 0; i < 300; ++i) {
    // A hole well inside, so that no crumb is cut off the star and dropped.
    const auto pair = make_random_pair(random, 0.3f);
    const auto& [pair_plane, a, b] = pair;
    const auto& plane = pair_plane;
    const qv_polygon both = unite(a, b);
    const qv_polygon common = intersect(a, b);
    const auto expect_kept = [&](const qv_polygon& from, const qv_polygon& other) {
      for (const qv_3dvector& vertex : from.get_contour_vertices()) {
        double x, y;
        plane.get_coordinates(vertex, x, y);
        if (qv_test::get_distance_from_edges(other, plane, x, y) < 1e-3) continue;
        ++kept;
        const bool covered = qv_test::is_inside(other, plane, x, y);
        EXPECT_EQ(qv_test::has_vertex(both, vertex), !covered) << "seed 34, pair " << i;
        EXPECT_EQ(qv_test::has_vertex(common, vertex), covered) << "seed 34, pair " << i;
      }
    };
    expect_kept(a, b);
    expect_kept(b, a);
  }
  EXPECT_GT(kept, 5000);
}

TEST(qv_polygon_booleans, a_receiver_that_is_not_quite_plane_keeps_its_vertices) {
  qv_polygon warped({0, 0, 0}, {0, 0, 1});
  warped.add_contour({{0, 0, 0}, {4, 0, 0.01f}, {4, 4, 0}, {0, 4, 0.02f}});
  const qv_polygon result = subtract(warped, make_polygon({make_rectangle(1, 1, 2, 2)}));
  for (const qv_3dvector& vertex : warped.get_contour_vertices())
    EXPECT_TRUE(qv_test::has_vertex(result, vertex));
}

TEST(qv_polygon_booleans, neighbours_that_share_an_edge_grow_together) {
  qv_random random(35);
  for (int i = 0; i < 300; ++i) {
    const test_plane plane = qv_test::make_random_plane(random);
    const float meeting = 5 * random.dice_float() - 2.5f;
    // The edge of the second is longer, so that its ends fall inside the first's edge or beyond it.
    const qv_polygon left = plane.make_polygon({make_rectangle(-5, -2, meeting, 2)});
    const qv_polygon right = plane.make_polygon(
        {make_rectangle(meeting, -1 - 3 * random.dice_float(), 6, 1 + 3 * random.dice_float())});
    const qv_polygon both = unite(left, right);
    EXPECT_EQ(both.get_contour_count(), 1) << "seed 35, pair " << i;
    EXPECT_NEAR(both.get_area(), left.get_area() + right.get_area(), 1e-3);
    EXPECT_TRUE(intersect(left, right).is_empty()) << "seed 35, pair " << i;
    EXPECT_NEAR(subtract(left, right).get_area(), left.get_area(), 1e-3);
  }
}

TEST(qv_polygon_booleans, a_checkerboard_grows_into_one_square) {
  qv_polygon board;
  for (int colour = 0; colour < 2; ++colour)
    for (int i = 0; i < 12; ++i)
      for (int j = 0; j < 12; ++j)
        if ((i + j) % 2 == colour)
          board.unites(
              make_polygon({make_rectangle(0.3f * i, 0.3f * j, 0.3f * (i + 1), 0.3f * (j + 1))}));
  EXPECT_EQ(board.get_contour_count(), 1);
  EXPECT_NEAR(board.get_area(), 3.6 * 3.6, 1e-5);
}

TEST(qv_polygon_booleans, drop_slivers) {
  const double width = tolerance::sliver_width / 2;
  const qv_polygon nearly = make_polygon({make_rectangle(0, 0, 4, static_cast<float>(4 - width))});
  EXPECT_TRUE(subtract(square, nearly).is_empty());
  const float step = 1e-4f;
  const qv_polygon strip = subtract(square, make_polygon({make_rectangle(0, 0, 4, 4 - step)}));
  EXPECT_NEAR(strip.get_area(), 4 * step, 4e-6);
  // A crumb of 0.25 mm² in area.
  const qv_polygon crumb =
      intersect(square, make_polygon({make_rectangle(3.9995f, 3.9995f, 5, 5)}));
  EXPECT_TRUE(crumb.is_empty());
}

TEST(qv_polygon_booleans, fill_holes_that_are_slivers) {
  const qv_polygon pinhole = make_polygon({make_rectangle(1, 1, 1.0005f, 1.0005f)});
  EXPECT_EQ(subtract(square, pinhole).get_contour_count(), 1);
}

TEST(qv_polygon_booleans, of_crossed_and_touching_contours) {
  const qv_polygon bow_tie = make_polygon({{{0, 0, 0}, {4, 4, 0}, {4, 0, 0}, {0, 4, 0}}});
  EXPECT_FLOAT_EQ(intersect(square, bow_tie).get_area(), 8);
  EXPECT_FLOAT_EQ(subtract(square, bow_tie).get_area(), 8);
  EXPECT_FLOAT_EQ(unite(bow_tie, square).get_area(), 16);
  EXPECT_FLOAT_EQ(unite(bow_tie, bow_tie).get_area(), 8);
  const qv_polygon pierced = make_polygon({make_rectangle(0, 0, 4, 4), make_rectangle(0, 0, 2, 2)});
  EXPECT_FLOAT_EQ(unite(pierced, square).get_area(), 16);
  EXPECT_FLOAT_EQ(subtract(square, pierced).get_area(), 4);
}

// At 400 km neighbouring floats lie 3 cm apart. What holds there: the operands' own vertices are
// exact, and so are their areas; new vertices are off by up to half that step.
TEST(qv_polygon_booleans, far_from_the_origin_only_new_vertices_are_coarse) {
  const auto far_rectangle = [](float x, float y, float width, float depth) {
    return make_polygon(
        {make_rectangle(400'000 + x, 300'000 + y, 400'000 + x + width, 300'000 + y + depth)});
  };
  const qv_polygon a = far_rectangle(0, 0, 8, 8), b = far_rectangle(4, 4, 8, 8);
  EXPECT_EQ(a.get_area(), 64);
  EXPECT_EQ(unite(a, b).get_area(), 112);
  EXPECT_EQ(intersect(a, b).get_area(), 16);

  qv_random random(36);
  for (int i = 0; i < 100; ++i) {
    test_plane plane = qv_test::make_random_plane(random);
    plane.origin = {400'000, 300'000, 100};
    const qv_polygon p = plane.make_polygon({qv_test::make_star(random, 9, 0, 0, 10)});
    const qv_polygon q = plane.make_polygon({qv_test::make_star(random, 9, 2, 2, 10)});
    constexpr double half_step = 0.016, longest_border = 200;
    EXPECT_NEAR(unite(p, q).get_area() + intersect(p, q).get_area(), p.get_area() + q.get_area(),
                half_step * longest_border)
        << "seed 36, pair " << i;
    EXPECT_EQ(unite(p, p).get_area(), p.get_area()) << "seed 36, pair " << i;
  }
}

TEST(qv_polygon_booleans, run_in_many_threads_at_once_with_the_same_results) {
  const auto get_areas = [] {
    qv_random random(37);
    std::vector<float> areas;
    for (int i = 0; i < 50; ++i) {
      const auto [plane, a, b] = make_random_pair(random);
      areas.push_back(unite(a, b).get_area());
      areas.push_back(subtract(a, b).get_area());
    }
    return areas;
  };
  const std::vector<float> expected = get_areas();
  std::vector<std::vector<float>> results(6);
  {
    std::vector<std::jthread> workers;
    for (auto& result : results) workers.emplace_back([&] { result = get_areas(); });
  }
  for (const auto& result : results) EXPECT_EQ(result, expected);
}
