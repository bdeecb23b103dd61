#include "bim/usages/qvi_usage_heating_cooling.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_usage_heating_cooling)

}  // namespace qv
