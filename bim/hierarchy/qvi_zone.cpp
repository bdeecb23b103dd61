#include "bim/hierarchy/qvi_zone.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_zone)

}  // namespace qv
