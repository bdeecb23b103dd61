#include "bim/envelope/qvi_covering.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_covering)

}  // namespace qv
