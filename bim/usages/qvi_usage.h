#pragma once

#include "core/items/qv_accessors.h"

namespace qv {

/// How a zone or a space is used over time. Item type "usage"; the four kinds of usage derive from
/// it. Zones and spaces refer to usages, a usage does not list them.
class qvi_usage : public qv_item {
  QV_ITEM_CLASS(qvi_usage, qv_item, "usage")
};

}  // namespace qv
