#pragma once

#include <cmath>

namespace qv {

/// A point or direction in double precision, m. Readers work with it until they fill items.
struct qv_double3 {
  double x = 0;
  double y = 0;
  double z = 0;

  friend constexpr qv_double3 operator+(const qv_double3& a, const qv_double3& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
  }
  friend constexpr qv_double3 operator-(const qv_double3& a, const qv_double3& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
  }
  friend constexpr qv_double3 operator*(const qv_double3& a, double s) {
    return {a.x * s, a.y * s, a.z * s};
  }
  friend constexpr bool operator==(const qv_double3&, const qv_double3&) = default;

  constexpr double dot(const qv_double3& v) const { return x * v.x + y * v.y + z * v.z; }
  constexpr qv_double3 cross(const qv_double3& v) const {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }
  double length() const { return std::sqrt(dot(*this)); }
};

}  // namespace qv
