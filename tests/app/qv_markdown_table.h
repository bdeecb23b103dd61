#pragma once

#include <string>
#include <vector>

/// The body rows of the tables of a Markdown page whose first heading cell is `first_heading`, cell
/// by cell without blanks around them.
std::vector<std::vector<std::string>> qv_markdown_rows(const std::string& page,
                                                       const std::string& first_heading);

/// The number that a cell ends with: all of "12.5", what follows the last "=" of "5 × 2.5 = 12.5".
double qv_last_number(const std::string& cell);
