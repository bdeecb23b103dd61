#pragma once

#include <cmath>

namespace qv {

/// A point or a direction in space: three single-precision components, in metres for points.
class qv_3dvector {
 public:
  float x = 0;
  float y = 0;
  float z = 0;

  constexpr qv_3dvector() = default;
  constexpr qv_3dvector(float x_value, float y_value, float z_value)
      : x(x_value), y(y_value), z(z_value) {}

  constexpr qv_3dvector operator+(const qv_3dvector& v) const {
    return {x + v.x, y + v.y, z + v.z};
  }
  constexpr qv_3dvector operator-(const qv_3dvector& v) const {
    return {x - v.x, y - v.y, z - v.z};
  }
  constexpr qv_3dvector operator-() const { return {-x, -y, -z}; }
  constexpr qv_3dvector operator*(float s) const { return {x * s, y * s, z * s}; }
  constexpr qv_3dvector operator/(float s) const { return {x / s, y / s, z / s}; }
  friend constexpr qv_3dvector operator*(float s, const qv_3dvector& v) { return v * s; }
  qv_3dvector& operator+=(const qv_3dvector& v) { return *this = *this + v; }
  qv_3dvector& operator-=(const qv_3dvector& v) { return *this = *this - v; }
  qv_3dvector& operator*=(float s) { return *this = *this * s; }

  /// Component by component, in the order x, y, z; a NaN differs from everything.
  friend constexpr bool operator==(const qv_3dvector& a, const qv_3dvector& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
  }

  /// Scalar product.
  constexpr float dot(const qv_3dvector& v) const { return x * v.x + y * v.y + z * v.z; }
  /// Vector product.
  constexpr qv_3dvector cross(const qv_3dvector& v) const {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }
  /// Euclidean length.
  float length() const { return std::sqrt(dot(*this)); }
  /// True when no component is NaN or infinite.
  bool is_finite() const { return std::isfinite(x) && std::isfinite(y) && std::isfinite(z); }

  /// Scales to length 1 in place and returns the former length. A vector of length 0, or one that
  /// is not finite, stays as it is (its length, 0 or NaN or infinite, is returned).
  float normalize();
  /// A copy scaled to length 1.
  qv_3dvector normalized() const;

  /// Direction as two angles in degrees: `tilt` from the upward vertical (0 up, 90 horizontal, 180
  /// down) and `azimuth` counter-clockwise from +x, in (−180, 180]. A vertical vector has azimuth
  /// 0; a zero vector, and one that is not finite, has both angles 0.
  void get_angles(float& azimuth, float& tilt) const;
};

}  // namespace qv
