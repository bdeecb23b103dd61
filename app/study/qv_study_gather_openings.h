#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/study/qv_orientation.h"
#include "app/study/qv_study_results.h"
#include "core/items/qv_scene.h"

namespace qv {

class qvi_opening;
class qvi_wall;

/// The values of the scene's openings, in scene order, into `study.openings`, and of the glazings
/// that their compositions name, each once, into `study.glazings`. `wall_id` and `opening_id` give
/// the ids that reports show. `north` is the azimuth of the model's +Y, degrees clockwise from
/// north.
void qv_gather_openings(qv_scene& scene, double north,
                        const std::function<std::optional<std::string>(const qvi_wall*)>& wall_id,
                        const std::function<std::string(const qvi_opening&)>& opening_id,
                        qv_study_results& study);

/// The quarter that the wall looks to; nothing when it is level.
std::optional<qv_orientation> qv_facing_of(const qvi_wall& wall, double north);

/// Outer walls and their windows by orientation, north, east, south and west, into `study.facades`.
void qv_gather_facades(qv_scene& scene, double north, qv_study_results& study);

}  // namespace qv
