#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "core/items/qv_scene.h"
#include "utilities/qv_uuid.h"

namespace qv {

namespace {

// Destroys every item of the type. One below another of the type goes with that one.
void destroy_all(qv_scene* scene, const char* type_name) {
  qv_list<qv_item*> doomed;
  for (qv_item* item : scene->get_items(type_name)) {
    bool goes_with_other = false;
    for (const qv_item* above = item->get_parent(); above != nullptr; above = above->get_parent())
      goes_with_other = goes_with_other || above->has_type(type_name);
    if (!goes_with_other) doomed.append(item);
  }
  for (qv_item* item : doomed) {
    item->remove();
    qv_item::destroy(item);
  }
}

void assign(qvi_space* space, qvi_zone* zone, qvi_building* building) {
  space->set_zone(zone);
  space->set_building(building);
}

// The spaces connected with `start` by walls, breadth first; all of them, but for `start`, become
// visited and belong to `building` and `zone`.
std::vector<qvi_space*> walk_group(qvi_space* start, qvi_building* building, qvi_zone* zone,
                                   std::unordered_set<const qvi_space*>& visited) {
  assign(start, zone, building);
  std::vector<qvi_space*> queue{start};
  std::unordered_set<const qvi_space*> queued{start};
  for (std::size_t position = 0; position < queue.size(); ++position) {
    const qvi_space* const space = queue[position];
    // A space that left the scene no longer keeps its walls up to date.
    if (space->get_scene() != building->get_scene()) continue;
    for (const qvi_wall* wall : space->get_walls()) {
      qvi_space* const other =
          wall->get_space_0() != space ? wall->get_space_0() : wall->get_space_1();
      if (other == nullptr || !queued.insert(other).second) continue;
      queue.push_back(other);
      visited.insert(other);
      assign(other, zone, building);
    }
  }
  return queue;
}

// Hands the unique ids of imported objects over to the buildings made from their parts.
class id_transfer {
 public:
  id_transfer(qv_scene* scene, const qv_list<qv_item*>& walls) {
    // Objects that are no items of the scene: the scene itself, above a part that stands directly
    // in it, and what was taken out of it.
    qv_list<qv_item*> apart;
    for (const qv_item* item : walls) {
      const qv_item* const source = item->get_source();
      qv_item* const object = source != nullptr ? source->get_parent() : nullptr;
      if (object == nullptr) continue;
      object->get_unique_id();  // given now, so that the index below knows it
      if ((object == scene || object->get_scene() != scene) && !apart.contains(object))
        apart.append(object);
      const auto* const wall = static_cast<const qvi_wall*>(item);
      for (const qvi_space* space : {wall->get_space_0(), wall->get_space_1()})
        if (space != nullptr) objects_by_space_[space].push_back(object);
    }
    if (objects_by_space_.empty()) return;
    for (qv_item* item : scene->get_items("item"))
      if (item->has_unique_id()) bearers_[item->get_unique_id()].push_back(item);
    for (qv_item* object : apart) bearers_[object->get_unique_id()].push_back(object);
  }

  // `building` takes over the id of the one object from which the walls around `spaces` came; every
  // bearer of that id gets a new one. Nothing happens when there is no such object or several.
  void transfer(const std::vector<qvi_space*>& spaces, qvi_building* building) {
    const std::string id = find_common_id(spaces);
    if (id.empty()) return;
    std::vector<qv_item*> bearers;
    bearers.swap(bearers_[id]);
    for (qv_item* bearer : bearers) {
      const std::string new_id = "qv" + qv_uuid();
      bearer->set_unique_id(new_id);
      bearers_[new_id].push_back(bearer);
    }
    building->set_unique_id(id);
    bearers_[id].push_back(building);
  }

 private:
  std::string find_common_id(const std::vector<qvi_space*>& spaces) const {
    std::string candidate;
    for (const qvi_space* space : spaces) {
      const auto found = objects_by_space_.find(space);
      if (found == objects_by_space_.end()) continue;
      for (const qv_item* object : found->second) {
        const std::string& id = object->get_unique_id();
        if (id.empty() || id == candidate) continue;
        if (!candidate.empty()) return {};
        candidate = id;
      }
    }
    return candidate;
  }

  std::unordered_map<const qvi_space*, std::vector<const qv_item*>> objects_by_space_;
  std::unordered_map<std::string, std::vector<qv_item*>> bearers_;
};

}  // namespace

void qvi_building::build_buildings(qv_scene* scene, bool rename_spaces) {
  if (scene == nullptr) return;
  scene->precompute();
  destroy_all(scene, "building");
  destroy_all(scene, "zone");

  const qv_list<qv_item*> walls = scene->get_items("wall");
  const qv_list<qv_item*> spaces = scene->get_items("space");
  id_transfer ids(scene, walls);
  std::unordered_set<const qvi_space*> visited;
  int building_number = 1;
  for (qv_item* item : spaces) {
    auto* const start = static_cast<qvi_space*>(item);
    if (visited.contains(start)) continue;
    const std::string number = std::to_string(building_number++);

    auto* const building = new qvi_building;
    building->set_name("Bâtiment " + number);
    scene->add_child(building, -1);
    auto* const zone = new qvi_zone;
    zone->set_name("Zone " + number + "-1");
    scene->add_child(zone, -1);
    zone->set_building(building);

    const std::vector<qvi_space*> group = walk_group(start, building, zone, visited);
    if (rename_spaces) {
      for (std::size_t i = 0; i < group.size(); ++i)
        group[i]->set_name("Pièce " + number + "-" + std::to_string(i + 1));
    }
    ids.transfer(group, building);
  }
  scene->precompute();
}

}  // namespace qv
