#pragma once

#include <memory>

#include "core/items/qv_accessors.h"
#include "core/shapes/qv_shared_record.h"
#include "core/shapes/qvi_shader.h"
#include "utilities/qv_polygon.h"
#include "utilities/qv_triangulation.h"

namespace qv {

class qv_ray;

/// A surface of triangles. Item type "mesh"; polygons, solids and instances derive from it.
///
/// The front is the side from which a triangle's vertices run counter-clockwise. Layers are names:
/// a ray tracer or a view takes the meshes that bear its layer's name.
///
/// The parameters may hold anything; a triangle that names a vertex which is not there, and a list
/// of indices that ends within a triangle, count as if they were not given.
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

  /// Date of the latest change of the surface's shape. A transformation made without notification
  /// counts here, though no parameter and no item bears its date.
  virtual unsigned int get_shape_date() const;
  /// Date of the latest change of what the surface's shape and material depend on: its shape and
  /// its front shader parameter.
  virtual unsigned int get_geometry_date() const;

  /// Total area of the triangles, m², summed in double precision. Triangles that are not finite
  /// count nothing.
  virtual float get_area();
  int get_nb_triangles();
  int get_nb_vertices();
  /// The corner points as drawn and traced: the "vertices" parameter, or for a polygon, solid or
  /// instance those of its triangulation.
  const qv_list<qv_3dvector>& get_triangle_vertices();
  /// Three indices into `get_triangle_vertices` for each triangle.
  const qv_list<int>& get_triangle_indices();
  /// Both as a copy, for a single look: a polygon, solid or instance that has not needed its
  /// triangles yet makes them for the caller and keeps none.
  qv_triangulation copy_triangles();
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
  void merge(qvi_mesh* other);
  /// The same for each of `others`, in one step.
  virtual void merge(const qv_list<qvi_mesh*>& others);
  /// Places the surface anew. `notify` false leaves out dates and notifications. A mirror image
  /// keeps front and back on their sides of the material (the winding is turned).
  virtual void matrix_transform(const qv_matrix& matrix, bool notify);
  /// Moves the surface by `distance` metres along its normals (each vertex along the area-weighted
  /// mean normal of the triangles that meet at its place). A distance that is not finite moves
  /// nothing.
  virtual void push_offset(float distance);
  /// Turns the surface over: front becomes back, the shaders stay with their side of the material.
  virtual void reverse();
  /// Welds vertices closer than `distance` metres (each vertex joins the first kept vertex within
  /// the distance), drops triangles without area, and vertices that no triangle uses. Linear time
  /// on average.
  void optimize_vertices(float distance);
  /// The surface as plane polygons, one per connected group of coplanar triangles, by their first
  /// triangle; the caller frees them.
  virtual qv_list<qv_polygon*> build_raw_polygons();

  /// The shader seen on the front or the back of the surface, or null.
  virtual qvi_shader* get_side_shader(bool front);
  /// Colour that `ray` sees where it hit this mesh: its front or back shader's, by the side hit.
  /// False without a shader on that side or without a hit on this mesh.
  bool shade_ray(qv_ray* ray, qv_color& color);

  /// {"vertices":[x,y,z,…],"triangles":[i,j,k,…]}: flat lists of numbers without white space;
  /// floats in the shortest form that reads back the same, a coordinate that is not finite as null.
  std::string to_json();

  qv_box get_local_bounding_box() override;
  /// Draws both sides in their shaders' diffuse colours (in the default shader's without one) when
  /// visible. For `selection`, the highlight of a mesh that is selected or under the mouse, else
  /// nothing.
  void render_opengl(bool selection) override;
  /// GL_TRIANGLES with normals, current colour.
  void render_opengl_raw() override;
  /// GL_LINES along the edges that bound the surface or fold it by more than 20°.
  void render_opengl_contour_raw() override;

 protected:
  /// False for a class whose triangles are made from something else; the operations on triangles
  /// that such a class does not replace leave it as it is.
  virtual bool has_own_triangles() const { return true; }
  /// The triangles of a class that has none of its own, made when first asked for and kept until
  /// the shape date changes.
  virtual qv_triangulation build_triangulation();

  /// Stores geometry through the setter; when `notify` is false without stamping or announcing.
  template <class T>
  void store_geometry(qv_param* param, const std::type_identity_t<T>& value, bool notify) {
    if (notify) {
      set_param_value<T>(param, value);
    } else {
      qv_param_traits<T>::store(*param, value);
      derived_.get().quiet_date = qv_get_new_date();
    }
  }
  void store_vertices(const qv_list<qv_3dvector>& vertices, bool notify) {
    store_geometry<qv_list<qv_3dvector>>(get_param(vertices_param_), vertices, notify);
  }
  /// Back to front and front to back.
  void exchange_shaders();
  /// Draws one side of the triangles, whose winding and normals face whom it is meant for.
  virtual void draw_side(bool front);

 private:
  // What follows from the geometry, shared with copies like the parameters that it follows from.
  struct derived_geometry {
    unsigned int quiet_date = 0;  // of the latest change without notification
    unsigned int built_date = 0;  // shape date of the triangulation
    // The triangulation's vertices are the "vertices" parameter, and not kept twice.
    bool has_own_vertices = false;
    std::shared_ptr<const qv_triangulation> triangulation;  // null until first asked for
  };

  const derived_geometry& get_derived();
  void draw_shaded();
  void draw_highlight();

  qv_shared_record<derived_geometry> derived_;
};

}  // namespace qv
