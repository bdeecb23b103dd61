#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "tests/support/qv_glazing_standard.h"

namespace qv {
class qv_item;
class qvi_glazing;
}  // namespace qv

namespace qv_test {

/// A glazing of the trade, and how far the required rules are from the standards' for it.
struct known_stack {
  std::string name;  // letters, digits and underscores
  standard_stack layers;
  /// U of the items less U of EN 673, vertical, W/(m²·K).
  double U_departure = 0;
  /// Solar factor of the items less that of EN 410.
  double solar_factor_departure = 0;
};

void PrintTo(const known_stack& stack, std::ostream* out);

/// Single, double and triple glazings, clear and coated, of every gas and of mixtures, laminated
/// and photovoltaic ones.
const std::vector<known_stack>& get_known_stacks();

/// The same glazing as an item, its layers below it; the caller owns it. Gases are given as pure
/// ones where they are.
qv::qvi_glazing* make_glazing(const standard_stack& stack);

}  // namespace qv_test
