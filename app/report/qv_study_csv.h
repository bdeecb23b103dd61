#pragma once

#include <string>

#include "app/study/qv_study_results.h"

namespace qv {

/// Tables for a spreadsheet (RFC 4180: commas, CR LF, quotes where needed, a header line), in
/// UTF-8; a point in the numbers, an empty cell for what cannot be known. The columns are the keys
/// of the JSON form, less the long texts.
std::string qv_spaces_csv(const qv_study_results& study);
std::string qv_walls_csv(const qv_study_results& study);
std::string qv_openings_csv(const qv_study_results& study);
std::string qv_thermal_bridges_csv(const qv_study_results& study);

/// A cell: in quotes where RFC 4180 asks for them and where spaces at its ends would be lost.
std::string qv_csv_text(const std::string& text);

}  // namespace qv
