#include "bim/materials/qv_glazing_calculation.h"

#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_glass.h"

namespace qv {

namespace {

using kind = glazing_layer_step::kind;

constexpr float no_pane_emissivity = 0.0001f;  // of whatever faces a gap and is no pane

const qvi_glazing_glass& as_pane(const glazing_layer_step& step) {
  return *static_cast<const qvi_glazing_glass*>(step.layer);
}

pane_optics get_visible_optics(const qvi_glazing_glass& pane) {
  return {pane.get_visible_transmittance(), pane.get_visible_reflectance_front(),
          pane.get_visible_reflectance_back()};
}

std::vector<glazing_layer_step> list_steps(const qv_list<qvi_glazing_layer*>& layers) {
  std::vector<glazing_layer_step> steps;
  for (qvi_glazing_layer* layer : layers) {
    if (layer == nullptr) continue;
    glazing_layer_step& step = steps.emplace_back();
    step.layer = layer;
    if (layer->has_type("glazing_glass")) step.sort = kind::pane;
    if (layer->has_type("glazing_gaz")) step.sort = kind::gap;
    if (step.sort != kind::plain) layer->precompute();
    step.plain_resistance = layer->get_thickness() / layer->get_conductivity();
  }
  return steps;
}

/// Emissivity that step `index` shows to a gap beside it: that of its back face on both sides of
/// the gap.
float get_emissivity_towards_gap(const std::vector<glazing_layer_step>& steps, std::size_t index) {
  // An index before the first layer has wrapped around and is past the end too.
  if (index >= steps.size() || steps[index].sort != kind::pane) return no_pane_emissivity;
  return as_pane(steps[index]).get_thermal_emissivity_back();
}

void cross_gap(std::vector<glazing_layer_step>& steps, std::size_t index) {
  glazing_layer_step& step = steps[index];
  const auto& gap = *static_cast<const qvi_glazing_gaz*>(step.layer);
  step.gas = {gap.get_conductivity(), gap.get_viscosity(), gap.get_specific_heat(),
              gap.get_volumic_mass()};
  step.emissivity[0] = get_emissivity_towards_gap(steps, index - 1);
  step.emissivity[1] = get_emissivity_towards_gap(steps, index + 1);
  step.exchange =
      exchange_across_gap(step.gas, gap.get_thickness(), step.emissivity[0], step.emissivity[1]);
}

/// The heat that panes give off inwards, for panes alternating with gaps, one to three panes.
void find_secondary_gain(glazing_calculation& found) {
  const std::size_t count = found.steps.size();
  if (count != 1 && count != 3 && count != 5) return;
  pane_optics panes[3];
  float resistances[5] = {0, 0, 0, 0, 0};
  for (std::size_t i = 0; i < count; ++i) {
    const glazing_layer_step& step = found.steps[i];
    const bool pane_expected = i % 2 == 0;
    if (step.sort != (pane_expected ? kind::pane : kind::gap)) return;
    if (pane_expected) panes[i / 2] = get_solar_optics(as_pane(step));
    resistances[i] = step.plain_resistance;
  }
  found.has_gain = true;
  if (count == 1) {
    found.gain = secondary_gain_of_single(found.solar, found.inner_coefficient);
  } else if (count == 3) {
    found.gain = secondary_gain_of_double({panes[0], panes[1]},
                                          {resistances[0], resistances[1], resistances[2]},
                                          found.inner_coefficient);
  } else {
    found.gain = secondary_gain_of_triple(panes, resistances, found.inner_coefficient);
  }
}

}  // namespace

pane_optics get_solar_optics(const qvi_glazing_glass& pane) {
  return {pane.get_solar_transmittance(), pane.get_solar_reflectance_front(),
          pane.get_solar_reflectance_back()};
}

glazing_calculation calculate_glazing(const qv_list<qvi_glazing_layer*>& layers) {
  glazing_calculation found;
  found.steps = list_steps(layers);
  std::vector<glazing_layer_step>& steps = found.steps;
  found.inner_coefficient =
      !steps.empty() && steps.back().sort == kind::pane
          ? inner_surface_coefficient(as_pane(steps.back()).get_thermal_emissivity_back())
          : plain_inner_surface_coefficient;
  for (float& r : found.resistance) r = 1.0f / found.inner_coefficient + outer_surface_resistance;

  for (std::size_t i = 0; i < steps.size(); ++i) {
    glazing_layer_step& step = steps[i];
    found.thickness += step.layer->get_thickness();
    if (step.sort == kind::pane) {
      found.solar = add_pane_behind(found.solar, get_solar_optics(as_pane(step)));
      found.visible = add_pane_behind(found.visible, get_visible_optics(as_pane(step)));
    }
    if (step.sort == kind::gap) cross_gap(steps, i);
    for (int slope = 0; slope < glazing_slope_count; ++slope) {
      step.resistance[slope] = step.sort == kind::gap
                                   ? step.exchange.get_resistance(static_cast<glazing_slope>(slope))
                                   : step.plain_resistance;
      found.resistance[slope] += step.resistance[slope];
    }
  }
  find_secondary_gain(found);
  return found;
}

}  // namespace qv
