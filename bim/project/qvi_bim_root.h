#pragma once

#include "core/items/qv_accessors.h"

namespace qv {

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
};

}  // namespace qv
