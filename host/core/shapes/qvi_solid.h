#pragma once

#include "core/shapes/qvi_mesh.h"
#include "core/shapes/qvi_polygon.h"
#include "utilities/qv_solid.h"

namespace qv {

/// A closed volume of plane faces as an item. Item type "solid", a kind of "mesh".
///
/// Its "vertices" are the corners of its faces' contours, face after face; triangles are made from
/// them when first asked for. Its own "triangles" stay empty, and operations on triangles
/// (`load_from_triangles`, `optimize_vertices`) leave it as it is.
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

  unsigned int get_shape_date() const override;
  /// Area of the faces, m²; needs no triangles.
  float get_area() override;
  /// Becomes a solid with this one face. Null empties it.
  void load_from_polygon(const qv_polygon* polygon) override;
  /// Adds the others' faces (their raw polygons).
  void merge(const qv_list<qvi_mesh*>& others) override;
  using qvi_mesh::merge;
  void matrix_transform(const qv_matrix& matrix, bool notify) override;
  /// Moves every face by `distance` metres along its outward normal, as far as the faces' common
  /// corners allow: each corner stays on its moved faces, on the first three of them where more
  /// meet. A distance that is not finite moves nothing.
  void push_offset(float distance) override;
  /// Turns every face over; the shaders stay with their side of the material.
  void reverse() override;
  /// One polygon per face.
  qv_list<qv_polygon*> build_raw_polygons() override;
  /// GL_LINE_LOOP along each contour of each face.
  void render_opengl_contour_raw() override;

 protected:
  bool has_own_triangles() const override { return false; }
  qv_triangulation build_triangulation() override;

 private:
  void store_faces(const qv_list<qv_polygon*>& faces);
};

}  // namespace qv
