#include "bim/materials/qvi_glazing.h"

#include "bim/materials/qv_glazing_calculation.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_glass.h"
#include "utilities/qv_date.h"

namespace qv {

namespace {

// Degrees from the horizontal; half way between the slopes for which U is stated: 0, 45 and 90.
constexpr float steepest_flat_slope = 22.5f;
constexpr float steepest_inclined_slope = 67.5f;

/// The layer as a pane (films and photovoltaic layers included) or a gap; null when it is something
/// else.
const qvi_glazing_glass* as_glass(const qvi_glazing_layer* layer) {
  return layer != nullptr && layer->has_type("glazing_glass")
             ? static_cast<const qvi_glazing_glass*>(layer)
             : nullptr;
}

const qvi_glazing_gaz* as_gas(const qvi_glazing_layer* layer) {
  return layer != nullptr && layer->has_type("glazing_gaz")
             ? static_cast<const qvi_glazing_gaz*>(layer)
             : nullptr;
}

}  // namespace

QV_ITEM_CLASS_COPYING(qvi_glazing)

qvi_glazing::qvi_glazing() {
  set_diffuse_color(qv_color(1.0f, 1.0f, 1.0f, 0.2f));
  set_specular_color(qv_color(1.0f, 1.0f, 1.0f, 1.0f));
  set_shininess(20.0f);
}

float qvi_glazing::get_U(float slope_degrees) {
  if (slope_degrees < steepest_flat_slope) return results_->U_horizontal;
  if (slope_degrees < steepest_inclined_slope) return results_->U_inclined;
  return results_->U_vertical;
}

float qvi_glazing::get_solar_factor() {
  return results_->solar_factor;
}

float qvi_glazing::get_visible_transmittance() {
  return results_->visible_transmittance;
}

float qvi_glazing::get_thickness() {
  return results_->thickness;
}

void qvi_glazing::precompute() {
  qvi_opening_shader::precompute();
  const glazing_calculation found = calculate_glazing(get_layers());
  glazing_results& results = *results_;
  results.solar_transmittance = found.solar.transmittance;
  results.solar_reflectance_front = found.solar.reflectance_front;
  results.solar_reflectance_back = found.solar.reflectance_back;
  results.visible_transmittance = found.visible.transmittance;
  results.visible_reflectance_front = found.visible.reflectance_front;
  results.visible_reflectance_back = found.visible.reflectance_back;
  results.thickness = found.thickness;
  results.U_vertical = found.get_U(glazing_slope::vertical);
  results.U_horizontal = found.get_U(glazing_slope::horizontal);
  results.U_inclined = found.get_U(glazing_slope::inclined);
  results.solar_factor = found.get_solar_factor();
  set_shader_from_results();
  results.date = qv_get_date();
}

void qvi_glazing::set_shader_from_results() {
  // The solar figures serve every spectrum, the visible one included: deliberate, rays carry the
  // sun.
  for (const qv_spectrum spectrum :
       {qv_spectrum::solar, qv_spectrum::visible, qv_spectrum::thermal}) {
    set_direct_transmission(results_->solar_transmittance, spectrum);
    set_direct_reflexion(
        (results_->solar_reflectance_front + results_->solar_reflectance_back) * 0.5f, spectrum);
    set_diffuse_transmission(0.0f, spectrum);
    set_diffuse_reflexion(0.0f, spectrum);
  }
  set_diffuse_color(blend_layer_colors());
}

qv_color qvi_glazing::blend_layer_colors() const {
  qv_color color(1.0f, 1.0f, 1.0f, 0.0f);
  const qv_list<qvi_glazing_layer*> layers = get_layers();
  for (int i = layers.get_count() - 1; i >= 0; --i) {
    const qvi_glazing_glass* const pane = as_glass(layers[i]);
    if (pane == nullptr) continue;
    const float a = 1.0f - pane->get_visible_transmittance();
    const qv_color& tint = pane->get_diffuse_color();
    const float alpha = 1.0f - (1.0f - color.a) * (1.0f - a);
    color *= 1.0f - a;
    color += qv_color(a * tint.r, a * tint.g, a * tint.b, a * tint.a);
    color.a = alpha;
  }
  return color;
}

int qvi_glazing::get_nb_gaz_layers() const {
  int count = 0;
  for (const qvi_glazing_layer* layer : get_layers()) {
    if (as_gas(layer) != nullptr) ++count;
  }
  return count;
}

int qvi_glazing::get_gaz_index(const qvi_glazing_layer* sought) const {
  int gaps_passed = 0;
  for (const qvi_glazing_layer* layer : get_layers()) {
    if (layer == sought) return gaps_passed;
    if (as_gas(layer) != nullptr) ++gaps_passed;
  }
  return -1;
}

int qvi_glazing::get_nb_glass_layers(int group) const {
  int current_group = 0;
  int count = 0;
  for (const qvi_glazing_layer* layer : get_layers()) {
    if (as_gas(layer) != nullptr) ++current_group;
    if (current_group == group && layer != nullptr && layer->has_exact_type("glazing_glass")) {
      ++count;
    }
  }
  return count;
}

float qvi_glazing::compute_solar_transmittance(int count) {
  const qv_list<qvi_glazing_layer*> layers = get_layers();
  pane_optics stack;
  for (int i = 0; i < count && i < layers.get_count(); ++i) {
    const qvi_glazing_glass* const pane = as_glass(layers[i]);
    if (pane == nullptr) continue;
    layers[i]->precompute();
    stack = add_pane_behind(stack, get_solar_optics(*pane));
  }
  return stack.transmittance;
}

}  // namespace qv
