#include "bim/usages/qvi_usage.h"

#include <algorithm>

#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "core/items/qv_scene.h"
#include "core/light/qvi_schedule.h"
#include "utilities/qv_log.h"

namespace qv {

namespace {

template <class T>
qv_list<T*> find_users(const qvi_usage* usage, const char* type_name,
                       const std::string& param_name) {
  qv_list<T*> users;
  if (usage->get_scene() == nullptr) return users;
  for (qv_item* user : usage->get_scene()->get_referrers(type_name, param_name, usage)) {
    users.append(static_cast<T*>(user));
  }
  return users;
}

}  // namespace

QV_ITEM_CLASS_IMPLEMENTATION(qvi_usage)

qv_list<qvi_zone*> qvi_usage::get_zones() const {
  qv_log("couting zones in qvi_usage::get_zones...");
  return {};
}

qv_list<qvi_space*> qvi_usage::get_spaces() const {
  return {};
}

qv_list<qvi_zone*> qvi_usage::find_zones(const std::string& param_name) const {
  return find_users<qvi_zone>(this, "zone", param_name);
}

qv_list<qvi_space*> qvi_usage::find_spaces(const std::string& param_name) const {
  return find_users<qvi_space>(this, "space", param_name);
}

qv_list<qvi_usage*> qvi_usage::get_usages(qvi_schedule* schedule) {
  // The parameters through which each kind of usage refers to a schedule, in the order of the
  // result.
  struct kind {
    const char* type_name;
    std::initializer_list<const char*> params;
  };
  static const kind kinds[] = {
      {"usage_heating_cooling", {"heating_schedule", "cooling_schedule"}},
      {"usage_internal_gains", {"equipment_schedule", "occupation_schedule"}},
      {"usage_lighting", {"schedule"}},
      {"usage_ventilation", {"schedule"}},
  };

  qv_list<qvi_usage*> usages;
  qv_scene* const scene = schedule->get_scene();
  if (scene == nullptr) return usages;
  for (const kind& of_kind : kinds) {
    for (qv_item* usage : scene->get_items(of_kind.type_name)) {
      const bool refers = std::any_of(of_kind.params.begin(), of_kind.params.end(),
                                      [usage, schedule](const char* name) {
                                        return usage->find_param(name)->get_item() == schedule;
                                      });
      if (refers) usages.append(static_cast<qvi_usage*>(usage));
    }
  }
  return usages;
}

}  // namespace qv
