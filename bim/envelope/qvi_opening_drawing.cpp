#include <GL/gl.h>

#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_opening_composition.h"
#include "core/shapes/qvi_mesh.h"

namespace qv {

namespace {

constexpr float highlight_alpha = 0.2f;

}  // namespace

bool qvi_opening::is_highlighted_by_mouse() const {
  const qvi_opening_composition* const composition = get_composition();
  return is_mouseover() || (composition != nullptr && composition->is_mouseover());
}

bool qvi_opening::is_highlighted_by_selection() const {
  const qvi_opening_composition* const composition = get_composition();
  return is_selected() || (composition != nullptr && composition->is_selected());
}

void qvi_opening::render_opengl(bool selection) {
  const bool hovered = is_highlighted_by_mouse();
  if (!selection || (!hovered && !is_highlighted_by_selection())) {
    qv_item::render_opengl(selection);
    return;
  }
  glDisable(GL_LIGHTING);
  glDisable(GL_DEPTH_TEST);
  glColor4f(1.0f, hovered ? 1.0f : 0.0f, 0.0f, highlight_alpha);
  render_opengl_raw();
  glEnable(GL_DEPTH_TEST);
  glEnable(GL_LIGHTING);
}

void qvi_opening::render_opengl_raw() {
  for (qvi_mesh* mesh : qv_collect<qvi_mesh>(this, "mesh")) mesh->render_opengl_raw();
}

}  // namespace qv
