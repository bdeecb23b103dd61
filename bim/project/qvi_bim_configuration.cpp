#include "bim/project/qvi_bim_configuration.h"

#include <unordered_set>
#include <vector>

#include "bim/envelope/qvi_opening_composition.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/materials/qvi_composition.h"
#include "core/items/qv_scene.h"

namespace qv {

namespace {

// --- what the tables are about ---

const qvi_space* get_first_space(const qvi_wall* wall) {
  return wall == nullptr ? nullptr : wall->get_space_0();
}
const qvi_space* get_first_space(const qvi_opening* opening) {
  return get_first_space(opening->get_wall());
}
const qvi_space* get_first_space(const qvi_connexion* connexion) {
  const qv_list<qvi_wall*> walls = connexion->get_walls();
  return walls.is_empty() ? nullptr : get_first_space(walls[0]);
}

qvi_wall::contact_type get_key(const qvi_wall* wall) {
  return wall->get_contact_type();
}
qvi_opening::opening_type get_key(const qvi_opening* opening) {
  return opening->get_opening_type();
}

template <class Element>
qv_list<Element*> get_elements(qv_scene* scene, const char* type_name) {
  qv_list<Element*> elements;
  for (qv_item* item : scene->get_items(type_name)) elements.append(static_cast<Element*>(item));
  return elements;
}

template <class Element>
bool is_in(const Element* element, const qvi_building* building) {
  const qvi_space* const space = get_first_space(element);
  return space != nullptr && (building == nullptr || space->get_building() == building);
}

/// The elements of the scene whose building is one of `buildings`.
template <class Element>
qv_list<Element*> get_elements_of(qv_scene* scene, const char* type_name,
                                  const qv_list<qvi_building*>& buildings) {
  const std::unordered_set<const qvi_building*> wanted(buildings.begin(), buildings.end());
  qv_list<Element*> elements;
  for (Element* element : get_elements<Element>(scene, type_name)) {
    const qvi_space* const space = get_first_space(element);
    if (space != nullptr && wanted.contains(space->get_building())) elements.append(element);
  }
  return elements;
}

// --- the tables of compositions ---

/// For each key the choice on which all elements that made one agree.
template <class Key, class Composition>
struct choice_table {
  qv_list<Key> keys;
  qv_list<Composition*> choices;

  template <class Element>
  static choice_table learn(const qv_list<Element*>& elements, int key_count,
                            const qvi_building* building) {
    choice_table table;
    for (int key = 0; key < key_count; ++key) {
      table.keys.append(static_cast<Key>(key));
      table.choices.append(nullptr);
    }
    std::vector<bool> conflicting(static_cast<std::size_t>(key_count), false);
    for (const Element* element : elements) {
      if (!is_in(element, building)) continue;
      const int slot = static_cast<int>(get_key(element));
      Composition* const choice = element->get_composition();
      if (choice == nullptr || slot < 0 || slot >= key_count) continue;
      if (table.choices[slot] == nullptr) {
        table.choices[slot] = choice;
      } else if (table.choices[slot] != choice) {
        conflicting[static_cast<std::size_t>(slot)] = true;
      }
    }
    for (int slot = 0; slot < key_count; ++slot) {
      if (conflicting[static_cast<std::size_t>(slot)]) table.choices[slot] = nullptr;
    }
    return table;
  }

