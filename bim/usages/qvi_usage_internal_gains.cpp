#include "bim/usages/qvi_usage_internal_gains.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_usage_internal_gains)

qv_list<qvi_zone*> qvi_usage_internal_gains::get_zones() const {
  return find_zones("usage_internal_gains");
}

qv_list<qvi_space*> qvi_usage_internal_gains::get_spaces() const {
  return find_spaces("usage_internal_gains");
}

}  // namespace qv
