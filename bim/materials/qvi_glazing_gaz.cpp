#include "bim/materials/qvi_glazing_gaz.h"

namespace qv {

QV_ITEM_CLASS_COPYING(qvi_glazing_gaz)

qvi_glazing_gaz::qvi_glazing_gaz() {
  set_diffuse_color(qv_color(1.0f, 1.0f, 1.0f, 0.0f));
}

}  // namespace qv
