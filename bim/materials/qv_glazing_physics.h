#pragma once

namespace qv {

// What light, sun and heat do in a stack of panes and gaps, as functions of numbers.
//
// Rules: EN 673 (thermal transmittance) and EN 410 (luminous and solar characteristics). Single
// precision throughout: the figures are those of the glazing items to the last bit.

/// Surface resistance on the outside, m²·K/W.
inline constexpr float outer_surface_resistance = 0.04f;
/// Surface coefficient on the outside, W/(m²·K).
inline constexpr float outer_surface_coefficient = 25.0f;
/// Surface coefficient on the inside where the stack does not end with a pane, W/(m²·K).
inline constexpr float plain_inner_surface_coefficient = 7.7f;

/// Surface coefficient on the inside of a pane, W/(m²·K): 3.6 by convection and 4.1 by radiation
/// for the emissivity 0.837 of uncoated glass, in proportion for another one.
float inner_surface_coefficient(float emissivity);

/// Slope of a glazing for which U is stated.
enum class glazing_slope : int { vertical, horizontal, inclined };
inline constexpr int glazing_slope_count = 3;

/// Properties of a gas.
struct gas_properties {
  float conductivity;   ///< W/(m·K)
  float viscosity;      ///< dynamic, kg/(m·s)
  float specific_heat;  ///< J/(kg·K)
  float density;        ///< kg/m³
};

/// Heat exchange across a gap, with the steps that lead there.
struct gap_exchange {
  float prandtl;
  float grashof;
  float nusselt[glazing_slope_count];     ///< at least 1
  float convective[glazing_slope_count];  ///< W/(m²·K)
  float radiative;                        ///< W/(m²·K)

  /// Thermal resistance at a slope, m²·K/W.
  float get_resistance(glazing_slope slope) const {
    return 1.0f / (radiative + convective[static_cast<int>(slope)]);
  }
};

/// Exchange across a gap of `thickness` metres between surfaces of the given emissivities (each
/// raised to at least 0.0001), for a temperature difference of 15 K about a mean of 283 K.
///
/// Pr = c µ / λ; Gr = 9.81 s³ 15 ρ² / (µ² 283); Nu = max(1, A (Gr Pr)ⁿ) with A, n = 0.035, 0.38
/// (vertical), 0.16, 0.28 (horizontal), 0.10, 0.31 (45°); convection Nu λ / s; radiation 4 σ 283³ /
/// (1/ε₁ + 1/ε₂ − 1). A thickness or property of 0 is not guarded.
gap_exchange exchange_across_gap(const gas_properties& gas, float thickness, float emissivity_1,
                                 float emissivity_2);

/// Transmittance and the two reflectances of a pane or a stack, in one spectrum; "front" is the
/// outside.
struct pane_optics {
  float transmittance = 1;
  float reflectance_front = 0;
  float reflectance_back = 0;
};

/// `stack` with `pane` behind it, all reflexions between the two counted.
pane_optics add_pane_behind(const pane_optics& stack, const pane_optics& pane);

/// What the panes of a glazing absorb of the sun, and the part of it that they give off inwards.
/// All are fractions of the incident sun.
struct secondary_gain {
  float absorbed[3] = {0, 0, 0};  ///< by pane, outside first
  float inward = 0;               ///< secondary heat transfer factor towards the inside
};

/// One pane; `inner_coefficient` in W/(m²·K).
secondary_gain secondary_gain_of_single(const pane_optics& pane, float inner_coefficient);
/// Two panes about a gap; the resistances of pane 1, gap and pane 2 in m²·K/W.
secondary_gain secondary_gain_of_double(const pane_optics (&panes)[2],
                                        const float (&resistances)[3], float inner_coefficient);
/// Three panes; the resistances of pane 1, gap 1, pane 2, gap 2 and pane 3 in m²·K/W.
secondary_gain secondary_gain_of_triple(const pane_optics (&panes)[3],
                                        const float (&resistances)[5], float inner_coefficient);

}  // namespace qv
