#include "core/light/qvi_schedule.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_schedule)

}  // namespace qv
