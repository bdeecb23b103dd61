#include "bim/usages/qvi_usage_lighting.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_usage_lighting)

qv_list<qvi_zone*> qvi_usage_lighting::get_zones() const {
  return find_zones("usage_lighting");
}

qv_list<qvi_space*> qvi_usage_lighting::get_spaces() const {
  return find_spaces("usage_lighting");
}

}  // namespace qv
