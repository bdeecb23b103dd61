#include "bim/usages/qvi_usage.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_usage)

}  // namespace qv
