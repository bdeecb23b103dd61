#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qv {

/// Something about a model that an engineer should look at before believing figures made from it.
struct qv_finding {
  /// One of `qv_check_codes()`.
  std::string code;
  /// What is concerned: "Surface", "Space", "Opening", "Construction", "Material".
  std::string kind;
  /// Its id in the file, or its name when it has none.
  std::string id;
  /// x, y, z in the file's coordinates, m; absent where the finding has no place.
  std::optional<std::vector<float>> place;
  /// What is wrong, with the figures.
  std::string message;
};

/// A kind of finding. Codes are stable: later versions add some and rename none.
struct qv_check_code {
  const char* code;
  const char* meaning;
};

/// Every kind of finding, in the order in which findings are listed.
std::span<const qv_check_code> qv_check_codes();

}  // namespace qv
