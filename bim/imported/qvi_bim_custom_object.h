#pragma once

#include "bim/imported/qvi_bim_object.h"

namespace qv {

class qvi_mesh;
class qvi_solid;

/// An element that the user draws instead of importing: a flat base extruded to a thickness. Item
/// type "custom_bim_object", a kind of "bim_object".
class qvi_bim_custom_object : public qvi_bim_object {
  QV_ITEM_CLASS(qvi_bim_custom_object, qvi_bim_object, "custom_bim_object")

  /// Length of the extrusion along the base's normal, m; negative extrudes against it.
  QV_PARAM(float, thickness, 0.1f)
  /// The base: a polygon, or an instance of one.
  QV_PARAM_ITEM(qvi_mesh, base_polygon)

  /// Keeps one solid below the object, the extrusion of the base along its normal, placed like the
  /// base's instance. It is rebuilt after a change of the object or of the base; a base that is no
  /// polygon leaves it as it was.
  void precompute() override;

 private:
  qvi_solid* keep_one_solid();

  // A copy-constructed object shares its source's date.
  std::shared_ptr<unsigned int> date_ = std::make_shared<unsigned int>(0);  // 0 never
};

}  // namespace qv
