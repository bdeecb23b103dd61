#include <fmt/format.h>

#include "app/check/qv_check_scope.h"
#include "core/shapes/qvi_polygon.h"

namespace qv {
namespace {

constexpr double sliver_width = 0.01;  // m: twice the area over the perimeter

double perimeter_of(const qvi_polygon& face) {
  const qv_list<qv_3dvector>& vertices = face.get_vertices();
  double length = 0;
  int first = 0;
  for (const unsigned int size : face.get_contour_sizes()) {
    const auto count = static_cast<int>(size);
    for (int i = 0; i < count; ++i)
      length += (vertices[first + (i + 1) % count] - vertices[first + i]).length();
    first += count;
  }
  return length;
}

void check_sliver(qv_check_scope& scope, const qvi_wall* wall) {
  qvi_polygon* const face = scope.get_face(wall);
  if (face == nullptr) return;
  const double width = 2 * static_cast<double>(face->get_area()) / perimeter_of(*face);
  if (width < sliver_width)
    scope.add("sliver-polygon", wall, fmt::format("it is {:.1f} mm wide", 1000 * width));
}

}  // namespace

void qv_check_polygons(qv_check_scope& scope) {
  for (const qv_source_flaw& flaw : scope.get_model().flaws) {
    if (flaw.what == qv_source_flaw::kind::polygon_degenerate)
      scope.add("sliver-polygon", "Surface", flaw.id, flaw.words);
    if (flaw.what != qv_source_flaw::kind::polygon_not_plane) continue;
    if (const qvi_wall* wall = scope.find_wall(flaw.id))
      scope.add("polygon-not-plane", wall, flaw.words);
  }
  for (const qvi_wall* wall : scope.get_walls()) check_sliver(scope, wall);
}

}  // namespace qv
