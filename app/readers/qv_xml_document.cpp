#include "app/readers/qv_xml_document.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <pugixml.hpp>
#include <utility>

#include "app/readers/qv_input_error.h"
#include "app/readers/qv_text_encoding.h"
#include "app/readers/qv_xml_check.h"

namespace {

bool is_space(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

std::string_view trim(const char* text) {
  while (is_space(*text)) ++text;
  std::size_t size = std::strlen(text);
  while (size > 0 && is_space(text[size - 1])) --size;
  return {text, size};
}

pugi::xml_node wrap(pugi::xml_node_struct* node) {
  return pugi::xml_node(node);
}

// The pointer of a handle, which is nothing else; asking the handle itself is a call.
pugi::xml_node_struct* pointer_of(pugi::xml_node node) {
  return std::bit_cast<pugi::xml_node_struct*>(node);
}
pugi::xml_attribute_struct* pointer_of(pugi::xml_attribute attribute) {
  return std::bit_cast<pugi::xml_attribute_struct*>(attribute);
}

// A parsed text is checked on its tree, which is quicker than on its bytes. The tree tells only
// that something may be wrong: what it is, and where, tells `qv_check_xml`.

// An element with more attributes than this is looked at closely anyway.
constexpr std::size_t most_attributes = 32;

bool has_attribute_twice(pugi::xml_attribute first) {
  std::size_t count = 0;
  for (auto a = first; pointer_of(a) != nullptr; a = a.next_attribute()) {
    if (++count > most_attributes) return true;
    for (auto b = a.next_attribute(); pointer_of(b) != nullptr; b = b.next_attribute())
      if (std::strcmp(a.name(), b.name()) == 0) return true;
  }
  return false;
}

// The elements of a parsed text in its order.
struct element_list {
  std::vector<qv::qv_xml_element::record> records;
  bool is_doubtful = false;
};

// An element whose children are being listed.
struct open_element {
  pugi::xml_node node;
  std::size_t number;
};

element_list list_elements(const pugi::xml_document& document, std::size_t tag_count) {
  constexpr std::size_t none = static_cast<std::size_t>(-1);
  element_list list;
  list.records.reserve(tag_count / 2 + 1);  // most have a tag at either end
  std::vector<open_element> open;
  std::size_t previous = none;  // the element before this one among its parent's
  pugi::xml_node node = document.first_child();
  while (true) {
    if (pointer_of(node) == nullptr) {
      if (open.empty()) break;
      node = open.back().node.next_sibling();
      previous = open.back().number;
      open.pop_back();
      continue;
    }
    // Besides the root: a document type, or text outside the root.
    if (open.empty() && (node.type() != pugi::node_element || previous != none))
      list.is_doubtful = true;
    const char* const name = node.name();
    if (*name == '\0') {  // text between elements
      node = node.next_sibling();
      continue;
    }
    const std::size_t number = list.records.size();
    if (previous != none) {
      list.records[previous].next = static_cast<std::uint32_t>(number - previous);
    } else if (number > 0) {
      list.records[number - 1].has_child = 1;
    }
    list.records.push_back({name, pointer_of(node)});
    const pugi::xml_attribute attribute = node.first_attribute();
    if (pointer_of(attribute) != nullptr && has_attribute_twice(attribute)) list.is_doubtful = true;
    const pugi::xml_node child = node.first_child();
    if (pointer_of(child) == nullptr) {
      previous = number;
      node = node.next_sibling();
    } else {
      open.push_back({node, number});
      if (open.size() >= qv::largest_xml_depth) list.is_doubtful = true;
      previous = none;
      node = child;
    }
  }
  if (list.records.empty()) list.is_doubtful = true;
  return list;
}

// Text with a tag in every few bytes is no building model, and its tree would take twenty times its
// memory: such a text is checked before it is parsed.
bool is_crowded(std::string_view text, std::size_t tag_count) {
  constexpr std::size_t little = 1 << 20;        // bytes; a tree of that is affordable
  constexpr std::size_t fewest_bytes_a_tag = 8;  // numbers between tags alone take more
  return text.size() >= little && tag_count > text.size() / fewest_bytes_a_tag;
}

// --- prefixes ---

bool is_name_character(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '-' || c == '.' || static_cast<unsigned char>(c) >= 0x80;
}

// True when the colon at `colon` stands in the name of an element, or perhaps of an attribute that
// could matter: not one of those that declare a namespace or name the schema.
bool is_behind_prefix(std::string_view text, std::size_t colon) {
  std::size_t first = colon;
  while (first > 0 && is_name_character(text[first - 1])) --first;
  if (first == 0 || first == colon) return false;
  if (text[first - 1] == '<') return true;
  if (!is_space(text[first - 1])) return false;
  const std::string_view prefix = text.substr(first, colon - first);
  if (prefix == "xmlns" || prefix == "xsi" || prefix == "xml") return false;
  std::size_t last = colon + 1;
  while (last < text.size() && is_name_character(text[last])) ++last;
  if (last == colon + 1) return false;
  while (last < text.size() && is_space(text[last])) ++last;
  return last < text.size() && text[last] == '=';
}

bool has_prefixes(std::string_view text) {
  for (std::size_t at = text.find(':'); at != std::string_view::npos; at = text.find(':', at + 1))
    if (is_behind_prefix(text, at)) return true;
  return false;
}

// Leaves the local part of every name.
class prefix_remover : public pugi::xml_tree_walker {
 public:
  bool for_each(pugi::xml_node& node) override {
    shorten(node);
    for (pugi::xml_attribute attribute : node.attributes()) shorten(attribute);
    return true;
  }

 private:
  template <class Named>
  static void shorten(Named& named) {
    const char* const colon = std::strchr(named.name(), ':');
    if (colon != nullptr) named.set_name(std::string(colon + 1).c_str());
  }
};

}  // namespace

namespace qv {

std::string_view qv_xml_element::get_attribute(const char* local_name) const {
  for (auto attribute = wrap(record_->node).first_attribute(); pointer_of(attribute) != nullptr;
       attribute = attribute.next_attribute())
    if (std::strcmp(attribute.name(), local_name) == 0) return trim(attribute.value());
  return {};
}

pugi::xml_attribute_struct* qv_xml_element::read_attribute(pugi::xml_attribute_struct* previous,
                                                           const char*& name,
                                                           std::string_view& value) const {
  const pugi::xml_attribute found = previous == nullptr
                                        ? wrap(record_->node).first_attribute()
                                        : pugi::xml_attribute(previous).next_attribute();
  if (pointer_of(found) == nullptr) return nullptr;
  name = found.name();
  value = trim(found.value());
  return pointer_of(found);
}

std::string_view qv_xml_element::get_text() const {
  // Of most elements the text is in the node itself.
  const char* const own = wrap(record_->node).value();
  return trim(*own != '\0' ? own : wrap(record_->node).text().get());
}

std::string_view qv_xml_element::get_child_text(const char* local_name) const {
  return get_child(local_name).get_text();
}

std::size_t qv_xml_element::get_offset() const {
  const std::ptrdiff_t offset = wrap(record_->node).offset_debug();
  return offset < 0 ? 0 : static_cast<std::size_t>(offset);
}

struct qv_xml_document::parsed {
  pugi::xml_document document;
  std::vector<qv_xml_element::record> elements;
};

qv_xml_document::qv_xml_document(std::string name, std::string bytes)
    : name_(std::move(name)),
      text_(qv_to_utf8(name_, std::move(bytes), warnings_)),
      parsed_(std::make_unique<parsed>()) {
  const std::size_t tag_count = qv_count_characters(text_, '<');
  if (is_crowded(text_, tag_count)) qv_check_xml(name_, text_);
  // A text alone in its element is kept in the element itself, which halves the number of nodes.
  // Document types and text outside the root are kept for the check.
  const pugi::xml_parse_result result = parsed_->document.load_buffer(
      text_.data(), text_.size(),
      pugi::parse_default | pugi::parse_embed_pcdata | pugi::parse_doctype | pugi::parse_fragment,
      pugi::encoding_utf8);
  if (!result) {
    qv_check_xml(name_, text_);
    const auto offset = static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0));
    throw qv_input_error(qv_input_error::kind::bad_input,
                         {name_, qv_line_at(text_, offset), "", ""},
                         std::string("is not well-formed XML: ") + result.description(),
                         "export the model again, or mend the file at this place");
  }
  element_list list = list_elements(parsed_->document, tag_count);
  if (list.is_doubtful) qv_check_xml(name_, text_);
  root_name_ = parsed_->document.document_element().name();
  if (has_prefixes(text_)) {
    prefix_remover remover;
    parsed_->document.traverse(remover);
    list = list_elements(parsed_->document, tag_count);
  }
  parsed_->elements = std::move(list.records);
}

qv_xml_document::~qv_xml_document() = default;

qv_xml_element qv_xml_document::get_root() const {
  return parsed_->elements.empty() ? qv_xml_element() : qv_xml_element(parsed_->elements[0]);
}

std::size_t qv_xml_document::get_line(std::size_t offset) const {
  const std::size_t end = std::min(offset, text_.size());
  const std::string_view text = text_;
  if (end >= counted_offset_) {
    counted_line_ += qv_count_characters(text.substr(counted_offset_, end - counted_offset_), '\n');
  } else {
    counted_line_ -= qv_count_characters(text.substr(end, counted_offset_ - end), '\n');
  }
  counted_offset_ = end;
  return counted_line_;
}

}  // namespace qv
