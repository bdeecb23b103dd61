#include "app/readers/qv_json_text.h"

#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <vector>

#include "app/readers/qv_input_error.h"

namespace qv {
namespace {

using nlohmann::json;

/// A place in the text, which counts the lines that are read.
class counting_iterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  counting_iterator(const char* at, std::size_t& line) : at_(at), line_(&line) {}
  reference operator*() const { return *at_; }
  counting_iterator& operator++() {
    if (*at_++ == '\n') ++*line_;
    return *this;
  }
  counting_iterator operator++(int) {
    const counting_iterator before = *this;
    ++*this;
    return before;
  }
  friend bool operator==(const counting_iterator& a, const counting_iterator& b) {
    return a.at_ == b.at_;
  }

 private:
  const char* at_;
  std::size_t* line_;
};

}  // namespace

void qv_expect_json(const std::string& file, const std::string& text) {
  std::size_t line = 1;
  std::vector<std::set<std::string>> keys;  // of the objects around, the innermost last
  const auto fail = [&](const std::string& problem, const std::string& advice) {
    throw qv_input_error(qv_input_error::kind::bad_input, {file, line, "", ""}, problem, advice);
  };
  const auto watch = [&](int, json::parse_event_t event, json& value) {
    if (event == json::parse_event_t::object_start) {
      keys.emplace_back();
    } else if (event == json::parse_event_t::object_end) {
      keys.pop_back();
    } else if (event == json::parse_event_t::key) {
      const auto& key = value.get_ref<const std::string&>();
      if (!keys.back().insert(key).second)
        fail("gives \"" + qv_one_line(key, 60) + "\" twice", "keep one of them");
    }
    return true;
  };
  try {
    [[maybe_unused]] const json document =
        json::parse(counting_iterator(text.data(), line),
                    counting_iterator(text.data() + text.size(), line), watch);
  } catch (const json::parse_error&) {
    fail("is no JSON", "look for a missing comma, quote or bracket");
  }
}

}  // namespace qv
