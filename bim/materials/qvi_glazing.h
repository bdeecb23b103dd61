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

  /// Computes everything below from the layers, by the rules of EN 673 and EN 410, and gives the
  /// shader its coefficients and colour. There is no up-to-date test: each call computes. Panes and
  /// gaps are precomputed first. An empty stack lets everything through (U of its two surface
  /// resistances alone).
  ///
  /// The emissivity of the pane behind a gap is read from its back face like that of the pane
  /// before it. A secondary heat gain is added for one, two or three panes about plain gaps; the
  /// solar factor of any other stack is its solar transmittance.
  void precompute() override;

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

  /// Number of gas gaps.
  int get_nb_gaz_layers() const;
  /// Rank of a gap among the gaps from 0; for any other layer, the number of gaps before it. −1
  /// when `layer` is not in the stack.
  int get_gaz_index(const qvi_glazing_layer* layer) const;
  /// Number of panes proper (films and photovoltaic layers left out) in a group, the gaps splitting
  /// the stack into groups from 0.
  int get_nb_glass_layers(int group) const;
  /// Direct solar transmittance of the first `count` layers; 1 when `count` is less than 1.
  float compute_solar_transmittance(int count);

  /// Repairs the stack: a pane before, between and after the gaps, and one photovoltaic layer with
  /// `with_pv`, none without. A missing pane is a full copy of the pane before it, or a default
  /// one; what is added is a child of the glazing, a photovoltaic layer too many is destroyed.
  /// Returns whether anything changed. Nothing calls it unasked.
  bool check_glazing(bool with_pv);

 private:
  void set_shader_from_results();
  qv_color blend_layer_colors() const;

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
