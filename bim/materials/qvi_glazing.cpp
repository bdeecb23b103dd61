#include "bim/materials/qvi_glazing.h"

#include "bim/materials/qv_glazing_physics.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_glass.h"
#include "utilities/qv_date.h"

namespace qv {

namespace {

// Degrees from the horizontal; half way between the slopes for which U is stated: 0, 45 and 90.
constexpr float steepest_flat_slope = 22.5f;
constexpr float steepest_inclined_slope = 67.5f;

constexpr float no_pane_emissivity = 0.0001f;  // of whatever faces a gap and is no pane

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

pane_optics get_solar_optics(const qvi_glazing_glass* pane) {
  return {pane->get_solar_transmittance(), pane->get_solar_reflectance_front(),
          pane->get_solar_reflectance_back()};
}

pane_optics get_visible_optics(const qvi_glazing_glass* pane) {
  return {pane->get_visible_transmittance(), pane->get_visible_reflectance_front(),
          pane->get_visible_reflectance_back()};
}

float get_plain_resistance(const qvi_glazing_layer* layer) {
  return layer->get_thickness() / layer->get_conductivity();
}

/// Emissivity that layer `index` shows to a gap beside it. The back face counts on both sides of
/// the gap: this is deliberate, the catalogue's panes are described that way.
float get_emissivity_towards_gap(const qv_list<qvi_glazing_layer*>& layers, int index) {
  if (index < 0 || index >= layers.get_count()) return no_pane_emissivity;
  const qvi_glazing_glass* pane = as_glass(layers[index]);
  return pane == nullptr ? no_pane_emissivity : pane->get_thermal_emissivity_back();
}

/// Secondary heat gain of the stacks for which one is computed: panes alternating with gaps, one to
/// three panes.
float get_secondary_gain(const qv_list<qvi_glazing_layer*>& layers, const pane_optics& stack,
                         float inner_coefficient) {
  const int count = layers.get_count();
  if (count != 1 && count != 3 && count != 5) return 0.0f;
  pane_optics panes[3];
  float resistances[5];
  for (int i = 0; i < count; ++i) {
    const bool pane_expected = i % 2 == 0;
    if (pane_expected ? as_glass(layers[i]) == nullptr : as_gas(layers[i]) == nullptr) return 0.0f;
    if (pane_expected) panes[i / 2] = get_solar_optics(as_glass(layers[i]));
    resistances[i] = get_plain_resistance(layers[i]);
  }
  if (count == 1) return secondary_gain_of_single(stack, inner_coefficient).inward;
  if (count == 3) {
    return secondary_gain_of_double({panes[0], panes[1]},
                                    {resistances[0], resistances[1], resistances[2]},
                                    inner_coefficient)
        .inward;
  }
  return secondary_gain_of_triple(panes, resistances, inner_coefficient).inward;
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
  const qv_list<qvi_glazing_layer*> layers = get_layers();
  const int count = layers.get_count();

  float inner_coefficient = plain_inner_surface_coefficient;
  if (count > 0) {
    if (const qvi_glazing_glass* last = as_glass(layers[count - 1])) {
      inner_coefficient = inner_surface_coefficient(last->get_thermal_emissivity_back());
    }
  }

  pane_optics solar;
  pane_optics visible;
  float thickness = 0.0f;
  float resistance[glazing_slope_count];
  for (float& r : resistance) r = 1.0f / inner_coefficient + outer_surface_resistance;

  for (int i = 0; i < count; ++i) {
    qvi_glazing_layer* const layer = layers[i];
    if (layer == nullptr) continue;
    const qvi_glazing_glass* const pane = as_glass(layer);
    const qvi_glazing_gaz* const gap = as_gas(layer);
    thickness += layer->get_thickness();
    if (pane != nullptr || gap != nullptr) layer->precompute();
    if (pane != nullptr) {
      solar = add_pane_behind(solar, get_solar_optics(pane));
      visible = add_pane_behind(visible, get_visible_optics(pane));
    }
    if (gap == nullptr) {
      for (float& r : resistance) r += get_plain_resistance(layer);
      continue;
    }
    const gap_exchange exchange =
        exchange_across_gap({gap->get_conductivity(), gap->get_viscosity(),
                             gap->get_specific_heat(), gap->get_volumic_mass()},
                            gap->get_thickness(), get_emissivity_towards_gap(layers, i - 1),
                            get_emissivity_towards_gap(layers, i + 1));
    for (int slope = 0; slope < glazing_slope_count; ++slope) {
      resistance[slope] += exchange.get_resistance(static_cast<glazing_slope>(slope));
    }
  }

  const auto get_transmittance = [&resistance](glazing_slope slope) {
    return 1.0f / resistance[static_cast<int>(slope)];
  };
  glazing_results& results = *results_;
  results.solar_transmittance = solar.transmittance;
  results.solar_reflectance_front = solar.reflectance_front;
  results.solar_reflectance_back = solar.reflectance_back;
  results.visible_transmittance = visible.transmittance;
  results.visible_reflectance_front = visible.reflectance_front;
  results.visible_reflectance_back = visible.reflectance_back;
  results.thickness = thickness;
  results.U_vertical = get_transmittance(glazing_slope::vertical);
  results.U_horizontal = get_transmittance(glazing_slope::horizontal);
  results.U_inclined = get_transmittance(glazing_slope::inclined);
  results.solar_factor = solar.transmittance + get_secondary_gain(layers, solar, inner_coefficient);
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
    stack = add_pane_behind(stack, get_solar_optics(pane));
  }
  return stack.transmittance;
}

}  // namespace qv
