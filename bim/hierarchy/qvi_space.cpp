#include "bim/hierarchy/qvi_space.h"

namespace qv {

QV_ITEM_CLASS_COPYING(qvi_space)

qvi_space::qvi_space() {
  set_outside(false);
}

}  // namespace qv
