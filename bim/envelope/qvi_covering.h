#pragma once

#include "core/items/qv_accessors.h"

namespace qv {

class qvi_polygon;
class qvi_space;
class qvi_wall;

/// One inner surface of a space: the side of a wall, floor, roof or ceiling as seen from within.
/// Item type "covering", which becomes known with the first covering that is made.
class qvi_covering : public qv_item {
  QV_ITEM_CLASS(qvi_covering, qv_item, "covering")

  enum class covering_type : int { wall, floor, roof, ceiling, outside_wall, unknown };
  QV_ENUM_LIST(covering_type, "wall", "floor", "roof", "ceiling", "outside_wall", "unknown")

  QV_PARAM_ENUM(covering_type, covering_type, covering_type::wall)
  /// The walls whose side the surface is.
  QV_PARAM_ITEM_LIST(qvi_wall, walls)
  /// The space that the surface faces.
  QV_PARAM_ITEM(qvi_space, space)
  QV_PARAM_ITEM(qvi_polygon, face)
  /// The face with the openings cut out.
  QV_PARAM_ITEM(qvi_polygon, pierced_face)
};

}  // namespace qv
