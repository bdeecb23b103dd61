#pragma once

#include "core/shapes/qvi_mesh.h"
#include "core/shapes/qvi_polygon.h"
#include "utilities/qv_solid.h"

namespace qv {

/// A closed volume of plane faces as an item. Item type "solid", a kind of "mesh".
///
/// Its "vertices" are the corners of its faces' contours, face after face; triangles are made from
/// them when first asked for.
class qvi_solid : public qvi_mesh {
  QV_ITEM_CLASS(qvi_solid, qvi_mesh, "solid")

  /// Number of vertices of each contour, over all faces.
  QV_PARAM_LIST(unsigned int, contour_sizes)
  /// Number of contours of each face.
  QV_PARAM_LIST(unsigned int, face_sizes)
  /// Outward unit normal of each face.
  QV_PARAM_LIST(qv_3dvector, face_normals)

  /// Becomes `solid`. Null empties it.
  void load_from_solid(const qv_solid* solid);
  /// One new polygon item per face, with the solid's shaders; the caller owns them.
  qv_list<qvi_polygon*> build_polygons();

  unsigned int get_geometry_date() const override;
  float get_area() override;
  int get_nb_triangles() override;
  int get_nb_vertices() override;
  const qv_list<qv_3dvector>& get_triangle_vertices() override;
  const qv_list<int>& get_triangle_indices() override;
  /// Becomes a solid with this one face. Null empties it.
  void load_from_polygon(const qv_polygon* polygon) override;
  /// Adds `other`'s faces (its raw polygons).
  void merge(qvi_mesh* other) override;
  using qvi_mesh::merge;
  void matrix_transform(const qv_matrix& matrix, bool notify) override;
  /// Moves every face by `distance` metres along its outward normal, as far as the faces' common
  /// corners allow (each corner moves so that it stays on its moved faces).
  void push_offset(float distance) override;
  /// Turns every face over.
  void reverse() override;
  /// One polygon per face.
  qv_list<qv_polygon*> build_raw_polygons() override;
  void render_opengl(bool selection) override;
  /// GL_LINE_LOOP along each contour of each face.
  void render_opengl_contour_raw() override;

 private:
  struct triangulation_cache;
  triangulation_cache& get_triangulation();
  std::shared_ptr<triangulation_cache> triangulation_;
};

}  // namespace qv
