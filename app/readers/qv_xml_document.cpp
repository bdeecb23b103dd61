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

// Lists the elements of a parsed text in its order, and looks on the way for what may be wrong.
class element_lister : public pugi::xml_tree_walker {
 public:
  element_lister(pugi::xml_document& document, std::size_t tag_count) {
    records_.reserve(tag_count / 2 + 1);  // most have a tag at either end
    document.traverse(*this);
  }

  bool is_doubtful() const { return is_doubtful_ || records_.empty(); }
  std::vector<qv::qv_xml_element::record> take_records() { return std::move(records_); }

  bool for_each(pugi::xml_node& node) override {
    const auto level = static_cast<std::size_t>(depth());
    // Besides the root: a document type, or text outside the root.
    if (level == 0 && (node.type() != pugi::node_element || !records_.empty())) is_doubtful_ = true;
    const char* const name = node.name();
    if (*name == '\0') return true;  // text between elements
    if (level >= qv::largest_xml_depth) is_doubtful_ = true;
    const pugi::xml_attribute first = node.first_attribute();
    if (pointer_of(first) != nullptr && has_attribute_twice(first)) is_doubtful_ = true;
    add(level, {name, pointer_of(node)});
    return true;
  }

 private:
  // Deeper than the element before, it is that one's first child; else it follows the last element
  // of its level, which has the same parent.
  void add(std::size_t level, const qv::qv_xml_element::record& element) {
    const std::size_t number = records_.size();
    if (level == open_.size()) {
      if (number > 0) records_[number - 1].has_child = 1;
    } else {
      records_[open_[level]].next = static_cast<std::uint32_t>(number - open_[level]);
      open_.resize(level);
    }
    open_.push_back(number);
    records_.push_back(element);
  }

  std::vector<qv::qv_xml_element::record> records_;
  std::vector<std::size_t> open_;  // the last element and those that it lies in, outermost first
  bool is_doubtful_ = false;
};

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

// As above for any colon in the stretch of the text.
bool has_prefix_in(std::string_view text, std::size_t first, std::size_t last) {
  const std::string_view stretch = text.substr(0, last);
  for (std::size_t at = stretch.find(':', first); at != std::string_view::npos;
       at = stretch.find(':', at + 1))
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

// --- survey ---

// Bytes that are looked at together, once for each question, while they are in the nearest cache.
constexpr std::size_t block_size = 2048;

// What one pass over a text finds.
struct text_survey {
  explicit text_survey(std::string_view text) {
    lines_before.reserve(text.size() / block_size + 1);
    std::size_t lines = 0;
    for (std::size_t first = 0; first <= text.size(); first += block_size) {
      const std::string_view block = text.substr(first, block_size);
      lines_before.push_back(lines);
      lines += qv::qv_count_characters(block, '\n');
      tag_count += qv::qv_count_characters(block, '<');
      has_prefixes = has_prefixes || has_prefix_in(text, first, first + block.size());
    }
  }

  // Text with a tag in every few bytes is no building model, and its tree would take twenty times
  // its memory: such a text is checked before it is parsed.
  bool is_crowded(std::string_view text) const {
    constexpr std::size_t little = 1 << 20;        // bytes; a tree of that is affordable
    constexpr std::size_t fewest_bytes_a_tag = 8;  // numbers between tags alone take more
    return text.size() >= little && tag_count > text.size() / fewest_bytes_a_tag;
  }

  std::vector<std::size_t> lines_before;  // line ends before each block
  std::size_t tag_count = 0;
  bool has_prefixes = false;
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
  text_survey survey(text_);
  if (survey.is_crowded(text_)) qv_check_xml(name_, text_);
  lines_before_ = std::move(survey.lines_before);
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
  element_lister lister(parsed_->document, survey.tag_count);
  if (lister.is_doubtful()) qv_check_xml(name_, text_);
  root_name_ = parsed_->document.document_element().name();
  if (survey.has_prefixes) {
    prefix_remover remover;
    parsed_->document.traverse(remover);
    lister = element_lister(parsed_->document, survey.tag_count);
  }
  parsed_->elements = lister.take_records();
}

qv_xml_document::~qv_xml_document() = default;

qv_xml_element qv_xml_document::get_root() const {
  return parsed_->elements.empty() ? qv_xml_element() : qv_xml_element(parsed_->elements[0]);
}

std::size_t qv_xml_document::get_line(std::size_t offset) const {
  const std::size_t end = std::min(offset, text_.size());
  const std::size_t block = end / block_size;
  const std::string_view before = std::string_view(text_).substr(0, end).substr(block * block_size);
  return 1 + lines_before_[block] + qv_count_characters(before, '\n');
}

}  // namespace qv
