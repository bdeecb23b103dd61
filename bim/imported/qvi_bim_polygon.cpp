#include "bim/imported/qvi_bim_polygon.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_bim_polygon)

}  // namespace qv
