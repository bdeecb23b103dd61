#include "core/shapes/triangles.h"

namespace qv {

void append_triangles(qv_triangulation& target, const qv_list<qv_3dvector>& vertices,
                      const qv_list<int>& triangles) {
  const int offset = target.vertices.get_count();
  for (const qv_3dvector& vertex : vertices) target.vertices.append(vertex);
  for_each_triangle(triangles, vertices.get_count(), [&](const triangle_corners& corners) {
    for (int corner : corners) target.triangles.append(offset + corner);
  });
}

qv_list<int> get_turned_triangles(const qv_list<int>& triangles) {
  qv_list<int> turned = triangles;
  for (int i = 0; i + 2 < turned.get_count(); i += 3) std::swap(turned[i + 1], turned[i + 2]);
  return turned;
}

}  // namespace qv
