#include "bim/qv_load_bim_items.h"

#include <new>
#include <vector>

#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_opening_composition.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/imported/qvi_bim_custom_object.h"
#include "bim/imported/qvi_bim_object.h"
#include "bim/imported/qvi_bim_polygon.h"
#include "bim/imported/qvi_bim_property.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_glass.h"
#include "bim/materials/qvi_glazing_interlayer.h"
#include "bim/materials/qvi_glazing_pv.h"
#include "bim/materials/qvi_limit_condition.h"
#include "bim/materials/qvi_material.h"
#include "bim/materials/qvi_material_mix.h"
#include "bim/materials/qvi_matter.h"
#include "bim/materials/qvi_opaque.h"
#include "bim/materials/qvi_opening_shader.h"
#include "bim/project/qvi_bim_configuration.h"
#include "bim/project/qvi_bim_root.h"
#include "bim/usages/qvi_usage.h"
#include "bim/usages/qvi_usage_heating_cooling.h"
#include "bim/usages/qvi_usage_internal_gains.h"
#include "bim/usages/qvi_usage_lighting.h"
#include "bim/usages/qvi_usage_ventilation.h"

namespace {

// Within reach until the process ends, so that a leak checker counts none of them as lost.
void keep(qv::qv_item* instance) {
  try {
    static auto* instances = new std::vector<qv::qv_item*>;
    instances->push_back(instance);
  } catch (const std::bad_alloc&) {
    // Memory is short: the instance lives on all the same.
  }
}

template <class... T>
void construct_in_order() {
  (keep(qv::qv_new_item<T>()), ...);
}

}  // namespace

extern "C" void qv_load_bim_items() {
  using namespace qv;
  // The order of the host's type records. Coverings and piercings are not among them: their types
  // become known when the first of them is made.
  construct_in_order<qvi_bim_configuration, qvi_bim_root, qvi_bim_property, qvi_bim_object,
                     qvi_bim_custom_object, qvi_bim_polygon, qvi_composition, qvi_matter,
                     qvi_material, qvi_material_mix, qvi_wall, qvi_glazing, qvi_glazing_gaz,
                     qvi_glazing_glass, qvi_glazing_interlayer, qvi_glazing_pv, qvi_opaque,
                     qvi_opening, qvi_opening_composition, qvi_opening_shader, qvi_campus,
                     qvi_building, qvi_zone, qvi_space, qvi_limit_condition, qvi_connexion,
                     qvi_usage, qvi_usage_heating_cooling, qvi_usage_ventilation,
                     qvi_usage_lighting, qvi_usage_internal_gains>();
  qv_item_type::optimize_search();
}
