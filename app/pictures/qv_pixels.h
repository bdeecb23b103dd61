#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qv {

/// An opaque picture in memory.
struct qv_pixels {
  int width = 0;
  int height = 0;
  /// 0x00RRGGBB, row by row from the top.
  std::vector<std::uint32_t> rows;

  std::uint32_t at(int x, int y) const {
    return rows[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                static_cast<std::size_t>(x)];
  }
};

}  // namespace qv
