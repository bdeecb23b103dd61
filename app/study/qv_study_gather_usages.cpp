#include "app/study/qv_study_gather_usages.h"

#include <algorithm>

#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/usages/qvi_usage_heating_cooling.h"
#include "bim/usages/qvi_usage_internal_gains.h"
#include "bim/usages/qvi_usage_lighting.h"
#include "bim/usages/qvi_usage_ventilation.h"
#include "core/light/qvi_schedule.h"

namespace qv {
namespace {

std::optional<std::string> name_of(const qv_item* item) {
  if (item == nullptr) return std::nullopt;
  return item->get_name();
}

// Lowest and highest value of a schedule; nothing without one, or when it is not in use.
std::vector<float> range_of(const qvi_schedule* schedule, bool active) {
  if (!active || schedule == nullptr || schedule->get_values().is_empty()) return {};
  const qv_list<float>& values = schedule->get_values();
  const auto [low, high] = std::minmax_element(values.begin(), values.end());
  return {*low, *high};
}

qv_study_usage record_of(const qvi_zone& zone, const char* kind, const qv_item& usage) {
  qv_study_usage record;
  record.zone = zone.get_name();
  record.kind = kind;
  record.name = usage.get_name();
  return record;
}

qv_study_usage gather(const qvi_zone& zone, const qvi_usage_heating_cooling& usage) {
  using period = qvi_usage_heating_cooling::active_period;
  qv_study_usage record = record_of(zone, "heating_cooling", usage);
  const qv_list<std::string>& periods = qvi_usage_heating_cooling::get_active_period_list();
  record.heating_period = periods[static_cast<int>(usage.get_heating_period())];
  record.cooling_period = periods[static_cast<int>(usage.get_cooling_period())];
  record.heating_range =
      range_of(usage.get_heating_schedule(), usage.get_heating_period() != period::never);
  record.cooling_range =
      range_of(usage.get_cooling_schedule(), usage.get_cooling_period() != period::never);
  record.heating_schedule = name_of(usage.get_heating_schedule());
  record.cooling_schedule = name_of(usage.get_cooling_schedule());
  return record;
}

qv_study_usage gather(const qvi_zone& zone, const qvi_usage_ventilation& usage) {
  qv_study_usage record = record_of(zone, "ventilation", usage);
  record.unit_type = qvi_usage_ventilation::get_ventilation_unit_type_list()[static_cast<int>(
      usage.get_unit_type())];
  record.flow = usage.get_flow();
  record.schedule = name_of(usage.get_schedule());
  return record;
}

qv_study_usage gather(const qvi_zone& zone, const qvi_usage_lighting& usage) {
  qv_study_usage record = record_of(zone, "lighting", usage);
  record.unit_type =
      qvi_usage_lighting::get_lighting_unit_type_list()[static_cast<int>(usage.get_unit_type())];
  record.power = usage.get_power();
  record.schedule = name_of(usage.get_schedule());
  return record;
}

qv_study_usage gather(const qvi_zone& zone, const qvi_usage_internal_gains& usage) {
  qv_study_usage record = record_of(zone, "internal_gains", usage);
  record.unit_type =
      qvi_usage_internal_gains::get_gain_unit_type_list()[static_cast<int>(usage.get_unit_type())];
  record.persons = usage.get_number_of_persons();
  record.person_heat_gain = usage.get_person_heat_gain();
  record.power = usage.get_equipment_power();
  record.schedule = name_of(usage.get_equipment_schedule());
  record.occupation_schedule = name_of(usage.get_occupation_schedule());
  return record;
}

// The usages of one kind that the spaces of a zone have, each with its spaces.
template <class Usage>
void gather_of_spaces(const qvi_zone& zone, Usage* (qvi_space::*get)() const,
                      const std::function<std::optional<std::string>(const qvi_space*)>& space_id,
                      std::vector<qv_study_usage>& records) {
  std::vector<const Usage*> known;
  const std::size_t first = records.size();
  for (const qvi_space* space : zone.get_spaces()) {
    const Usage* usage = (space->*get)();
    if (usage == nullptr) continue;
    const auto place =
        static_cast<std::size_t>(std::find(known.begin(), known.end(), usage) - known.begin());
    if (place == known.size()) {
      known.push_back(usage);
      records.push_back(gather(zone, *usage));
    }
    if (const auto id = space_id(space)) records[first + place].spaces.push_back(*id);
  }
}

}  // namespace

std::vector<qv_study_usage> qv_gather_usages(
    qv_scene& scene, const std::function<std::optional<std::string>(const qvi_space*)>& space_id) {
  std::vector<qv_study_usage> records;
  for (qv_item* item : scene.get_items("zone")) {
    const auto& zone = static_cast<const qvi_zone&>(*item);
    const auto add = [&](const auto* usage) {
      if (usage != nullptr) records.push_back(gather(zone, *usage));
    };
    add(zone.get_usage_heating_cooling());
    add(zone.get_usage_ventilation());
    add(zone.get_usage_lighting());
    add(zone.get_usage_internal_gains());
    gather_of_spaces(zone, &qvi_space::get_usage_lighting, space_id, records);
    gather_of_spaces(zone, &qvi_space::get_usage_internal_gains, space_id, records);
  }
  return records;
}

}  // namespace qv
