#include "bim/materials/qvi_opaque.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_opaque)

float qvi_opaque::get_U(float) {
  return get_conductivity() / get_thickness();
}

float qvi_opaque::get_solar_factor() {
  return 0.0f;
}

float qvi_opaque::get_visible_transmittance() {
  return 0.0f;
}

}  // namespace qv
