#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qv {

/// The same text with every byte that does not belong to valid UTF-8 (overlong forms, surrogates
/// and codes above U+10FFFF included) replaced by U+FFFD.
std::string qv_valid_utf8(std::string_view text);

/// How many columns a terminal gives to the text: two for a wide East Asian letter, none for a
/// combining mark or a control code, one for any other letter.
std::size_t qv_display_width(std::string_view text);

/// The text cut to at most `width` columns, with "…" at the end when something was cut; control
/// codes become spaces, so that a name never breaks a table.
std::string qv_fit_to_width(std::string_view text, std::size_t width);

}  // namespace qv
