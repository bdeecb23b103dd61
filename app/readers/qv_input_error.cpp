#include "app/readers/qv_input_error.h"

#include <utility>

namespace {

constexpr std::size_t longest_message = 2000;

bool continues_a_character(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

std::string compose(const qv::qv_input_place& place, const std::string& problem,
                    const std::string& advice) {
  std::string message = qv_describe_place(place);
  if (!message.empty()) message += ": ";
  message += problem;
  if (!advice.empty()) message += "; " + advice;
  return qv::qv_one_line(message, longest_message);
}

}  // namespace

namespace qv {

qv_input_error::qv_input_error(kind sort, qv_input_place place, const std::string& problem,
                               const std::string& advice)
    : std::runtime_error(compose(place, problem, advice)), kind_(sort), place_(std::move(place)) {}

std::string qv_describe_place(const qv_input_place& place) {
  std::string text = place.file;
  const auto separate = [&text] {
    if (!text.empty()) text += ", ";
  };
  if (place.line != 0) {
    separate();
    text += "line " + std::to_string(place.line);
  }
  if (!place.element.empty()) {
    separate();
    text += place.element;
    if (!place.id.empty()) text += " \"" + qv_one_line(place.id) + "\"";
  }
  return text;
}

std::string qv_one_line(const std::string& text, std::size_t largest_length) {
  std::string line;
  for (const char c : text) {
    if (line.size() >= largest_length && !continues_a_character(c)) return line + "…";
    const auto byte = static_cast<unsigned char>(c);
    line += byte < 0x20U || byte == 0x7FU ? ' ' : c;
  }
  return line;
}

std::string qv_quoted_id(std::string_view id) {
  return "\"" + qv_one_line(std::string(id), 80) + "\"";
}

}  // namespace qv
