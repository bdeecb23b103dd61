#pragma once

#include <string>

namespace qv {

/// The bytes of a file. `expected` says what the user should name ("a gbXML file"). Throws
/// `qv_input_error` (no access) for a file that is missing, a directory or unreadable.
std::string qv_read_file(const std::string& path, const std::string& expected);

}  // namespace qv
