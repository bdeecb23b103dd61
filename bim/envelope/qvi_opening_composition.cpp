#include "bim/envelope/qvi_opening_composition.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_opening_composition)

}  // namespace qv
