#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "tests/utilities/qv_polygon_makers.h"
#include "utilities/qv_log.h"
#include "utilities/qv_polygon.h"
#include "utilities/qv_solid.h"
#include "utilities/qv_triangulation.h"

using namespace qv;
using qv_test::contour;
using qv_test::make_polygon;
using qv_test::make_rectangle;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();
constexpr float largest = std::numeric_limits<float>::max();
constexpr float smallest = std::numeric_limits<float>::denorm_min();

struct hostile_polygon {
  std::string name;
  qv_polygon polygon;
};

qv_polygon with_normal(qv_polygon polygon, const qv_3dvector& normal) {
  polygon.set_normal(normal);
  return polygon;
}

qv_polygon with_point(qv_polygon polygon, const qv_3dvector& point) {
  polygon.set_point(point);
  return polygon;
}

std::vector<hostile_polygon> make_hostile_polygons() {
  const contour square = make_rectangle(0, 0, 4, 4);
  std::vector<hostile_polygon> all{
      {"no contour", qv_polygon()},
      {"empty contour", make_polygon({{}})},
      {"one point", make_polygon({{{1, 1, 0}}})},
      {"two points", make_polygon({{{1, 1, 0}, {3, 3, 0}}})},
      {"one point many times", make_polygon({{{1, 1, 0}, {1, 1, 0}, {1, 1, 0}, {1, 1, 0}}})},
      {"two points in turn", make_polygon({{{1, 1, 0}, {3, 3, 0}, {1, 1, 0}, {3, 3, 0}}})},
      {"points in a line", make_polygon({{{0, 0, 0}, {1, 1, 0}, {2, 2, 0}, {3, 3, 0}}})},
      {"line there and back", make_polygon({{{0, 0, 0}, {3, 1, 0}, {1, 7, 0}, {3, 1, 0}}})},
      {"not a number", make_polygon({{{0, 0, 0}, {4, not_a_number, 0}, {4, 4, 0}}})},
      {"not a number anywhere", make_polygon({{{not_a_number, not_a_number, not_a_number},
                                               {not_a_number, not_a_number, not_a_number},
                                               {not_a_number, not_a_number, not_a_number}}})},
      {"infinite", make_polygon({{{0, 0, 0}, {infinity, 0, 0}, {4, -infinity, 0}}})},
      {"largest floats", make_polygon({{{-largest, 0, 0}, {largest, 0, 0}, {0, largest, 0}}})},
      {"smallest floats", make_polygon({{{0, 0, 0}, {smallest, 0, 0}, {0, smallest, 0}}})},
      {"a micron wide", make_polygon({make_rectangle(0, 0, 1e-6f, 1e-6f)})},
      {"as large as coordinates may be", make_polygon({make_rectangle(-9e6f, -9e6f, 9e6f, 9e6f)})},
      {"larger than that", make_polygon({make_rectangle(-2e7f, -2e7f, 2e7f, 2e7f)})},
      {"a good contour among bad ones",
       make_polygon({{}, {{not_a_number, 0, 0}, {1, 0, 0}, {1, 1, 0}}, square, {{2, 2, 0}}})},
      {"bow-tie", make_polygon({{{0, 0, 0}, {4, 4, 0}, {4, 0, 0}, {0, 4, 0}}})},
      {"touches itself at a point",
       make_polygon({{{0, 0, 0}, {2, 2, 0}, {4, 0, 0}, {4, 4, 0}, {2, 2, 0}, {0, 4, 0}}})},
      {"touches itself along an edge", make_polygon({{{0, 0, 0},
                                                      {4, 0, 0},
                                                      {4, 4, 0},
                                                      {0, 4, 0},
                                                      {0, 3, 0},
                                                      {3, 3, 0},
                                                      {3, 1, 0},
                                                      {0, 1, 0},
                                                      {0, 3, 0},
                                                      {0, 1, 0}}})},
      {"goes round twice", make_polygon({{{0, 0, 0},
                                          {4, 0, 0},
                                          {4, 4, 0},
                                          {0, 4, 0},
                                          {0, 0, 0},
                                          {4, 0, 0},
                                          {4, 4, 0},
                                          {0, 4, 0}}})},
      {"pentagram",
       make_polygon({{{0, 5, 0}, {3, -4, 0}, {-5, 1.5f, 0}, {5, 1.5f, 0}, {-3, -4, 0}}})},
      {"given twice", make_polygon({square, square})},
      {"given twice, nearly", make_polygon({square, make_rectangle(1e-6f, 0, 4, 4)})},
      {"hole outside", make_polygon({square, make_rectangle(10, 10, 11, 11)})},
      {"hole across the border", make_polygon({square, make_rectangle(3, 3, 5, 5)})},
      {"hole around everything", make_polygon({square, make_rectangle(-1, -1, 5, 5)})},
      {"holes that overlap",
       make_polygon({square, make_rectangle(1, 1, 3, 3), make_rectangle(2, 2, 3.5f, 3.5f)})},
      {"holes that share an edge",
       make_polygon({square, make_rectangle(1, 1, 2, 3), make_rectangle(2, 1, 3, 3)})},
      {"zero normal", qv_polygon({0, 0, 0}, {0, 0, 0})},
      {"zero normal after its contours", with_normal(make_polygon({square}), {0, 0, 0})},
      {"normal in its own plane", with_normal(make_polygon({square}), {1, 0, 0})},
      {"normal almost in its own plane", with_normal(make_polygon({square}), {1, 0, 1e-6f})},
      {"normal not a number", with_normal(make_polygon({square}), {not_a_number, 0, 1})},
      {"point not a number", with_point(make_polygon({square}), {not_a_number, infinity, 0})},
      {"point not a number and no contour", qv_polygon({not_a_number, 0, 0}, {0, 0, 1})},
      {"far from its plane", with_point(make_polygon({square}), {0, 0, largest})},
      {"warped", make_polygon({{{0, 0, 0}, {4, 0, 3}, {4, 4, -3}, {0, 4, 5}}})},
  };
  qv_random random(51);
  contour zigzag, fan;
  for (int i = 0; i < 16; ++i) {
    zigzag.append({4 * random.dice_float(), 4 * random.dice_float(), 0});
    fan.append(i % 2 == 0 ? qv_3dvector(2, 2, 0)
                          : qv_3dvector(4 * random.dice_float(), 4 * random.dice_float(), 0));
  }
  all.push_back({"scribble", make_polygon({zigzag})});
  all.push_back({"returns to one point again and again", make_polygon({fan})});
  return all;
}