  template <class Element>
  void apply(qv_scene* scene, const qv_list<Element*>& elements, bool record) {
    for (Composition*& choice : choices) {
      choice = static_cast<Composition*>(scene->insert_without_duplication(choice, true, record));
    }
    for (Element* element : elements) {
      if (get_first_space(element) == nullptr) continue;
      const int slot = keys.find(get_key(element));
      if (slot < 0 || slot >= choices.get_count() || choices[slot] == nullptr) continue;
      if (record) scene->record_change(element, "composition");
      element->set_composition(choices[slot]);
    }
  }
};

using wall_table = choice_table<qvi_wall::contact_type, qvi_composition>;
using opening_table = choice_table<qvi_opening::opening_type, qvi_opening_composition>;

constexpr float no_psi = 0.0f;
constexpr float conflicting_psi = -1.0f;

}  // namespace

QV_ITEM_CLASS_IMPLEMENTATION(qvi_bim_configuration)

// --- learning ---

void qvi_bim_configuration::load_walls_from_scene(qv_scene* scene, qvi_building* building) {
  const auto table = wall_table::learn(get_elements<qvi_wall>(scene, "wall"),
                                       qvi_wall::get_contact_type_list().get_count(), building);
  set_contact_types(table.keys);
  set_wall_compositions(table.choices);
}

void qvi_bim_configuration::load_openings_from_scene(qv_scene* scene, qvi_building* building) {
  const auto table =
      opening_table::learn(get_elements<qvi_opening>(scene, "opening"),
                           qvi_opening::get_opening_type_list().get_count(), building);
  set_opening_types(table.keys);
  set_opening_compositions(table.choices);
}

void qvi_bim_configuration::load_connexions_from_scene(qv_scene* scene, qvi_building* building) {
  qv_list<qvi_connexion::connexion_type> keys;
  qv_list<float> values;
  for (int type = 1; type < qvi_connexion::get_connexion_type_list().get_count(); ++type) {
    keys.append(static_cast<qvi_connexion::connexion_type>(type));
    values.append(no_psi);
  }
  for (const qvi_connexion* connexion : get_elements<qvi_connexion>(scene, "connexion")) {
    if (!is_in(connexion, building)) continue;
    const int slot = static_cast<int>(connexion->get_connexion_type()) - 1;
    const float psi = connexion->get_psi();
    if (slot < 0 || slot >= values.get_count() || !(psi > 0.0f)) continue;
    float& value = values[slot];
    if (value == no_psi) {
      value = psi;
    } else if (value != psi) {
      value = conflicting_psi;
    }
  }
  for (float& value : values) {
    if (value < 0.0f) value = no_psi;
  }
  set_connexion_types(keys);
  set_connexion_values(values);
}

template <class Copied>
void qvi_bim_configuration::add_copies(qv_scene* scene, const char* type_name,
                                       const qv_list<Copied*>& excluded) {
  // A configuration may live in the very scene: what it adds is no original of further copies.
  const qv_list<qv_item*> originals = scene->get_items(type_name);
  for (qv_item* original : originals) {
    if (!excluded.contains(static_cast<Copied*>(original))) add_child(original->full_copy(), -1);
  }
}

void qvi_bim_configuration::load_compositions_from_scene(qv_scene* scene) {
  add_copies(scene, "composition", get_wall_compositions());
}

void qvi_bim_configuration::load_opening_compositions_from_scene(qv_scene* scene) {
  add_copies(scene, "opening_composition", get_opening_compositions());
}

void qvi_bim_configuration::load_schedules_from_scene(qv_scene* scene) {
  add_copies(scene, "schedule", qv_list<qv_item*>());
}

// --- applying ---

void qvi_bim_configuration::apply_walls_to_scene(qv_scene* scene,
                                                 const qv_list<qvi_building*>& buildings,
                                                 bool record) {
  apply_walls_to_scene(scene, get_elements_of<qvi_wall>(scene, "wall", buildings), record);
}

void qvi_bim_configuration::apply_walls_to_scene(qv_scene* scene, const qv_list<qvi_wall*>& walls,
                                                 bool record) {
  if (get_contact_types().is_empty()) return;
  wall_table{get_contact_types(), get_wall_compositions()}.apply(scene, walls, record);
}

void qvi_bim_configuration::apply_openings_to_scene(qv_scene* scene,
                                                    const qv_list<qvi_building*>& buildings,
                                                    bool record) {
  apply_openings_to_scene(scene, get_elements_of<qvi_opening>(scene, "opening", buildings), record);
}

void qvi_bim_configuration::apply_openings_to_scene(qv_scene* scene,
                                                    const qv_list<qvi_opening*>& openings,
                                                    bool record) {
  if (get_opening_types().is_empty()) return;
  opening_table{get_opening_types(), get_opening_compositions()}.apply(scene, openings, record);
}

void qvi_bim_configuration::apply_connexions_to_scene(qv_scene* scene,
                                                      const qv_list<qvi_building*>& buildings,
                                                      bool record) {
  const qv_list<qvi_connexion::connexion_type> keys = get_connexion_types();
  if (keys.is_empty()) return;
  const qv_list<float> values = get_connexion_values();
  for (qvi_connexion* connexion : get_elements_of<qvi_connexion>(scene, "connexion", buildings)) {
    const int slot = keys.find(connexion->get_connexion_type());
    if (slot < 0 || slot >= values.get_count()) continue;
    if (record) scene->record_change(connexion, "psi");
    connexion->set_psi(values[slot]);
  }
}

void qvi_bim_configuration::insert_items(qv_scene* scene, const char* type_name, bool record) {
  for (qv_item* item : collect(type_name)) {
    scene->insert_without_duplication(item, true, record);
  }
}

void qvi_bim_configuration::apply_compositions_to_scene(qv_scene* scene, bool record) {
  insert_items(scene, "composition", record);
}

void qvi_bim_configuration::apply_opening_compositions_to_scene(qv_scene* scene, bool record) {
  insert_items(scene, "opening_composition", record);
}

void qvi_bim_configuration::apply_schedules_to_scene(qv_scene* scene, bool record) {
  insert_items(scene, "schedule", record);
}

}  // namespace qv
