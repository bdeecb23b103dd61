#pragma once

namespace qv {

/// A colour: red, green, blue and alpha (opacity), each usually 0 … 1.
class qv_color {
 public:
  float r = 0;
  float g = 0;
  float b = 0;
  float a = 1;

  /// Opaque black.
  constexpr qv_color() = default;
  constexpr qv_color(float red, float green, float blue, float alpha)
      : r(red), g(green), b(blue), a(alpha) {}

  /// All four components times `factor`.
  constexpr qv_color& operator*=(float factor) {
    r *= factor;
    g *= factor;
    b *= factor;
    a *= factor;
    return *this;
  }
  /// All four components added.
  constexpr qv_color& operator+=(const qv_color& color) {
    r += color.r;
    g += color.g;
    b += color.b;
    a += color.a;
    return *this;
  }
  /// Component by component, in the order red, green, blue, alpha; a NaN differs from everything.
  friend constexpr bool operator==(const qv_color& x, const qv_color& y) {
    return x.r == y.r && x.g == y.g && x.b == y.b && x.a == y.a;
  }
};

}  // namespace qv
