#include "bim/imported/qvi_bim_custom_object.h"

#include "core/shapes/qvi_mesh_instance.h"
#include "core/shapes/qvi_polygon.h"
#include "core/shapes/qvi_solid.h"
#include "utilities/qv_date.h"
#include "utilities/qv_solid.h"

namespace qv {

namespace {

/// The polygon that `base` is or shows, and its placement; null when it is something else.
qvi_polygon* resolve_base(qvi_mesh* base, qv_matrix& placement) {
  if (base->has_type("mesh_instance")) {
    const auto* const instance = static_cast<const qvi_mesh_instance*>(base);
    placement = instance->get_matrix();
    base = instance->get_mesh();
  }
  return base != nullptr && base->has_type("polygon") ? static_cast<qvi_polygon*>(base) : nullptr;
}

}  // namespace

QV_ITEM_CLASS_IMPLEMENTATION(qvi_bim_custom_object)

void qvi_bim_custom_object::precompute() {
  qvi_mesh* const base = get_base_polygon();
  if (base == nullptr) return;
  if (*date_ != 0 && *date_ >= get_local_date() && *date_ >= base->get_local_date()) return;
  qv_matrix placement;
  qvi_polygon* const polygon = resolve_base(base, placement);
  if (polygon == nullptr) return;

  // Before solids go: the base may hang below one of them.
  qv_polygon outline;
  polygon->fill_polygon(&outline);
  qv_solid extruded;
  extruded.extrusion(outline, outline.get_normal() * get_thickness());
  qvi_solid* const kept = keep_one_solid();
  kept->load_from_solid(&extruded);
  kept->matrix_transform(placement, false);
  *date_ = qv_get_date();
}

qvi_solid* qvi_bim_custom_object::keep_one_solid() {
  const qv_list<qvi_solid*> solids = qv_collect<qvi_solid>(this, "solid");
  // From the last one, since a solid may lie below another one.
  for (int i = solids.get_count() - 1; i > 0; --i) destroy(solids[i]);
  if (!solids.is_empty()) return solids[0];

  auto* const solid = new qvi_solid;
  auto* const shader = new qvi_shader;
  add_child(solid, -1);
  solid->set_front_shader(shader);
  solid->set_back_shader(shader);
  add_child(shader, -1);
  return solid;
}

}  // namespace qv
