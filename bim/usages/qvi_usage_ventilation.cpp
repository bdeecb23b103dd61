#include "bim/usages/qvi_usage_ventilation.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_usage_ventilation)

qv_list<qvi_zone*> qvi_usage_ventilation::get_zones() const {
  return find_zones("usage_ventilation");
}

}  // namespace qv
