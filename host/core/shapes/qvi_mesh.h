#pragma once

#include <memory>

#include "core/items/qv_accessors.h"
#include "core/shapes/qvi_shader.h"
#include "utilities/qv_polygon.h"

namespace qv {

class qv_ray;

/// A surface of triangles. Item type "mesh"; polygons, solids and instances derive from it.
///
/// The front is the side from which a triangle's vertices run counter-clockwise. Layers are names:
/// a ray tracer or a view takes the meshes that bear its layer's name.
class qvi_mesh : public qv_item {
  QV_ITEM_CLASS(qvi_mesh, qv_item, "mesh")

  /// Corner points, m.
  QV_PARAM_LIST(qv_3dvector, vertices)
  /// Three vertex indices for each triangle.
  QV_PARAM_LIST(int, triangles)
  QV_PARAM_ITEM(qvi_shader, front_shader)
  QV_PARAM_ITEM(qvi_shader, back_shader)
  /// False hides the mesh from every view.
  QV_PARAM(bool, rendering_visibility, true)
  QV_PARAM_LIST(std::string, rendering_layers)
  QV_PARAM_LIST(std::string, raytracing_layers)

  /// Date of the latest change of what the surface's shape and material depend on: its geometry
  /// parameters and its front shader parameter.
  virtual unsigned int get_geometry_date() const;

  /// Total area of the triangles, m², summed in double precision.
  virtual float get_area();
  virtual int get_nb_triangles();
  virtual int get_nb_vertices();
  /// The corner points as drawn and traced: the "vertices" parameter, or for a polygon, solid or
  /// instance those of its triangulation.
  virtual const qv_list<qv_3dvector>& get_triangle_vertices();
  /// Three indices into `get_triangle_vertices` for each triangle.
  virtual const qv_list<int>& get_triangle_indices();
  /// Corners of triangle `index`, and its unit normal when `normal` is not null. False, and nothing
  /// written, for an index out of range or a triangle whose vertex indices are out of range. A
  /// triangle without area has the zero normal.
  bool read_triangle(int index, qv_3dvector& a, qv_3dvector& b, qv_3dvector& c,
                     qv_3dvector* normal);

  /// Becomes the triangulation of `polygon`'s region; its front faces the polygon's normal. Null
  /// empties the mesh.
  virtual void load_from_polygon(const qv_polygon* polygon);
  /// Replaces vertices and triangles; indices out of range are dropped with their triangle.
  void load_from_triangles(const qv_list<qv_3dvector>& vertices, const qv_list<int>& triangles);
  /// Adds the triangles of `other`; null and the mesh itself add nothing.
  virtual void merge(qvi_mesh* other);
  void merge(const qv_list<qvi_mesh*>& others);
  /// Places the surface anew. `notify` false leaves out dates and notifications. A mirror image
  /// keeps front and back on their sides of the material (the winding is turned).
  virtual void matrix_transform(const qv_matrix& matrix, bool notify);
  /// Moves the surface by `distance` metres along its normals (each vertex along the area-weighted
  /// mean normal of its triangles).
  virtual void push_offset(float distance);
  /// Turns the surface over: front becomes back, the shaders stay with their side of the material.
  virtual void reverse();
  /// Welds vertices closer than `distance` metres (transitively along near neighbours: each vertex
  /// joins the first kept vertex within the distance), drops triangles that lose their area by it,
  /// and vertices that no triangle uses.
  void optimize_vertices(float distance);
  /// The surface as plane polygons, one per connected group of coplanar triangles; the caller frees
  /// them.
  virtual qv_list<qv_polygon*> build_raw_polygons();

  /// Colour that `ray` sees where it hit this mesh: its front or back shader's, by the side hit.
  /// False without a shader on that side or without a hit on this mesh.
  bool shade_ray(qv_ray* ray, qv_color& color);

  /// {"vertices":[x,y,z,…],"triangles":[i,j,k,…]}: flat lists of numbers without white space;
  /// floats in the shortest form that reads back the same, a coordinate that is not finite as null.
  std::string to_json();

  qv_box get_local_bounding_box() override;
  /// Draws the triangles with the shaders' colours when visible; nothing for `selection` unless
  /// selected or under the mouse.
  void render_opengl(bool selection) override;
  /// GL_TRIANGLES with normals, current colour.
  void render_opengl_raw() override;
  /// GL_LINES along the edges that bound the surface or fold it by more than 20°.
  void render_opengl_contour_raw() override;

 protected:
  /// Stores geometry without stamping or announcing when `notify` is false, through the setter when
  /// true.
  template <class T>
  void store_geometry(qv_param* param, const T& value, bool notify);
  qv_param* get_vertices_param() const { return vertices_param_; }
  qv_param* get_triangles_param() const { return triangles_param_; }
};

}  // namespace qv
