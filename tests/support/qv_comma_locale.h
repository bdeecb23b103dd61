#pragma once

#include <locale>

namespace qv_test {

/// For as long as it lives, the process writes 1234.5 as "1 234,5", as in France.
class comma_locale {
 public:
  comma_locale() : before_(std::locale::global(std::locale(std::locale(), new punctuation))) {}
  comma_locale(const comma_locale&) = delete;
  comma_locale& operator=(const comma_locale&) = delete;
  ~comma_locale() { std::locale::global(before_); }

 private:
  struct punctuation : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return ' '; }
    std::string do_grouping() const override { return "\3"; }
  };
  std::locale before_;
};

}  // namespace qv_test
