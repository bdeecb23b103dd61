#include "core/light/qvi_sun.h"

#include <algorithm>

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_sun)

int qvi_sun::get_nb_values() const {
  return std::min({get_direct_irradiation().get_count(), get_diffuse_irradiation().get_count(),
                   get_directions().get_count()});
}

}  // namespace qv
