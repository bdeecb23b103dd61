#pragma once

#include "core/items/qv_accessors.h"

namespace qv {

class qvi_composition;

/// The item under which an imported building model hangs. Item type "bim_root".
class qvi_bim_root : public qv_item {
  QV_ITEM_CLASS(qvi_bim_root, qv_item, "bim_root")

  /// The walls' spaces come from the imported model itself.
  QV_PARAM(bool, original_walls_spaces, false)
  /// The thermal bridges come from the imported model itself.
  QV_PARAM(bool, original_thermal_bridges, false)

  /// The buildings below the root with their zones and spaces, volumes (m³), areas (m²) and the
  /// spaces' geometry, in one line of text. It looks like JSON and is for programs that expect the
  /// colons which its keys carry inside their quotes; names are not escaped. What the last
  /// `precompute` found is what is written.
  std::string to_json();

  /// Makes every wall's normal and its two spaces agree with the geometry: rays leave the wall's
  /// faces on either side, and what they hit first tells which space lies there. A wall that is the
  /// wrong way round is turned (an outer wall) or has its spaces swapped and its composition
  /// reversed (an intermediate floor); one that cannot be decided, or should not have been wrong,
  /// is logged, at most 100 lines a call. Walls without a first space are left alone. Results are
  /// the same each time.
  void check_orientation();

  /// The composition below the root whose layers are those of `composition` in reverse order, the
  /// first there is. Without one: null, or with `create` a full copy with reversed layers, a new
  /// child of the root. Its "layer_thicknesses" stay in the order of the original. Its name is the
  /// original's with "-" at its end; where that ends with "-" already, "0" takes its place.
  qvi_composition* find_reverse_composition(qvi_composition* composition, bool create);

  /// Types materials of typology "other" below the root by conductivity and density, or by their
  /// place among the layers of the first composition that has them; and types each composition that
  /// walls use by the kind of wall that uses it most.
  void set_auto_compositions_typology();
};

}  // namespace qv
