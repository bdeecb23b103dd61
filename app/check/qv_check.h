#pragma once

#include <unordered_map>
#include <vector>

#include "app/check/qv_finding.h"
#include "app/readers/qv_gbxml_reader.h"

namespace qv {

/// What the check of a model found.
struct qv_check_report {
  /// In the order of `qv_check_codes`, those of one code in the order of the model.
  std::vector<qv_finding> findings;
  /// Of each space that leaks, the share of the rays that escape, above 0 up to 1.
  std::unordered_map<const qvi_space*, double> leaking_shares;
};

/// Checks a model whose scene is precomputed, and changes nothing in it. A defect that follows from
/// another one is not told again: a space without a floor is not also said to leak. Time near
/// linear in the number of surfaces.
qv_check_report qv_check_model(const qv_gbxml_model& model);

}  // namespace qv
