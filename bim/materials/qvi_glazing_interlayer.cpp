#include "bim/materials/qvi_glazing_interlayer.h"

namespace qv {

QV_ITEM_CLASS_COPYING(qvi_glazing_interlayer)

qvi_glazing_interlayer::qvi_glazing_interlayer() {
  set_thickness(0.00038f);
  set_solar_transmittance(0.85f);
  set_solar_reflectance_front(0.0f);
  set_solar_reflectance_back(0.0f);
  set_visible_transmittance(0.92f);
  set_visible_reflectance_front(0.0f);
  set_visible_reflectance_back(0.0f);
  set_thermal_transmittance(0.9f);
  set_thermal_emissivity_front(0.0f);
  set_thermal_emissivity_back(0.0f);
  set_name("Interlayer");
}

}  // namespace qv
