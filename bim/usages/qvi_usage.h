#pragma once

#include "core/items/qv_accessors.h"

namespace qv {

class qvi_schedule;
class qvi_space;
class qvi_zone;

/// How a zone or a space is used over time. Item type "usage"; the four kinds of usage derive from
/// it. Zones and spaces refer to usages, a usage does not list them.
class qvi_usage : public qv_item {
  QV_ITEM_CLASS(qvi_usage, qv_item, "usage")

  /// The zones of the scene that refer to this usage through its kind's parameter, in scene order;
  /// none outside a scene. A plain usage, which no zone can refer to, logs a line and returns none.
  virtual qv_list<qvi_zone*> get_zones() const;
  /// The spaces of the scene that refer to this usage; none for a kind that spaces do not carry.
  virtual qv_list<qvi_space*> get_spaces() const;

  /// The usages of the schedule's scene that refer to `schedule`, each once: heating and cooling,
  /// internal gains, lighting, ventilation, in scene order within a kind. None for a schedule
  /// outside a scene.
  static qv_list<qvi_usage*> get_usages(qvi_schedule* schedule);

 protected:
  /// The zones, or spaces, whose parameter `param_name` is this usage.
  qv_list<qvi_zone*> find_zones(const std::string& param_name) const;
  qv_list<qvi_space*> find_spaces(const std::string& param_name) const;
};

}  // namespace qv
