#include "app/readers/qv_source_polygon.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using qv::qv_clean_polygon;
using qv::qv_double3;
using qv::qv_loop;
using qv::qv_source_polygon;

const qv_loop rectangle = {{0, 0, 3}, {4, 0, 3}, {4, 2, 3}, {0, 2, 3}};

double area_of_parts(const qv_source_polygon& polygon) {
  double sum = 0;
  for (const qv::qv_plane_part& part : polygon.parts) {
    double area = 0;
    for (const qv_loop& contour : part.contours) area += qv_vector_area(contour).dot(part.normal);
    EXPECT_NEAR(area, part.area, 1e-5 * std::max(1.0, area));
    sum += area;
  }
  return sum;
}

}  // namespace

TEST(qv_clean_polygon, takes_a_plain_one_as_it_stands) {
  const qv_source_polygon result = qv_clean_polygon(rectangle);
  ASSERT_EQ(result.parts.size(), 1U);
  EXPECT_EQ(result.parts[0].contours[0], rectangle);
  EXPECT_EQ(result.parts[0].normal, (qv_double3{0, 0, 1}));
  EXPECT_DOUBLE_EQ(result.area, 8);
  EXPECT_TRUE(result.repairs.empty());
}

TEST(qv_clean_polygon, takes_out_a_repeated_first_point_and_repeats) {
  const qv_source_polygon result = qv_clean_polygon(
      {{0, 0, 3}, {4, 0, 3}, {4, 0, 3}, {4, 2, 3}, {0, 2, 3}, {0, 0, 3}, {0, 0, 3}});
  ASSERT_EQ(result.parts.size(), 1U);
  EXPECT_EQ(result.parts[0].contours[0], rectangle);
  EXPECT_EQ(result.repairs.size(), 2U);
  EXPECT_DOUBLE_EQ(result.area, 8);
}

TEST(qv_clean_polygon, keeps_points_on_a_straight_line) {
  const qv_source_polygon result =
      qv_clean_polygon({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}});
  ASSERT_EQ(result.parts.size(), 1U);
  EXPECT_EQ(result.parts[0].contours[0].size(), 5U);
  EXPECT_TRUE(result.repairs.empty());
}

TEST(qv_clean_polygon, keeps_the_seam_to_a_hole) {
  // A square of 6 with a hole of 2: 36 − 4.
  const qv_source_polygon result = qv_clean_polygon({{0, 0, 0},
                                                     {6, 0, 0},
                                                     {6, 6, 0},
                                                     {0, 6, 0},
                                                     {0, 0, 0.0},
                                                     {2, 2, 0},
                                                     {2, 4, 0},
                                                     {4, 4, 0},
                                                     {4, 2, 0},
                                                     {2, 2, 0}});
  ASSERT_EQ(result.parts.size(), 1U);
  EXPECT_TRUE(result.repairs.empty());
  EXPECT_DOUBLE_EQ(result.area, 32);
}

TEST(qv_clean_polygon, finds_fault_with_too_few_points) {
  EXPECT_EQ(qv_clean_polygon({}).fault, "it has fewer than three distinct points");
  EXPECT_EQ(qv_clean_polygon({{1, 1, 1}}).fault, "it has fewer than three distinct points");
  const qv_source_polygon twice = qv_clean_polygon({{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {0, 0, 0}});
  EXPECT_EQ(twice.fault, "it has fewer than three distinct points");
  EXPECT_TRUE(twice.parts.empty());
}

TEST(qv_clean_polygon, finds_fault_with_no_area) {
  EXPECT_EQ(qv_clean_polygon({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}}).fault, "it has no area");
  EXPECT_EQ(qv_clean_polygon({{0, 0, 0}, {1, 0, 0}, {0, 0, 0}, {1, 0, 0}}).fault, "it has no area");
  EXPECT_EQ(qv_clean_polygon({{0, 0, 0}, {1000, 0, 0}, {1000, 4e-6, 0}}).fault,
            "it is thinner than a hundredth of a millimetre");
}

TEST(qv_clean_polygon, finds_fault_with_coordinates_out_of_reach) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double bad : {nan, infinity, -infinity, 1e9}) {
    const qv_source_polygon result = qv_clean_polygon({{0, 0, 0}, {1, 0, 0}, {1, bad, 0}});
    EXPECT_EQ(result.fault, "a coordinate is not a number within reach");
    EXPECT_EQ(result.area, 0);
  }
}

TEST(qv_clean_polygon, takes_the_regions_of_a_bow_tie) {
  // Two triangles of base 2 and height 1 that meet at a point; signed areas cancel out.
  const qv_source_polygon result = qv_clean_polygon({{0, 0, 5}, {2, 2, 5}, {2, 0, 5}, {0, 2, 5}});
  ASSERT_EQ(result.parts.size(), 1U);
  EXPECT_EQ(result.parts[0].contours.size(), 2U);
  EXPECT_NEAR(result.area, 2, 1e-5);
  EXPECT_NEAR(area_of_parts(result), 2, 1e-5);
  EXPECT_EQ(result.repairs.size(), 1U);
}

