#pragma once

#include <string>

namespace qv {

/// Expects of a file that a user writes or edits that it is JSON and can be parsed. Throws
/// `qv_input_error` (bad input) with the line of what is no JSON, or where an object gives a key
/// twice: which of the two was meant cannot be known.
void qv_expect_json(const std::string& file, const std::string& text);

}  // namespace qv
