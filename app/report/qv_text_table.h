#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace qv {

/// A table of text for people: columns aligned by the width of what they hold, two spaces apart,
/// indented by two. Text stands on the left, numbers on the right.
class qv_text_table {
 public:
  enum class align { left, right };
  /// Widest text that a cell shows unless its column says otherwise; longer ones are cut.
  static constexpr std::size_t widest_cell = 48;

  struct column {
    std::string title;
    align side = align::left;
    std::size_t widest = widest_cell;
  };

  explicit qv_text_table(std::vector<column> columns) : columns_(std::move(columns)) {}

  /// One cell for each column; missing ones are empty, surplus ones are left out.
  void add_row(std::vector<std::string> cells);
  /// A rule before the next row, for sums.
  void add_rule();
  /// Titles, rows and rules, a line each, without blanks at the ends of the lines.
  std::string text() const;

 private:
  std::vector<column> columns_;
  std::vector<std::vector<std::string>> rows_;  // a row without cells is a rule
};

}  // namespace qv
