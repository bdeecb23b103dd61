#pragma once

#include "bim/usages/qvi_usage.h"

namespace qv {

class qvi_schedule;

/// Fresh air brought into a zone. Item type "usage_ventilation", a kind of "usage".
class qvi_usage_ventilation : public qvi_usage {
  QV_ITEM_CLASS(qvi_usage_ventilation, qvi_usage, "usage_ventilation")

  /// Whether the flow is per square metre, a total, or air changes of the volume. The label of the
  /// last is spelled so in saved models.
  enum class ventilation_unit_type : int { flow_per_area, flow, renewal_date };
  QV_ENUM_LIST(ventilation_unit_type, "flow_per_area", "flow", "renewal_date")

  QV_PARAM_ENUM(ventilation_unit_type, unit_type, ventilation_unit_type::flow_per_area)
  QV_PARAM(float, flow, 0.0f)
  /// Use of the ventilation over time.
  QV_PARAM_ITEM(qvi_schedule, schedule)

  qv_list<qvi_zone*> get_zones() const override;
};

}  // namespace qv
