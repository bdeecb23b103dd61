#include "bim/materials/qvi_limit_condition.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_limit_condition)

void qvi_limit_condition::set_typology(int value) {
  set_typology(static_cast<limit_condition_typology>(value));
}

}  // namespace qv
