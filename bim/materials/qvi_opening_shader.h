#pragma once

#include "core/shapes/qvi_shader.h"

namespace qv {

/// Whatever can fill an opening, glazed or opaque: a surface that also states how much heat, sun
/// and light it lets through. Item type "opening_shader", a kind of "shader".
class qvi_opening_shader : public qvi_shader {
  QV_ITEM_CLASS(qvi_opening_shader, qvi_shader, "opening_shader")

  /// Thermal transmittance in W/(m²·K) at a slope in degrees from the horizontal (90 for a window
  /// in a wall). 0 here.
  virtual float get_U(float slope_degrees);
  /// Fraction of the sun's energy that enters, 0 … 1. 0 here.
  virtual float get_solar_factor();
  /// Fraction of the light that enters, 0 … 1. 0 here.
  virtual float get_visible_transmittance();
};

}  // namespace qv
