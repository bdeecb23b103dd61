#include "utilities/qv_solid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <tuple>

#include "tests/utilities/qv_polygon_makers.h"

using namespace qv;
using qv_test::contour;
using qv_test::make_polygon;
using qv_test::make_rectangle;

namespace {

qv_solid extrude(const qv_polygon& base, const qv_3dvector& direction) {
  qv_solid solid;
  solid.extrusion(base, direction);
  return solid;
}

using place = std::tuple<float, float, float>;

// Every edge of a closed shell is run through as often in one direction as in the other.
bool is_closed(const qv_solid& solid) {
  std::map<std::pair<place, place>, int> balance;
  for (const qv_polygon* face : solid.get_faces()) {
    for (int i = 0; i < face->get_contour_count(); ++i) {
      const contour vertices = face->get_contour(i);
      for (int j = 0; j < vertices.get_count(); ++j) {
        const qv_3dvector& p = vertices[j];
        const qv_3dvector& q = vertices[(j + 1) % vertices.get_count()];
        const place from{p.x, p.y, p.z}, to{q.x, q.y, q.z};
        from < to ? ++balance[{from, to}] : --balance[{to, from}];
      }
    }
  }
  for (const auto& [edge, count] : balance)
    if (count != 0) return false;
  return true;
}

// The normal of each face agrees with the direction of its contours.
void expect_normals_to_fit(const qv_solid& solid) {
  for (const qv_polygon* face : solid.get_faces()) {
    EXPECT_NEAR(qv_test::get_oriented_area(*face), face->get_area(), 1e-4 * face->get_area());
    EXPECT_NEAR(face->get_normal().length(), 1, 1e-6);
  }
}

}  // namespace

TEST(qv_solid, extrudes_a_square_into_a_box) {
  const qv_solid box = extrude(make_polygon({make_rectangle(0, 0, 2, 3)}), {0, 0, 4});
  ASSERT_EQ(box.get_faces().get_count(), 6);
  EXPECT_EQ(box.get_volume(), 24);
  EXPECT_TRUE(is_closed(box));
  expect_normals_to_fit(box);
  const qv_3dvector normals[] = {{0, 0, -1}, {0, 0, 1}, {0, -1, 0},
                                 {1, 0, 0},  {0, 1, 0}, {-1, 0, 0}};
  const float areas[] = {6, 6, 8, 12, 8, 12};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(box.get_faces()[i]->get_normal(), normals[i]) << i;
    EXPECT_EQ(box.get_faces()[i]->get_area(), areas[i]) << i;
  }
  for (const qv_3dvector& vertex : box.get_faces()[1]->get_contour_vertices())
    EXPECT_EQ(vertex.z, 4);
}

TEST(qv_solid, normals_point_outwards_whichever_side_the_direction_leaves) {
  for (const float height : {4.0f, -4.0f}) {
    for (const float side : {1.0f, -1.0f}) {
      qv_polygon base({0, 0, 0}, {0, 0, side});
      base.add_contour(make_rectangle(0, 0, 2, 3));
      const qv_solid box = extrude(base, {0, 0, height});
      EXPECT_EQ(box.get_volume(), 24) << height << " " << side;
      EXPECT_TRUE(is_closed(box));
      expect_normals_to_fit(box);
      EXPECT_EQ(box.get_faces()[0]->get_normal().z, height > 0 ? -1 : 1);
    }
  }
}

TEST(qv_solid, an_inclined_direction_sweeps_the_height_only) {
  const qv_solid prism = extrude(make_polygon({make_rectangle(0, 0, 2, 3)}), {5, 1, 4});
  EXPECT_NEAR(prism.get_volume(), 24, 1e-5);
  EXPECT_TRUE(is_closed(prism));
  expect_normals_to_fit(prism);
}

