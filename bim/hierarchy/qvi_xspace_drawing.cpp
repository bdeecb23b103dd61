#include <GL/gl.h>

#include "bim/hierarchy/qvi_xspace.h"
#include "core/shapes/qvi_mesh.h"

namespace qv {

void qvi_xspace::render_opengl(bool draw) {
  if (!draw) return;
  glDisable(GL_LIGHTING);
  glDisable(GL_DEPTH_TEST);
  // Deliberately left disabled: the highlights of the items drawn next rely on it.
  if (!is_mouseover() && !is_selected()) return;

  const qv_color color = is_mouseover() ? qv_color(1, 1, 0, 1) : qv_color(1, 0, 0, 1);
  const qv_list<qvi_mesh*> meshes = qv_collect<qvi_mesh>(this, "mesh");

  glColor4f(color.r, color.g, color.b, 0.5f);
  glLineWidth(1.0f);
  for (qvi_mesh* mesh : meshes) mesh->render_opengl_contour_raw();

  glColor4f(color.r, color.g, color.b, 0.2f);
  for (qvi_mesh* mesh : meshes) mesh->render_opengl_raw();

  glEnable(GL_LIGHTING);
  glEnable(GL_DEPTH_TEST);
}

}  // namespace qv
