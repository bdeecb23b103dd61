#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qv {

/// Where in the user's input something is wrong. What is not known stays empty or 0.
struct qv_input_place {
  /// The file as the user named it.
  std::string file;
  /// Line in the file, from 1; 0 when there is none.
  std::size_t line = 0;
  /// Name of the element, "Surface".
  std::string element;
  /// The element's id.
  std::string id;
};

/// Something in the user's input that ends the request: bad content, or a file that cannot be read
/// or written.
///
/// The message is one line: file, place, what is wrong, what to do, for example
/// `house.xml, line 12, Surface "su-3": refers to space "sp-9" twice; give each space its own id`.
/// Line breaks and control characters that come from the input appear as spaces.
class qv_input_error : public std::runtime_error {
 public:
  /// The program's exit codes for the two sorts of fault.
  enum class kind : int {
    /// The content is wrong.
    bad_input = 3,
    /// The file cannot be read or written at all.
    no_access = 4
  };

  /// `problem` says what is wrong, `advice` what to do about it; neither ends with a full stop.
  qv_input_error(kind sort, qv_input_place place, const std::string& problem,
                 const std::string& advice);

  kind get_kind() const { return kind_; }
  /// The exit code of a program that ends because of this error.
  int get_exit_code() const { return static_cast<int>(kind_); }
  const qv_input_place& get_place() const { return place_; }

 private:
  kind kind_;
  qv_input_place place_;
};

/// "file, line 12, Surface "su-3"": the parts of `place` that are known.
std::string qv_describe_place(const qv_input_place& place);

/// `text` on one line: control characters become spaces, and what is longer than `largest_length`
/// bytes is cut with "…". For names and ids quoted in messages.
std::string qv_one_line(const std::string& text, std::size_t largest_length = 200);
/// An id or name of the file as messages show it: "su-3", on one line, cut after 80 bytes.
std::string qv_quoted_id(std::string_view id);

}  // namespace qv
