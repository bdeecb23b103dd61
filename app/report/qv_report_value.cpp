#include "app/report/qv_report_value.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace qv {
namespace {

template <class T>
std::string shortest_text(T value) {
  if (!std::isfinite(value)) return {};
  if (value == T(0)) return "0";  // no negative zero
  char text[32];
  const auto result = std::to_chars(text, text + sizeof text, value);
  return std::string(text, result.ptr);
}

}  // namespace

std::string qv_number_text(float value) {
  return shortest_text(value);
}

std::string qv_number_text(double value) {
  return shortest_text(value);
}

}  // namespace qv
