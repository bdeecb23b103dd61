#pragma once

#include "bim/usages/qvi_usage.h"

namespace qv {

class qvi_schedule;

/// When and to what temperatures a zone is heated and cooled. Item type "usage_heating_cooling", a
/// kind of "usage". A new one heats all year and never cools.
///
/// Days are numbered from 0 to 364.
class qvi_usage_heating_cooling : public qvi_usage {
  QV_ITEM_CLASS(qvi_usage_heating_cooling, qvi_usage, "usage_heating_cooling")

  /// `dates` means from a first to a last day.
  enum class active_period : int { never, always, dates };
  QV_ENUM_LIST(active_period, "never", "always", "dates")

  QV_PARAM_ENUM(active_period, heating_period, active_period::always)
  /// First and last day of heating when the period is `dates`.
  QV_PARAM(int, heating_start, 0)
  QV_PARAM(int, heating_end, 364)
  /// Set point of heating, °C.
  QV_PARAM_ITEM(qvi_schedule, heating_schedule)

  QV_PARAM_ENUM(active_period, cooling_period, active_period::never)
  /// First and last day of cooling when the period is `dates`.
  QV_PARAM(int, cooling_start, 0)
  QV_PARAM(int, cooling_end, 364)
  /// Set point of cooling, °C.
  QV_PARAM_ITEM(qvi_schedule, cooling_schedule)

  qv_list<qvi_zone*> get_zones() const override;
};

}  // namespace qv
