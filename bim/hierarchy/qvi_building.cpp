#include "bim/hierarchy/qvi_building.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_building)

}  // namespace qv
