#pragma once

#include <vector>

#include "bim/materials/qv_glazing_physics.h"
#include "utilities/qv_list.h"

namespace qv {

class qvi_glazing_glass;
class qvi_glazing_layer;

/// One layer in the calculation of a glazing.
struct glazing_layer_step {
  enum class kind {
    pane,  ///< glass, an interlayer or a photovoltaic film
    gap,   ///< a gas
    plain  ///< anything else: a resistance and nothing more
  };

  kind sort = kind::plain;
  const qvi_glazing_layer* layer = nullptr;  ///< borrowed
  /// Thickness over conductivity, m²·K/W; of a gap, as if its gas stood still.
  float plain_resistance = 0;
  /// What the layer adds to the resistance of the stack at each slope, m²·K/W.
  float resistance[glazing_slope_count] = {0, 0, 0};

  // Of a gap only.
  gas_properties gas{};
  /// Emissivities that count before and behind the gap; the second one is read from the back face
  /// of its pane too: this is deliberate, the catalogue's panes are described that way.
  float emissivity[2] = {0, 0};
  gap_exchange exchange{};
};

/// Everything that is found on the way from the layers of a glazing to its figures.
struct glazing_calculation {
  std::vector<glazing_layer_step> steps;  ///< one per layer, outside first
  float thickness = 0;                    ///< m
  float inner_coefficient = 0;            ///< W/(m²·K)
  /// Of the stack with both surfaces, m²·K/W.
  float resistance[glazing_slope_count] = {0, 0, 0};
  pane_optics solar;
  pane_optics visible;
  /// Nothing absorbed and nothing inward for a stack of other than one, two or three panes about
  /// plain gaps.
  secondary_gain gain;
  /// Whether the stack has one of these three shapes.
  bool has_gain = false;

  /// Thermal transmittance at a slope, W/(m²·K).
  float get_U(glazing_slope slope) const { return 1.0f / resistance[static_cast<int>(slope)]; }
  /// Total solar energy transmittance.
  float get_solar_factor() const { return solar.transmittance + gain.inward; }
};

/// Works a stack out, outside first, by the rules of EN 673 and EN 410, after a precompute of its
/// panes and gaps. Null layers are left out. Zero conductivities and thicknesses are not guarded.
glazing_calculation calculate_glazing(const qv_list<qvi_glazing_layer*>& layers);

/// The solar figures of a pane as the stacking rule takes them.
pane_optics get_solar_optics(const qvi_glazing_glass& pane);

}  // namespace qv
