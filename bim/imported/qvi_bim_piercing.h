#pragma once

#include "core/items/qv_accessors.h"

namespace qv {

class qvi_bim_object;

/// The fact that one imported element passes through another, such as a window through a wall. Item
/// type "bim_piercing", which becomes known with the first piercing that is made.
class qvi_bim_piercing : public qv_item {
  QV_ITEM_CLASS(qvi_bim_piercing, qv_item, "bim_piercing")

  /// The element that passes through.
  QV_PARAM_ITEM(qvi_bim_object, piercing_object)
  /// The element that is passed through.
  QV_PARAM_ITEM(qvi_bim_object, pierced_object)
};

}  // namespace qv
