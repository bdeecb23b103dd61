#pragma once

#include <string>
#include <vector>

#include "app/check/qv_finding.h"

namespace qv {

/// What a check says, and what it repaired.
struct qv_findings_report {
  std::string source;  // the model file, as the user named it
  /// Of the repaired model where there is one.
  std::vector<qv_finding> findings;
  /// The repaired model; empty when none was asked for.
  std::string repaired_file;
  int turned_count = 0;  // surfaces turned in it
};

/// One line for each finding: `code: Surface "su-3" at (1.20, 0.00, 2.50): message`, behind them
/// how many there are.
std::string qv_findings_text(const qv_findings_report& report);
/// The same as a JSON object with "findings".
std::string qv_findings_json(const qv_findings_report& report);

}  // namespace qv
