#pragma once

#include <string>
#include <string_view>

#include "bim/envelope/qvi_wall.h"

namespace qv {

/// What gbXML's attribute "surfaceType" of a Surface says.
enum class qv_surface_type : int {
  interior_wall,
  exterior_wall,
  underground_wall,
  roof,
  ceiling,
  underground_ceiling,
  interior_floor,
  exposed_floor,
  raised_floor,
  slab_on_grade,
  underground_slab,
  air,
  shade,
  freestanding_column,
  embedded_column,
  /// Missing, or nothing that gbXML knows.
  unknown
};

/// The type called `text`; upper and lower case make no difference. A text that is not a type but
/// differs from exactly one by at most two letters (added, left out or changed) counts as that one,
/// and `guessed` tells so.
qv_surface_type qv_find_surface_type(std::string_view text, bool& guessed);

/// gbXML's word for a type.
const char* qv_get_surface_type_name(qv_surface_type type);

/// The direction in which the outward normal of a surface of one space points by its type alone:
/// −1 down (floors over ground or air), +1 up (roofs), 0 when the type does not tell.
int qv_get_expected_slope(qv_surface_type type);

/// Whether what bounds no space is an object of its own, beside the building or in it: a shade or a
/// column. Walls, floors and roofs stay what they are.
bool qv_is_object_type(qv_surface_type type);

/// What a surface becomes.
struct qv_wall_choice {
  qvi_wall::wall_type type = qvi_wall::wall_type::wall;
  /// Why the type is another than the file's word for it; empty when it is the same.
  std::string reason;
};

/// The type of the wall made from a surface of `space_count` spaces (0, 1, 2) whose unit normal,
/// away from its first space, has the vertical component `up`.
///
/// The word of the file decides as long as the geometry allows it. Between two spaces whatever lies
/// is a floor (gbXML's ceiling included) and whatever stands a wall. With one space a ceiling or a
/// roof is a roof; a floor that lies over its space is a roof as well, a roof under it a floor;
/// a wall that lies is a roof or a floor by its side; a floor steeper than 60° is a wall. Without a
/// space and for air and unknown types the slope decides, at 45°.
qv_wall_choice qv_choose_wall_type(qv_surface_type type, int space_count, double up);

}  // namespace qv
