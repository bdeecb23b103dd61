#include "bim/imported/qvi_bim_piercing.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_bim_piercing)

}  // namespace qv
