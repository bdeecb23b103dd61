#include "utilities/qv_polygon.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "tests/support/qv_recording_gl.h"
#include "tests/utilities/qv_polygon_makers.h"

using namespace qv;
using qv_test::contour;
using qv_test::make_polygon;
using qv_test::make_rectangle;

namespace {

const contour triangle{{0, 0, 0}, {4, 0, 0}, {0, 3, 0}};

contour reversed(const contour& vertices) {
  contour result;
  for (int i = vertices.get_count() - 1; i >= 0; --i) result.append(vertices[i]);
  return result;
}

}  // namespace

TEST(qv_polygon, starts_empty_in_the_horizontal_plane_through_the_origin) {
  const qv_polygon polygon;
  EXPECT_EQ(polygon.get_point(), qv_3dvector());
  EXPECT_EQ(polygon.get_normal(), qv_3dvector(0, 0, 1));
  EXPECT_EQ(polygon.get_contour_count(), 0);
  EXPECT_EQ(polygon.get_area(), 0);
  EXPECT_TRUE(polygon.is_empty());
}

TEST(qv_polygon, normalises_its_normal) {
  qv_polygon polygon({1, 2, 3}, {0, -5, 0});
  EXPECT_EQ(polygon.get_point(), qv_3dvector(1, 2, 3));
  EXPECT_EQ(polygon.get_normal(), qv_3dvector(0, -1, 0));
  polygon.set_normal({0, 3, 4});
  EXPECT_EQ(polygon.get_normal(), qv_3dvector(0, 0.6f, 0.8f));
  polygon.set_normal({0, NAN, 1});
  EXPECT_EQ(polygon.get_normal(), qv_3dvector());
}

TEST(qv_polygon, keeps_its_contours_as_they_are_given) {
  const contour square = make_rectangle(5, 5, 6, 6);
  qv_polygon polygon = make_polygon({triangle, reversed(square), {}, {{NAN, 0, 0}}});
  EXPECT_EQ(polygon.get_contour_sizes(), (qv_list<unsigned int>{3, 4, 0, 1}));
  EXPECT_EQ(polygon.get_contour_vertices().get_count(), 8);
  EXPECT_EQ(polygon.get_contour_count(), 4);
  EXPECT_EQ(polygon.get_contour(0), triangle);
  EXPECT_EQ(polygon.get_contour(1), reversed(square));
  EXPECT_TRUE(polygon.get_contour(2).is_empty());
  polygon.clear();
  EXPECT_EQ(polygon.get_contour_count(), 0);
  EXPECT_TRUE(polygon.get_contour_vertices().is_empty());
  EXPECT_EQ(polygon.get_normal(), qv_3dvector(0, 0, 1));
}

TEST(qv_polygon, may_take_its_own_vertices_as_a_contour) {
  qv_polygon polygon = make_polygon({triangle});
  polygon.add_contour(polygon.get_contour_vertices());
  EXPECT_EQ(polygon.get_contour(1), triangle);
}

TEST(qv_polygon, a_copy_is_independent) {
  qv_polygon polygon = make_polygon({triangle});
  qv_polygon copy(polygon);
  copy.clear();
  EXPECT_EQ(polygon.get_area(), 6);
  copy = polygon;
  const qv_polygon& same = copy;
  copy = same;
  EXPECT_EQ(copy.get_area(), 6);
  const qv_polygon moved(std::move(polygon));
  EXPECT_EQ(moved.get_area(), 6);
}

TEST(qv_polygon, without_a_normal_takes_the_plane_of_its_first_contour_that_has_area) {
  qv_polygon polygon({9, 9, 9}, {0, 0, 0});
  polygon.add_contour({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}});
  EXPECT_EQ(polygon.get_normal(), qv_3dvector());
  EXPECT_EQ(polygon.get_area(), 0);
  polygon.add_contour({{0, 0, 5}, {0, 3, 5}, {2, 0, 5}});
  EXPECT_EQ(polygon.get_normal(), qv_3dvector(0, 0, -1));
  EXPECT_EQ(polygon.get_point(), qv_3dvector(0, 0, 5));
  EXPECT_EQ(polygon.get_area(), 3);
}

TEST(qv_polygon, finds_the_plane_of_a_contour_whose_halves_cancel_out) {
  qv_polygon polygon({0, 0, 0}, {0, 0, 0});
  polygon.add_contour({{0, 0, 1}, {2, 2, 1}, {2, 0, 1}, {0, 2, 1}});
  EXPECT_EQ(std::fabs(polygon.get_normal().z), 1);
  EXPECT_FLOAT_EQ(polygon.get_area(), 2);
}

