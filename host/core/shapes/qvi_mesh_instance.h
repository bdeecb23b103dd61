#pragma once

#include "core/shapes/qvi_mesh.h"
#include "utilities/qv_matrix.h"

namespace qv {

/// Another mesh, placed by a matrix: one window drawn at forty places. Item type "mesh_instance", a
/// kind of "mesh".
///
/// It has no geometry of its own: operations that would change the surface itself (loading,
/// merging, welding, `push_offset`) leave it and the mesh shown as they are.
class qvi_mesh_instance : public qvi_mesh {
  QV_ITEM_CLASS(qvi_mesh_instance, qvi_mesh, "mesh_instance")

  /// The mesh shown; null shows nothing. A chain of instances that leads back to itself shows
  /// nothing.
  QV_PARAM_ITEM(qvi_mesh, mesh)
  /// Placement of the mesh.
  QV_PARAM(qv_matrix, matrix, qv_matrix())
  /// True shows the mesh turned over, its front as back.
  QV_PARAM(bool, reversed, false)

  unsigned int get_shape_date() const override;
  unsigned int get_geometry_date() const override;
  /// Multiplies the matrix from the left; the referenced mesh stays as it is.
  void matrix_transform(const qv_matrix& matrix, bool notify) override;
  /// Turns the instance over; the referenced mesh stays as it is.
  void reverse() override;
  /// The mesh's raw polygons, placed.
  qv_list<qv_polygon*> build_raw_polygons() override;
  /// The instance's own shader on that side, else the one of the mesh shown.
  qvi_shader* get_side_shader(bool front) override;
  qv_box get_local_bounding_box() override;
  void render_opengl_raw() override;
  void render_opengl_contour_raw() override;

 protected:
  bool has_own_triangles() const override { return false; }
  qv_triangulation build_triangulation() override;

 private:
  // The end of the chain of instances: the mesh that is seen, or null, and how.
  struct placement {
    qvi_mesh* mesh = nullptr;
    qv_matrix matrix;
    bool reversed = false;
  };

  template <class Visit>
  qvi_mesh* follow(const Visit& visit) const;
  placement get_placement() const;
  void draw_side(bool front) override;
};

}  // namespace qv
