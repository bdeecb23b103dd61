#pragma once

#include "core/shapes/qvi_mesh.h"

namespace qv {

/// Another mesh, placed by a matrix: one window drawn at forty places. Item type "mesh_instance", a
/// kind of "mesh".
class qvi_mesh_instance : public qvi_mesh {
  QV_ITEM_CLASS(qvi_mesh_instance, qvi_mesh, "mesh_instance")

  /// The mesh shown; null shows nothing. A chain of instances that leads back to itself shows
  /// nothing.
  QV_PARAM_ITEM(qvi_mesh, mesh)
  /// Placement of the mesh.
  QV_PARAM(qv_matrix, matrix, qv_matrix())

  unsigned int get_geometry_date() const override;
  float get_area() override;
  int get_nb_triangles() override;
  int get_nb_vertices() override;
  const qv_list<qv_3dvector>& get_triangle_vertices() override;
  const qv_list<int>& get_triangle_indices() override;
  /// Multiplies the matrix from the left; the referenced mesh stays as it is.
  void matrix_transform(const qv_matrix& matrix, bool notify) override;
  /// The mesh's raw polygons, placed.
  qv_list<qv_polygon*> build_raw_polygons() override;
  qv_box get_local_bounding_box() override;
  void render_opengl(bool selection) override;
  void render_opengl_raw() override;
  void render_opengl_contour_raw() override;

 private:
  struct placed_cache;
  placed_cache& get_placed();
  std::shared_ptr<placed_cache> placed_;
};

}  // namespace qv
