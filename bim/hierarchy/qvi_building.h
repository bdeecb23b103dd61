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

  // Found and summed by the last `precompute`; empty and 0 before. Items that left the scene since
  // stay listed until the next one.

  /// The site above the building, or null.
  qvi_campus* get_campus() const { return record_->campus; }
  /// In scene order.
  const qv_list<qvi_zone*>& get_zones() const { return record_->zones; }
  const qv_list<qvi_space*>& get_spaces() const { return record_->spaces; }
  /// Sum over the spaces, m².
  float get_area() const { return record_->area; }
  /// Sum over the spaces, m³.
  float get_volume() const { return record_->volume; }

  /// Precomputes the scene's spaces and zones, gathers those of the building, sums up, and numbers
  /// the storeys from the bottom: each takes every remaining space whose bottom lies less than
  /// 1.5 m above the lowest remaining one. Writes each space's "floor" and the building's
  /// "floors". Without spaces there is one level, 100000000.
  void precompute() override;
  /// Bounds of the building's spaces, as of the last `precompute`.
  qv_box get_local_bounding_box() override;

  /// Rebuilds the buildings and zones of `scene` from its spaces and walls. All present ones are
  /// destroyed; each group of spaces connected by walls becomes one building with one zone, both
  /// directly under the scene, numbered in the order of the groups' first spaces. With
  /// `rename_spaces` a space is named after its building and its rank in it, breadth first. A
  /// building whose walls were all made from parts of one imported object takes over that object's
  /// unique id. Time near linear in the size of the model.
  static void build_buildings(qv_scene* scene, bool rename_spaces);

 private:
  bool is_up_to_date() const;
  void find_campus();
  void gather_spaces();
  void gather_zones();
  void number_storeys();

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
