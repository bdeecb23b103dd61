#pragma once

#include <array>
#include <cmath>

#include "utilities/qv_3dvector.h"
#include "utilities/qv_list.h"
#include "utilities/qv_triangulation.h"

namespace qv {

/// Twice a triangle's area as a vector along its normal, in double precision.
struct area_vector {
  double x = 0;
  double y = 0;
  double z = 0;

  area_vector() = default;
  area_vector(const qv_3dvector& a, const qv_3dvector& b, const qv_3dvector& c) {
    const double ux = double{b.x} - a.x, uy = double{b.y} - a.y, uz = double{b.z} - a.z;
    const double vx = double{c.x} - a.x, vy = double{c.y} - a.y, vz = double{c.z} - a.z;
    x = uy * vz - uz * vy;
    y = uz * vx - ux * vz;
    z = ux * vy - uy * vx;
  }

  area_vector& operator+=(const area_vector& other) {
    x += other.x;
    y += other.y;
    z += other.z;
    return *this;
  }
  double dot(const area_vector& other) const { return x * other.x + y * other.y + z * other.z; }
  double length() const { return std::sqrt(dot(*this)); }
  /// Unit normal; the zero vector when there is no area or it is not finite.
  qv_3dvector get_normal() const {
    const double size = length();
    if (!(size > 0) || !std::isfinite(size)) return {};
    return {static_cast<float>(x / size), static_cast<float>(y / size),
            static_cast<float>(z / size)};
  }
};

using triangle_corners = std::array<int, 3>;

/// Corners of triangle `index`; false when one of them is no vertex.
inline bool read_corners(const qv_list<int>& triangles, int index, int vertex_count,
                         triangle_corners& corners) {
  for (int i = 0; i < 3; ++i) {
    corners[i] = triangles[3 * index + i];
    if (corners[i] < 0 || corners[i] >= vertex_count) return false;
  }
  return true;
}

/// Calls `visit(corners)` for each triangle whose corners are vertices.
template <class Visit>
void for_each_triangle(const qv_list<int>& triangles, int vertex_count, const Visit& visit) {
  triangle_corners corners;
  for (int i = 0; i < triangles.get_count() / 3; ++i)
    if (read_corners(triangles, i, vertex_count, corners)) visit(corners);
}

/// Adds vertices and triangles to `target`; a triangle whose corners are no vertices is left out.
void append_triangles(qv_triangulation& target, const qv_list<qv_3dvector>& vertices,
                      const qv_list<int>& triangles);

/// The same triangles with the opposite winding.
qv_list<int> get_turned_triangles(const qv_list<int>& triangles);

}  // namespace qv
