#include "bim/qv_panel.h"

#include <charconv>
#include <cmath>

namespace qv::panel {

std::string fixed(float value, int decimals) {
  // Sign, the 39 digits of the largest float, point, decimals.
  constexpr int longest_integer_part = 41;
  std::string text(static_cast<std::size_t>(longest_integer_part + decimals), '\0');
  const auto end = std::to_chars(text.data(), text.data() + text.size(), static_cast<double>(value),
                                 std::chars_format::fixed, decimals);
  text.resize(static_cast<std::size_t>(end.ptr - text.data()));
  return text;
}

std::string truncated(float value) {
  // Adding 0 turns −0 into 0.
  return fixed(std::trunc(value) + 0.0f, 0);
}

std::string title(std::string_view name) {
  return "<h2>" + std::string(name) + "</h2>";
}

std::string row(std::string_view label, std::string_view value) {
  std::string text = "<tr><td><b>";
  return text.append(label).append("<b></td><td>").append(value).append("</td></tr>");
}

}  // namespace qv::panel