void expect_sane(const qv_polygon& polygon, const std::string& name) {
  const float area = polygon.get_area();
  EXPECT_TRUE(std::isfinite(area)) << name;
  EXPECT_GE(area, 0) << name;
  EXPECT_EQ(area == 0, polygon.is_empty()) << name;
  unsigned int vertices = 0;
  for (const unsigned int size : polygon.get_contour_sizes()) vertices += size;
  EXPECT_EQ(static_cast<int>(vertices), polygon.get_contour_vertices().get_count()) << name;
}

void expect_finite_vertices(const qv_polygon& polygon, const std::string& name) {
  for (const qv_3dvector& vertex : polygon.get_contour_vertices())
    EXPECT_TRUE(vertex.is_finite()) << name;
  for (const unsigned int size : polygon.get_contour_sizes()) EXPECT_GE(size, 3u) << name;
}

// Silences what the polygons log, and keeps it.
class quiet_log {
 public:
  quiet_log()
      : former_(qv_set_log_handler([this](const std::string& line) { lines.push_back(line); })) {}
  ~quiet_log() { qv_set_log_handler(former_); }

  std::vector<std::string> lines;

 private:
  qv_log_handler former_;
};

}  // namespace

TEST(qv_polygon_hostile, every_computation_ends_with_a_sane_value) {
  for (const auto& [name, polygon] : make_hostile_polygons()) {
    expect_sane(polygon, name);
    const qv_triangulation triangulation = qv_triangulate(polygon);
    EXPECT_EQ(triangulation.triangles.get_count() % 3, 0) << name;
    for (const int index : triangulation.triangles) {
      EXPECT_GE(index, 0) << name;
      EXPECT_LT(index, triangulation.vertices.get_count()) << name;
    }
    for (const qv_3dvector& vertex : triangulation.vertices)
      EXPECT_TRUE(vertex.is_finite()) << name;
    const int expected = triangulation.triangles.is_empty() ? 0 : 50;
    EXPECT_EQ(polygon.random_distribution(50, 1).get_count(), expected) << name;
    for (const qv_3dvector& point : polygon.random_distribution(50, 1))
      EXPECT_TRUE(point.is_finite()) << name;
    for (const qv_3dvector& point : polygon.regular_distribution(0.5f))
      EXPECT_TRUE(point.is_finite()) << name;
    qv_solid solid;
    solid.extrusion(polygon, {0, 0, 3});
    EXPECT_TRUE(std::isfinite(solid.get_volume())) << name;
    qv_polygon turned = polygon;
    turned.reverse();
    EXPECT_FLOAT_EQ(turned.get_area(), polygon.get_area()) << name;
  }
}

