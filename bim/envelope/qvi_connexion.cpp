#include "bim/envelope/qvi_connexion.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_connexion)

}  // namespace qv
