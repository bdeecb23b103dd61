#include "bim/hierarchy/qv_precompute_watch.h"

#include "core/items/qv_scene.h"

namespace qv {

namespace {

// What an item is to the watch; several may hold.
enum kind : std::uint8_t {
  kind_wall = 1,
  kind_opening = 2,
  kind_look = 4,  // composition or shader: what a wall's faces are made of
  kind_space = 8,
  kind_zone = 16,
  kind_mesh = 32,
  kind_polygon = 64,
  kind_known = 128  // the type was classified
};

std::uint8_t classify(const qv_item_type* type) {
  std::uint8_t kinds = kind_known;
  if (type->derives_from("wall")) kinds |= kind_wall;
  if (type->derives_from("opening")) kinds |= kind_opening;
  if (type->derives_from("composition") || type->derives_from("shader")) kinds |= kind_look;
  if (type->derives_from("space")) kinds |= kind_space;
  if (type->derives_from("zone")) kinds |= kind_zone;
  if (type->derives_from("mesh")) kinds |= kind_mesh;
  if (type->derives_from("polygon")) kinds |= kind_polygon;
  return kinds;
}

bool is_below_space(const qv_item* item) {
  for (const qv_item* above = item->get_parent(); above != nullptr; above = above->get_parent()) {
    if (above->has_type("space")) return true;
  }
  return false;
}

void precompute_all(qv_scene* scene, const char* type_name) {
  // A copy: what a member adds to the scene must not move the list under way.
  const qv_list<qv_item*> members = scene->get_items(type_name);
  for (qv_item* member : members) member->precompute();
}

}  // namespace

void qv_precompute_watch::precompute_walls(qv_scene* scene) {
  auto* const watch = scene->get_observer<qv_precompute_watch>();
  if (std::exchange(watch->walls_changed_, false)) precompute_all(scene, "wall");
}

void qv_precompute_watch::precompute_spaces(qv_scene* scene) {
  auto* const watch = scene->get_observer<qv_precompute_watch>();
  if (std::exchange(watch->spaces_changed_, false)) precompute_all(scene, "space");
}

void qv_precompute_watch::precompute_zones(qv_scene* scene) {
  auto* const watch = scene->get_observer<qv_precompute_watch>();
  if (std::exchange(watch->zones_changed_, false)) precompute_all(scene, "zone");
}

void qv_precompute_watch::item_arrived(qv_item* item) {
  note_membership(item);
}

void qv_precompute_watch::item_left(qv_item* item) {
  note_membership(item);
}

void qv_precompute_watch::note_membership(qv_item* item) {
  if (walls_changed_ && spaces_changed_ && zones_changed_) return;
  const std::uint8_t kinds = get_kinds(item);
  if (kinds & kind_wall) walls_changed_ = spaces_changed_ = zones_changed_ = true;
  if (kinds & (kind_opening | kind_look)) walls_changed_ = true;
  if (kinds & kind_space) spaces_changed_ = zones_changed_ = true;
  if (kinds & kind_zone) zones_changed_ = true;
  if ((kinds & kind_mesh) && !spaces_changed_) spaces_changed_ = is_below_space(item);
}

void qv_precompute_watch::item_changed(qv_item* item, const std::string& name) {
  if (walls_changed_ && spaces_changed_ && zones_changed_) return;
  const std::uint8_t kinds = get_kinds(item);
  if (kinds & kind_wall) walls_changed_ = spaces_changed_ = zones_changed_ = true;
  if (kinds & kind_look) walls_changed_ = true;
  if ((kinds & kind_opening) && name == "wall") walls_changed_ = true;
  // The storey and the other results that a building writes to its spaces change no sum.
  if ((kinds & kind_space) && (name == "zone" || name == "forced_area" || name == "forced_volume"))
    zones_changed_ = true;
  if ((kinds & kind_mesh) && !spaces_changed_) spaces_changed_ = is_below_space(item);
  if ((kinds & kind_polygon) && !walls_changed_)
    walls_changed_ = !item->get_scene()->get_referrers("wall", "", item).is_empty();
}

std::uint8_t qv_precompute_watch::get_kinds(const qv_item* item) {
  const auto index = static_cast<std::size_t>(item->get_item_type()->get_index());
  if (index >= kinds_by_type_.size()) kinds_by_type_.resize(index + 1);
  if (kinds_by_type_[index] == 0) kinds_by_type_[index] = classify(item->get_item_type());
  return kinds_by_type_[index];
}

}  // namespace qv