TEST(qv_polygon, reverse_turns_it_over) {
  qv_polygon polygon = make_polygon({triangle, reversed(make_rectangle(0.5f, 0.5f, 1, 1))});
  polygon.reverse();
  EXPECT_EQ(polygon.get_normal(), qv_3dvector(0, 0, -1));
  EXPECT_EQ(polygon.get_contour(0), reversed(triangle));
  EXPECT_EQ(polygon.get_contour(1), make_rectangle(0.5f, 0.5f, 1, 1));
  EXPECT_FLOAT_EQ(polygon.get_area(), 5.75f);
}

TEST(qv_polygon_area, of_plain_contours_is_exact) {
  EXPECT_EQ(make_polygon({triangle}).get_area(), 6);
  EXPECT_EQ(make_polygon({reversed(triangle)}).get_area(), 6);
  // An L: 4 × 4 without 2 × 2.
  EXPECT_EQ(
      make_polygon({{{0, 0, 0}, {4, 0, 0}, {4, 2, 0}, {2, 2, 0}, {2, 4, 0}, {0, 4, 0}}}).get_area(),
      12);
}

TEST(qv_polygon_area, of_a_circle_of_ten_thousand_corners) {
  const double expected = 10'000 / 2.0 * 25 * std::sin(2 * std::numbers::pi / 10'000);
  EXPECT_NEAR(make_polygon({qv_test::make_circle(10'000, 3, 4, 5)}).get_area(), expected, 1e-4);
}

TEST(qv_polygon_area, holes_count_in_either_direction) {
  const contour outer = make_rectangle(0, 0, 4, 4), hole = make_rectangle(1, 1, 2, 2);
  EXPECT_EQ(make_polygon({outer, hole}).get_area(), 15);
  EXPECT_EQ(make_polygon({outer, reversed(hole)}).get_area(), 15);
  EXPECT_EQ(make_polygon({hole, outer}).get_area(), 15);
}

TEST(qv_polygon_area, an_island_in_a_hole_counts) {
  EXPECT_EQ(make_polygon({make_rectangle(0, 0, 10, 10), make_rectangle(1, 1, 9, 9),
                          make_rectangle(2, 2, 8, 8), make_rectangle(3, 3, 7, 7)})
                .get_area(),
            100 - 64 + 36 - 16);
}

TEST(qv_polygon_area, holes_may_touch_the_border_and_each_other) {
  const contour outer = make_rectangle(0, 0, 4, 4);
  EXPECT_EQ(make_polygon({outer, make_rectangle(0, 1, 2, 2)}).get_area(), 14);
  EXPECT_EQ(
      make_polygon({outer, make_rectangle(1, 1, 2, 2), make_rectangle(2, 1, 3, 2)}).get_area(), 14);
  EXPECT_EQ(
      make_polygon({outer, make_rectangle(1, 1, 2, 2), make_rectangle(2, 2, 3, 3)}).get_area(), 14);
}

TEST(qv_polygon_area, overlaps_follow_the_even_odd_rule) {
  // 16 + 16 − 2 · 4
  EXPECT_EQ(make_polygon({make_rectangle(0, 0, 4, 4), make_rectangle(2, 2, 6, 6)}).get_area(), 24);
}

TEST(qv_polygon_area, of_a_bow_tie_is_that_of_both_halves) {
  EXPECT_FLOAT_EQ(make_polygon({{{0, 0, 0}, {2, 2, 0}, {2, 0, 0}, {0, 2, 0}}}).get_area(), 2);
}

TEST(qv_polygon_area, a_contour_given_again_counts_once) {
  const contour square = make_rectangle(0, 0, 4, 4);
  const contour from_another_corner{{4, 4, 0}, {0, 4, 0}, {0, 0, 0}, {4, 0, 0}};
  EXPECT_EQ(make_polygon({square, square}).get_area(), 16);
  EXPECT_EQ(make_polygon({square, square, from_another_corner}).get_area(), 16);
}

TEST(qv_polygon_area, a_hole_that_fills_its_outer_contour_leaves_nothing) {
  const contour square = make_rectangle(0, 0, 4, 4);
  EXPECT_EQ(make_polygon({square, reversed(square)}).get_area(), 0);
  EXPECT_TRUE(make_polygon({square, reversed(square)}).is_empty());
}

TEST(qv_polygon_area, a_stray_contour_outside_counts_for_itself) {
  EXPECT_EQ(make_polygon({make_rectangle(0, 0, 4, 4), make_rectangle(10, 0, 11, 1)}).get_area(),
            17);
}

TEST(qv_polygon_area, repeated_points_spikes_and_straight_corners_do_not_matter) {
  EXPECT_EQ(
      make_polygon({{{0, 0, 0}, {0, 0, 0}, {4, 0, 0}, {4, 0, 0}, {0, 3, 0}, {0, 0, 0}}}).get_area(),
      6);
  EXPECT_FLOAT_EQ(
      make_polygon({{{0, 0, 0}, {4, 0, 0}, {9, 0, 0}, {4, 0, 0}, {0, 3, 0}}}).get_area(), 6);
  EXPECT_EQ(
      make_polygon({{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {4, 0, 0}, {0, 3, 0}, {0, 1, 0}}}).get_area(),
      6);
}

TEST(qv_polygon_area, does_not_depend_on_the_plane) {
  qv_random random(21);
  for (int i = 0; i < 200; ++i) {
    const contour star = qv_test::make_star(random, 12, 0, 0, 5);
    const double flat = make_polygon({star}).get_area();
    const qv_test::test_plane plane = qv_test::make_random_plane(random);
    EXPECT_NEAR(plane.make_polygon({star}).get_area(), flat, 1e-3) << "seed 21, polygon " << i;
  }
}

TEST(qv_polygon_area, does_not_depend_on_the_point_of_the_plane) {
  qv_polygon polygon = make_polygon({triangle});
  polygon.set_point({1e6f, -3e5f, 17});
  EXPECT_EQ(polygon.get_area(), 6);
}

TEST(qv_polygon_area, counts_what_the_normal_sees) {
  qv_polygon polygon = make_polygon({make_rectangle(0, 0, 2, 3)});
  polygon.set_normal({1, 0, 1});
  EXPECT_FLOAT_EQ(polygon.get_area(), 6 / std::sqrt(2.0f));
  polygon.set_normal({1, 0, 0});
  EXPECT_EQ(polygon.get_area(), 0);
}

TEST(qv_polygon_draw, draws_its_triangles_in_one_go) {
  qv_test::gl_recorder recorder;
  make_polygon({make_rectangle(0, 0, 4, 4), make_rectangle(1, 1, 2, 2)}).draw_opengl();
  ASSERT_EQ(recorder.primitives.size(), 1u);
  EXPECT_EQ(recorder.primitives[0].mode, "triangles");
  const auto& vertices = recorder.primitives[0].vertices;
  double area = 0;
  for (std::size_t i = 0; i + 2 < vertices.size(); i += 3)
    area += (vertices[i + 1] - vertices[i]).cross(vertices[i + 2] - vertices[i]).z / 2;
  EXPECT_FLOAT_EQ(static_cast<float>(area), 15);
}

TEST(qv_polygon_draw, gives_its_normal_and_changes_no_state) {
  qv_test::gl_recorder recorder;
  qv_polygon facing_down({0, 0, 0}, {0, 0, -1});
  facing_down.add_contour(make_rectangle(0, 0, 4, 4));
  facing_down.draw_opengl();
  EXPECT_EQ(recorder.calls, std::vector<std::string>{"triangles 6"});
  for (const qv_3dvector& normal : recorder.primitives[0].normals)
    EXPECT_EQ(normal, qv_3dvector(0, 0, -1));
}

TEST(qv_polygon_draw, draws_nothing_of_what_has_no_inside) {
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  qv_polygon on_edge({0, 0, 0}, {1, 0, 0});
  on_edge.add_contour(make_rectangle(0, 0, 4, 4));
  qv_test::gl_recorder recorder;
  on_edge.draw_opengl();
  make_polygon({{{0, 0, 0}, {4, 0, nan}, {4, 4, 0}}}).draw_opengl();
  make_polygon({{{0, 0, 0}, {4, 0, 0}}}).draw_opengl();
  make_polygon({{{0, 0, 0}, {1, 1, 0}, {2, 2, 0}}}).draw_opengl();
  EXPECT_TRUE(recorder.primitives.empty());
}

TEST(qv_polygon_draw, draws_nothing_when_empty) {
  qv_test::gl_recorder recorder;
  qv_polygon().draw_opengl();
  EXPECT_TRUE(recorder.primitives.empty());
}
