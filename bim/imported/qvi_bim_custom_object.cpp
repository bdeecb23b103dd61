#include "bim/imported/qvi_bim_custom_object.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_bim_custom_object)

}  // namespace qv
