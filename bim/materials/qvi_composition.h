#pragma once

#include "core/items/qv_accessors.h"

namespace qv {

class qvi_matter;

/// The layered build-up of an opaque wall, floor or roof. Item type "composition".
///
/// Layers of a wall or roof run from the outer face to the inner one, those of a floor from bottom
/// to top. A layer is a matter, whose thickness the composition states, or a material, which brings
/// its own.
class qvi_composition : public qv_item {
  QV_ITEM_CLASS(qvi_composition, qv_item, "composition")

  enum class composition_insulation : int { none, interior, exterior, integrated };
  QV_ENUM_LIST(composition_insulation, "none", "interior", "exterior", "integrated")

  enum class composition_typology : int { wall, floor, roof };
  QV_ENUM_LIST(composition_typology, "wall", "floor", "roof")

  /// Where the insulation lies in the build-up.
  QV_PARAM_ENUM(composition_insulation, insulation, composition_insulation::none)
  /// Kind of building element.
  QV_PARAM_ENUM(composition_typology, typology, composition_typology::wall)
  QV_PARAM_ITEM_LIST(qvi_matter, layers)
  /// Thickness of each layer in m, in the order of "layers".
  QV_PARAM_LIST(float, layer_thicknesses, {.compared = false})
};

}  // namespace qv
