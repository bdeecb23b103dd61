#pragma once

#include "bim/materials/qvi_material.h"

namespace qv {

/// A layer made of several materials side by side, such as timber studs with insulation between
/// them: its properties are the weighted mean of theirs. Item type "material_mix", a kind of
/// "material".
///
/// What it is made of does not count when mixes are compared: they are similar when they are so as
/// materials.
class qvi_material_mix : public qvi_material {
  QV_ITEM_CLASS(qvi_material_mix, qvi_material, "material_mix")

  /// The materials mixed; a mix may be one of them. One that is destroyed is null and adds nothing.
  QV_PARAM_ITEM_LIST(qvi_material, materials, {.compared = false, .keeps_places = true})
  /// One weight per entry of "materials", in the same order.
  QV_PARAM_LIST(float, materials_ratios, {.compared = false})

  /// When the mix or one of its materials changed since the last run: scales the ratios to a sum of
  /// 1 and stores them, then sets conductivity, density, specific heat and the diffuse reflexion of
  /// each spectrum to the means of the materials' weighted by them, and the resistance to the
  /// mix's own thickness over that conductivity. Thickness, colour and everything else stay as the
  /// user set them.
  ///
  /// Ratios that sum to 0 and a conductivity of 0 are not caught: the results become NaN or
  /// infinite. A material without a ratio weighs 0. Time proportional to the materials.
  void precompute() override;

 private:
  bool is_up_to_date() const;
  qv_list<float> normalise_ratios();

  unsigned int computed_date_ = 0;  // 0 never
};

}  // namespace qv
