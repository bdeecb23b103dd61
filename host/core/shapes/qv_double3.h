#pragma once

#include <algorithm>
#include <cmath>

#include "utilities/qv_3dvector.h"

namespace qv {

/// A point or direction in double precision, for the inside of algorithms.
struct qv_double3 {
  double x = 0;
  double y = 0;
  double z = 0;

  constexpr qv_double3() = default;
  constexpr qv_double3(double x_value, double y_value, double z_value)
      : x(x_value), y(y_value), z(z_value) {}
  explicit constexpr qv_double3(const qv_3dvector& v) : x(v.x), y(v.y), z(v.z) {}

  friend constexpr qv_double3 operator+(const qv_double3& a, const qv_double3& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
  }
  friend constexpr qv_double3 operator-(const qv_double3& a, const qv_double3& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
  }
  friend constexpr qv_double3 operator*(const qv_double3& a, double s) {
    return {a.x * s, a.y * s, a.z * s};
  }
};

constexpr double dot(const qv_double3& a, const qv_double3& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
constexpr qv_double3 cross(const qv_double3& a, const qv_double3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double length(const qv_double3& a) {
  return std::sqrt(dot(a, a));
}
/// Zero stays zero.
inline qv_double3 normalized(const qv_double3& a) {
  const double l = length(a);
  return l > 0 ? a * (1 / l) : a;
}
/// Component by component.
inline qv_double3 min(const qv_double3& a, const qv_double3& b) {
  return {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)};
}
inline qv_double3 max(const qv_double3& a, const qv_double3& b) {
  return {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)};
}

}  // namespace qv
