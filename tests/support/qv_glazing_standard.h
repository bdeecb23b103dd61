#pragma once

#include <array>
#include <vector>

namespace qv_test {

// The rules of EN 673 (thermal transmittance) and EN 410 (luminous and solar characteristics) for
// glazings once more, in double precision and written from the standards' own formulas, to compare
// the glazing items with. Where the items' rules depart from the standards on purpose, a switch
// chooses between the two.

/// A pane's or a stack's transmittance and reflectances, front outside; grey over the spectrum.
struct standard_optics {
  double transmittance = 1;
  double reflectance_front = 0;
  double reflectance_back = 0;
};

/// Properties of a gas at 283 K: W/(m·K), kg/(m·s), J/(kg·K), kg/m³.
struct standard_gas {
  double conductivity, viscosity, specific_heat, density;
};

/// One layer of a glazing, outside first.
struct standard_layer {
  enum class kind { pane, interlayer, photovoltaic, gap };

  kind sort = kind::pane;
  double thickness = 0.004;  // m
  double conductivity = 1;   // W/(m·K), panes and films
  standard_optics solar;
  standard_optics visible;
  double emissivity_front = 0.837;
  double emissivity_back = 0.837;
  /// Of air, argon, krypton, xenon and SF6 in a gap; their sum is 1.
  std::array<double, 5> gas_fractions = {1, 0, 0, 0, 0};

  bool is_gap() const { return sort == kind::gap; }
};
using standard_stack = std::vector<standard_layer>;

/// Where the standards' rule can be exchanged for that of the glazing items; false is the standard.
struct standard_departures {
  /// EN 673 takes the emissivities of the two surfaces that bound a gap; departing from it, that of
  /// the pane behind the gap is read from its other face.
  bool back_face_behind_gap = false;
  /// EN 673 shares 15 K out among the gaps by their resistances; departing from it, each gap has
  /// 15 K.
  bool full_difference_at_each_gap = false;
  /// EN 410 takes the gap's conductance of EN 673, convection and radiation, for the heat that
  /// panes give off inwards; departing from it, the gas conducts like a solid and nothing radiates.
  bool still_gap_in_solar_factor = false;
  /// EN 410 treats a laminated pane as one pane; departing from it, only stacks of one, two or
  /// three plain panes give off heat inwards.
  bool plain_panes_only = false;
};
/// All of them: the rule of the glazing items.
inline constexpr standard_departures all_departures = {true, true, true, true};

enum class standard_slope { vertical, horizontal, inclined };

/// What is stated of a glazing.
struct standard_figures {
  double U_vertical = 0;    // W/(m²·K)
  double U_horizontal = 0;  // heat flows upwards
  double U_inclined = 0;    // 45°
  standard_optics solar;
  standard_optics visible;
  double solar_factor = 0;
};

/// All figures of a stack that has a pane at both ends.
standard_figures work_out(const standard_stack& stack, const standard_departures& departures);

/// The gas of a gap, mixed by volume fractions.
standard_gas mix_gases(const std::array<double, 5>& fractions);

/// Transmittance, reflectances and the part that each pane absorbs of what comes from the front, by
/// following the light to and fro until nothing is left of it. Any number of panes.
standard_optics follow_light(const std::vector<standard_optics>& panes,
                             std::vector<double>* absorbed = nullptr);

}  // namespace qv_test
