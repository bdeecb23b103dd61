#pragma once

#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"

namespace qv {

class qvi_composition;
class qvi_opening_composition;

/// The construction choices of a project: a composition for each contact type of walls, one for
/// each kind of opening, and a linear coefficient for each kind of thermal bridge. Item type
/// "bim_configuration".
///
/// Each choice is a table in two lists of the same length, keys and values parallel by index.
/// Copies of a project's compositions, opening compositions and schedules can hang below the
/// configuration, so that it serves a scene that lacks them.
class qvi_bim_configuration : public qv_item {
  QV_ITEM_CLASS(qvi_bim_configuration, qv_item, "bim_configuration")

  QV_PARAM_ENUM_LIST(qvi_wall, contact_type, contact_types)
  /// One per entry of "contact_types"; null where the walls agree on none.
  QV_PARAM_ITEM_LIST(qvi_composition, wall_compositions)

  QV_PARAM_ENUM_LIST(qvi_opening, opening_type, opening_types)
  /// One per entry of "opening_types"; null where there is none.
  QV_PARAM_ITEM_LIST(qvi_opening_composition, opening_compositions)

  QV_PARAM_ENUM_LIST(qvi_connexion, connexion_type, connexion_types)
  /// ψ in W/(m·K), one per entry of "connexion_types"; 0 where there is none.
  QV_PARAM_LIST(float, connexion_values)
};

}  // namespace qv
