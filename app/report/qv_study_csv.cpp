#include "app/report/qv_study_csv.h"

#include <type_traits>

#include "app/report/qv_report_fields.h"
#include "app/report/qv_utf8.h"

namespace qv {
namespace {

std::string cell(const qv_report_value& value) {
  return std::visit(
      [](const auto& content) -> std::string {
        using content_type = std::decay_t<decltype(content)>;
        if constexpr (std::is_same_v<content_type, std::monostate>) {
          return {};
        } else if constexpr (std::is_same_v<content_type, bool>) {
          return content ? "true" : "false";
        } else if constexpr (std::is_same_v<content_type, long long>) {
          return std::to_string(content);
        } else if constexpr (std::is_floating_point_v<content_type>) {
          return qv_number_text(content);
        } else if constexpr (std::is_same_v<content_type, std::string>) {
          return qv_csv_text(qv_valid_utf8(content));
        } else {
          std::string list;
          for (const auto& element : content) {
            if (!list.empty()) list += ' ';
            if constexpr (std::is_same_v<content_type, std::vector<float>>) {
              list += qv_number_text(element);
            } else {
              list += qv_valid_utf8(element);
            }
          }
          return qv_csv_text(list);
        }
      },
      value);
}

template <class T>
std::string table(std::span<const qv_report_field<T>> fields, const std::vector<T>& records) {
  std::string text;
  const auto line = [&](auto&& cell_of) {
    const char* comma = "";
    for (const auto& field : fields) {
      if (!field.in_table) continue;
      text += comma + cell_of(field);
      comma = ",";
    }
    text += "\r\n";
  };
  line([](const auto& field) { return std::string(field.name); });
  for (const T& record : records) {
    line([&record](const auto& field) { return cell(field.read(record)); });
  }
  return text;
}

}  // namespace

std::string qv_csv_text(const std::string& text) {
  const bool edge_space = !text.empty() && (text.front() == ' ' || text.back() == ' ');
  if (!edge_space && text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string result = "\"";
  for (const char letter : text) {
    result += letter;
    if (letter == '"') result += letter;
  }
  return result + '"';
}

std::string qv_spaces_csv(const qv_study_results& study) {
  return table(qv_space_fields(), study.spaces);
}

std::string qv_walls_csv(const qv_study_results& study) {
  return table(qv_wall_fields(), study.walls);
}

std::string qv_openings_csv(const qv_study_results& study) {
  return table(qv_opening_fields(), study.openings);
}

std::string qv_thermal_bridges_csv(const qv_study_results& study) {
  return table(qv_thermal_bridge_fields(), study.thermal_bridges);
}

}  // namespace qv
