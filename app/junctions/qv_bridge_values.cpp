#include "app/junctions/qv_bridge_values.h"

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/materials/qvi_material.h"
#include "core/items/qv_scene.h"

namespace qv {

namespace {

using insulation = qvi_composition::composition_insulation;

constexpr float largest_insulator_conductivity = 0.065f;  // W/(m·K)
constexpr float least_insulator_resistance = 0.5f;        // m²·K/W
constexpr float least_structure_mass = 50.0f;             // kg/m²
constexpr float least_monolithic_resistance = 1.0f;       // m²·K/W

struct layer_facts {
  float resistance = 0;  // m²·K/W
  float mass = 0;        // kg/m²
  bool insulates = false;
};

layer_facts facts_of(qvi_composition& composition, int index) {
  layer_facts facts;
  const qvi_matter* matter = composition.get_layers()[index];
  if (matter == nullptr) return facts;
  const float thickness = composition.get_layer_thickness(index);
  const float conductivity = matter->get_conductivity();
  if (matter->has_type("material")) {
    facts.resistance = static_cast<const qvi_material*>(matter)->get_resistance();
  } else if (conductivity > 0) {
    facts.resistance = thickness / conductivity;
  }
  facts.mass = thickness * matter->get_density();
  // A product may be known by its resistance only.
  const float effective = conductivity > 0       ? conductivity
                          : facts.resistance > 0 ? thickness / facts.resistance
                                                 : 0;
  facts.insulates = effective > 0 && effective <= largest_insulator_conductivity &&
                    facts.resistance >= least_insulator_resistance;
  return facts;
}

bool is_facade(const qvi_wall& wall) {
  return wall.get_contact_type() == qvi_wall::contact_type::outer_wall;
}

bool is_lossy(const qvi_wall& wall) {
  return (wall.get_space_0() == nullptr) != (wall.get_space_1() == nullptr);
}

}  // namespace

insulation qv_find_insulation(qvi_composition& composition) {
  const int count = composition.get_layers().get_count();
  int structure = -1;
  float heaviest = 0;
  for (int i = 0; i < count; ++i) {
    const layer_facts facts = facts_of(composition, i);
    if (facts.insulates || facts.mass <= heaviest) continue;
    structure = i;
    heaviest = facts.mass;
  }
  bool outside = false;
  bool inside = false;
  for (int i = 0; i < count; ++i) {
    if (!facts_of(composition, i).insulates) continue;
    outside = outside || i < structure;
    inside = inside || i > structure;
  }
  if (!outside && !inside) {
    const bool monolithic = structure >= 0 && facts_of(composition, structure).resistance >=
                                                  least_monolithic_resistance;
    return monolithic ? insulation::integrated : insulation::none;
  }
  if ((outside && inside) || heaviest < least_structure_mass) return insulation::integrated;
  return outside ? insulation::exterior : insulation::interior;
}

void qv_place_insulation(qv_scene& scene) {
  for (qv_item* item : scene.get_items("composition")) {
    auto& composition = static_cast<qvi_composition&>(*item);
    if (composition.get_insulation() != insulation::none) continue;
    composition.set_insulation(qv_find_insulation(composition));
  }
}

insulation qv_insulation_at(const qvi_connexion& connexion) {
  const qvi_wall* chosen = nullptr;
  for (const qvi_wall* wall : connexion.get_walls()) {
    if (wall == nullptr || !is_lossy(*wall)) continue;
    if (is_facade(*wall)) {
      chosen = wall;
      break;
    }
    if (chosen == nullptr) chosen = wall;
  }
  const qvi_composition* composition = chosen == nullptr ? nullptr : chosen->get_composition();
  return composition == nullptr ? insulation::none : composition->get_insulation();
}

std::unordered_set<const qv_item*> qv_assign_psi(qv_scene& scene,
                                                 const qv_psi_catalogue& catalogue) {
  std::unordered_set<const qv_item*> without;
  for (qv_item* item : scene.get_items("connexion")) {
    auto& connexion = static_cast<qvi_connexion&>(*item);
    const auto psi = catalogue.find(connexion.get_connexion_type(), qv_insulation_at(connexion));
    if (!psi.has_value()) without.insert(item);
    connexion.set_psi(psi.value_or(0.0f));
  }
  return without;
}

}  // namespace qv
