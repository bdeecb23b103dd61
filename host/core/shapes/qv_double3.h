#pragma once

#include <algorithm>
#include <cmath>

#include "utilities/qv_3dvector.h"

namespace qv {

/// A point or direction in double precision, for the inside of algorithms and for readers until
/// they fill items.
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
  friend constexpr bool operator==(const qv_double3&, const qv_double3&) = default;

  constexpr double dot(const qv_double3& v) const { return x * v.x + y * v.y + z * v.z; }
  constexpr qv_double3 cross(const qv_double3& v) const {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }
  double length() const { return std::sqrt(dot(*this)); }
};

constexpr double dot(const qv_double3& a, const qv_double3& b) {
  return a.dot(b);
}
constexpr qv_double3 cross(const qv_double3& a, const qv_double3& b) {
  return a.cross(b);
}
inline double length(const qv_double3& a) {
  return a.length();
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
