#include "bim/usages/qvi_usage_heating_cooling.h"

#include "core/items/qv_scene.h"
#include "utilities/qv_log.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_usage_heating_cooling)

qv_list<qvi_zone*> qvi_usage_heating_cooling::get_zones() const {
  if (get_scene() != nullptr) qv_log("couting zones...");
  return find_zones("usage_heating_cooling");
}

}  // namespace qv
