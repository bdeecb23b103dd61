#include "bim/project/qvi_bim_configuration.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_bim_configuration)

}  // namespace qv