TEST(qv_polygon_hostile, offsets_end_with_a_sane_polygon) {
  for (const auto& [name, polygon] : make_hostile_polygons()) {
    const float area = polygon.get_area();
    for (const float distance : {0.01f, -0.01f, 1.0f, -1.0f, 0.0f, 1e-7f}) {
      for (int join = 0; join < 3; ++join) {
        qv_polygon moved = polygon;
        moved.offset(distance, join);
        expect_sane(moved, name);
        expect_finite_vertices(moved, name);
        if (distance > 0) {
          EXPECT_GE(moved.get_area(), area - 1e-3f - 1e-6f * area) << name << " " << distance;
        }
      }
    }
  }
}

TEST(qv_polygon_hostile, every_pair_unites_intersects_and_subtracts) {
  const std::vector<hostile_polygon> all = make_hostile_polygons();
  for (const auto& [first_name, first] : all) {
    const double area = first.get_area();
    for (const auto& [second_name, second] : all) {
      const std::string name = std::string(first_name).append(" / ").append(second_name);
      qv_polygon both = first, common = first, without = first;
      both.unites(second);
      common.intersects(second);
      without.substracts(second);
      for (const qv_polygon& result : {both, common, without}) {
        expect_sane(result, name);
        expect_finite_vertices(result, name);
      }
      // Coordinates of 9,000 km are rounded to metres.
      const double rounding = 1e-2 + 1e-6 * std::max<double>(area, both.get_area());
      EXPECT_NEAR(common.get_area() + without.get_area(), area, rounding) << name;
      EXPECT_GE(both.get_area(), area - rounding) << name;
    }
  }
}

TEST(qv_polygon_hostile, contours_that_are_not_finite_are_left_out) {
  const qv_polygon polygon = make_polygon({{{not_a_number, 0, 0}, {1, 0, 0}, {1, 1, 0}},
                                           make_rectangle(0, 0, 4, 4),
                                           {{0, 0, 0}, {infinity, 0, 0}, {0, 1, 0}}});
  EXPECT_EQ(polygon.get_area(), 16);
  EXPECT_EQ(polygon.get_contour_count(), 3);
  EXPECT_EQ(qv_triangulate(polygon).triangles.get_count(), 6);
}

