#pragma once

#include <memory>

#include "bim/usages/qvi_usage.h"

namespace qv {

class qvi_schedule;

/// Artificial light in a zone or a space. Item type "usage_lighting", a kind of "usage".
class qvi_usage_lighting : public qvi_usage {
  QV_ITEM_CLASS(qvi_usage_lighting, qvi_usage, "usage_lighting")

  /// Whether the power is per square metre or a total.
  enum class lighting_unit_type : int { power_per_area, power };
  QV_ENUM_LIST(lighting_unit_type, "power_per_area", "power")

  QV_PARAM_ENUM(lighting_unit_type, unit_type, lighting_unit_type::power_per_area)
  /// W/m², or W in total.
  QV_PARAM(float, power, 0.0f)
  /// Use of the light over time.
  QV_PARAM_ITEM(qvi_schedule, schedule)

  qv_list<qvi_zone*> get_zones() const override;
  qv_list<qvi_space*> get_spaces() const override;

 private:
  // A cell of the usage's own that starts at 0; a copy-constructed usage shares its source's.
  std::shared_ptr<int> cell_ = std::make_shared<int>(0);
};

}  // namespace qv
