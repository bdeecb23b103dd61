#pragma once

#include "core/shapes/qvi_mesh.h"

namespace qv {

/// A plane region as an item: the faces of walls and openings. Item type "polygon", a kind of
/// "mesh".
///
/// Its "vertices" are the corners of its contours, one contour after the other; the triangles that
/// are drawn and traced are made from them when first asked for and kept until they change. Its own
/// "triangles" stay empty, and operations on triangles (`load_from_triangles`,
/// `optimize_vertices`) leave it as it is.
class qvi_polygon : public qvi_mesh {
  QV_ITEM_CLASS(qvi_polygon, qvi_mesh, "polygon")

  /// Unit normal of the plane; the front side is where it points.
  QV_PARAM(qv_3dvector, normal, qv_3dvector(0, 0, 1))
  /// Number of vertices of each contour.
  QV_PARAM_LIST(unsigned int, contour_sizes)

  /// Makes `polygon` this region: its plane through the first vertex (through the origin without
  /// one), its contours as they are. Null is ignored.
  void fill_polygon(qv_polygon* polygon) const;

  unsigned int get_shape_date() const override;
  /// Area of the region, m²; needs no triangles.
  float get_area() override;
  /// Becomes `polygon`'s region, contours and plane as they are. Null empties it.
  void load_from_polygon(const qv_polygon* polygon) override;
  /// Unites the others' raw polygons into this region, projected onto its plane.
  void merge(const qv_list<qvi_mesh*>& others) override;
  using qvi_mesh::merge;
  void matrix_transform(const qv_matrix& matrix, bool notify) override;
  /// Moves the region by `distance` metres along its normal. A distance that is not finite moves
  /// nothing.
  void push_offset(float distance) override;
  /// Opposite normal, every contour in reverse order; the shaders stay with their side of the
  /// material.
  void reverse() override;
  /// One polygon, this region; none when it has no contour.
  qv_list<qv_polygon*> build_raw_polygons() override;
  /// GL_LINE_LOOP along each contour.
  void render_opengl_contour_raw() override;

 protected:
  bool has_own_triangles() const override { return false; }
  qv_triangulation build_triangulation() override;
};

}  // namespace qv
