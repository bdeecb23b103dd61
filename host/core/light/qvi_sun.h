#pragma once

#include "core/items/qv_accessors.h"

namespace qv {

/// The sun over a period: one value per time step in each list. Item type "sun".
class qvi_sun : public qv_item {
  QV_ITEM_CLASS(qvi_sun, qv_item, "sun")

  /// Direct normal irradiation, W/m².
  QV_PARAM_LIST(float, direct_irradiation)
  /// Diffuse irradiation on the horizontal, W/m².
  QV_PARAM_LIST(float, diffuse_irradiation)
  /// Unit direction towards the sun; below the horizon at night.
  QV_PARAM_LIST(qv_3dvector, directions)

  /// Number of time steps: the count of the shortest of the three lists.
  int get_nb_values() const;
};

}  // namespace qv
