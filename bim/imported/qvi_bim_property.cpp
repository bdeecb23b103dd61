#include "bim/imported/qvi_bim_property.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_bim_property)

}  // namespace qv
