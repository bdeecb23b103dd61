#pragma once

#include <cstddef>

#include "utilities/qv_color.h"

namespace qv {

// Colours that readers with any of the common kinds of colour blindness can tell apart.

/// Number of colours of `qv_category_color` before they repeat.
inline constexpr std::size_t qv_category_color_count = 9;

/// Colours for things of different kinds: the "muted" scheme of P. Tol, Colour Schemes, SRON/EPS/TN
/// 09-002 (2021). From rank `qv_category_color_count` on they come again, lighter, then darker.
qv_color qv_category_color(std::size_t rank);

/// For what belongs to no category or has no known value: the same scheme's pale grey.
qv_color qv_unknown_color();

/// Colours for values, 0 … 1 from dark blue over green to yellow: the map "viridis" of S. van der
/// Walt and N. Smith (2015, public domain), interpolated between eleven of its colours. Lightness
/// grows with the value, so that it survives grey printing. Values outside, and NaN, go to the
/// nearer end (0).
qv_color qv_value_color(double value);

/// The same from light to dark, for what is the worse the more there is: well insulated walls are
/// light, so that their edges show.
qv_color qv_loss_color(double value);

/// The colour `share` (0 … 1) of the way to white.
qv_color qv_lighter(const qv_color& color, float share);

}  // namespace qv
