#include <GL/gl.h>

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "core/shapes/qvi_polygon.h"

namespace qv {

namespace {

bool is_marked(const qv_item* item) {
  return item != nullptr && item->is_selected();
}

}  // namespace

void qvi_space::render_opengl(bool draw) {
  if (!draw) return;
  for (qv_item* child : get_children())
    if (child->has_type("space")) child->render_opengl(draw);

  const bool highlighted = is_mouseover() || is_selected() || is_marked(get_zone()) ||
                           is_marked(get_building()) || is_marked(get_campus());
  if (!highlighted) return;
  render_opengl_transparent(is_mouseover() ? qv_color(1, 1, 0, 1) : qv_color(1, 0, 0, 1));
}

void qvi_space::render_opengl_transparent(const qv_color& color) {
  const qv_list<qvi_polygon*> faces = get_drawn_faces();
  glDisable(GL_LIGHTING);
  glDisable(GL_DEPTH_TEST);

  glColor4f(color.r, color.g, color.b, 0.5f);
  glLineWidth(1.0f);
  for (qvi_polygon* face : faces) face->render_opengl_contour_raw();

  glColor4f(color.r, color.g, color.b, 0.2f);
  for (qvi_polygon* face : faces) face->render_opengl_raw();

  glEnable(GL_LIGHTING);
  glEnable(GL_DEPTH_TEST);
}

qv_list<qvi_polygon*> qvi_space::get_drawn_faces() const {
  // Looked up anew: what the last precompute found may have been taken away since.
  qv_list<qvi_polygon*> faces = qv_collect<qvi_polygon>(this, "polygon");
  if (!faces.is_empty() || get_scene() == nullptr) return faces;
  for (const qvi_wall* wall : find_walls()) {
    if (wall->get_space_0() == this && wall->get_face_0() != nullptr)
      faces.append(wall->get_face_0());
    if (wall->get_space_1() == this && wall->get_face_1() != nullptr)
      faces.append(wall->get_face_1());
  }
  return faces;
}

}  // namespace qv
