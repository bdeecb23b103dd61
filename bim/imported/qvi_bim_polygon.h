#pragma once

#include "core/shapes/qvi_polygon.h"

namespace qv {

class qvi_bim_object;

/// A polygon that remembers the imported elements that it was made from. Item type "bim_polygon", a
/// kind of "polygon". Copies refer to the same elements.
class qvi_bim_polygon : public qvi_polygon {
  QV_ITEM_CLASS(qvi_bim_polygon, qvi_polygon, "bim_polygon")

  QV_PARAM_ITEM_LIST(qvi_bim_object, bim_objects)
  /// Perimeter stored with the polygon, m.
  QV_PARAM(float, dirty_perimeter, 0.0f)
};

}  // namespace qv
