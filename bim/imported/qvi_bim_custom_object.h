#pragma once

#include "bim/imported/qvi_bim_object.h"

namespace qv {

class qvi_mesh;

/// An element that the user draws instead of importing: a flat base extruded to a thickness. Item
/// type "custom_bim_object", a kind of "bim_object".
class qvi_bim_custom_object : public qvi_bim_object {
  QV_ITEM_CLASS(qvi_bim_custom_object, qvi_bim_object, "custom_bim_object")

  /// Length of the extrusion along the base's normal, m; negative extrudes against it.
  QV_PARAM(float, thickness, 0.1f)
  /// The base: a polygon, or an instance of one.
  QV_PARAM_ITEM(qvi_mesh, base_polygon)
};

}  // namespace qv
