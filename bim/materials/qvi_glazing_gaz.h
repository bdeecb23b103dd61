#pragma once

#include "bim/materials/qvi_glazing_layer.h"

namespace qv {

/// The gap between two panes and the gas that fills it. Item type "glazing_gaz", a kind of
/// "glazing_layer". A gap is drawn invisible.
class qvi_glazing_gaz : public qvi_glazing_layer {
  QV_ITEM_CLASS(qvi_glazing_gaz, qvi_glazing_layer, "glazing_gaz")

  /// `other` is a mixture of the five pure gases before it. The value 6, which has no label, stands
  /// for a gas whose properties are given by hand.
  enum class gaz_type : int { air, argon, krypton, xenon, sf6, other, by_hand };
  QV_ENUM_LIST(gaz_type, "air", "argon", "krypton", "xenon", "sf6", "other")

  QV_PARAM_ENUM(gaz_type, gaz_type, gaz_type::air)
  /// Fractions of the five pure gases in a mixture, in their order.
  QV_PARAM_LIST(float, gaz_mixing)
  /// Dynamic viscosity, kg/(m·s).
  QV_PARAM(float, viscosity, 0.0f)
  /// Specific heat capacity, J/(kg·K).
  QV_PARAM(float, specific_heat, 0.0f)
  /// Density, kg/m³.
  QV_PARAM(float, volumic_mass, 0.0f)

  /// Sets conductivity, viscosity, specific heat and density after the gas, or after the fractions
  /// of a mixture, once each time one of these changed. Fractions are brought to a sum of 1 (the
  /// parameter keeps what was given); fractions that add up to 0 are air. Properties mix linearly.
  /// A gas given by hand is left alone.
  void precompute() override;

 private:
  unsigned int computed_date_ = 0;  // 0 never
};

}  // namespace qv
