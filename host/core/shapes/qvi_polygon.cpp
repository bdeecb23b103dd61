#include "core/shapes/qvi_polygon.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "core/shapes/contours.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_polygon)

void qvi_polygon::fill_polygon(qv_polygon* polygon) const {
  if (polygon == nullptr) return;
  const qv_list<qv_3dvector>& vertices = get_vertices();
  *polygon = qv_polygon(vertices.is_empty() ? qv_3dvector() : vertices[0], get_normal());
  for_each_contour(vertices, get_contour_sizes(), [&](int first, int count) {
    polygon->add_contour(get_slice(vertices, first, count));
  });
}

unsigned int qvi_polygon::get_shape_date() const {
  return std::max({qvi_mesh::get_shape_date(), get_normal_date(), get_contour_sizes_date()});
}

float qvi_polygon::get_area() {
  qv_polygon region;
  fill_polygon(&region);
  return region.get_area();
}

qv_triangulation qvi_polygon::build_triangulation() {
  qv_polygon region;
  fill_polygon(&region);
  return qv_triangulate(region);
}

void qvi_polygon::load_from_polygon(const qv_polygon* polygon) {
  if (polygon != nullptr) set_normal(polygon->get_normal());
  set_contour_sizes(polygon != nullptr ? polygon->get_contour_sizes() : qv_list<unsigned int>());
  set_vertices(polygon != nullptr ? polygon->get_contour_vertices() : qv_list<qv_3dvector>());
}

void qvi_polygon::merge(const qv_list<qvi_mesh*>& others) {
  qv_polygon region;
  fill_polygon(&region);
  bool united = false;
  for (qvi_mesh* other : others) {
    if (other == nullptr || other == this) continue;
    for (qv_polygon* raw : other->build_raw_polygons()) {
      const std::unique_ptr<qv_polygon> part(raw);
      region.unites(*part);
      united = true;
    }
  }
  if (united) load_from_polygon(&region);
}

void qvi_polygon::matrix_transform(const qv_matrix& matrix, bool notify) {
  store_geometry<qv_3dvector>(get_param(normal_param_),
                              get_transformed_normal(get_normal(), matrix), notify);
  store_vertices(get_transformed_contours(get_vertices(), get_contour_sizes(), matrix), notify);
}

void qvi_polygon::push_offset(float distance) {
  if (!std::isfinite(distance)) return;
  qv_list<qv_3dvector> moved = get_vertices();
  for (qv_3dvector& vertex : moved) vertex += get_normal() * distance;
  set_vertices(moved);
}

void qvi_polygon::reverse() {
  set_normal(get_opposite(get_normal()));
  set_vertices(get_reversed_contours(get_vertices(), get_contour_sizes()));
  exchange_shaders();
}

qv_list<qv_polygon*> qvi_polygon::build_raw_polygons() {
  qv_list<qv_polygon*> polygons;
  if (get_contour_sizes().is_empty()) return polygons;
  polygons.append(new qv_polygon);
  fill_polygon(polygons[0]);
  return polygons;
}

}  // namespace qv
