#include "bim/materials/qvi_material_mix.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_material_mix)

}  // namespace qv
