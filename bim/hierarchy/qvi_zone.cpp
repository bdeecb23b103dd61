#include "bim/hierarchy/qvi_zone.h"

#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_space.h"
#include "core/items/qv_scene.h"
#include "utilities/qv_date.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_zone)

qvi_campus* qvi_zone::get_campus() const {
  return get_building() != nullptr ? get_building()->get_campus() : nullptr;
}

void qvi_zone::precompute() {
  qv_item::precompute();
  qv_scene* const scene = get_scene();
  if (scene == nullptr) return;
  const unsigned int date = record_->date;
  if (date >= scene->get_date() && date >= scene->get_last_change("space", "") &&
      date >= scene->get_last_change("space", "zone"))
    return;

  record_->area = 0;
  record_->volume = 0;
  record_->spaces.clear();
  for (qv_item* item : scene->get_referrers("space", "zone", this)) {
    auto* const space = static_cast<qvi_space*>(item);
    record_->spaces.append(space);
    space->precompute();
    record_->area += space->get_area();
    record_->volume += space->get_volume();
  }
  record_->date = qv_get_date();
}

}  // namespace qv
