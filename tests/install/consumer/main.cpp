#include <cstdio>

#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_matter.h"
#include "bim/qv_load_bim_items.h"
#include "core/items/qv_scene.h"

// A wall of 20 cm of concrete and 10 cm of insulation: 0.2 / 2 + 0.1 / 0.04 = 2.6 m²·K/W.
int main() {
  qv_load_bim_items();
  qv::qv_scene scene;

  auto* concrete = new qv::qvi_matter;
  concrete->set_conductivity(2.0f);
  scene.add_child(concrete, -1);
  auto* insulant = new qv::qvi_matter;
  insulant->set_conductivity(0.04f);
  scene.add_child(insulant, -1);

  auto* composition = new qv::qvi_composition;
  composition->set_layers({concrete, insulant});
  composition->set_layer_thicknesses({0.2f, 0.1f});
  scene.add_child(composition, -1);

  scene.precompute();
  std::printf("U = %.3f W/(m²·K)\n", static_cast<double>(composition->get_U()));
  const bool right = composition->get_U() > 0.3845f && composition->get_U() < 0.3847f;
  return right && composition->has_type("composition") ? 0 : 1;
}
