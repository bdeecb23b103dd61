#include "bim/usages/qvi_usage_lighting.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_usage_lighting)

}  // namespace qv
