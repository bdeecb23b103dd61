#include "app/report/qv_utf8.h"

#include <algorithm>

namespace qv {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

// The letter at the start of a text: its code and its length in bytes; length 0 when the text does
// not begin with valid UTF-8.
struct letter {
  char32_t code = 0;
  std::size_t length = 0;
};

letter first_letter(std::string_view text) {
  const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  if (byte(0) < 0x80) return {byte(0), 1};
  const std::size_t length = byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : 2;
  if (byte(0) < 0xC2 || byte(0) > 0xF4 || text.size() < length) return {};
  char32_t code = byte(0) & (0x7F >> length);
  for (std::size_t index = 1; index < length; ++index) {
    if ((byte(index) & 0xC0) != 0x80) return {};
    code = code << 6 | (byte(index) & 0x3F);
  }
  static constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < smallest[length] || surrogate || code > 0x10FFFF) return {};
  return {code, length};
}

bool is_control(char32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

// Ranges of the Unicode East Asian Width property (UAX #11) that names are likely to hold.
std::size_t width_of(char32_t code) {
  struct range {
    char32_t first, last;
  };
  static constexpr range no_width[] = {{0x0300, 0x036F}, {0x200B, 0x200F}, {0xFE00, 0xFE0F}};
  static constexpr range wide[] = {
      {0x1100, 0x115F}, {0x2E80, 0x303E}, {0x3041, 0xA4CF}, {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},
      {0xFE30, 0xFE6F}, {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}, {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD}};
  const auto holds = [code](const range& r) { return code >= r.first && code <= r.last; };
  if (is_control(code) || std::any_of(std::begin(no_width), std::end(no_width), holds)) return 0;
  return std::any_of(std::begin(wide), std::end(wide), holds) ? 2 : 1;
}

}  // namespace

std::string qv_valid_utf8(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const letter next = first_letter(text);
    result += next.length == 0 ? replacement : text.substr(0, next.length);
    text.remove_prefix(std::max<std::size_t>(next.length, 1));
  }
  return result;
}

std::size_t qv_display_width(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) {
    const letter next = first_letter(text);
    width += next.length == 0 ? 1 : width_of(next.code);
    text.remove_prefix(std::max<std::size_t>(next.length, 1));
  }
  return width;
}

std::string qv_fit_to_width(std::string_view text, std::size_t width) {
  std::string clean;
  while (!text.empty()) {
    const letter next = first_letter(text);
    if (next.length == 0) {
      clean += replacement;
    } else if (is_control(next.code)) {
      clean += ' ';
    } else {
      clean += text.substr(0, next.length);
    }
    text.remove_prefix(std::max<std::size_t>(next.length, 1));
  }
  if (qv_display_width(clean) <= width) return clean;
  if (width == 0) return {};
  std::string result;
  std::size_t used = 1;  // the sign of omission
  for (std::string_view rest = clean; !rest.empty();) {
    const letter next = first_letter(rest);
    used += width_of(next.code);
    if (used > width) break;
    result += rest.substr(0, next.length);
    rest.remove_prefix(next.length);
  }
  return result + "…";
}

}  // namespace qv
