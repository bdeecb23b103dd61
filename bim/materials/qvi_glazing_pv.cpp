#include "bim/materials/qvi_glazing_pv.h"

namespace qv {

QV_ITEM_CLASS_COPYING(qvi_glazing_pv)

qvi_glazing_pv::qvi_glazing_pv() {
  set_thickness(0.001f);
  set_conductivity(999.0f);
  set_solar_transmittance(1.0f);
  set_solar_reflectance_front(0.0f);
  set_solar_reflectance_back(0.0f);
  set_visible_transmittance(1.0f);
  set_visible_reflectance_front(0.0f);
  set_visible_reflectance_back(0.0f);
  set_thermal_transmittance(1.0f);
  set_thermal_emissivity_front(0.0f);
  set_thermal_emissivity_back(0.0f);
  set_name("PV layer");
}

}  // namespace qv
