#pragma once

#include <optional>
#include <string>
#include <vector>

#include "utilities/qv_color.h"

namespace qv {

/// What the colours of a picture mean.
struct qv_picture_key {
  struct entry {
    qv_color color;
    std::string label;
    std::string amount;  // how much of it: "12", "36.0 m"
    bool line = false;   // drawn as a line, not a surface
  };
  /// Colours of `qv_loss_color` from `low` to `high`.
  struct scale {
    double low = 0;
    double high = 1;
    double step = 0.5;      // between the figures along it
    bool exceeded = false;  // there are values above `high`, in its colour
  };

  std::string title;  // "U value, W/(m²·K)"
  std::optional<scale> values;
  std::vector<entry> entries;
};

}  // namespace qv
