#include "bim/hierarchy/qvi_building.h"

#include <algorithm>
#include <vector>

#include "bim/hierarchy/qv_precompute_watch.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "core/items/qv_scene.h"
#include "utilities/qv_date.h"

namespace qv {

namespace {

// m; a space belongs to the storey whose lowest space's bottom lies less than this below its own.
constexpr float storey_height = 1.5f;
// m; above the bottom of every space.
constexpr float highest_bottom = 100000000.0f;

struct storeys {
  qv_list<float> levels;
  std::vector<int> floor_of_space;  // −1 not placed
};

// Sorts spaces by the heights of their bottoms, m: each storey takes every remaining space whose
// bottom lies less than `storey_height` above the lowest remaining one.
storeys sort_into_storeys(const std::vector<float>& bottoms) {
  storeys sorted;
  sorted.floor_of_space.assign(bottoms.size(), -1);
  std::vector<std::size_t> remaining(bottoms.size());
  float low = highest_bottom;
  for (std::size_t i = 0; i < bottoms.size(); ++i) {
    remaining[i] = i;
    low = std::min(low, bottoms[i]);
  }
  // Bottoms so high that adding a storey's height leaves them equal are above no level: a pass that
  // places none is the last one.
  for (bool placed = true; placed;) {
    const float level = low + storey_height;
    const int storey = sorted.levels.get_count();
    sorted.levels.append(level);
    low = highest_bottom;
    std::vector<std::size_t> higher;
    for (const std::size_t i : remaining) {
      if (bottoms[i] < level) {
        sorted.floor_of_space[i] = storey;
      } else {
        higher.push_back(i);
        low = std::min(low, bottoms[i]);
      }
    }
    placed = higher.size() < remaining.size() && !higher.empty();
    remaining.swap(higher);
  }
  return sorted;
}

}  // namespace

QV_ITEM_CLASS_IMPLEMENTATION(qvi_building)

void qvi_building::precompute() {
  qv_item::precompute();
  qv_scene* const scene = get_scene();
  if (scene == nullptr || record_->date >= scene->get_date()) return;
  if (is_up_to_date()) return;

  find_campus();
  gather_spaces();
  gather_zones();
  number_storeys();
  record_->bounding_box.clear();
  for (qvi_space* space : record_->spaces) record_->bounding_box.enlarge(space->get_bounding_box());
  record_->date = qv_get_date();
}

bool qvi_building::is_up_to_date() const {
  struct source {
    const char* type;
    const char* param;
  };
  static constexpr source sources[] = {{"campus", ""},    {"zone", ""},        {"space", ""},
                                       {"space", "zone"}, {"wall", "space_0"}, {"wall", "space_1"},
                                       {"wall", "normal"}};
  return std::all_of(std::begin(sources), std::end(sources), [this](const source& s) {
    return record_->date >= get_scene()->get_last_change(s.type, s.param);
  });
}

void qvi_building::find_campus() {
  qv_item* item = this;
  while (item != nullptr && !item->has_type("campus")) item = item->get_parent();
  record_->campus = static_cast<qvi_campus*>(item);
}

void qvi_building::gather_spaces() {
  record_->area = 0;
  record_->volume = 0;
  record_->spaces.clear();
  qv_precompute_watch::precompute_spaces(get_scene());
  for (qv_item* item : get_scene()->get_referrers("space", "building", this)) {
    auto* const space = static_cast<qvi_space*>(item);
    record_->spaces.append(space);
    record_->area += space->get_area();
    record_->volume += space->get_volume();
  }
}

void qvi_building::gather_zones() {
  record_->zones.clear();
  qv_precompute_watch::precompute_zones(get_scene());
  for (qv_item* zone : get_scene()->get_referrers("zone", "building", this))
    record_->zones.append(static_cast<qvi_zone*>(zone));
}

void qvi_building::number_storeys() {
  // A space keeps its bounds until it changes: taking its storey away makes it find them anew.
  for (qvi_space* space : record_->spaces)
    if (!(space->get_local_bounding_box() == space->find_bounds())) space->set_floor(-1);
  std::vector<float> bottoms;
  for (qvi_space* space : record_->spaces) bottoms.push_back(space->get_bounding_box().get_min().z);
  const storeys sorted = sort_into_storeys(bottoms);
  // Written with the final value: a storey that stays what it was is no change, and buildings do
  // not make each other stale for ever.
  for (int i = 0; i < record_->spaces.get_count(); ++i)
    record_->spaces[i]->set_floor(sorted.floor_of_space[static_cast<std::size_t>(i)]);
  set_floors(sorted.levels);
}

qv_box qvi_building::get_local_bounding_box() {
  return record_->bounding_box;
}

}  // namespace qv
