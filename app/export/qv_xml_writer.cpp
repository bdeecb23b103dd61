#include "app/export/qv_xml_writer.h"

#include <utility>

#include "app/report/qv_utf8.h"

namespace qv {
qv_xml_writer::qv_xml_writer() : text_("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n") {}

void qv_xml_writer::escape(std::string_view text) {
  for (const char c : qv_valid_utf8(text)) {
    switch (c) {
      case '<':
        text_ += "&lt;";
        break;
      case '>':
        text_ += "&gt;";
        break;
      case '&':
        text_ += "&amp;";
        break;
      case '"':
        text_ += "&quot;";
        break;
      default:
        text_ += static_cast<unsigned char>(c) < ' ' || c == '\x7F' ? ' ' : c;
    }
  }
}

void qv_xml_writer::start_tag(std::string_view name, std::initializer_list<attribute> attributes) {
  text_.append(2 * open_.size(), ' ');
  text_ += '<';
  text_ += name;
  for (const auto& [what, value] : attributes) {
    if (value.empty()) continue;
    text_ += ' ';
    text_ += what;
    text_ += "=\"";
    escape(value);
    text_ += '"';
  }
  text_ += '>';
}

void qv_xml_writer::begin(std::string_view name, std::initializer_list<attribute> attributes) {
  start_tag(name, attributes);
  text_ += '\n';
  open_.emplace_back(name);
}

void qv_xml_writer::end() {
  const std::string name = std::move(open_.back());
  open_.pop_back();
  text_.append(2 * open_.size(), ' ');
  text_ += "</" + name + ">\n";
}

void qv_xml_writer::leaf(std::string_view name, std::string_view text,
                         std::initializer_list<attribute> attributes) {
  start_tag(name, attributes);
  escape(text);
  text_ += "</";
  text_ += name;
  text_ += ">\n";
}

}  // namespace qv
