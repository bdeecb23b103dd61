#include "bim/project/qvi_bim_root.h"

#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/qv_panel.h"
#include "core/shapes/qvi_mesh.h"

namespace qv {

namespace {

// m; vertices of a space's meshes closer than this become one.
constexpr float weld_distance = 0.001f;

// The texts below have their final form: some keys carry a colon inside their quotes and names are
// not escaped, deliberately, since the programs that read this export look for exactly that.

std::string name_entry(const qv_item* item) {
  return "\"name:\":\"" + item->get_name() + "\"";
}

std::string size_entries(float volume, float area) {
  return ",\"volume\":" + panel::fixed(volume, 2) + ",\"area\":" + panel::fixed(area, 2);
}

// Empty without meshes.
std::string geometry_entry(const qv_list<qvi_mesh*>& meshes) {
  if (meshes.is_empty()) return {};
  std::string text = ",\"geometry:\":";
  if (meshes.get_count() == 1) return text += meshes[0]->to_json();
  auto* const merged = new qvi_mesh;
  for (qvi_mesh* mesh : meshes) merged->merge(mesh);
  merged->optimize_vertices(weld_distance);
  text += merged->to_json();
  qv_item::destroy(merged);
  return text;
}

// `entry` of each item, with commas between them, between brackets.
template <class Item, class Entry>
std::string list_of(const qv_list<Item*>& items, const Entry& entry) {
  std::string text = "[";
  for (Item* item : items) {
    if (text.size() > 1) text += ',';
    text += entry(item);
  }
  return text += ']';
}

std::string space_entry(const qvi_space* space) {
  return "{" + name_entry(space) + size_entries(space->get_volume(), space->get_area()) +
         geometry_entry(qv_collect<qvi_mesh>(space, "mesh")) + "}";
}

std::string zone_entry(const qvi_zone* zone) {
  return "{" + name_entry(zone) + size_entries(zone->get_volume(), zone->get_area()) +
         ",\"spaces:\":" + list_of(zone->get_spaces(), space_entry) + "}";
}

std::string building_entry(const qvi_building* building) {
  return "{" + name_entry(building) + ",\"zones:\":" + list_of(building->get_zones(), zone_entry) +
         "}";
}

}  // namespace

QV_ITEM_CLASS_IMPLEMENTATION(qvi_bim_root)

std::string qvi_bim_root::to_json() {
  return "{\"buildings:\":" + list_of(qv_collect<qvi_building>(this, "building"), building_entry) +
         "}";
}

}  // namespace qv
