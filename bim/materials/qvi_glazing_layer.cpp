#include "bim/materials/qvi_glazing_layer.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_glazing_layer)

}  // namespace qv
