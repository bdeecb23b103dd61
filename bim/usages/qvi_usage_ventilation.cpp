#include "bim/usages/qvi_usage_ventilation.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_usage_ventilation)

}  // namespace qv
