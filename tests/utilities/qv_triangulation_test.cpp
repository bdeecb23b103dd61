#include "utilities/qv_triangulation.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/utilities/qv_polygon_makers.h"
#include "utilities/qv_polygon.h"

using namespace qv;
using qv_test::contour;
using qv_test::make_polygon;
using qv_test::make_rectangle;

namespace {

// Sum of the triangles' areas as seen against the normal; each of them must count.
double get_sum(const qv_triangulation& surface, const qv_3dvector& normal) {
  double sum = 0;
  for (int i = 0; i + 2 < surface.triangles.get_count(); i += 3) {
    const qv_3dvector& p = surface.vertices[surface.triangles[i]];
    const qv_3dvector& q = surface.vertices[surface.triangles[i + 1]];
    const qv_3dvector& r = surface.vertices[surface.triangles[i + 2]];
    const double ux = double{q.x} - p.x, vx = double{r.x} - p.x;
    const double uy = double{q.y} - p.y, vy = double{r.y} - p.y;
    const double uz = double{q.z} - p.z, vz = double{r.z} - p.z;
    const double area = (normal.x * (uy * vz - uz * vy) + normal.y * (uz * vx - ux * vz) +
                         normal.z * (ux * vy - uy * vx)) /
                        2;
    EXPECT_GT(area, 0);
    sum += area;
  }
  return sum;
}

}  // namespace

TEST(qv_triangulation, of_a_convex_polygon_is_a_fan) {
  const qv_triangulation surface = qv_triangulate(make_polygon({make_rectangle(0, 0, 4, 3)}));
  EXPECT_EQ(surface.vertices, make_rectangle(0, 0, 4, 3));
  EXPECT_EQ(surface.triangles, (qv_list<int>{0, 1, 2, 0, 2, 3}));
}

TEST(qv_triangulation, runs_counter_clockwise_about_the_normal) {
  qv_polygon clockwise({0, 0, 0}, {0, 0, -1});
  clockwise.add_contour(make_rectangle(0, 0, 4, 3));
  EXPECT_DOUBLE_EQ(get_sum(qv_triangulate(clockwise), {0, 0, -1}), 12);
}

TEST(qv_triangulation, of_an_empty_polygon_is_empty) {
  EXPECT_TRUE(qv_triangulate(qv_polygon()).vertices.is_empty());
  EXPECT_TRUE(
      qv_triangulate(make_polygon({{{0, 0, 0}, {1, 1, 0}, {2, 2, 0}}})).triangles.is_empty());
}

TEST(qv_triangulation, leaves_holes_open) {
  const qv_polygon polygon = make_polygon(
      {make_rectangle(0, 0, 10, 10), make_rectangle(1, 1, 3, 9), make_rectangle(5, 2, 8, 3)});
  const qv_triangulation surface = qv_triangulate(polygon);
  EXPECT_DOUBLE_EQ(get_sum(surface, {0, 0, 1}), 100 - 16 - 3);
  EXPECT_EQ(surface.vertices.get_count(), 12);
}

TEST(qv_triangulation, straight_corners_make_no_triangle_without_area) {
  const qv_triangulation surface = qv_triangulate(make_polygon(
      {{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {4, 0, 0}, {4, 2, 0}, {4, 3, 0}, {0, 3, 0}, {0, 1, 0}}}));
  EXPECT_DOUBLE_EQ(get_sum(surface, {0, 0, 1}), 12);
}

TEST(qv_triangulation, of_holes_that_touch_the_border_and_each_other) {
  EXPECT_DOUBLE_EQ(
      get_sum(
          qv_triangulate(make_polygon({make_rectangle(0, 0, 4, 4), make_rectangle(0, 1, 2, 2)})),
          {0, 0, 1}),
      14);
  EXPECT_DOUBLE_EQ(
      get_sum(qv_triangulate(make_polygon({make_rectangle(0, 0, 4, 4), make_rectangle(1, 1, 2, 2),
                                           make_rectangle(2, 2, 3, 3)})),
              {0, 0, 1}),
      14);
  // A hole whose corner lies on the border.
  EXPECT_DOUBLE_EQ(get_sum(qv_triangulate(make_polygon(
                               {make_rectangle(0, 0, 4, 4), {{2, 0, 0}, {3, 1, 0}, {1, 1, 0}}})),
                           {0, 0, 1}),
                   15);
}

TEST(qv_triangulation, areas_sum_up_to_the_polygon) {
  qv_random random(71);
  for (int i = 0; i < 500; ++i) {
    const auto plane = qv_test::make_random_plane(random);
    const int corners = 3 + static_cast<int>(random.dice() % 60);
    const qv_polygon polygon = plane.make_polygon(
        {qv_test::make_star(random, corners, 0, 0, 5), qv_test::make_star(random, 7, 0, 0, 1),
         qv_test::make_star(random, 5, 0.1f, 0.2f, 0.2f)});
    const double area = polygon.get_area();
    EXPECT_NEAR(get_sum(qv_triangulate(polygon), polygon.get_normal()), area, 2e-5 * area)
        << "seed 71, polygon " << i;
  }
}

TEST(qv_triangulation, vertices_are_the_polygons_own) {
  qv_random random(72);
  for (int i = 0; i < 200; ++i) {
    const auto plane = qv_test::make_random_plane(random);
    const qv_polygon polygon = plane.make_polygon(
        {qv_test::make_star(random, 20, 0, 0, 5), qv_test::make_circle(6, 0, 0, 0.5f)});
    const qv_triangulation surface = qv_triangulate(polygon);
    EXPECT_EQ(surface.vertices.get_count(), 26);
    // A contour of n corners with one hole has n triangles.
    EXPECT_EQ(surface.triangles.get_count(), 3 * 26);
    for (const qv_3dvector& vertex : surface.vertices)
      EXPECT_TRUE(qv_test::has_vertex(polygon, vertex)) << "seed 72, polygon " << i;
  }
}

TEST(qv_triangulation, covers_each_point_of_the_polygon_once) {
  qv_random random(73);
  for (int i = 0; i < 50; ++i) {
    const contour star = qv_test::make_star(random, 25, 0, 0, 5);
    const contour hole = qv_test::make_star(random, 9, 0, 0, 1);
    const qv_polygon polygon = make_polygon({star, hole});
    const qv_triangulation surface = qv_triangulate(polygon);
    const qv_test::test_plane plane;
    for (int k = 0; k < 100; ++k) {
      const double a = 10 * random.dice_double() - 5, b = 10 * random.dice_double() - 5;
      int holders = 0;
      for (int t = 0; t + 2 < surface.triangles.get_count(); t += 3) {
        const qv_polygon triangle = make_polygon(
            {{surface.vertices[surface.triangles[t]], surface.vertices[surface.triangles[t + 1]],
              surface.vertices[surface.triangles[t + 2]]}});
        holders += qv_test::is_inside(triangle, plane, a, b);
      }
      EXPECT_EQ(holders, qv_test::is_inside(polygon, plane, a, b) ? 1 : 0)
          << "seed 73, polygon " << i;
    }
  }
}
