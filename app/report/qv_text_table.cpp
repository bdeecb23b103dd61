#include "app/report/qv_text_table.h"

#include <algorithm>

#include "app/report/qv_utf8.h"

namespace qv {

void qv_text_table::add_row(std::vector<std::string> cells) {
  cells.resize(columns_.size());
  for (std::size_t index = 0; index < cells.size(); ++index)
    cells[index] = qv_fit_to_width(cells[index], columns_[index].widest);
  rows_.push_back(std::move(cells));
}

void qv_text_table::add_rule() {
  rows_.emplace_back();
}

std::string qv_text_table::text() const {
  std::vector<std::size_t> widths;
  for (std::size_t index = 0; index < columns_.size(); ++index) {
    std::size_t width = qv_display_width(columns_[index].title);
    for (const auto& row : rows_) {
      if (!row.empty()) width = std::max(width, qv_display_width(row[index]));
    }
    widths.push_back(width);
  }
  std::string text;
  const auto add_line = [&](auto&& cell_of) {
    std::string line;
    for (std::size_t index = 0; index < columns_.size(); ++index) {
      const std::string cell = cell_of(index);
      const std::string blanks(widths[index] - qv_display_width(cell), ' ');
      line += "  ";
      line += columns_[index].side == align::right ? blanks + cell : cell + blanks;
    }
    text += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
  };
  add_line([&](std::size_t index) { return columns_[index].title; });
  for (const auto& row : rows_) {
    if (row.empty()) {
      add_line([&](std::size_t index) { return std::string(widths[index], '-'); });
    } else {
      add_line([&](std::size_t index) { return row[index]; });
    }
  }
  return text;
}

}  // namespace qv
