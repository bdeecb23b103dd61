#include "bim/envelope/qvi_wall.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_wall)

}  // namespace qv
