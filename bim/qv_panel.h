#pragma once

#include <string>
#include <string_view>

namespace qv::panel {

// The pieces of which information panels are made: HTML fragments with French labels. Numbers look
// the same in every locale.

inline constexpr std::string_view table_start = "<table width=100% border=0>";
inline constexpr std::string_view table_end = "</table>";

/// `value` with a fixed number of decimals, rounded as printf's "%.Nf" rounds: `fixed(0.3846f, 3)`
/// is 0.385. What is not finite reads as there: inf, nan, each with its sign.
std::string fixed(float value, int decimals);

/// `value` cut to its integer part towards zero: 45 for 45.6, 0 for −0.5.
std::string truncated(float value);

/// The name of the item as the panel's title.
std::string title(std::string_view name);

/// A row of a label and its value. The mark after the label opens bold once more where one would
/// expect it to close; the panels of materials and compositions are required to read so.
std::string row(std::string_view label, std::string_view value);

}  // namespace qv::panel
