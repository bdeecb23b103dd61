#include "qvi_heat_emitter.h"

#include <algorithm>
#include <cmath>

#include "bim/hierarchy/qvi_space.h"
#include "core/items/qv_scene.h"
#include "core/light/qvi_schedule.h"
#include "utilities/qv_date.h"

namespace qv {

namespace {

constexpr float room_temperature = 20.0f;    // °C
constexpr float nominal_difference = 50.0f;  // K

float get_exponent(qvi_heat_emitter::emitter_type type) {
  switch (type) {
    case qvi_heat_emitter::emitter_type::radiator:
      return 1.3f;
    case qvi_heat_emitter::emitter_type::convector:
      return 1.4f;
    case qvi_heat_emitter::emitter_type::heated_floor:
      return 1.1f;
  }
  return 1.0f;
}

}  // namespace

QV_ITEM_CLASS_IMPLEMENTATION(qvi_heat_emitter)

qv_list<qvi_heat_emitter*> qvi_heat_emitter::find_emitters(const qvi_space* space) {
  qv_list<qvi_heat_emitter*> emitters;
  if (space == nullptr || space->get_scene() == nullptr) return emitters;
  for (qv_item* item : space->get_scene()->get_referrers("heat_emitter", "space", space)) {
    emitters.append(static_cast<qvi_heat_emitter*>(item));
  }
  return emitters;
}

void qvi_heat_emitter::precompute() {
  qv_item::precompute();
  const qvi_schedule* const schedule = get_water_temperature();
  unsigned int newest = get_local_date();
  if (schedule != nullptr) newest = std::max(newest, schedule->get_local_date());
  if (record_->date >= newest) return;

  double sum = 0;
  const int count = schedule == nullptr ? 0 : schedule->get_values().get_count();
  for (int step = 0; step < count; ++step) {
    const float difference = std::max(schedule->get_values()[step] - room_temperature, 0.0f);
    sum += std::pow(difference / nominal_difference, get_exponent(get_emitter_type()));
  }
  record_->mean_power = count == 0 ? 0.0f : get_nominal_power() * static_cast<float>(sum / count);
  record_->date = qv_get_date();
}

}  // namespace qv
