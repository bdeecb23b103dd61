#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace qv {

/// Hashes texts of both types alike, so that a map with text keys is asked without a copy.
struct qv_text_hash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const {
    return std::hash<std::string_view>()(text);
  }
};

/// Numbers by id.
using qv_id_map = std::unordered_map<std::string, int, qv_text_hash, std::equal_to<>>;

}  // namespace qv
