#pragma once

#include "core/items/qv_accessors.h"

namespace qv {

/// Values over a year, usually one for each of its 8760 hours, that usages refer to. Item type
/// "schedule".
class qvi_schedule : public qv_item {
  QV_ITEM_CLASS(qvi_schedule, qv_item, "schedule")

  /// One value per time step: a fraction for occupancy, lighting and equipment, °C for set points.
  QV_PARAM_LIST(float, values)
  /// Length of a time step, s.
  QV_PARAM(float, time_step, 3600.0f)
};

}  // namespace qv
