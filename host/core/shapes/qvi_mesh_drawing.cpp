#include <GL/gl.h>

#include <cmath>
#include <numbers>

#include "core/shapes/contours.h"
#include "core/shapes/qvi_mesh.h"
#include "core/shapes/qvi_polygon.h"
#include "core/shapes/qvi_solid.h"
#include "core/shapes/surface_drawing.h"
#include "core/shapes/surface_topology.h"
#include "core/shapes/triangles.h"

namespace qv {
namespace {

// Degrees; a surface that folds by more shows an edge.
constexpr double fold_angle = 20;

constexpr float mouseover_color[3] = {1, 1, 0};
constexpr float selected_color[3] = {1, 0, 0};
constexpr float contour_alpha = 0.5f;
constexpr float surface_alpha = 0.2f;

void set_color(const float* rgb, float alpha) {
  const float color[4] = {rgb[0], rgb[1], rgb[2], alpha};
  glColor4fv(color);
}

void send_vertex(const qv_3dvector& vertex) {
  const float coordinates[3] = {vertex.x, vertex.y, vertex.z};
  glVertex3fv(coordinates);
}

}  // namespace

void draw_triangles(const qv_list<qv_3dvector>& vertices, const qv_list<int>& triangles,
                    const drawn_side& side) {
  glBegin(GL_TRIANGLES);
  for_each_triangle(triangles, vertices.get_count(), [&](const triangle_corners& corners) {
    const qv_3dvector& a = vertices[corners[0]];
    const qv_3dvector& b = vertices[corners[side.winding_turned ? 2 : 1]];
    const qv_3dvector& c = vertices[corners[side.winding_turned ? 1 : 2]];
    const area_vector area(a, b, c);
    if (!(area.length() > 0) || !std::isfinite(area.length())) return;
    qv_3dvector normal = area.get_normal();
    if (side.winding_turned != side.normals_turned) normal = get_opposite(normal);
    const float components[3] = {normal.x, normal.y, normal.z};
    glNormal3fv(components);
    for (const qv_3dvector* vertex : {&a, &b, &c}) send_vertex(*vertex);
  });
  glEnd();
}

void draw_contours(const qv_list<qv_3dvector>& vertices, const qv_list<unsigned int>& sizes) {
  for_each_contour(vertices, sizes, [&](int first, int count) {
    glBegin(GL_LINE_LOOP);
    for (int i = first; i < first + count; ++i)
      if (vertices[i].is_finite()) send_vertex(vertices[i]);
    glEnd();
  });
}

placed_drawing::placed_drawing(const qv_matrix& matrix) {
  float columns[16];
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column) columns[4 * column + row] = matrix.get(row, column);
  glPushMatrix();
  glMultMatrixf(columns);
}

placed_drawing::~placed_drawing() {
  glPopMatrix();
}

// --- meshes ---

void qvi_mesh::draw_side(bool front) {
  draw_triangles(get_triangle_vertices(), get_triangle_indices(),
                 {.winding_turned = !front, .normals_turned = !front});
}

void qvi_mesh::render_opengl(bool selection) {
  if (selection) {
    if (is_selected() || is_mouseover()) draw_highlight();
  } else if (get_rendering_visibility()) {
    draw_shaded();
  }
}

void qvi_mesh::draw_shaded() {
  glEnable(GL_CULL_FACE);
  for (bool front : {true, false}) {
    qvi_shader* shader = get_side_shader(front);
    const qv_color color =
        shader != nullptr ? shader->get_diffuse_color() : qvi_shader::get_default_color();
    const bool transparent = color.a < 1;
    if (transparent) glEnable(GL_BLEND);
    const float rgb[3] = {color.r, color.g, color.b};
    set_color(rgb, color.a);
    draw_side(front);
    if (transparent) glDisable(GL_BLEND);
  }
  glDisable(GL_CULL_FACE);
}

void qvi_mesh::draw_highlight() {
  const float* rgb = is_mouseover() ? mouseover_color : selected_color;
  glDisable(GL_LIGHTING);
  glDisable(GL_DEPTH_TEST);
  set_color(rgb, contour_alpha);
  glLineWidth(1);
  render_opengl_contour_raw();
  set_color(rgb, surface_alpha);
  render_opengl_raw();
  glEnable(GL_LIGHTING);
  glEnable(GL_DEPTH_TEST);
}

void qvi_mesh::render_opengl_raw() {
  draw_side(true);
}

void qvi_mesh::render_opengl_contour_raw() {
  const surface_topology surface(get_triangle_vertices(), get_triangle_indices());
  const double fold_cosine = std::cos(fold_angle * std::numbers::pi / 180);
  glBegin(GL_LINES);
  for (const auto& [from, to] : surface.find_contour_edges(fold_cosine)) {
    send_vertex(surface.get_vertex(from));
    send_vertex(surface.get_vertex(to));
  }
  glEnd();
}

// --- polygons and solids ---

void qvi_polygon::render_opengl_contour_raw() {
  draw_contours(get_vertices(), get_contour_sizes());
}

void qvi_solid::render_opengl_contour_raw() {
  draw_contours(get_vertices(), get_contour_sizes());
}

}  // namespace qv
