#include <fmt/format.h>

#include <cmath>

#include "app/check/qv_check_scope.h"
#include "bim/envelope/qvi_opening.h"
#include "core/shapes/qvi_polygon.h"

namespace qv {
namespace {

constexpr float plane_tolerance = 0.05f;  // m; openings are drawn in the plane of their wall
constexpr float least_area = 1e-3f;       // m² outside the wall
constexpr float least_share = 0.001f;     // of the opening

void check_opening(qv_check_scope& scope, const qvi_opening* opening) {
  const qvi_wall* const wall = opening->get_wall();
  qvi_polygon* const face = wall == nullptr ? nullptr : scope.get_face(wall);
  if (face == nullptr) return;
  const qv_list<std::string>& ids = opening->get_source_ids();
  const std::string id = ids.is_empty() ? opening->get_name() : ids[0];
  qv_polygon region;
  face->fill_polygon(&region);
  qv_polygon outside(region.get_point(), region.get_normal());
  float distance = 0;
  for (auto* mesh : qv_collect<qvi_mesh>(opening, "polygon")) {
    qv_polygon part;
    static_cast<qvi_polygon*>(mesh)->fill_polygon(&part);
    for (const qv_3dvector& vertex : part.get_contour_vertices())
      distance =
          std::max(distance, std::abs((vertex - region.get_point()).dot(region.get_normal())));
    outside.unites(part);
  }
  const float area = outside.get_area();
  const std::string of_wall = "Surface \"" + qv_check_scope::id_of(wall) + "\"";
  if (distance > plane_tolerance) {
    scope.add("opening-outside-wall", "Opening", id,
              fmt::format("it lies up to {:.0f} mm off the plane of {}", 1000 * distance, of_wall),
              outside.get_contour_vertices()[0]);
    return;
  }
  outside.substracts(region);
  const float beyond = outside.get_area();
  if (beyond < std::max(least_area, least_share * area)) return;
  qv_box box;
  for (const qv_3dvector& vertex : outside.get_contour_vertices()) box.enlarge(vertex);
  scope.add("opening-outside-wall", "Opening", id,
            fmt::format("{:.2f} of its {:.2f} m² lie beyond {}", beyond, area, of_wall),
            box.get_center());
}

}  // namespace

void qv_check_openings(qv_check_scope& scope) {
  for (qv_item* item : scope.get_model().scene->get_items("opening"))
    check_opening(scope, static_cast<qvi_opening*>(item));
}

}  // namespace qv
