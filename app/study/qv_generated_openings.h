#pragma once

#include <array>
#include <optional>

#include "app/study/qv_orientation.h"
#include "app/study/qv_study_results.h"

namespace qv {

struct qv_gbxml_model;

/// Shares of the walls' faces that generated openings are to take, between 0 (none) and 0.99.
struct qv_glazing_ratios {
  std::optional<double> all;
  /// By orientation, in place of `all`; in the order of `qv_orientations`.
  std::array<std::optional<double>, 4> by_orientation;

  bool any() const;
  /// The share asked for a wall that looks to `orientation` (nothing: up or down).
  std::optional<double> get(std::optional<qv_orientation> orientation) const;
};

/// Gives each outer wall without openings one that takes the share of its face asked for, and says
/// on how many walls it could not and why. The scene must have been precomputed, and must be once
/// more.
///
/// Passed over: walls in the ground, surfaces of air, faces of several contours, and faces so
/// irregular that the opening, the face shrunk about the mean of its corners, would not lie within.
qv_study_generation qv_generate_openings(const qv_gbxml_model& model,
                                         const qv_glazing_ratios& ratios);

}  // namespace qv
