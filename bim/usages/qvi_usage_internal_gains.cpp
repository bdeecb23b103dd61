#include "bim/usages/qvi_usage_internal_gains.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_usage_internal_gains)

}  // namespace qv
