#pragma once

#include "core/items/qv_accessors.h"

namespace qv {

class qvi_bim_property;

/// One element of an imported building model: a wall, a slab, a roof, an opening, a curtain wall or
/// another thing. Item type "bim_object". Its geometry lies in the meshes below it.
class qvi_bim_object : public qv_item {
  QV_ITEM_CLASS(qvi_bim_object, qv_item, "bim_object")

  enum class bim_type : int { unknown, wall, slab, roof, opening, curtain_wall, other };
  QV_ENUM_LIST(bim_type, "unknown", "wall", "slab", "roof", "opening", "curtain_wall", "other")

  /// Kind of element, as the model uses it and as its source gave it.
  QV_PARAM_ENUM(bim_type, bim_type, bim_type::unknown)
  QV_PARAM_ENUM(bim_type, original_bim_type, bim_type::unknown)
  /// Kind and identifier of the element in the source's own terms.
  QV_PARAM(std::string, source_type, "")
  QV_PARAM(std::string, source_id, "")
  /// Placement of the element.
  QV_PARAM(qv_matrix, matrix, qv_matrix())
  /// False hides the element.
  QV_PARAM(bool, visibility, true)
  /// Properties read from the source.
  QV_PARAM_ITEM_LIST(qvi_bim_property, bim_properties)
};

}  // namespace qv
