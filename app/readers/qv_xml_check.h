#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qv {

/// Elements nested deeper than this are no building model; the limit keeps every walk over the
/// tree shallow. gbXML itself goes about twelve deep.
inline constexpr std::size_t largest_xml_depth = 256;

/// Checks what the XML parser lets pass in `text` (UTF-8), and says where it is: exactly one root,
/// nothing but white space outside it, every element closed, no attribute twice on an element, no
/// entity declarations, depth at most `largest_xml_depth`.
///
/// `name` is the file in messages. Throws `qv_input_error` (bad input) with the line.
void qv_check_xml(const std::string& name, std::string_view text);

/// How often `c` stands in `text`.
std::size_t qv_count_characters(std::string_view text, char c);

/// Line of an offset into `text`, from 1.
std::size_t qv_line_at(std::string_view text, std::size_t offset);

}  // namespace qv
