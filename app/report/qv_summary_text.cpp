#include "app/report/qv_summary_text.h"

#include <fmt/format.h>

namespace qv {

std::string qv_plural(std::size_t count, const char* one, const char* many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

std::string qv_hundredths(double value) {
  return fmt::format("{:.2f}", value);
}

std::string qv_hundredths(const std::optional<double>& value) {
  return value.has_value() ? qv_hundredths(*value) : qv_unknown_text;
}

}  // namespace qv
