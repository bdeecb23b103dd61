#pragma once

#include "bim/materials/qvi_material.h"

namespace qv {

/// A layer made of several materials side by side, such as timber studs with insulation between
/// them: its properties are the weighted mean of theirs. Item type "material_mix", a kind of
/// "material".
class qvi_material_mix : public qvi_material {
  QV_ITEM_CLASS(qvi_material_mix, qvi_material, "material_mix")

  /// The materials mixed; a mix may be one of them.
  QV_PARAM_ITEM_LIST(qvi_material, materials, {.compared = false})
  /// One weight per entry of "materials", in the same order.
  QV_PARAM_LIST(float, materials_ratios, {.compared = false})
};

}  // namespace qv
