#pragma once

#include "bim/usages/qvi_usage.h"

namespace qv {

class qvi_schedule;

/// Heat that people and equipment give off in a zone or a space. Item type "usage_internal_gains",
/// a kind of "usage".
class qvi_usage_internal_gains : public qvi_usage {
  QV_ITEM_CLASS(qvi_usage_internal_gains, qvi_usage, "usage_internal_gains")

  /// Whether numbers and powers are per square metre or totals.
  enum class gain_unit_type : int { per_area, total };
  QV_ENUM_LIST(gain_unit_type, "per_area", "total")

  QV_PARAM_ENUM(gain_unit_type, unit_type, gain_unit_type::per_area)
  /// Occupants, per m² or in total.
  QV_PARAM(float, number_of_persons, 0.0f)
  /// Heat given off by one person, W.
  QV_PARAM(float, person_heat_gain, 70.0f)
  /// Occupancy over time.
  QV_PARAM_ITEM(qvi_schedule, occupation_schedule)
  /// W/m², or W in total.
  QV_PARAM(float, equipment_power, 0.0f)
  /// Use of the equipment over time.
  QV_PARAM_ITEM(qvi_schedule, equipment_schedule)

  qv_list<qvi_zone*> get_zones() const override;
  qv_list<qvi_space*> get_spaces() const override;
};

}  // namespace qv
