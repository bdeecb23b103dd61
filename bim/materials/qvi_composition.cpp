#include "bim/materials/qvi_composition.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_composition)

}  // namespace qv
