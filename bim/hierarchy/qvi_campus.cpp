#include "bim/hierarchy/qvi_campus.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_campus)

}  // namespace qv
