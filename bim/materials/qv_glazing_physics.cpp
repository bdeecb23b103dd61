#include "bim/materials/qv_glazing_physics.h"

#include <algorithm>
#include <cmath>

namespace qv {

namespace {

constexpr float convection_inside = 3.6f;  // W/(m²·K)
constexpr float radiation_inside = 4.1f;   // W/(m²·K), between uncoated glass and a room
constexpr float uncoated_glass_emissivity = 0.837f;
constexpr float smallest_emissivity = 0.0001f;

constexpr float gravity = 9.81f;                  // m/s²
constexpr float temperature_difference = 15.0f;   // K, across the gap
constexpr float mean_temperature = 283.0f;        // K
constexpr float black_body_exchange = 5.140465f;  // W/(m²·K): 4 σ 283³

// Nu = factor · (Gr · Pr)^exponent, in the order of glazing_slope.
constexpr float nusselt_factor[glazing_slope_count] = {0.035f, 0.16f, 0.10f};
constexpr float nusselt_exponent[glazing_slope_count] = {0.38f, 0.28f, 0.31f};

}  // namespace

float inner_surface_coefficient(float emissivity) {
  return emissivity * radiation_inside / uncoated_glass_emissivity + convection_inside;
}

gap_exchange exchange_across_gap(const gas_properties& gas, float thickness, float emissivity_1,
                                 float emissivity_2) {
  gap_exchange exchange;
  exchange.prandtl = gas.specific_heat * gas.viscosity / gas.conductivity;
  exchange.grashof = gravity * (thickness * thickness * thickness) * temperature_difference *
                     (gas.density * gas.density) /
                     (gas.viscosity * gas.viscosity * mean_temperature);
  const float rayleigh = exchange.grashof * exchange.prandtl;
  for (int slope = 0; slope < glazing_slope_count; ++slope) {
    exchange.nusselt[slope] =
        std::max(1.0f, nusselt_factor[slope] * std::pow(rayleigh, nusselt_exponent[slope]));
    exchange.convective[slope] = exchange.nusselt[slope] * gas.conductivity / thickness;
  }
  const float e1 = std::max(emissivity_1, smallest_emissivity);
  const float e2 = std::max(emissivity_2, smallest_emissivity);
  exchange.radiative = black_body_exchange / (1.0f / e2 + 1.0f / e1 - 1.0f);
  return exchange;
}

pane_optics add_pane_behind(const pane_optics& stack, const pane_optics& pane) {
  const float d = 1.0f - pane.reflectance_front * stack.reflectance_back;
  pane_optics result;
  result.reflectance_front = stack.reflectance_front +
                             stack.transmittance * stack.transmittance * pane.reflectance_front / d;
  result.transmittance = pane.transmittance * stack.transmittance / d;
  result.reflectance_back =
      pane.reflectance_back + pane.transmittance * pane.transmittance * stack.reflectance_back / d;
  return result;
}

secondary_gain secondary_gain_of_single(const pane_optics& pane, float inner_coefficient) {
  secondary_gain gain;
  gain.absorbed[0] = 1.0f - pane.transmittance - pane.reflectance_front;
  gain.inward =
      gain.absorbed[0] * inner_coefficient / (inner_coefficient + outer_surface_coefficient);
  return gain;
}

secondary_gain secondary_gain_of_double(const pane_optics (&panes)[2],
                                        const float (&resistances)[3], float inner_coefficient) {
  const auto& [tau1, rf1, rb1] = panes[0];
  const auto& [tau2, rf2, rb2] = panes[1];
  const float d = 1.0f - rb1 * rf2;
  const float a1 = (1.0f - tau1 - rf1) + (1.0f - tau1 - rb1) * tau1 * rf2 / d;
  const float a2 = (1.0f - tau2 - rf2) * tau1 / d;
  const float lambda = 1.0f / (resistances[0] + resistances[1] + resistances[2]);

  secondary_gain gain;
  gain.absorbed[0] = a1;
  gain.absorbed[1] = a2;
  gain.inward = ((a1 + a2) / outer_surface_coefficient + a2 / lambda) /
                (1.0f / lambda + 1.0f / inner_coefficient + outer_surface_resistance);
  return gain;
}

secondary_gain secondary_gain_of_triple(const pane_optics (&panes)[3],
                                        const float (&resistances)[5], float inner_coefficient) {
  const auto& [tau1, rf1, rb1] = panes[0];
  const auto& [tau2, rf2, rb2] = panes[1];
  const auto& [tau3, rf3, rb3] = panes[2];
  const float d2 = 1.0f - rb2 * rf3;
  const float d = (1.0f - rf2 * rb1) * d2 - tau2 * tau2 * rb1 * rf3;
  const float a1 =
      (1.0f - tau1 - rf1) +
      ((1.0f - tau1 - rb1) * tau1 * rf2 * d2 + tau2 * tau1 * tau2 * (1.0f - tau1 - rb1) * rf3) / d;
  const float a2 = ((1.0f - tau2 - rf2) * tau1 * d2 + tau2 * tau1 * (1.0f - tau2 - rb2) * rf3) / d;
  const float a3 = tau2 * tau1 * (1.0f - tau3 - rf3) / d;
  const float half_pane_2 = 0.5f * resistances[2];
  const float lambda12 = 1.0f / (resistances[0] + resistances[1] + half_pane_2);
  const float lambda23 = 1.0f / (resistances[3] + half_pane_2 + resistances[4]);

  secondary_gain gain;
  gain.absorbed[0] = a1;
  gain.absorbed[1] = a2;
  gain.absorbed[2] = a3;
  gain.inward =
      ((a2 + a3) / lambda12 + a3 / lambda23 + (a1 + a2 + a3) / outer_surface_coefficient) /
      (1.0f / lambda12 + 1.0f / inner_coefficient + outer_surface_resistance + 1.0f / lambda23);
  return gain;
}

}  // namespace qv
