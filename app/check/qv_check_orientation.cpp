#include <fmt/format.h>

#include "app/check/qv_check_scope.h"
#include "bim/project/qv_side_test.h"

namespace qv {
namespace {

constexpr float decided_from = 0.9f;  // share of rays, as in the orientation check of the module

// How well the geometry agrees with the wall's spaces as it stands, and the other way round.
struct agreement {
  float direct = 0;
  float reverse = 0;
};

agreement judge(const qv_check_scope& scope, const qvi_wall* wall) {
  qvi_polygon* const face = scope.get_face(wall);
  const qv_3dvector normal = wall->get_normal();
  const auto see = [&](const qv_3dvector& direction, const qvi_space* space) {
    return space == nullptr ? 1.0f : qv_test_side(face, direction, space, scope.get_rays());
  };
  const qvi_space* const space_0 = wall->get_space_0();
  const qvi_space* const space_1 = wall->get_space_1();
  return {(see(-normal, space_0) + see(normal, space_1)) / 2,
          (see(normal, space_0) + see(-normal, space_1)) / 2};
}

std::string in_percent(const agreement& of, bool drawn_in_reverse) {
  const float drawn = drawn_in_reverse ? of.reverse : of.direct;
  const float turned = drawn_in_reverse ? of.direct : of.reverse;
  return fmt::format("{:.0f} % of the rays agree as it is drawn, {:.0f} % when it is turned",
                     100 * drawn, 100 * turned);
}

bool is_judged(const qv_check_scope& scope, const qvi_wall* wall) {
  const qvi_space* const space_0 = wall->get_space_0();
  const qvi_space* const space_1 = wall->get_space_1();
  return space_0 != nullptr && space_0 != space_1 && scope.get_face(wall) != nullptr &&
         !scope.is_open(space_0) && (space_1 == nullptr || !scope.is_open(space_1));
}

}  // namespace

void qv_check_orientation(qv_check_scope& scope) {
  std::unordered_set<const qvi_wall*> told;
  for (const qv_source_flaw& flaw : scope.get_model().flaws) {
    if (flaw.what != qv_source_flaw::kind::polygon_faces_its_space) continue;
    const qvi_wall* const wall = scope.find_wall(flaw.id);
    if (wall == nullptr || wall->get_space_0() == nullptr) continue;
    told.insert(wall);
    scope.add("reversed-normal", wall,
              "its polygon looks into " + scope.quoted(wall->get_space_0()) + ": " +
                  in_percent(judge(scope, wall), true));
  }
  for (const qvi_wall* wall : scope.get_walls()) {
    if (!is_judged(scope, wall) || told.contains(wall)) continue;
    const agreement found = judge(scope, wall);
    if (found.direct >= decided_from) continue;
    if (found.reverse >= decided_from) {
      scope.add("reversed-normal", wall,
                "its polygon looks into " + scope.quoted(wall->get_space_0()) + ": " +
                    in_percent(found, false));
    } else {
      scope.add("unclear-orientation", wall,
                "it sees its spaces on neither side: " + in_percent(found, false));
    }
  }
}

}  // namespace qv
