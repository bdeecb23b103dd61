#pragma once

#include <memory>

#include "core/items/qv_accessors.h"

namespace qv {

class qvi_building;
class qvi_campus;
class qvi_space;
class qvi_usage_heating_cooling;
class qvi_usage_internal_gains;
class qvi_usage_lighting;
class qvi_usage_ventilation;

/// A thermal zone: spaces of one building that are heated, ventilated, lit and used alike. Item
/// type "zone". The spaces name their zone; the zone gathers them.
class qvi_zone : public qv_item {
  QV_ITEM_CLASS(qvi_zone, qv_item, "zone")

  /// The building that holds the zone.
  QV_PARAM_ITEM(qvi_building, building)
  QV_PARAM_ITEM(qvi_usage_heating_cooling, usage_heating_cooling)
  QV_PARAM_ITEM(qvi_usage_ventilation, usage_ventilation)
  QV_PARAM_ITEM(qvi_usage_lighting, usage_lighting)
  QV_PARAM_ITEM(qvi_usage_internal_gains, usage_internal_gains)

  // Gathered and summed by the last `precompute`; empty and 0 before. Spaces that left the scene
  // since stay listed until the next one.

  /// In scene order.
  const qv_list<qvi_space*>& get_spaces() const { return record_->spaces; }
  /// Sum over the spaces, m².
  float get_area() const { return record_->area; }
  /// Sum over the spaces, m³.
  float get_volume() const { return record_->volume; }
  /// The site of the zone's building, or null.
  qvi_campus* get_campus() const;

  /// Precomputes the zone's spaces, gathers them and sums up, when anything changed.
  void precompute() override;

 private:
  // A copy-constructed zone shares its source's record.
  struct record {
    unsigned int date = 0;  // of the last computation; 0 never
    float area = 0;
    float volume = 0;
    qv_list<qvi_space*> spaces;
  };
  std::shared_ptr<record> record_ = std::make_shared<record>();
};

}  // namespace qv
