#pragma once

#include <string>

#include "app/study/qv_study_results.h"

namespace qv {

/// The transmission heat loss as a table: walls, openings and thermal bridges with their mean U or
/// ψ and their loss, and the total.
std::string qv_heat_loss_summary(const qv_study_results& study);

}  // namespace qv
