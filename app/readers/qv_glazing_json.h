#pragma once

#include <string>

#include "app/readers/qv_glazing_notation.h"

namespace qv {

/// A glazing from a JSON file: {"name": …, "layers": […]}, outside first, each layer a text of the
/// short notation or an object; docs/guide/glazing.md lists its keys. Throws `qv_input_error` that
/// names the file and the layer.
qv_owned_glazing qv_read_glazing_json(const std::string& path);

/// The same from the text of a file; `path` is named in errors.
qv_owned_glazing qv_parse_glazing_json(const std::string& text, const std::string& path);

}  // namespace qv
