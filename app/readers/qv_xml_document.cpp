#include "app/readers/qv_xml_document.h"

#include <algorithm>
#include <pugixml.hpp>
#include <utility>

#include "app/readers/qv_input_error.h"
#include "app/readers/qv_text_encoding.h"
#include "app/readers/qv_xml_check.h"

namespace {

bool is_space(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

std::string_view trim(std::string_view text) {
  while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_space(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view local_part(std::string_view name) {
  const std::size_t colon = name.find(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

// The node itself or the first of its following siblings that is an element.
pugi::xml_node_struct* element_from(pugi::xml_node node) {
  while (node && node.type() != pugi::node_element) node = node.next_sibling();
  return node.internal_object();
}

pugi::xml_node wrap(pugi::xml_node_struct* node) {
  return pugi::xml_node(node);
}

}  // namespace

namespace qv {

std::string_view qv_xml_element::get_full_name() const {
  return wrap(node_).name();
}

std::string_view qv_xml_element::get_name() const {
  return local_part(get_full_name());
}

bool qv_xml_element::is(std::string_view local_name) const {
  const char* name = wrap(node_).name();
  std::size_t i = 0;
  while (i < local_name.size() && name[i] == local_name[i]) ++i;
  if (i == local_name.size() && name[i] == '\0') return true;
  while (name[i] != '\0' && name[i] != ':') ++i;
  return name[i] == ':' && local_name == name + i + 1;
}

qv_xml_element qv_xml_element::get_first_child() const {
  return qv_xml_element(element_from(wrap(node_).first_child()));
}

qv_xml_element qv_xml_element::get_next() const {
  return qv_xml_element(element_from(wrap(node_).next_sibling()));
}

qv_xml_element qv_xml_element::get_child(std::string_view local_name) const {
  for (const qv_xml_element child : *this)
    if (child.is(local_name)) return child;
  return {};
}

std::string_view qv_xml_element::get_attribute(std::string_view local_name) const {
  for (const pugi::xml_attribute attribute : wrap(node_).attributes())
    if (local_part(attribute.name()) == local_name) return trim(attribute.value());
  return {};
}

std::string_view qv_xml_element::get_text() const {
  return trim(wrap(node_).text().get());
}

std::string_view qv_xml_element::get_child_text(std::string_view local_name) const {
  return get_child(local_name).get_text();
}

std::size_t qv_xml_element::get_offset() const {
  const std::ptrdiff_t offset = wrap(node_).offset_debug();
  return offset < 0 ? 0 : static_cast<std::size_t>(offset);
}

qv_xml_element::iterator qv_xml_element::begin() const {
  return iterator(element_from(wrap(node_).first_child()));
}

qv_xml_element::iterator& qv_xml_element::iterator::operator++() {
  node_ = element_from(wrap(node_).next_sibling());
  return *this;
}

struct qv_xml_document::parsed {
  pugi::xml_document document;
};

qv_xml_document::qv_xml_document(std::string name, std::string bytes)
    : name_(std::move(name)),
      text_(qv_to_utf8(name_, std::move(bytes), warnings_)),
      parsed_(std::make_unique<parsed>()) {
  qv_check_xml(name_, text_);
  // A text alone in its element is kept in the element itself, which halves the number of nodes.
  const pugi::xml_parse_result result = parsed_->document.load_buffer(
      text_.data(), text_.size(), pugi::parse_default | pugi::parse_embed_pcdata,
      pugi::encoding_utf8);
  if (!result) {
    const auto offset = static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0));
    throw qv_input_error(qv_input_error::kind::bad_input,
                         {name_, qv_line_at(text_, offset), "", ""},
                         std::string("is not well-formed XML: ") + result.description(),
                         "export the model again, or mend the file at this place");
  }
}

qv_xml_document::~qv_xml_document() = default;

qv_xml_element qv_xml_document::get_root() const {
  return qv_xml_element(parsed_->document.document_element().internal_object());
}

std::size_t qv_xml_document::get_line(std::size_t offset) const {
  const std::size_t end = std::min(offset, text_.size());
  const std::string_view text = text_;
  if (end >= counted_offset_) {
    counted_line_ += qv_count_line_breaks(text.substr(counted_offset_, end - counted_offset_));
  } else {
    counted_line_ -= qv_count_line_breaks(text.substr(end, counted_offset_ - end));
  }
  counted_offset_ = end;
  return counted_line_;
}

}  // namespace qv
