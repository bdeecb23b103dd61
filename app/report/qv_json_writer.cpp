#include "app/report/qv_json_writer.h"

#include <type_traits>

#include "app/report/qv_utf8.h"

namespace qv {

void qv_json_writer::begin_object(layout form) {
  open('{', form);
}
void qv_json_writer::end_object() {
  close('}');
}
void qv_json_writer::begin_array(layout form) {
  open('[', form);
}
void qv_json_writer::end_array() {
  close(']');
}

void qv_json_writer::key(std::string_view name) {
  separate();
  write_string(name);
  text_ += ": ";
  after_key_ = true;
}

void qv_json_writer::value(const qv_report_value& value) {
  separate();
  std::visit(
      [this](const auto& content) {
        using content_type = std::decay_t<decltype(content)>;
        if constexpr (std::is_same_v<content_type, std::monostate>) {
          text_ += "null";
        } else if constexpr (std::is_same_v<content_type, bool>) {
          text_ += content ? "true" : "false";
        } else if constexpr (std::is_same_v<content_type, long long>) {
          text_ += std::to_string(content);
        } else if constexpr (std::is_floating_point_v<content_type>) {
          const std::string number = qv_number_text(content);
          text_ += number.empty() ? "null" : number;
        } else if constexpr (std::is_same_v<content_type, std::string>) {
          write_string(content);
        } else {
          const char* comma = "";
          text_ += '[';
          for (const auto& element : content) {
            text_ += comma;
            comma = ",";
            if constexpr (std::is_same_v<content_type, std::vector<float>>) {
              const std::string number = qv_number_text(element);
              text_ += number.empty() ? "null" : number;
            } else {
              write_string(element);
            }
          }
          text_ += ']';
        }
      },
      value);
}

void qv_json_writer::open(char bracket, layout form) {
  separate();
  text_ += bracket;
  ++depth_;
  if (form == layout::one_line && one_line_depth_ == 0) one_line_depth_ = depth_;
  first_ = true;
}

void qv_json_writer::close(char bracket) {
  const bool one_line = one_line_depth_ != 0;
  if (one_line_depth_ == depth_) one_line_depth_ = 0;
  --depth_;
  if (!first_ && !one_line) break_line();
  text_ += bracket;
  first_ = false;
  if (depth_ == 0) text_ += '\n';
}

void qv_json_writer::separate() {
  if (after_key_) {
    after_key_ = false;
    return;
  }
  if (depth_ == 0) return;
  const bool one_line = one_line_depth_ != 0;
  if (!first_) text_ += one_line ? ", " : ",";
  first_ = false;
  if (!one_line) break_line();
}

void qv_json_writer::break_line() {
  text_ += '\n';
  text_.append(2 * static_cast<std::size_t>(depth_), ' ');
}

void qv_json_writer::write_string(std::string_view text) {
  static constexpr char digits[] = "0123456789abcdef";
  const std::string valid = qv_valid_utf8(text);
  text_ += '"';
  for (const char letter : valid) {
    const auto code = static_cast<unsigned char>(letter);
    switch (letter) {
      case '"':
        text_ += "\\\"";
        break;
      case '\\':
        text_ += "\\\\";
        break;
      case '\n':
        text_ += "\\n";
        break;
      case '\r':
        text_ += "\\r";
        break;
      case '\t':
        text_ += "\\t";
        break;
      default:
        if (code < 0x20 || code == 0x7f) {
          text_ += "\\u00";
          text_ += digits[code >> 4];
          text_ += digits[code & 15];
        } else {
          text_ += letter;
        }
    }
  }
  text_ += '"';
}

}  // namespace qv
