#include "core/shapes/qvi_mesh_instance.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "core/shapes/contours.h"
#include "core/shapes/surface_drawing.h"
#include "core/shapes/triangles.h"

namespace qv {

namespace {

bool is_finite(const qv_matrix& matrix) {
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column)
      if (!std::isfinite(matrix.get(row, column))) return false;
  return true;
}

}  // namespace

QV_ITEM_CLASS_IMPLEMENTATION(qvi_mesh_instance)

/// Calls `visit` for this instance and each one that it leads to, as long as `visit` returns true.
/// Returns the mesh at the end, or null without one, on a way that leads back to itself (found as
/// R. P. Brent does, An improved Monte Carlo factorization algorithm, 1980), or when stopped.
template <class Visit>
qvi_mesh* qvi_mesh_instance::follow(const Visit& visit) const {
  const qvi_mesh_instance* at = this;
  const qvi_mesh_instance* passed = this;
  for (unsigned int steps = 0, limit = 1;; ++steps) {
    if (!visit(*at)) return nullptr;
    qvi_mesh* next = at->get_mesh();
    at = dynamic_cast<const qvi_mesh_instance*>(next);
    if (at == nullptr) return next;
    if (at == passed) return nullptr;
    if (steps == limit) {
      passed = at;
      steps = 0;
      limit *= 2;
    }
  }
}

qvi_mesh_instance::placement qvi_mesh_instance::get_placement() const {
  placement result;
  result.mesh = follow([&](const qvi_mesh_instance& instance) {
    result.matrix *= instance.get_matrix();
    result.reversed = result.reversed != instance.get_reversed();
    return true;
  });
  return result;
}

// --- dates ---

unsigned int qvi_mesh_instance::get_shape_date() const {
  unsigned int date = 0;
  const qvi_mesh* shown = follow([&](const qvi_mesh_instance& instance) {
    date = std::max({date, instance.qvi_mesh::get_shape_date(), instance.get_mesh_date(),
                     instance.get_matrix_date(), instance.get_reversed_date()});
    return true;
  });
  return shown != nullptr ? std::max(date, shown->get_shape_date()) : date;
}

unsigned int qvi_mesh_instance::get_geometry_date() const {
  unsigned int date = get_shape_date();
  const qvi_mesh* shown = follow([&](const qvi_mesh_instance& instance) {
    date = std::max(date, instance.get_front_shader_date());
    if (instance.get_reversed()) date = std::max(date, instance.get_back_shader_date());
    return true;
  });
  if (shown == nullptr) return date;
  return std::max({date, shown->get_front_shader_date(), shown->get_back_shader_date()});
}

// --- geometry ---

qv_triangulation qvi_mesh_instance::build_triangulation() {
  const placement placed = get_placement();
  if (placed.mesh == nullptr) return {};
  const qv_list<int>& triangles = placed.mesh->get_triangle_indices();
  const bool turned = (placed.matrix.get_determinant() < 0) != placed.reversed;
  return {get_transformed(placed.mesh->get_triangle_vertices(), placed.matrix),
          turned ? get_turned_triangles(triangles) : triangles};
}

qv_list<qv_polygon*> qvi_mesh_instance::build_raw_polygons() {
  const placement placed = get_placement();
  qv_list<qv_polygon*> polygons;
  if (placed.mesh == nullptr) return polygons;
  for (qv_polygon* raw : placed.mesh->build_raw_polygons()) {
    const std::unique_ptr<qv_polygon> local(raw);
    auto* polygon = new qv_polygon(placed.matrix.transform_point(local->get_point()),
                                   get_transformed_normal(local->get_normal(), placed.matrix));
    const qv_list<qv_3dvector> vertices = get_transformed_contours(
        local->get_contour_vertices(), local->get_contour_sizes(), placed.matrix);
    for_each_contour(vertices, local->get_contour_sizes(), [&](int first, int count) {
      polygon->add_contour(get_slice(vertices, first, count));
    });
    if (placed.reversed) polygon->reverse();
    polygons.append(polygon);
  }
  return polygons;
}

qv_box qvi_mesh_instance::get_local_bounding_box() {
  const placement placed = get_placement();
  qv_box box;
  if (placed.mesh != nullptr)
    for (const qv_3dvector& vertex : placed.mesh->get_vertices())
      box.enlarge(placed.matrix.transform_point(vertex));
  return box;
}

void qvi_mesh_instance::matrix_transform(const qv_matrix& matrix, bool notify) {
  store_geometry<qv_matrix>(get_param(matrix_param_), matrix * get_matrix(), notify);
}

void qvi_mesh_instance::reverse() {
  set_reversed(!get_reversed());
  exchange_shaders();
}

// --- shaders and drawing ---

qvi_shader* qvi_mesh_instance::get_side_shader(bool front) {
  qvi_shader* shader = nullptr;
  qvi_mesh* shown = follow([&](const qvi_mesh_instance& instance) {
    shader = front ? instance.get_front_shader() : instance.get_back_shader();
    front = front != instance.get_reversed();
    return shader == nullptr;
  });
  return shown != nullptr ? shown->get_side_shader(front) : shader;
}

void qvi_mesh_instance::draw_side(bool front) {
  const placement placed = get_placement();
  if (placed.mesh == nullptr || !is_finite(placed.matrix)) return;
  const placed_drawing in_place(placed.matrix);
  const bool shown_front = front != placed.reversed;
  draw_triangles(placed.mesh->get_triangle_vertices(), placed.mesh->get_triangle_indices(),
                 {.winding_turned = shown_front == (placed.matrix.get_determinant() < 0),
                  .normals_turned = !shown_front});
}

void qvi_mesh_instance::render_opengl_raw() {
  draw_side(true);
}

void qvi_mesh_instance::render_opengl_contour_raw() {
  const placement placed = get_placement();
  if (placed.mesh == nullptr || !is_finite(placed.matrix)) return;
  const placed_drawing in_place(placed.matrix);
  placed.mesh->render_opengl_contour_raw();
}

}  // namespace qv
