#pragma once

#include "core/items/qv_accessors.h"

namespace qv {

/// One property that an imported element had in its source. Item type "bim_property".
class qvi_bim_property : public qv_item {
  QV_ITEM_CLASS(qvi_bim_property, qv_item, "bim_property")

  /// Identifier of the property in the source.
  QV_PARAM(std::string, source_id, "")
};

}  // namespace qv
