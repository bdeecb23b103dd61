#pragma once

#include "bim/materials/qvi_matter.h"

namespace qv {

/// A product of given thickness: a 20 cm block, a 13 mm board. Item type "material", a kind of
/// "matter".
///
/// A composition that uses a material as a layer takes thickness and resistance from the material.
/// The two are independent: a resistance is what the maker declares, and nothing derives it from
/// thickness and conductivity.
///
/// Two materials are similar when they are so as matters and their resistances and thicknesses
/// differ by at most 0.001.
class qvi_material : public qvi_matter {
  QV_ITEM_CLASS(qvi_material, qvi_matter, "material")

  /// Thermal resistance of the product, K·m²/W.
  QV_PARAM(float, resistance, 0.0f, {.tolerance = 0.001f})
  /// m.
  QV_PARAM(float, thickness, 0.0f, {.tolerance = 0.001f})

  /// As a matter's, with thickness and resistance after the typology.
  std::string get_html_information() override;
};

}  // namespace qv
