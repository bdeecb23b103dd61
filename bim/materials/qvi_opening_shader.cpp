#include "bim/materials/qvi_opening_shader.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_opening_shader)

float qvi_opening_shader::get_U(float) {
  return 0.0f;
}

float qvi_opening_shader::get_solar_factor() {
  return 0.0f;
}

float qvi_opening_shader::get_visible_transmittance() {
  return 0.0f;
}

}  // namespace qv
