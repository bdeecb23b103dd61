#pragma once

#include "core/items/qv_accessors.h"

namespace qv {

class qvi_glazing;
class qvi_opaque;

/// The catalogue entry of a kind of window, door or roof light: what it is filled with, and
/// performances that replace the computed ones. Item type "opening_composition".
class qvi_opening_composition : public qv_item {
  QV_ITEM_CLASS(qvi_opening_composition, qv_item, "opening_composition")

  enum class opening_composition_typology : int {
    single_glazing,
    double_glazing,
    triple_glazing,
    door,
    skylight,
    other
  };
  QV_ENUM_LIST(opening_composition_typology, "single_glazing", "double_glazing", "triple_glazing",
               "door", "skylight", "other")

  QV_PARAM_ENUM(opening_composition_typology, typology, opening_composition_typology::other)

  // Imposed by the user; negative when the computed value counts.
  /// W/(m²·K).
  QV_PARAM(float, forced_U, -1.0f)
  /// 0 … 1.
  QV_PARAM(float, forced_solar_factor, -1.0f)
  /// 0 … 1.
  QV_PARAM(float, forced_visible_transmittance, -1.0f)

  /// The glazed part.
  QV_PARAM_ITEM(qvi_glazing, glazing)
  /// The opaque part, such as a panel or a door leaf.
  QV_PARAM_ITEM(qvi_opaque, opaque)

  /// Number of the scene's openings that use this composition; 0 outside a scene.
  int get_opening_count() const;
  std::string get_html_information() override;
};

}  // namespace qv
