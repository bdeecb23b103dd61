#include "app/check/qv_check_scope.h"

namespace qv {
namespace {

void check_walls(qv_check_scope& scope) {
  for (const qv_source_flaw& flaw : scope.get_model().flaws) {
    if (flaw.what != qv_source_flaw::kind::names_no_space) continue;
    if (const qvi_wall* wall = scope.find_wall(flaw.id)) {
      scope.add("wall-without-space", wall, flaw.words);
    } else {
      scope.add("wall-without-space", "Surface", flaw.id, flaw.words);
    }
  }
}

void check_space(qv_check_scope& scope, const qvi_space* space) {
  const auto tell = [&](const char* code, const char* message) {
    scope.add(code, "Space", scope.id_of(space), message);
    scope.mark_open(space);
  };
  if (scope.get_walls_of(space).empty()) {
    tell("space-without-surfaces", "no surface names it");
    return;
  }
  if (space->get_floors().is_empty())
    tell("space-without-floor", "none of its surfaces lies under it");
  if (space->get_ceilings().is_empty())
    tell("space-without-ceiling", "none of its surfaces lies over it");
}

}  // namespace

void qv_check_hierarchy(qv_check_scope& scope) {
  check_walls(scope);
  for (const qvi_space* space : scope.get_spaces()) check_space(scope, space);
}

}  // namespace qv
