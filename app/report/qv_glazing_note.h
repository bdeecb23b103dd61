#pragma once

#include <string>

namespace qv {

class qvi_glazing;

/// A calculation note of a glazing as text: its figures, its layers, and every step between them,
/// so that each line can be followed by hand: the exchange across each gap (Prandtl, Grashof and
/// Nusselt numbers, convection, radiation), the resistances, what each pane absorbs and gives off
/// inwards. Last, where the rules followed are not those of EN 673 and EN 410. Precomputes the
/// glazing.
std::string qv_glazing_note(qvi_glazing& glazing);

}  // namespace qv
