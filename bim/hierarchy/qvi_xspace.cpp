#include "bim/hierarchy/qvi_xspace.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_xspace)

}  // namespace qv
