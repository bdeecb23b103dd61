#pragma once

#include <span>
#include <string>
#include <string_view>

#include "app/report/qv_report_value.h"

namespace qv {

/// Writes JSON text (RFC 8259) in the order of the calls, indented by two spaces; what is opened as
/// one line stays on one, so that a record of a long list is one line of the file.
///
/// Text must be UTF-8; bytes that are not become U+FFFD, so that the output is valid whatever the
/// model file held. Numbers have the shortest form that reads back the same; what is not finite or
/// not known is null.
class qv_json_writer {
 public:
  enum class layout { lines, one_line };

  void begin_object(layout form = layout::lines);
  void end_object();
  void begin_array(layout form = layout::lines);
  void end_array();
  /// Names the value that follows.
  void key(std::string_view name);
  void value(const qv_report_value& value);
  void member(std::string_view name, const qv_report_value& content) {
    key(name);
    value(content);
  }
  /// A member for each field of the list.
  template <class T>
  void members(std::span<const qv_report_field<T>> fields, const T& record) {
    for (const auto& field : fields) member(field.name, field.read(record));
  }

  /// The text so far, with a line end after the closing of the outermost value.
  const std::string& text() const { return text_; }

 private:
  void open(char bracket, layout form);
  void close(char bracket);
  void separate();
  void break_line();
  void write_string(std::string_view text);

  std::string text_;
  int depth_ = 0;
  int one_line_depth_ = 0;  // depth at which the present line was opened; 0: none is
  bool first_ = true;       // no value in the present object or array yet
  bool after_key_ = false;
};

}  // namespace qv
