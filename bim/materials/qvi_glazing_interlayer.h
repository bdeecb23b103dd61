#pragma once

#include "bim/materials/qvi_glazing_glass.h"

namespace qv {

/// The film that bonds the panes of laminated glass. Item type "glazing_interlayer", a kind of
/// "glazing_glass".
///
/// A new interlayer is named "Interlayer" and is an ordinary film of 0.38 mm: it transmits 0.85 of
/// the sun's energy, 0.92 of the light and 0.9 of long-wave radiation, and neither reflects nor
/// emits.
class qvi_glazing_interlayer : public qvi_glazing_glass {
  QV_ITEM_CLASS(qvi_glazing_interlayer, qvi_glazing_glass, "glazing_interlayer")
};

}  // namespace qv
