#include "bim/materials/qvi_glazing_glass.h"

#include <algorithm>

#include "bim/materials/qv_glazing_physics.h"

namespace qv {

namespace {

// What a data sheet does not tell of its pane.
constexpr float assumed_thermal_transmittance = 0.11f;
constexpr float assumed_emissivity = 0.89f;
constexpr float assumed_reflectance = 0.2f;
constexpr float assumed_thickness = 0.006f;         // m
constexpr float smallest_pane_resistance = 0.001f;  // m²·K/W

}  // namespace

QV_ITEM_CLASS_COPYING(qvi_glazing_glass)

qvi_glazing_glass::qvi_glazing_glass() {
  set_thickness(0.005f);
}

void qvi_glazing_glass::build_from_global_data(float U, float g, float light_transmittance) {
  set_thermal_transmittance(assumed_thermal_transmittance);
  set_thermal_emissivity_front(assumed_emissivity);
  set_thermal_emissivity_back(assumed_emissivity);
  const float h = inner_surface_coefficient(get_thermal_emissivity_back());

  set_solar_reflectance_front(assumed_reflectance);
  set_solar_reflectance_back(assumed_reflectance);
  const float q = (1.0f - get_solar_reflectance_front()) * h / (h + outer_surface_coefficient);
  set_solar_transmittance((g - q) / (1.0f - h / (h + outer_surface_coefficient)));

  set_visible_reflectance_front(assumed_reflectance);
  set_visible_reflectance_back(assumed_reflectance);
  set_visible_transmittance(light_transmittance);

  set_thickness(assumed_thickness);
  const float resistance =
      std::max(1.0f / U - outer_surface_resistance - 1.0f / h, smallest_pane_resistance);
  set_conductivity(get_thickness() / resistance);
}

}  // namespace qv