TEST(qv_polygon_hostile, holes_that_overlap_follow_the_even_odd_rule) {
  // 16 − 4 − 2.25 + 2 · 1
  EXPECT_FLOAT_EQ(make_polygon({make_rectangle(0, 0, 4, 4), make_rectangle(1, 1, 3, 3),
                                make_rectangle(2, 2, 3.5f, 3.5f)})
                      .get_area(),
                  11.75f);
}

TEST(qv_polygon_hostile, a_contour_that_goes_round_twice_leaves_nothing) {
  EXPECT_EQ(make_polygon({{{0, 0, 0},
                           {4, 0, 0},
                           {4, 4, 0},
                           {0, 4, 0},
                           {0, 0, 0},
                           {4, 0, 0},
                           {4, 4, 0},
                           {0, 4, 0}}})
                .get_area(),
            0);
}

// The outer pentagon without the inner one: ten times the triangle of a tip's half.
TEST(qv_polygon_hostile, a_pentagram_keeps_its_tips) {
  contour star;
  for (int i = 0; i < 5; ++i)
    star.append({std::sin(4 * 3.14159265f * i / 5), std::cos(4 * 3.14159265f * i / 5), 0});
  const double golden = (1 + std::sqrt(5.0)) / 2;
  const double outer = 5.0 / 2 * std::sin(2 * 3.14159265358979 / 5);
  const double inner = outer / std::pow(golden, 4);
  // Whole star polygon, of which the middle counts twice and so not at all.
  const double tips = 10 * 0.5 * std::sin(3.14159265358979 / 5) / (golden * golden) - inner;
  EXPECT_NEAR(make_polygon({star}).get_area(), tips, 1e-5);
}

TEST(qv_polygon_hostile, ten_thousand_vertices_of_every_kind_end) {
  constexpr int count = 10'000;
  qv_random random(52);
  contour line, point, comb, spiral;
  for (int i = 0; i < count; ++i) {
    line.append({4 * random.dice_float(), 1, 0});
    point.append({1, 1, 0});
    const int tooth = i / 2;
    comb.append({4.0f * static_cast<float>(tooth) / count, (tooth + i) % 2 == 0 ? 0.0f : 4.0f, 0});
    const float turn = 40 * 6.2831853f * i / count;
    const float radius = 1 + 4.0f * i / count;
    spiral.append({radius * std::cos(turn), radius * std::sin(turn), 0});
  }
  comb.append({4, -1, 0});
  comb.append({0, -1, 0});
  const quiet_log log;
  const qv_polygon square = make_polygon({make_rectangle(0, 0, 4, 4)});
  for (const contour& vertices :
       {qv_test::make_star(random, count, 2, 2, 3), qv_test::make_circle(count, 2, 2, 3), line,
        point, comb, spiral}) {
    const qv_polygon polygon = make_polygon({vertices});
    expect_sane(polygon, "");
    qv_polygon cut = square;
    cut.substracts(polygon);
    qv_polygon common = square;
    common.intersects(polygon);
    EXPECT_NEAR(cut.get_area() + common.get_area(), 16, 1e-2);
    EXPECT_NEAR(make_polygon({vertices, vertices}).get_area(), polygon.get_area(), 1e-3);
    const qv_triangulation triangulation = qv_triangulate(polygon);
    EXPECT_EQ(triangulation.triangles.is_empty(), polygon.is_empty());
  }
}

TEST(qv_polygon_hostile, a_scribble_of_ten_thousand_points_counts_as_empty_and_is_logged) {
  qv_random random(53);
  contour scribble;
  for (int i = 0; i < 10'000; ++i)
    scribble.append({4 * random.dice_float(), 4 * random.dice_float(), 0});
  const quiet_log log;
  const qv_polygon polygon = make_polygon({scribble});
  EXPECT_EQ(polygon.get_area(), 0);
  ASSERT_EQ(log.lines.size(), 1u);
  EXPECT_NE(log.lines[0].find("polygon left out"), std::string::npos) << log.lines[0];
  EXPECT_TRUE(qv_triangulate(polygon).triangles.is_empty());
}
