#pragma once

#include "core/items/qv_accessors.h"

namespace qv {

class qv_scene;

/// What lies on the far side of a wall, floor or roof that borders neither outside air nor a
/// modelled space: the ground, a crawl space, an adiabatic boundary, or a neighbour held at a
/// temperature. Item type "limit_condition".
class qvi_limit_condition : public qv_item {
  QV_ITEM_CLASS(qvi_limit_condition, qv_item, "limit_condition")

  enum class limit_condition_typology : int { soil, crawlspace, adiabatic, regulated };
  QV_ENUM_LIST(limit_condition_typology, "soil", "crawlspace", "adiabatic", "regulated")

  QV_PARAM_ENUM(limit_condition_typology, typology, limit_condition_typology::soil)
  /// The typology by its index.
  void set_typology(int value);
  /// Thermal conductivity of the ground, W/(m·K).
  QV_PARAM(float, conductivity, 1.5f)
  /// Density of the ground, kg/m³.
  QV_PARAM(float, density, 1500.0f)
  /// Specific heat of the ground, J/(kg·K).
  QV_PARAM(float, specific_heat, 2100.0f)
  /// Reduction coefficient of the heat loss towards this boundary. Its default is deliberately not
  /// between 0 and 1.
  QV_PARAM(float, b_coefficient, 5.0f)
  /// Temperature held on the far side, °C.
  QV_PARAM(float, temperature, 19.0f)

  /// Rests the lowest floors of the scene on the ground: the walls of contact type `lower_floor`
  /// whose lowest point lies less than 1.8 m above the lowest of them get the scene's first soil
  /// condition, made with the name "Soil" when there is none. Higher lower floors (over a passage
  /// or outside air) and all other walls lose whatever condition they had. Ends with the scene's
  /// `precompute`.
  ///
  /// Takes the walls' contact types as they stand; a wall that is not yet precomputed may bear a
  /// wrong one. A lower floor without any geometry below it has no height: it is not lowest and
  /// gets no condition. A null scene is ignored.
  static void default_limit_conditions(qv_scene* scene);
};

}  // namespace qv
