#pragma once

#include <string>

#include "app/study/qv_study_results.h"

namespace qv {

/// The openings of a study for the printed summary: by type and by what they look to, with the
/// means of their figures weighted by area; the share of windows in the façades; what became of
/// those that were to be generated. Empty when there is nothing to say.
std::string qv_openings_summary(const qv_study_results& study);

}  // namespace qv
