#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/study/qv_study_results.h"
#include "core/items/qv_scene.h"

namespace qv {

class qvi_space;

/// How each zone is used: its own set points, fresh air, gains and lighting, and the gains and
/// lighting of its spaces, one record for each usage with the spaces that have it. Zones in scene
/// order; `space_id` gives the ids that reports show.
std::vector<qv_study_usage> qv_gather_usages(
    qv_scene& scene, const std::function<std::optional<std::string>(const qvi_space*)>& space_id);

}  // namespace qv
