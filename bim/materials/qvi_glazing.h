#pragma once

#include <memory>

#include "bim/materials/qvi_opening_shader.h"

namespace qv {

class qvi_glazing_layer;

/// A complete glazing unit: a stack of panes, gas gaps and films. Item type "glazing", a kind of
/// "opening_shader". Layers are shared items that the glazing refers to and does not own.
///
/// A new glazing is a shiny, nearly invisible surface: white with alpha 0.2, white highlights of
/// sharpness 20.
class qvi_glazing : public qvi_opening_shader {
  QV_ITEM_CLASS(qvi_glazing, qvi_opening_shader, "glazing")

  /// Maker.
  QV_PARAM(std::string, supplier, "")
  /// Product reference.
  QV_PARAM(std::string, model, "")
  /// From the outside (first) to the inside (last).
  QV_PARAM_ITEM_LIST(qvi_glazing_layer, layers)

  // Results of the last `precompute`; 0 before. Fractions are between 0 and 1; "front" is seen from
  // the outside, "back" from the room.

  /// U in W/(m²·K) of a flat (slope below 22.5°), inclined (below 67.5°) or steep glazing.
  float get_U(float slope_degrees) override;
  /// Total solar energy transmittance g.
  float get_solar_factor() override;
  float get_visible_transmittance() override;
  /// Of the whole stack, m.
  virtual float get_thickness();
  float get_solar_transmittance() const { return results_->solar_transmittance; }
  float get_solar_reflectance_front() const { return results_->solar_reflectance_front; }
  float get_solar_reflectance_back() const { return results_->solar_reflectance_back; }
  float get_visible_reflectance_front() const { return results_->visible_reflectance_front; }
  float get_visible_reflectance_back() const { return results_->visible_reflectance_back; }

 private:
  // A copy-constructed glazing shares its source's results.
  struct glazing_results {
    float solar_transmittance = 0;
    float visible_transmittance = 0;
    float solar_reflectance_front = 0;
    float visible_reflectance_front = 0;
    float solar_reflectance_back = 0;
    float visible_reflectance_back = 0;
    float U_vertical = 0;
    float U_horizontal = 0;
    float U_inclined = 0;
    float solar_factor = 0;
    float thickness = 0;
    unsigned int date = 0;  // of the last computation; 0 never
  };
  std::shared_ptr<glazing_results> results_ = std::make_shared<glazing_results>();
};

}  // namespace qv
