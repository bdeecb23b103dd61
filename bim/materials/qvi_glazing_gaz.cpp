#include "bim/materials/qvi_glazing_gaz.h"

#include "bim/materials/qv_glazing_physics.h"
#include "utilities/qv_date.h"

namespace qv {

namespace {

constexpr int pure_gas_count = 5;

// At 10 °C, in the order of gaz_type. EN 673, table of gas properties.
constexpr gas_properties pure_gases[pure_gas_count] = {
    {0.02496f, 1.761e-5f, 1008.0f, 1.232f},  // air
    {0.01684f, 2.164e-5f, 519.0f, 1.699f},   // argon
    {0.009f, 2.4e-5f, 245.0f, 3.56f},        // krypton
    {0.0054f, 2.28e-5f, 340.0f, 5.897f},     // xenon
    {0.01275f, 1.459e-5f, 614.0f, 6.118f},   // sulphur hexafluoride
};

gas_properties mix(const qv_list<float>& fractions) {
  float parts[pure_gas_count];
  float sum = 0.0f;
  for (int i = 0; i < pure_gas_count; ++i) {
    parts[i] = i < fractions.get_count() ? fractions[i] : 0.0f;
    sum += parts[i];
  }
  if (sum == 0.0f) {
    for (float& part : parts) part = 0.0f;
    parts[0] = 1.0f;
  } else if (sum != 1.0f) {
    for (float& part : parts) part /= sum;
  }
  gas_properties mixture{0.0f, 0.0f, 0.0f, 0.0f};
  for (int i = 0; i < pure_gas_count; ++i) {
    mixture.conductivity += parts[i] * pure_gases[i].conductivity;
    mixture.viscosity += parts[i] * pure_gases[i].viscosity;
    mixture.specific_heat += parts[i] * pure_gases[i].specific_heat;
    mixture.density += parts[i] * pure_gases[i].density;
  }
  return mixture;
}

}  // namespace

QV_ITEM_CLASS_COPYING(qvi_glazing_gaz)

qvi_glazing_gaz::qvi_glazing_gaz() {
  set_diffuse_color(qv_color(1.0f, 1.0f, 1.0f, 0.0f));
}

void qvi_glazing_gaz::precompute() {
  qvi_glazing_layer::precompute();
  const gaz_type type = get_gaz_type();
  if (type == gaz_type::by_hand) return;
  if (computed_date_ != 0 && get_gaz_type_date() <= computed_date_ &&
      (type != gaz_type::other || get_gaz_mixing_date() <= computed_date_)) {
    return;
  }
  const int index = static_cast<int>(type);
  if (type != gaz_type::other && (index < 0 || index >= pure_gas_count)) return;

  const gas_properties gas = type == gaz_type::other ? mix(get_gaz_mixing()) : pure_gases[index];
  set_conductivity(gas.conductivity);
  set_viscosity(gas.viscosity);
  set_specific_heat(gas.specific_heat);
  set_volumic_mass(gas.density);
  computed_date_ = qv_get_date();
}

}  // namespace qv
