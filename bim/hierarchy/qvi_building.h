#pragma once

#include <memory>

#include "core/items/qv_accessors.h"

namespace qv {

class qvi_campus;
class qvi_space;
class qvi_zone;

/// A building: the zones and spaces that name it, sorted into storeys. Item type "building".
class qvi_building : public qv_item {
  QV_ITEM_CLASS(qvi_building, qv_item, "building")

  /// Whether the building is to be built or stands already.
  enum class building_status : int { new_building, existing };
  QV_ENUM_LIST(building_status, "new", "existing")

  QV_PARAM_ENUM(building_status, building_status, building_status::new_building)
  /// For each storey, from the bottom, the level in m under which the lowest point of a space must
  /// lie to belong to it.
  QV_PARAM_LIST(float, floors)

  // Found and summed by the last `precompute`; empty and 0 before.

  /// The site above the building, or null.
  qvi_campus* get_campus() const { return record_->campus; }
  /// In scene order.
  const qv_list<qvi_zone*>& get_zones() const { return record_->zones; }
  const qv_list<qvi_space*>& get_spaces() const { return record_->spaces; }
  /// Sum over the spaces, m².
  float get_area() const { return record_->area; }
  /// Sum over the spaces, m³.
  float get_volume() const { return record_->volume; }

 private:
  // A copy-constructed building shares its source's record.
  struct record {
    unsigned int date = 0;  // of the last computation; 0 never
    qvi_campus* campus = nullptr;
    qv_list<qvi_zone*> zones;
    qv_list<qvi_space*> spaces;
    float area = 0;
    float volume = 0;
    qv_box bounding_box;
  };
  std::shared_ptr<record> record_ = std::make_shared<record>();
};

}  // namespace qv
