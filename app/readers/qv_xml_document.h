#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pugi {
struct xml_attribute_struct;
struct xml_node_struct;
}  // namespace pugi

namespace qv {

/// An element of an XML document; its name and those of its attributes are the local ones:
/// `gb:Surface` is "Surface". A light handle that is valid as long as its document; a null handle
/// has no children, attributes or text.
class qv_xml_element {
 public:
  /// What a document keeps of an element. Those of a document follow each other in its order, so
  /// that the first child stands right behind its parent.
  struct record {
    const char* name = "";
    pugi::xml_node_struct* node = nullptr;
    std::uint32_t next = 0;  // how many records on the next child of the same parent is; 0 for none
    std::uint32_t has_child = 0;
  };

  qv_xml_element() = default;
  explicit qv_xml_element(const record& element) : record_(&element) {}

  explicit operator bool() const { return record_ != &null_record; }

  /// Local name.
  std::string_view get_name() const { return record_->name; }
  bool is(const char* local_name) const {
    return record_->name[0] == local_name[0] && std::strcmp(record_->name, local_name) == 0;
  }

  /// First child element, and the element that follows this one among its parent's.
  qv_xml_element get_first_child() const {
    return record_->has_child != 0 ? qv_xml_element(record_[1]) : qv_xml_element();
  }
  qv_xml_element get_next() const {
    return record_->next != 0 ? qv_xml_element(record_[record_->next]) : qv_xml_element();
  }
  /// First child element of that local name.
  qv_xml_element get_child(const char* local_name) const;

  /// Value of the attribute of that local name; empty without one.
  std::string_view get_attribute(const char* local_name) const;
  /// The element's own text without white space at its ends; empty without any. Of text that
  /// comments or elements interrupt, the first piece.
  std::string_view get_text() const;
  /// Text of the first child element of that local name.
  std::string_view get_child_text(const char* local_name) const;

  /// Calls `visit(name, value)` with the local name of each attribute and its value.
  template <class Visitor>
  void for_each_attribute(Visitor visit) const;

  /// Byte offset in the document's text.
  std::size_t get_offset() const;

  /// So that `for (qv_xml_element child : element)` goes over the child elements.
  class iterator;
  iterator begin() const;
  iterator end() const;

 private:
  // The attribute that follows `previous`, the first one after null; null behind the last one.
  pugi::xml_attribute_struct* read_attribute(pugi::xml_attribute_struct* previous,
                                             const char*& name, std::string_view& value) const;

  static const record null_record;

  const record* record_ = &null_record;
};

inline const qv_xml_element::record qv_xml_element::null_record;

class qv_xml_element::iterator {
 public:
  explicit iterator(qv_xml_element element) : element_(element) {}
  qv_xml_element operator*() const { return element_; }
  iterator& operator++() {
    element_ = element_.get_next();
    return *this;
  }
  bool operator==(const iterator& other) const {
    return element_.record_ == other.element_.record_;
  }

 private:
  qv_xml_element element_;
};

inline qv_xml_element::iterator qv_xml_element::begin() const {
  return iterator(get_first_child());
}

inline qv_xml_element::iterator qv_xml_element::end() const {
  return iterator({});
}

inline qv_xml_element qv_xml_element::get_child(const char* local_name) const {
  for (const qv_xml_element child : *this)
    if (child.is(local_name)) return child;
  return {};
}

template <class Visitor>
void qv_xml_element::for_each_attribute(Visitor visit) const {
  const char* name = nullptr;
  std::string_view value;
  for (auto* a = read_attribute(nullptr, name, value); a != nullptr;
       a = read_attribute(a, name, value))
    visit(std::string_view(name), value);
}

/// A checked and parsed XML document.
class qv_xml_document {
 public:
  /// Decodes, checks and parses `bytes`. `name` is the file in messages. Throws `qv_input_error`
  /// (bad input) with the line for what is not well-formed.
  qv_xml_document(std::string name, std::string bytes);
  ~qv_xml_document();
  qv_xml_document(const qv_xml_document&) = delete;
  qv_xml_document& operator=(const qv_xml_document&) = delete;

  const std::string& get_name() const { return name_; }
  qv_xml_element get_root() const;
  /// Name of the root as written, with its prefix.
  const std::string& get_root_name() const { return root_name_; }
  /// What was odd about the encoding.
  const std::vector<std::string>& get_warnings() const { return warnings_; }
  /// Line at which the element begins, from 1.
  std::size_t get_line(qv_xml_element element) const { return get_line(element.get_offset()); }
  /// Line of an element's offset, from 1.
  std::size_t get_line(std::size_t offset) const;

 private:
  struct parsed;

  std::string name_;
  std::vector<std::string> warnings_;  // before the text, whose decoding fills it
  std::string text_;
  std::unique_ptr<parsed> parsed_;
  std::string root_name_;
  std::vector<std::size_t> lines_before_;  // line ends before each block of the text
};

}  // namespace qv
