#pragma once

#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"

namespace qv {

class qv_scene;
class qvi_building;
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
  /// One per entry of "contact_types"; null where the walls agree on none, or it was destroyed.
  QV_PARAM_ITEM_LIST(qvi_composition, wall_compositions, {.keeps_places = true})

  QV_PARAM_ENUM_LIST(qvi_opening, opening_type, opening_types)
  /// One per entry of "opening_types"; null where there is none, or it was destroyed.
  QV_PARAM_ITEM_LIST(qvi_opening_composition, opening_compositions, {.keeps_places = true})

  QV_PARAM_ENUM_LIST(qvi_connexion, connexion_type, connexion_types)
  /// ψ in W/(m·K), one per entry of "connexion_types"; 0 where there is none.
  QV_PARAM_LIST(float, connexion_values)

  // Learning from a scene. Each call replaces its table: one entry for each key, filled where all
  // elements of the key that have a choice agree on it. A null `building` means all buildings; an
  // element belongs to the building of the first space of its wall (of its first wall for a
  // connexion), and one without such a space is left out.

  void load_walls_from_scene(qv_scene* scene, qvi_building* building);
  void load_openings_from_scene(qv_scene* scene, qvi_building* building);
  /// Keys start at 1: junctions without loss have no ψ. ψ that is not above 0 does not count.
  void load_connexions_from_scene(qv_scene* scene, qvi_building* building);

  // Adding full copies of the scene's items as children; of the compositions those that the tables
  // do not name already. Loading twice adds them twice.

  void load_compositions_from_scene(qv_scene* scene);
  void load_opening_compositions_from_scene(qv_scene* scene);
  void load_schedules_from_scene(qv_scene* scene);

  // Giving a scene the choices: those of the elements in `buildings`, or the elements listed. A
  // table without keys does nothing. What a table names enters the scene first, unless the scene
  // has a similar item of the same name, which then serves instead. `record` announces each change
  // to the scene's `record_change` before it is made.

  void apply_walls_to_scene(qv_scene* scene, const qv_list<qvi_building*>& buildings, bool record);
  void apply_walls_to_scene(qv_scene* scene, const qv_list<qvi_wall*>& walls, bool record);
  void apply_openings_to_scene(qv_scene* scene, const qv_list<qvi_building*>& buildings,
                               bool record);
  void apply_openings_to_scene(qv_scene* scene, const qv_list<qvi_opening*>& openings, bool record);
  /// A value of 0 is given like any other.
  void apply_connexions_to_scene(qv_scene* scene, const qv_list<qvi_building*>& buildings,
                                 bool record);

  // Inserting the items of a type below the configuration into a scene that lacks them.

  void apply_compositions_to_scene(qv_scene* scene, bool record);
  void apply_opening_compositions_to_scene(qv_scene* scene, bool record);
  void apply_schedules_to_scene(qv_scene* scene, bool record);

 private:
  template <class Copied>
  void add_copies(qv_scene* scene, const char* type_name, const qv_list<Copied*>& excluded);
  void insert_items(qv_scene* scene, const char* type_name, bool record);
};

}  // namespace qv
