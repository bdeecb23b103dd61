#include "bim/materials/qvi_limit_condition.h"

#include <algorithm>

#include "bim/envelope/qvi_wall.h"
#include "core/items/qv_scene.h"

namespace qv {

namespace {

// m; a lower floor that lies less than this above the lowest one rests on the ground too.
constexpr float ground_storey_height = 1.8f;
// m; above every building.
constexpr float unknown_height = 1e8f;

using limit_condition_typology = qvi_limit_condition::limit_condition_typology;

/// The first soil condition of the scene, made when there is none; null when memory is short.
qvi_limit_condition* get_soil(qv_scene* scene) {
  for (qv_item* item : scene->get_items("limit_condition")) {
    auto* const condition = static_cast<qvi_limit_condition*>(item);
    if (condition->get_typology() == limit_condition_typology::soil) return condition;
  }
  auto* const soil = qv_new_item<qvi_limit_condition>();
  if (soil == nullptr) return nullptr;
  soil->set_name("Soil");
  soil->set_typology(limit_condition_typology::soil);
  scene->add_child(soil, -1);
  return soil;
}

bool is_lower_floor(const qvi_wall* wall) {
  return wall->get_contact_type() == qvi_wall::contact_type::lower_floor;
}

}  // namespace

QV_ITEM_CLASS_IMPLEMENTATION(qvi_limit_condition)

void qvi_limit_condition::set_typology(int value) {
  set_typology(static_cast<limit_condition_typology>(value));
}

void qvi_limit_condition::default_limit_conditions(qv_scene* scene) {
  if (scene == nullptr) return;
  qvi_limit_condition* const soil = get_soil(scene);
  const qv_list<qv_item*>& walls = scene->get_items("wall");

  float lowest = unknown_height;
  for (qv_item* item : walls) {
    auto* const wall = static_cast<qvi_wall*>(item);
    if (!is_lower_floor(wall)) {
      wall->set_limit_condition(nullptr);
    } else if (const qv_box& box = wall->get_bounding_box(); !box.is_empty()) {
      lowest = std::min(lowest, box.get_min().z);
    }
  }
  for (qv_item* item : walls) {
    auto* const wall = static_cast<qvi_wall*>(item);
    if (!is_lower_floor(wall)) continue;
    const qv_box& box = wall->get_bounding_box();
    const bool on_ground = !box.is_empty() && lowest + ground_storey_height > box.get_min().z;
    wall->set_limit_condition(on_ground ? soil : nullptr);
  }
  scene->precompute();
}

}  // namespace qv
