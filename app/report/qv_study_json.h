#pragma once

#include <string>

#include "app/study/qv_study_results.h"

namespace qv {

/// The study as JSON text, format "qv-study", version 1. Keys are stable: later versions of the
/// program add keys and rename none. Null is what cannot be known.
std::string qv_study_json(const qv_study_results& study);

}  // namespace qv
