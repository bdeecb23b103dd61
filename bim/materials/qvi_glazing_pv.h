#pragma once

#include "bim/materials/qvi_glazing_glass.h"

namespace qv {

/// The photovoltaic film of a glazing that makes electricity. Item type "glazing_pv", a kind of
/// "glazing_glass".
///
/// A new film is named "PV layer", 1 mm thick, and lets everything through: transmittances 1,
/// reflectances and emissivities 0, and a conductivity of 999 W/(m·K), so that it adds no
/// resistance worth naming.
class qvi_glazing_pv : public qvi_glazing_glass {
  QV_ITEM_CLASS(qvi_glazing_pv, qvi_glazing_glass, "glazing_pv")

  /// Fraction of the layer's area covered by cells, 0 … 1.
  QV_PARAM(float, occupancy, 0.3f)
};

}  // namespace qv
