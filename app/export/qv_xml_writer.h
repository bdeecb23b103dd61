#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qv {

/// Writes XML text (1.0, UTF-8) in the order of the calls, an element to a line, indented by two
/// spaces. Characters with a meaning are escaped; those that XML cannot hold become spaces, and
/// bytes that are no UTF-8 become U+FFFD.
class qv_xml_writer {
 public:
  using attribute = std::pair<std::string_view, std::string>;

  qv_xml_writer();

  /// Opens an element; attributes whose value is empty are left out.
  void begin(std::string_view name, std::initializer_list<attribute> attributes = {});
  void end();
  /// An element with a text and nothing else.
  void leaf(std::string_view name, std::string_view text,
            std::initializer_list<attribute> attributes = {});

  /// The text so far.
  const std::string& text() const { return text_; }

 private:
  void start_tag(std::string_view name, std::initializer_list<attribute> attributes);
  void escape(std::string_view text);

  std::string text_;
  std::vector<std::string> open_;
};

}  // namespace qv
