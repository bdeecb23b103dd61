#include "tests/app/qv_markdown_table.h"

#include <gtest/gtest.h>

#include <charconv>
#include <sstream>

namespace {

std::string trimmed(const std::string& text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::vector<std::string> cells_of(const std::string& line) {
  std::vector<std::string> cells;
  std::istringstream text(line.substr(1));
  for (std::string cell; std::getline(text, cell, '|');) cells.push_back(trimmed(cell));
  if (!cells.empty() && cells.back().empty()) cells.pop_back();
  return cells;
}

}  // namespace

std::vector<std::vector<std::string>> qv_markdown_rows(const std::string& page,
                                                       const std::string& first_heading) {
  std::vector<std::vector<std::string>> rows;
  std::istringstream lines(page);
  bool inside = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line[0] != '|') {
      inside = false;
      continue;
    }
    const auto cells = cells_of(line);
    if (inside) {
      if (cells[0].find_first_not_of("-:") != std::string::npos) rows.push_back(cells);
    } else {
      inside = cells[0] == first_heading;
    }
  }
  return rows;
}

double qv_last_number(const std::string& cell) {
  const std::string number = trimmed(cell.substr(cell.rfind('=') + 1));
  double value = 0.0;
  const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
  if (result.ec != std::errc() || result.ptr != number.data() + number.size()) {
    ADD_FAILURE() << "no number at the end of \"" << cell << "\"";
  }
  return value;
}
