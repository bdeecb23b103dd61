#include "bim/materials/qvi_glazing_glass.h"

namespace qv {

QV_ITEM_CLASS_COPYING(qvi_glazing_glass)

qvi_glazing_glass::qvi_glazing_glass() {
  set_thickness(0.005f);
}

}  // namespace qv
