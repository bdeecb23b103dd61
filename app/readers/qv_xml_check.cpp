#include "app/readers/qv_xml_check.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "app/readers/qv_input_error.h"

namespace {

constexpr std::size_t none = std::string_view::npos;

bool is_space(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool ends_a_name(char c) {
  return is_space(c) || c == '>' || c == '/' || c == '=';
}

class checker {
 public:
  checker(const std::string& name, std::string_view text) : name_(name), text_(text) {}

  void run() {
    std::size_t at = 0;
    while (at < text_.size()) {
      const std::size_t tag = text_.find('<', at);
      if (open_.empty()) check_outside(at, std::min(tag, text_.size()));
      if (tag == none) break;
      at = pass_markup(tag);
    }
    if (!open_.empty())
      fail(text_.size(),
           "ends inside <" + name_at(open_.back() + 1) + "> of line " +
               std::to_string(qv::qv_line_at(text_, open_.back())),
           "the file is cut short: export or copy it again");
    if (!has_root_) fail(0, "holds no XML element", "check that it is the file you mean");
  }

 private:
  [[noreturn]] void fail(std::size_t offset, const std::string& problem,
                         const std::string& advice) const {
    throw qv::qv_input_error(qv::qv_input_error::kind::bad_input,
                             {name_, qv::qv_line_at(text_, offset), "", ""}, problem, advice);
  }

  std::string name_at(std::size_t offset) const {
    std::size_t end = offset;
    while (end < text_.size() && !ends_a_name(text_[end])) ++end;
    return qv::qv_one_line(std::string(text_.substr(offset, end - offset)), 60);
  }

  void check_outside(std::size_t first, std::size_t last) const {
    for (std::size_t i = first; i < last; ++i)
      if (!is_space(text_[i]))
        fail(i, "text stands outside the root element", "the file is damaged: export it again");
  }

  // The offset behind the markup that begins at `tag`.
  std::size_t pass_markup(std::size_t tag) {
    const char kind = tag + 1 < text_.size() ? text_[tag + 1] : '\0';
    if (kind == '/') return pass_end_tag(tag);
    if (kind == '?') return behind(tag, "?>");
    if (kind != '!') return pass_start_tag(tag);
    const std::string_view rest = text_.substr(tag);
    if (rest.starts_with("<!--")) return behind(tag + 4, "-->");
    if (rest.starts_with("<![CDATA[")) return behind(tag, "]]>");
    return pass_document_type(tag);
  }

  std::size_t behind(std::size_t from, std::string_view end) const {
    const std::size_t found = text_.find(end, from);
    if (found == none)
      fail(from, "\"" + std::string(end) + "\" is missing",
           "the file is cut short: export or copy it again");
    return found + end.size();
  }

  std::size_t pass_document_type(std::size_t tag) const {
    int brackets = 0;
    for (std::size_t i = tag; i < text_.size(); ++i) {
      if (text_[i] == '[') ++brackets;
      if (text_[i] == ']') --brackets;
      if (text_[i] == '>' && brackets <= 0) return i + 1;
      if (text_[i] == '<' && text_.substr(i).starts_with("<!ENTITY"))
        fail(i, "declares an XML entity, which no building model needs",
             "remove the DOCTYPE section");
    }
    return behind(tag, ">");
  }

  std::size_t pass_end_tag(std::size_t tag) {
    if (open_.empty())
      fail(tag, "</" + name_at(tag + 2) + "> closes what was never opened",
           "the file is damaged: export it again");
    open_.pop_back();
    for (std::size_t i = tag + 2; i < text_.size(); ++i)
      if (text_[i] == '>') return i + 1;
    return behind(tag, ">");
  }

  std::size_t pass_start_tag(std::size_t tag) {
    if (open_.empty()) {
      if (has_root_)
        fail(tag, "a second root element <" + name_at(tag + 1) + "> follows the first",
             "keep one model in the file");
      has_root_ = true;
    }
    char quote = 0;
    int attributes = 0;
    for (std::size_t i = tag + 1; i < text_.size(); ++i) {
      const char c = text_[i];
      if (quote != 0) {
        if (c == quote) quote = 0;
      } else if (c == '"' || c == '\'') {
        quote = c;
        ++attributes;
      } else if (c == '<') {
        break;
      } else if (c == '>') {
        if (attributes > 1) check_attributes(tag, i);
        if (text_[i - 1] != '/') open_element(tag);
        return i + 1;
      }
    }
    fail(tag, "the tag <" + name_at(tag + 1) + "> is not closed",
         "the file is cut short or damaged: export it again");
  }

  void open_element(std::size_t tag) {
    if (open_.size() == qv::largest_xml_depth)
      fail(tag, "elements are nested more than " + std::to_string(qv::largest_xml_depth) + " deep",
           "no building model is: check that it is the file you mean");
    open_.push_back(tag);
  }

  // Names of the attributes between `tag` and the '>' at `end`, none of which may come twice.
  void check_attributes(std::size_t tag, std::size_t end) {
    names_.clear();
    std::size_t i = tag + 1;
    while (i < end && !ends_a_name(text_[i])) ++i;
    while (i < end) {
      while (i < end && (is_space(text_[i]) || text_[i] == '/')) ++i;
      const std::size_t first = i;
      while (i < end && !ends_a_name(text_[i])) ++i;
      const std::string_view attribute = text_.substr(first, i - first);
      const std::size_t open = text_.find_first_of("\"'", i);
      if (open == none || open >= end) break;
      names_.push_back(attribute);
      i = text_.find(text_[open], open + 1) + 1;
    }
    std::sort(names_.begin(), names_.end());
    const auto twice = std::adjacent_find(names_.begin(), names_.end());
    if (twice != names_.end())
      fail(tag,
           "<" + name_at(tag + 1) + "> has the attribute " +
               qv::qv_one_line(std::string(*twice), 60) + " twice",
           "keep one of them");
  }

  const std::string& name_;
  std::string_view text_;
  std::vector<std::size_t> open_;  // offsets of the start tags not closed yet
  std::vector<std::string_view> names_;
  bool has_root_ = false;
};

}  // namespace

namespace qv {

void qv_check_xml(const std::string& name, std::string_view text) {
  checker(name, text).run();
}

std::size_t qv_count_characters(std::string_view text, char c) {
  // Side by side in columns as wide as a few registers, each of which counts in one byte and is
  // emptied before it runs over.
  constexpr std::size_t width = 32;
  constexpr std::size_t most_rows = 255;
  std::size_t count = 0;
  while (text.size() >= width) {
    const std::size_t rows = std::min(text.size() / width, most_rows);
    std::array<std::uint8_t, width> columns{};
    for (std::size_t row = 0; row < rows; ++row)
      for (std::size_t i = 0; i < width; ++i)
        columns[i] = static_cast<std::uint8_t>(columns[i] + (text[row * width + i] == c ? 1 : 0));
    for (const std::uint8_t column : columns) count += column;
    text.remove_prefix(rows * width);
  }
  return count + static_cast<std::size_t>(std::count(text.begin(), text.end(), c));
}

std::size_t qv_line_at(std::string_view text, std::size_t offset) {
  return 1 + qv_count_characters(text.substr(0, offset), '\n');
}

}  // namespace qv
