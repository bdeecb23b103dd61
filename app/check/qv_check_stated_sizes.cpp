#include <fmt/format.h>

#include <cmath>

#include "app/check/qv_check_scope.h"

namespace qv {
namespace {

// Share of the stated figure. Tools draw surfaces on the centre lines of walls and state what is
// inside the finishes: up to a fifth of a small room.
constexpr double far_off = 0.2;

bool is_far(double measured, double stated) {
  return std::abs(measured - stated) > far_off * stated;
}

void check_space(qv_check_scope& scope, const qvi_space* space, const qv_source_space& source) {
  const double area = space->get_area();
  const double stated_area = source.stated_area.value_or(0);
  // Stated areas count floor under low ceilings or leave it out.
  if (stated_area > 0 && is_far(area, stated_area) && is_far(source.floor_area, stated_area))
    scope.add("area-not-as-stated", "Space", scope.id_of(space),
              fmt::format("{:.2f} m² measured, {:.2f} m² stated", area, stated_area));
  const double volume = space->get_volume();
  const double stated_volume = source.stated_volume.value_or(0);
  if (stated_volume > 0 && is_far(volume, stated_volume))
    scope.add("volume-not-as-stated", "Space", scope.id_of(space),
              fmt::format("{:.2f} m³ measured, {:.2f} m³ stated", volume, stated_volume));
}

}  // namespace

void qv_check_stated_sizes(qv_check_scope& scope) {
  for (const qvi_space* space : scope.get_spaces()) {
    const qv_source_space* const source = scope.find_source(space);
    if (source != nullptr && !scope.is_open(space)) check_space(scope, space, *source);
  }
}

}  // namespace qv
