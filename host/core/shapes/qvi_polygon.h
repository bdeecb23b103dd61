#pragma once

#include "core/shapes/qvi_mesh.h"

namespace qv {

/// A plane region as an item: the faces of walls and openings. Item type "polygon", a kind of
/// "mesh".
///
/// Its "vertices" are the corners of its contours, one contour after the other; the triangles that
/// are drawn and traced are made from them when first asked for and kept until they change.
class qvi_polygon : public qvi_mesh {
  QV_ITEM_CLASS(qvi_polygon, qvi_mesh, "polygon")

  /// Unit normal of the plane; the front side is where it points.
  QV_PARAM(qv_3dvector, normal, qv_3dvector(0, 0, 1))
  /// Number of vertices of each contour.
  QV_PARAM_LIST(unsigned int, contour_sizes)

  /// Makes `polygon` this region.
  void fill_polygon(qv_polygon* polygon);

  unsigned int get_geometry_date() const override;
  float get_area() override;
  int get_nb_triangles() override;
  int get_nb_vertices() override;
  const qv_list<qv_3dvector>& get_triangle_vertices() override;
  const qv_list<int>& get_triangle_indices() override;
  /// Becomes `polygon`'s region, contours and plane as they are. Null empties it.
  void load_from_polygon(const qv_polygon* polygon) override;
  /// Unites `other`'s raw polygons into this region, projected onto its plane.
  void merge(qvi_mesh* other) override;
  using qvi_mesh::merge;
  void matrix_transform(const qv_matrix& matrix, bool notify) override;
  /// Moves the region by `distance` metres along its normal.
  void push_offset(float distance) override;
  /// Opposite normal, every contour in reverse order.
  void reverse() override;
  /// One polygon, this region.
  qv_list<qv_polygon*> build_raw_polygons() override;
  void render_opengl(bool selection) override;
  /// GL_LINE_LOOP along each contour.
  void render_opengl_contour_raw() override;

 private:
  struct triangulation_cache;
  triangulation_cache& get_triangulation();
  std::shared_ptr<triangulation_cache> triangulation_;
};

}  // namespace qv
