#include "bim/materials/qvi_material_mix.h"

#include <algorithm>

#include "core/items/qv_scene.h"
#include "utilities/qv_date.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_material_mix)

void qvi_material_mix::precompute() {
  qv_item::precompute();
  if (is_up_to_date()) return;

  const qv_list<float> ratios = normalise_ratios();
  const qv_list<qvi_material*> materials = get_materials();
  float conductivity = 0.0f;
  float density = 0.0f;
  float specific_heat = 0.0f;
  float reflexion[qv_spectrum_count] = {};
  const int count = std::min(materials.get_count(), ratios.get_count());
  for (int i = 0; i < count; ++i) {
    if (materials[i] == nullptr) continue;
    conductivity += ratios[i] * materials[i]->get_conductivity();
    density += ratios[i] * materials[i]->get_density();
    specific_heat += ratios[i] * materials[i]->get_specific_heat();
    for (int s = 0; s < qv_spectrum_count; ++s) {
      reflexion[s] += ratios[i] * materials[i]->get_diffuse_reflexion(static_cast<qv_spectrum>(s));
    }
  }

  set_conductivity(conductivity);
  set_resistance(get_thickness() / conductivity);
  set_density(density);
  set_specific_heat(specific_heat);
  for (qv_spectrum spectrum : {qv_spectrum::thermal, qv_spectrum::solar, qv_spectrum::visible}) {
    set_diffuse_reflexion(reflexion[static_cast<int>(spectrum)], spectrum);
  }
  computed_date_ = qv_get_date();
}

bool qvi_material_mix::is_up_to_date() const {
  if (get_scene() != nullptr && computed_date_ >= get_scene()->get_date()) return true;
  if (computed_date_ < get_date()) return false;
  const qv_list<qvi_material*> materials = get_materials();
  return std::none_of(materials.begin(), materials.end(), [this](const qvi_material* material) {
    return material != nullptr && material->get_date() > computed_date_;
  });
}

qv_list<float> qvi_material_mix::normalise_ratios() {
  qv_list<float> ratios = get_materials_ratios();
  float sum = 0.0f;
  for (float ratio : ratios) sum += ratio;
  for (float& ratio : ratios) ratio /= sum;
  set_materials_ratios(ratios);
  return ratios;
}

}  // namespace qv
