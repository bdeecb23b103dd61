#include "tests/support/qv_probe_item.h"

namespace qv_test {

QV_ITEM_CLASS_IMPLEMENTATION(probe_item)
QV_ITEM_CLASS_IMPLEMENTATION(derived_probe_item)

}  // namespace qv_test
