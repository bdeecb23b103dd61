#include <GL/gl.h>

#include "bim/envelope/qvi_wall.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_limit_condition.h"
#include "core/items/qv_scene.h"
#include "core/shapes/qvi_polygon.h"

namespace qv {

void qvi_wall::render_opengl(bool selection) {
  if (!selection) {
    qv_item::render_opengl(selection);
    return;
  }
  qvi_composition* const composition = get_composition();
  const qvi_limit_condition* const limit_condition = get_limit_condition();
  const bool highlighted = is_selected() ||
                           (composition != nullptr &&
                            (composition->is_selected() || composition->has_selected_layer())) ||
                           (limit_condition != nullptr && limit_condition->is_selected());
  const bool related =
      get_scene() != nullptr && is_selection_related(get_scene()->get_selected_item());
  if (related) {
    render_opengl_transparent(qv_color(1, 1, 0, 1));
  } else if (highlighted) {
    render_opengl_transparent(qv_color(1, 0, 0, 1));
  }
}

void qvi_wall::render_opengl_transparent(const qv_color& color) {
  glDisable(GL_LIGHTING);
  glDisable(GL_DEPTH_TEST);

  glColor4f(color.r, color.g, color.b, 0.5f);
  glLineWidth(1.0f);
  draw_contour_raw();

  const qv_3dvector center = get_bounding_box().get_center();
  const qv_3dvector tip = center + get_normal();
  if (center.is_finite() && tip.is_finite()) {
    glBegin(GL_LINES);
    glVertex3fv(&center.x);
    glVertex3fv(&tip.x);
    glEnd();
  }

  glColor4f(color.r, color.g, color.b, 0.2f);
  glLineWidth(1.0f);
  draw_face_raw();

  glEnable(GL_LIGHTING);
  glEnable(GL_DEPTH_TEST);
}

qv_list<qvi_polygon*> qvi_wall::get_drawn_faces() const {
  qv_list<qvi_polygon*> faces;
  const auto append_first_of = [&faces](qvi_polygon* pierced, qvi_polygon* plain) {
    if (pierced != nullptr || plain != nullptr) faces.append(pierced != nullptr ? pierced : plain);
  };
  append_first_of(get_pierced_face(), get_face());
  if (!faces.is_empty()) return faces;
  append_first_of(get_pierced_face_0(), get_face_0());
  append_first_of(get_pierced_face_1(), get_face_1());
  return faces;
}

void qvi_wall::draw_contour_raw() {
  for (qvi_polygon* face : get_drawn_faces()) face->render_opengl_contour_raw();
}

void qvi_wall::draw_face_raw() {
  for (qvi_polygon* face : get_drawn_faces()) face->render_opengl_raw();
}

}  // namespace qv
