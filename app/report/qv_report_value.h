#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace qv {

/// One value of a report, whatever form the report takes; `std::monostate` is what cannot be known.
using qv_report_value = std::variant<std::monostate, bool, long long, float, double, std::string,
                                     std::vector<float>, std::vector<std::string>>;

template <class T>
qv_report_value qv_to_report_value(const T& value) {
  return value;
}
inline qv_report_value qv_to_report_value(int value) {
  return static_cast<long long>(value);
}
template <class T>
qv_report_value qv_to_report_value(const std::optional<T>& value) {
  if (!value.has_value()) return std::monostate{};
  return qv_to_report_value(*value);
}

/// The shortest text that reads back as the same number, with a point whatever the locale; empty
/// for a number that is not finite.
std::string qv_number_text(float value);
std::string qv_number_text(double value);

/// A column of a table or a key of an object: its name and how a record yields it. A report is a
/// list of such fields, so that a new key is one line in one list.
template <class T>
struct qv_report_field {
  const char* name;
  qv_report_value (*read)(const T& record);
  bool in_table = true;  // false: long text, for JSON only
};

}  // namespace qv