TEST(qv_solid, holes_become_shafts) {
  const qv_polygon base = make_polygon({make_rectangle(0, 0, 4, 4), make_rectangle(1, 1, 2, 2)});
  const qv_solid solid = extrude(base, {0, 0, 3});
  EXPECT_EQ(solid.get_faces().get_count(), 2 + 4 + 4);
  EXPECT_EQ(solid.get_volume(), 45);
  EXPECT_TRUE(is_closed(solid));
  expect_normals_to_fit(solid);
}

TEST(qv_solid, volume_is_area_times_height_in_every_plane) {
  qv_random random(91);
  for (int i = 0; i < 200; ++i) {
    const auto plane = qv_test::make_random_plane(random);
    const qv_polygon base = plane.make_polygon(
        {qv_test::make_star(random, 9, 0, 0, 5), qv_test::make_star(random, 6, 0, 0, 1)});
    const qv_3dvector direction = random.dice_vector() * 3;
    const double height = std::fabs(direction.dot(base.get_normal()));
    if (height < 0.1) continue;
    const qv_solid solid = extrude(base, direction);
    EXPECT_NEAR(solid.get_volume(), base.get_area() * height, 1e-3 * base.get_area())
        << "seed 91, solid " << i;
    expect_normals_to_fit(solid);
  }
}

TEST(qv_solid, contours_that_cross_are_separated_first) {
  const qv_solid solid =
      extrude(make_polygon({{{0, 0, 0}, {2, 2, 0}, {2, 0, 0}, {0, 2, 0}}}), {0, 0, 3});
  EXPECT_EQ(solid.get_faces().get_count(), 2 + 3 + 3);
  EXPECT_NEAR(solid.get_volume(), 6, 1e-5);
}

TEST(qv_solid, without_a_base_or_a_height_has_no_faces) {
  const qv_polygon base = make_polygon({make_rectangle(0, 0, 2, 3)});
  constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();
  constexpr float infinity = std::numeric_limits<float>::infinity();
  for (const qv_3dvector& direction :
       {qv_3dvector(), qv_3dvector(1, 2, 0), qv_3dvector(0, 0, not_a_number),
        qv_3dvector(0, infinity, 1)}) {
    qv_solid solid = extrude(base, {0, 0, 1});
    solid.extrusion(base, direction);
    EXPECT_TRUE(solid.get_faces().is_empty());
    EXPECT_EQ(solid.get_volume(), 0);
  }
  EXPECT_TRUE(extrude(qv_polygon(), {0, 0, 1}).get_faces().is_empty());
}

TEST(qv_solid, may_be_extruded_from_one_of_its_own_faces) {
  qv_solid solid = extrude(make_polygon({make_rectangle(0, 0, 2, 3)}), {0, 0, 4});
  solid.extrusion(*solid.get_faces()[1], {0, 0, 1});
  EXPECT_EQ(solid.get_volume(), 6);
}

TEST(qv_solid, copies_own_their_faces) {
  qv_solid solid = extrude(make_polygon({make_rectangle(0, 0, 2, 3)}), {0, 0, 4});
  const qv_solid copy(solid);
  qv_solid assigned;
  assigned = solid;
  const qv_solid& same = assigned;
  assigned = same;
  solid.clear();
  EXPECT_EQ(solid.get_faces().get_count(), 0);
  EXPECT_EQ(copy.get_volume(), 24);
  EXPECT_EQ(assigned.get_volume(), 24);
}

TEST(qv_solid, faces_that_point_inwards_enclose_a_negative_volume) {
  const qv_solid box = extrude(make_polygon({make_rectangle(0, 0, 2, 3)}), {0, 0, 4});
  qv_solid inside_out;
  for (const qv_polygon* face : box.get_faces()) {
    qv_polygon turned = *face;
    turned.reverse();
    inside_out.add_face(turned);
  }
  EXPECT_EQ(inside_out.get_volume(), -24);
}

TEST(qv_solid, volume_does_not_suffer_far_from_the_origin) {
  const qv_solid box =
      extrude(make_polygon({make_rectangle(400'000, 300'000, 400'002, 300'003)}), {0, 0, 4});
  EXPECT_EQ(box.get_volume(), 24);
}