TEST(qv_clean_polygon, takes_the_regions_of_an_uneven_crossing) {
  // Legs (0,0)-(4,0) and (4,2)-(0,2) with the last side crossing between x = 3 and x = 4.
  const qv_source_polygon result =
      qv_clean_polygon({{0, 0, 0}, {4, 0, 0}, {3, 2, 0}, {4, 2, 0}, {3, 0.5, 0}, {0, 2, 0}});
  ASSERT_EQ(result.parts.size(), 1U);
  EXPECT_NEAR(area_of_parts(result), result.area, 1e-5 * result.area);
}

TEST(qv_clean_polygon, moves_corners_that_are_slightly_off_the_plane) {
  // One corner 8 mm up: 4 mm off the middle plane at most, area by Newell.
  qv_loop points = rectangle;
  points[0].z += 0.008;
  const double newell = qv_vector_area(points).length();
  const qv_source_polygon result = qv_clean_polygon(points);
  ASSERT_EQ(result.parts.size(), 1U);
  const qv::qv_plane_part& part = result.parts[0];
  for (const qv_double3& p : part.contours[0])
    EXPECT_NEAR((p - part.contours[0][0]).dot(part.normal), 0, 1e-12);
  EXPECT_DOUBLE_EQ(result.area, newell);
  EXPECT_NEAR(area_of_parts(result), newell, 1e-12);
  EXPECT_EQ(result.repairs.size(), 1U);
}

TEST(qv_clean_polygon, cuts_a_twisted_one_into_triangles) {
  qv_loop points = rectangle;
  points[2].z += 0.5;
  const qv_source_polygon result = qv_clean_polygon(points);
  ASSERT_EQ(result.parts.size(), 2U);
  EXPECT_NEAR(area_of_parts(result), result.area, 1e-12);
  EXPECT_GT(result.area, qv_vector_area(points).length());
  // The outline is still that of the file: no corner has moved.
  for (const qv::qv_plane_part& part : result.parts)
    for (const qv_double3& p : part.contours[0])
      EXPECT_NE(std::find(points.begin(), points.end(), p), points.end());
}

TEST(qv_clean_polygon, cuts_a_twisted_one_with_an_inner_corner) {
  const qv_loop points = {{0, 0, 0}, {4, 0, 0.4}, {4, 4, 0}, {3, 4, 0.4}, {3, 1, 0}, {0, 1, 0.4}};
  const qv_source_polygon result = qv_clean_polygon(points);
  ASSERT_EQ(result.parts.size(), 4U);
  for (const qv::qv_plane_part& part : result.parts) EXPECT_GT(part.normal.z, 0.5);
  // Seen from above the triangles cover the L of 4 + 3 m² once.
  double seen = 0;
  for (const qv::qv_plane_part& part : result.parts) seen += part.area * part.normal.z;
  EXPECT_NEAR(seen, 7, 1e-9);
}

TEST(qv_clean_polygon, gives_the_same_area_wherever_it_lies_and_however_it_is_turned) {
  const double c = std::cos(0.7);
  const double s = std::sin(0.7);
  qv_loop points;
  for (const qv_double3& p : rectangle)
    points.push_back({1000 + c * p.x - s * p.z, -500 + p.y, 20 + s * p.x + c * p.z});
  const qv_source_polygon result = qv_clean_polygon(points);
  ASSERT_EQ(result.parts.size(), 1U);
  EXPECT_NEAR(result.area, 8, 1e-9);
  EXPECT_NEAR(result.parts[0].normal.x, -s, 1e-12);
  EXPECT_NEAR(result.parts[0].normal.z, c, 1e-12);
}

TEST(qv_clean_polygon, refuses_more_points_than_a_surface_has) {
  qv_loop circle;
  for (int i = 0; i < 10001; ++i) circle.push_back({std::cos(i * 6e-4), std::sin(i * 6e-4), 0});
  EXPECT_EQ(qv_clean_polygon(circle).fault, "it has more than 10000 points");
}

TEST(qv_cone_volume, of_the_faces_of_a_tetrahedron_adds_up_to_its_volume) {
  const qv_double3 a = {1, 1, 1};
  const qv_double3 b = {3, 1, 1};
  const qv_double3 c = {1, 4, 1};
  const qv_double3 d = {1, 1, 6};
  // 2 · 3 · 5 / 6 = 5, whatever the apex.
  for (const qv_double3& apex : {qv_double3{0, 0, 0}, qv_double3{100, -7, 3}})
    EXPECT_NEAR(qv_cone_volume({a, c, b}, apex) + qv_cone_volume({a, b, d}, apex) +
                    qv_cone_volume({b, c, d}, apex) + qv_cone_volume({a, d, c}, apex),
                5, 1e-9);
}
