#include <algorithm>
#include <unordered_map>
#include <utility>

#include "bim/envelope/qvi_wall.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_material.h"
#include "bim/project/qvi_bim_root.h"
#include "core/items/qv_scene.h"

namespace qv {

namespace {

using material_typology = qvi_matter::material_typology;

constexpr float insulator_below = 0.01f;          // W/(m·K)
constexpr float heavy_structure_above = 2000.0f;  // kg/m³

/// The first composition with a material among its layers, and the material's first place there.
using first_uses = std::unordered_map<const qv_item*, std::pair<int, int>>;  // place, layer count

first_uses find_first_uses(const qv_list<qvi_composition*>& compositions) {
  first_uses uses;
  for (const qvi_composition* composition : compositions) {
    const qv_list<qvi_matter*> layers = composition->get_layers();
    for (int i = 0; i < layers.get_count(); ++i) {
      uses.emplace(layers[i], std::pair(i, layers.get_count()));
    }
  }
  return uses;
}

material_typology guess_typology(const qvi_material& material, const first_uses& uses) {
  if (material.get_conductivity() < insulator_below) return material_typology::insulator;
  if (material.get_density() > heavy_structure_above) return material_typology::heavy_structure;
  if (material.get_density() < heavy_structure_above) {
    const auto use = uses.find(&material);
    if (use == uses.end()) return material_typology::other;
    const auto [place, layer_count] = use->second;
    if (place == 0) return material_typology::facing;
    if (place == layer_count - 1) return material_typology::inner_facing;
  }
  return material_typology::other;
}

bool is_below(const qv_item* item, const qv_item* root) {
  while (item != nullptr && item != root) item = item->get_parent();
  return item != nullptr;
}

/// The compositions below `root`, depth first. In a scene they come from its index: reversing one
/// composition does not walk over the whole model, so that a check of many walls stays linear.
qv_list<qvi_composition*> collect_compositions(const qvi_bim_root* root) {
  qv_scene* const scene = root->get_scene();
  if (scene == nullptr) return qv_collect<qvi_composition>(root, "composition");
  qv_list<qvi_composition*> compositions;
  for (qv_item* item : scene->get_items("composition")) {
    if (is_below(item, root)) compositions.append(static_cast<qvi_composition*>(item));
  }
  return compositions;
}

}  // namespace

qvi_composition* qvi_bim_root::find_reverse_composition(qvi_composition* composition, bool create) {
  qv_list<qvi_matter*> reversed = composition->get_layers();
  std::reverse(reversed.begin(), reversed.end());
  for (qvi_composition* candidate : collect_compositions(this)) {
    if (candidate->get_layers() == reversed) return candidate;
  }
  if (!create) return nullptr;

  auto* const made = static_cast<qvi_composition*>(composition->full_copy());
  // The thicknesses keep the order of the original, deliberately: materials, which bring their own,
  // set them right at the next precompute.
  made->set_layers(reversed);
  std::string name = composition->get_name();
  if (!name.empty() && name.back() == '-') {
    name.back() = '0';
  } else {
    name += '-';
  }
  made->set_name(name);
  add_child(made, -1);
  return made;
}

void qvi_bim_root::set_auto_compositions_typology() {
  const qv_list<qvi_composition*> compositions = qv_collect<qvi_composition>(this, "composition");
  const first_uses uses = find_first_uses(compositions);
  for (qvi_material* material : qv_collect<qvi_material>(this, "material")) {
    if (material->get_typology() == material_typology::other) {
      material->set_typology(guess_typology(*material, uses));
    }
  }

  constexpr int wall_type_count = 3;
  struct usage {
    int by_wall_type[wall_type_count] = {0, 0, 0};
  };
  std::unordered_map<const qv_item*, usage> usages;
  for (const qvi_wall* wall : qv_collect<qvi_wall>(this, "wall")) {
    const int type = static_cast<int>(wall->get_wall_type());
    if (type >= 0 && type < wall_type_count) ++usages[wall->get_composition()].by_wall_type[type];
  }
  for (qvi_composition* composition : compositions) {
    const auto used = usages.find(composition);
    if (used == usages.end()) continue;
    const int* const counts = used->second.by_wall_type;
    const int winner =
        static_cast<int>(std::max_element(counts, counts + wall_type_count) - counts);
    composition->set_typology(static_cast<qvi_composition::composition_typology>(winner));
  }
}

}  // namespace qv
