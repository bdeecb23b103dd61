#include "bim/envelope/qvi_connexion.h"

#include <GL/gl.h>

#include "bim/envelope/qv_junction_rules.h"
#include "core/items/qv_scene.h"
#include "utilities/qv_date.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_connexion)

bool qvi_connexion::is_up_to_date() const {
  const unsigned int date = record_->date;
  const qv_scene* const scene = get_scene();
  return date != 0 && get_point_0_date() <= date && get_point_1_date() <= date &&
         get_walls_date() <= date && scene->get_last_change("limit_condition", "") <= date &&
         scene->get_last_change("wall", "") <= date;
}

void qvi_connexion::precompute() {
  qv_item::precompute();
  if (get_scene() == nullptr || is_up_to_date()) return;

  record& found = *record_;
  found.direction = get_point_1() - get_point_0();
  found.length = found.direction.normalize();

  const junction met(get_walls(), get_wall_directions());
  found.vertical = met.is_vertical();
  found.lossy = met.is_lossy();
  set_connexion_type(met.get_type());
  found.date = qv_get_date();
}

void qvi_connexion::render_opengl(bool) {}

void qvi_connexion::render_opengl_raw() {
  const qv_3dvector ends[2] = {get_point_0(), get_point_1()};
  if (!ends[0].is_finite() || !ends[1].is_finite()) return;
  glBegin(GL_LINES);
  for (const qv_3dvector& end : ends) glVertex3fv(&end.x);
  glEnd();
}

}  // namespace qv
