#pragma once

#include <memory>

#include "core/items/qv_accessors.h"

namespace qv {

class qvi_schedule;
class qvi_space;

/// A radiator, a convector or a heated floor in a room. Item type "heat_emitter".
///
/// Its output follows the temperature of its water: nominal power × (ΔT / 50 K)^n with ΔT from the
/// water to a room at 20 °C (EN 442-2; the exponent of a heated floor is that of EN 1264-2).
class qvi_heat_emitter : public qv_item {
  QV_ITEM_CLASS(qvi_heat_emitter, qv_item, "heat_emitter")

  enum class emitter_type : int { radiator, convector, heated_floor };
  QV_ENUM_LIST(emitter_type, "radiator", "convector", "heated_floor")

  QV_PARAM_ENUM(emitter_type, emitter_type, emitter_type::radiator)
  /// Output at ΔT = 50 K, W. Emitters that differ by up to a watt count as similar.
  QV_PARAM(float, nominal_power, 1000.0f, {.tolerance = 1.0f})
  /// The room it heats.
  QV_PARAM_ITEM(qvi_space, space)
  /// Temperature of the water over time, °C.
  QV_PARAM_ITEM(qvi_schedule, water_temperature)

  /// The emitters of the scene that heat `space`, in scene order. Time proportional to their
  /// number.
  static qv_list<qvi_heat_emitter*> find_emitters(const qvi_space* space);

  /// Mean output over the schedule in W, as found by the last `precompute`; 0 without a schedule.
  float get_mean_power() const { return record_->mean_power; }

  void precompute() override;

 private:
  // A copy-constructed emitter shares its source's record.
  struct record {
    unsigned int date = 0;  // of the last computation; 0 never
    float mean_power = 0;
  };
  std::shared_ptr<record> record_ = std::make_shared<record>();
};

}  // namespace qv
