#pragma once

#include <initializer_list>

#include "utilities/qv_polygon.h"
#include "utilities/qv_random.h"

namespace qv_test {

using contour = qv::qv_list<qv::qv_3dvector>;

/// A polygon in the plane z = 0, normal up.
qv::qv_polygon make_polygon(std::initializer_list<contour> contours);

/// A rectangle in the plane z = 0, counter-clockwise.
contour make_rectangle(float min_x, float min_y, float max_x, float max_y);

/// A plane with axes of its own, in which polygons of one test are laid out.
struct test_plane {
  qv::qv_3dvector origin;
  qv::qv_3dvector u{1, 0, 0};
  qv::qv_3dvector v{0, 1, 0};

  qv::qv_3dvector get_normal() const { return u.cross(v); }
  qv::qv_3dvector at(double a, double b) const;
  void get_coordinates(const qv::qv_3dvector& p, double& a, double& b) const;
  qv::qv_polygon make_polygon(std::initializer_list<contour> flat_contours) const;
};

/// A plane of any slope through a point within 50 m of the origin.
test_plane make_random_plane(qv::qv_random& random);

/// A star-shaped contour around (x, y) with radii between a quarter and the whole of `size`, in the
/// plane z = 0, counter-clockwise.
contour make_star(qv::qv_random& random, int corners, float x, float y, float size);

/// The same with equal radii: convex.
contour make_circle(int corners, float x, float y, float size);

/// Whether the contours of the polygon enclose the point (a, b) of the plane, by the even-odd rule.
bool is_inside(const qv::qv_polygon& polygon, const test_plane& plane, double a, double b);

/// Distance of (a, b) from the nearest edge, m.
double get_distance_from_edges(const qv::qv_polygon& polygon, const test_plane& plane, double a,
                               double b);

/// Whether one of the vertices has exactly these three floats.
bool has_vertex(const qv::qv_polygon& polygon, const qv::qv_3dvector& vertex);

/// Area of the contours as they run in space, double precision: outer ones minus holes as their
/// directions about the normal say.
double get_oriented_area(const qv::qv_polygon& polygon);

}  // namespace qv_test
