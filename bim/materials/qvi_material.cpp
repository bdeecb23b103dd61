#include "bim/materials/qvi_material.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_material)

}  // namespace qv
