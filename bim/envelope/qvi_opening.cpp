#include "bim/envelope/qvi_opening.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_opening)

}  // namespace qv
