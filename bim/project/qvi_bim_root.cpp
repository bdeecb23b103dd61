#include "bim/project/qvi_bim_root.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_bim_root)

}  // namespace qv
