#include "tests/utilities/qv_polygon_makers.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace qv_test {

using qv::qv_3dvector;
using qv::qv_polygon;
using qv::qv_random;

namespace {

double dot(const qv_3dvector& p, const qv_3dvector& q) {
  return static_cast<double>(p.x) * q.x + static_cast<double>(p.y) * q.y +
         static_cast<double>(p.z) * q.z;
}

// Calls function(a0, b0, a1, b1) for each edge.
template <class Function>
void for_each_edge(const qv_polygon& polygon, const test_plane& plane, Function function) {
  for (int i = 0; i < polygon.get_contour_count(); ++i) {
    const contour vertices = polygon.get_contour(i);
    for (int j = 0; j < vertices.get_count(); ++j) {
      double a0, b0, a1, b1;
      plane.get_coordinates(vertices[j], a0, b0);
      plane.get_coordinates(vertices[(j + 1) % vertices.get_count()], a1, b1);
      function(a0, b0, a1, b1);
    }
  }
}

}  // namespace

qv_polygon make_polygon(std::initializer_list<contour> contours) {
  qv_polygon polygon;
  for (const contour& vertices : contours) polygon.add_contour(vertices);
  return polygon;
}

contour make_rectangle(float min_x, float min_y, float max_x, float max_y) {
  return {{min_x, min_y, 0}, {max_x, min_y, 0}, {max_x, max_y, 0}, {min_x, max_y, 0}};
}

qv_3dvector test_plane::at(double a, double b) const {
  return {static_cast<float>(origin.x + a * u.x + b * v.x),
          static_cast<float>(origin.y + a * u.y + b * v.y),
          static_cast<float>(origin.z + a * u.z + b * v.z)};
}

void test_plane::get_coordinates(const qv_3dvector& p, double& a, double& b) const {
  a = dot(p, u) - dot(origin, u);
  b = dot(p, v) - dot(origin, v);
}

qv_polygon test_plane::make_polygon(std::initializer_list<contour> flat_contours) const {
  qv_polygon polygon(origin, get_normal());
  for (const contour& flat : flat_contours) {
    contour vertices;
    for (const qv_3dvector& p : flat) vertices.append(at(p.x, p.y));
    polygon.add_contour(vertices);
  }
  return polygon;
}

test_plane make_random_plane(qv_random& random) {
  test_plane plane;
  plane.origin = random.dice_vector() * (50 * random.dice_float());
  plane.u = random.dice_vector();
  qv_3dvector other;
  do other = random.dice_vector();
  while (std::fabs(other.dot(plane.u)) > 0.9f);
  plane.v = plane.u.cross(other).normalized();
  return plane;
}

contour make_star(qv_random& random, int corners, float x, float y, float size) {
  contour vertices;
  for (int i = 0; i < corners; ++i) {
    const double angle = 2 * std::numbers::pi * i / corners;
    const double radius = size * (0.25 + 0.75 * random.dice_double());
    vertices.append({static_cast<float>(x + radius * std::cos(angle)),
                     static_cast<float>(y + radius * std::sin(angle)), 0});
  }
  return vertices;
}

contour make_circle(int corners, float x, float y, float size) {
  contour vertices;
  for (int i = 0; i < corners; ++i) {
    const double angle = 2 * std::numbers::pi * i / corners;
    vertices.append({static_cast<float>(x + size * std::cos(angle)),
                     static_cast<float>(y + size * std::sin(angle)), 0});
  }
  return vertices;
}

bool is_inside(const qv_polygon& polygon, const test_plane& plane, double a, double b) {
  bool inside = false;
  for_each_edge(polygon, plane, [&](double a0, double b0, double a1, double b1) {
    if ((b0 > b) != (b1 > b) && a < a0 + (a1 - a0) * (b - b0) / (b1 - b0)) inside = !inside;
  });
  return inside;
}

double get_distance_from_edges(const qv_polygon& polygon, const test_plane& plane, double a,
                               double b) {
  double nearest = std::numeric_limits<double>::infinity();
  for_each_edge(polygon, plane, [&](double a0, double b0, double a1, double b1) {
    const double along_a = a1 - a0, along_b = b1 - b0;
    const double square = along_a * along_a + along_b * along_b;
    const double t = square > 0 ? ((a - a0) * along_a + (b - b0) * along_b) / square : 0;
    const double s = std::clamp(t, 0.0, 1.0);
    nearest = std::min(nearest, std::hypot(a - a0 - s * along_a, b - b0 - s * along_b));
  });
  return nearest;
}

bool has_vertex(const qv_polygon& polygon, const qv_3dvector& vertex) {
  return polygon.get_contour_vertices().contains(vertex);
}

double get_oriented_area(const qv_polygon& polygon) {
  const qv_3dvector n = polygon.get_normal();
  double sum = 0;
  for (int i = 0; i < polygon.get_contour_count(); ++i) {
    const contour vertices = polygon.get_contour(i);
    for (int j = 1; j + 1 < vertices.get_count(); ++j) {
      const qv_3dvector& o = vertices[0];
      const qv_3dvector& p = vertices[j];
      const qv_3dvector& q = vertices[j + 1];
      const double px = static_cast<double>(p.x) - o.x, qx = static_cast<double>(q.x) - o.x;
      const double py = static_cast<double>(p.y) - o.y, qy = static_cast<double>(q.y) - o.y;
      const double pz = static_cast<double>(p.z) - o.z, qz = static_cast<double>(q.z) - o.z;
      sum += n.x * (py * qz - pz * qy) + n.y * (pz * qx - px * qz) + n.z * (px * qy - py * qx);
    }
  }
  return sum / 2;
}

}  // namespace qv_test
