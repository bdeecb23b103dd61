#pragma once

#include "bim/materials/qvi_glazing_layer.h"

namespace qv {

/// A pane of glass. Item type "glazing_glass", a kind of "glazing_layer". A new pane is 5 mm thick.
///
/// Transmittances, reflectances and emissivities are fractions between 0 and 1. "Front" is the face
/// towards the outside, "back" the one towards the room.
class qvi_glazing_glass : public qvi_glazing_layer {
  QV_ITEM_CLASS(qvi_glazing_glass, qvi_glazing_layer, "glazing_glass")

  /// Maker of the pane.
  QV_PARAM(std::string, supplier, "")
  /// Product reference.
  QV_PARAM(std::string, model, "")

  // The whole of the sun's spectrum.
  QV_PARAM(float, solar_transmittance, 0.8f)
  QV_PARAM(float, solar_reflectance_front, 0.2f)
  QV_PARAM(float, solar_reflectance_back, 0.2f)

  // Light, weighted by the eye.
  QV_PARAM(float, visible_transmittance, 0.8f)
  QV_PARAM(float, visible_reflectance_front, 0.2f)
  QV_PARAM(float, visible_reflectance_back, 0.2f)

  // Long-wave (infrared) radiation of bodies near room temperature.
  QV_PARAM(float, thermal_transmittance, 0.8f)
  QV_PARAM(float, thermal_emissivity_front, 0.2f)
  QV_PARAM(float, thermal_emissivity_back, 0.2f)

  /// Becomes the single pane, 6 mm thick, that shows the three figures of a data sheet: `U` in
  /// W/(m²·K), the total solar energy transmittance `g` and the light transmittance. Reflectances
  /// become 0.2, both emissivities 0.89; the solar transmittance is g less what the pane absorbs
  /// and gives off inwards, the conductivity what U leaves for the pane (a resistance of at least
  /// 0.001 m²·K/W).
  void build_from_global_data(float U, float g, float light_transmittance);
};

}  // namespace qv
