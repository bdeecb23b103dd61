#pragma once

#include "bim/materials/qvi_opening_shader.h"

namespace qv {

/// An opaque panel in an opening: a door leaf, a spandrel. Item type "opaque", a kind of
/// "opening_shader".
class qvi_opaque : public qvi_opening_shader {
  QV_ITEM_CLASS(qvi_opaque, qvi_opening_shader, "opaque")

  /// m.
  QV_PARAM(float, thickness, 0.01f)
  /// Thermal conductivity, W/(m·K).
  QV_PARAM(float, conductivity, 0.05f)

  /// Conductivity over thickness, the same at every slope and without surface resistances.
  /// Infinite for a thickness of 0.
  float get_U(float slope_degrees) override;
  /// 0.
  float get_solar_factor() override;
  /// 0.
  float get_visible_transmittance() override;
};

}  // namespace qv
