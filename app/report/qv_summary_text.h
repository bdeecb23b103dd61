#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace qv {

// Words and figures of the printed summary.

/// What is printed where a figure is not known.
inline constexpr const char* qv_unknown_text = "–";

/// "1 wall", "3 walls".
std::string qv_plural(std::size_t count, const char* one, const char* many);
/// With two decimals.
std::string qv_hundredths(double value);
std::string qv_hundredths(const std::optional<double>& value);

}  // namespace qv
