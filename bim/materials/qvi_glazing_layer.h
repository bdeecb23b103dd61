#pragma once

#include "core/items/qv_accessors.h"

namespace qv {

/// What every layer of a glazing has, be it a pane, a gap or a film. Item type "glazing_layer".
///
/// Layers are items of their own, so that a project keeps a library of them and several glazings
/// share one.
class qvi_glazing_layer : public qv_item {
  QV_ITEM_CLASS(qvi_glazing_layer, qv_item, "glazing_layer")

  /// m.
  QV_PARAM(float, thickness, 0.01f)
  /// Thermal conductivity, W/(m·K).
  QV_PARAM(float, conductivity, 0.05f)
  /// Colour in which the layer is drawn.
  QV_PARAM(qv_color, diffuse_color, qv_color(1.0f, 1.0f, 1.0f, 0.1f))
};

}  // namespace qv
