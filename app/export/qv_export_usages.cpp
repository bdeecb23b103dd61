#include "app/export/qv_export_usages.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>
#include <vector>

#include "app/readers/qv_year_schedule.h"
#include "app/report/qv_report_value.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/usages/qvi_usage_heating_cooling.h"
#include "bim/usages/qvi_usage_internal_gains.h"
#include "bim/usages/qvi_usage_lighting.h"
#include "bim/usages/qvi_usage_ventilation.h"
#include "core/light/qvi_schedule.h"

namespace qv {
namespace {

constexpr int hours_of_day = qv_hours_of_year / qv_days_of_year;
constexpr int unknown_day = -1;

// The days of a week by their numbers among the days written, Sunday first; `unknown_day` where a
// stretch of the year has no such day.
using week = std::array<int, 7>;

// Consecutive days of the year of which those of one weekday are alike.
struct stretch {
  int first = 0;
  int last = 0;
  week days = {unknown_day, unknown_day, unknown_day, unknown_day,
               unknown_day, unknown_day, unknown_day};
};

// What the values are of, and the values.
using written_day = std::pair<std::string, std::vector<float>>;
using written_week = std::pair<std::string, week>;

// The number of `what` among those met so far, from 0.
template <typename Key>
int number_of(const Key& what, std::map<Key, int>& met) {
  return met.try_emplace(what, static_cast<int>(met.size())).first->second;
}

template <typename Key>
std::vector<const Key*> in_order(const std::map<Key, int>& met) {
  std::vector<const Key*> keys(met.size());
  for (const auto& [key, number] : met) keys[static_cast<std::size_t>(number)] = &key;
  return keys;
}

// The year as the fewest stretches, each as long as it can be.
std::vector<stretch> divide_year(const std::vector<int>& days, const std::vector<int>& weekdays) {
  std::vector<stretch> stretches;
  for (int day = 0; day < static_cast<int>(days.size()); ++day) {
    const auto place = static_cast<std::size_t>(day);
    const auto weekday = static_cast<std::size_t>(weekdays[place]);
    if (const auto known = stretches.empty() ? unknown_day : stretches.back().days[weekday];
        stretches.empty() || (known != unknown_day && known != days[place])) {
      stretches.emplace_back();
      stretches.back().first = day;
    }
    stretches.back().last = day;
    stretches.back().days[weekday] = days[place];
  }
  return stretches;
}

class schedule_writer {
 public:
  explicit schedule_writer(qv_xml_writer& xml) : xml_(xml) {}

  void write(const qv_source_schedule& source) {
    const qv_list<float>& values = source.item->get_values();
    std::vector<int> days;
    for (auto hour = values.begin(); values.end() - hour >= hours_of_day; hour += hours_of_day)
      days.push_back(number_of(written_day(source.type, {hour, hour + hours_of_day}), days_));
    const std::string id = source.item->get_unique_id();
    xml_.begin("Schedule", {{"id", id}, {"type", source.type}});
    xml_.leaf("Name", source.item->get_name());
    int part = 0;
    for (const stretch& s : divide_year(days, qv_weekdays_of_year(source.begin_date))) {
      xml_.begin("YearSchedule", {{"id", id + "-year-" + std::to_string(++part)}});
      xml_.leaf("BeginDate", qv_date_text(s.first, source.begin_date));
      xml_.leaf("EndDate", qv_date_text(s.last, source.begin_date));
      const int number = number_of(written_week(source.type, s.days), weeks_);
      xml_.begin("WeekScheduleId", {{"weekScheduleIdRef", week_id(number)}});
      xml_.end();
      xml_.end();
    }
    xml_.end();
  }

  void write_weeks_and_days() {
    int number = 0;
    for (const written_week* written : in_order(weeks_)) {
      const auto& [type, days] = *written;
      xml_.begin("WeekSchedule", {{"id", week_id(number++)}, {"type", type}});
      write_days(days);
      xml_.end();
    }
    number = 0;
    for (const written_day* written : in_order(days_)) {
      const std::vector<float>& hours = written->second;
      xml_.begin("DaySchedule", {{"id", day_id(number++)}, {"type", written->first}});
      const bool constant =
          std::equal(hours.begin() + 1, hours.end(), hours.begin());  // each like the one before
      for (std::size_t hour = 0; hour < (constant ? 1 : hours.size()); ++hour)
        xml_.leaf("ScheduleValue", qv_number_text(hours[hour]));
      xml_.end();
    }
  }

 private:
  static std::string week_id(int number) { return "week-" + std::to_string(number + 1); }
  static std::string day_id(int number) { return "day-" + std::to_string(number + 1); }

  void write_day(const char* type, int day) {
    if (day == unknown_day) return;
    xml_.begin("Day", {{"dayType", type}, {"dayScheduleIdRef", day_id(day)}});
    xml_.end();
  }

  void write_days(const week& days) {
    static constexpr std::array<const char*, 7> names = {"Sun", "Mon", "Tue", "Wed",
                                                         "Thu", "Fri", "Sat"};
    const auto alike = [&days](std::initializer_list<std::size_t> places) {
      return std::all_of(places.begin(), places.end(),
                         [&](std::size_t place) { return days[place] == days[*places.begin()]; });
    };
    if (alike({0, 1, 2, 3, 4, 5, 6})) {
      write_day("All", days[0]);
    } else if (alike({1, 2, 3, 4, 5}) && alike({0, 6})) {
      write_day("Weekday", days[1]);
      write_day("Weekend", days[0]);
    } else {
      for (std::size_t weekday = 0; weekday < names.size(); ++weekday)
        write_day(names[weekday], days[weekday]);
    }
  }

  qv_xml_writer& xml_;
  std::map<written_day, int> days_;
  std::map<written_week, int> weeks_;
};

// m² to which the loads of a space are counted.
double area_of(const qv_source_space* source) {
  return source == nullptr ? 0 : source->stated_area.value_or(source->floor_area);
}

void write_positive(const char* name, double value, const char* unit, qv_xml_writer& xml) {
  if (value > 0) xml.leaf(name, qv_number_text(value), {{"unit", unit}});
}

}  // namespace

std::string qv_usage_export::id_of(const qvi_schedule* schedule) const {
  const bool of_file =
      std::any_of(model_.schedules.begin(), model_.schedules.end(),
                  [schedule](const qv_source_schedule& s) { return s.item == schedule; });
  return of_file ? schedule->get_unique_id() : std::string();
}

qv_space_schedules qv_usage_export::get_schedules(const qvi_space& space) const {
  const qvi_usage_lighting* const light = space.get_usage_lighting();
  const qvi_usage_internal_gains* const gains = space.get_usage_internal_gains();
  return {light == nullptr ? "" : id_of(light->get_schedule()),
          gains == nullptr ? "" : id_of(gains->get_equipment_schedule()),
          gains == nullptr ? "" : id_of(gains->get_occupation_schedule())};
}

void qv_usage_export::write(const qvi_space& space, const qv_source_space* source,
                            qv_xml_writer& xml) const {
  const double area = area_of(source);
  // Of the whole space, per m².
  const auto spread = [area](double total) { return area > 0 ? total / area : 0; };
  if (const qvi_usage_internal_gains* const gains = space.get_usage_internal_gains()) {
    const bool total = gains->get_unit_type() == qvi_usage_internal_gains::gain_unit_type::total;
    const double persons = gains->get_number_of_persons();
    const double power = gains->get_equipment_power();
    if (total) write_positive("PeopleNumber", persons, "NumberOfPeople", xml);
    if (!total && persons > 0) write_positive("PeopleNumber", 1 / persons, "SquareMPerPerson", xml);
    xml.leaf("PeopleHeatGain", qv_number_text(gains->get_person_heat_gain()),
             {{"unit", "WattPerPerson"}, {"heatGainType", "Total"}});
    write_positive("EquipPowerPerArea", total ? spread(power) : power, "WattPerSquareMeter", xml);
  }
  if (const qvi_usage_lighting* const light = space.get_usage_lighting()) {
    using unit_type = qvi_usage_lighting::lighting_unit_type;
    const double power = light->get_power();
    write_positive("LightPowerPerArea",
                   light->get_unit_type() == unit_type::power ? spread(power) : power,
                   "WattPerSquareMeter", xml);
  }
}

std::string qv_usage_export::get_heating_schedule(const qvi_zone& zone) const {
  const qvi_usage_heating_cooling* const usage = zone.get_usage_heating_cooling();
  return usage == nullptr ? std::string() : id_of(usage->get_heating_schedule());
}

std::string qv_usage_export::get_cooling_schedule(const qvi_zone& zone) const {
  const qvi_usage_heating_cooling* const usage = zone.get_usage_heating_cooling();
  return usage == nullptr ? std::string() : id_of(usage->get_cooling_schedule());
}

std::string qv_usage_export::get_air_schedule(const qvi_zone& zone) const {
  const qvi_usage_ventilation* const usage = zone.get_usage_ventilation();
  return usage == nullptr ? std::string() : id_of(usage->get_schedule());
}

void qv_usage_export::write(const qvi_zone& zone, qv_xml_writer& xml) const {
  const qvi_usage_ventilation* const usage = zone.get_usage_ventilation();
  if (usage == nullptr) return;
  using unit_type = qvi_usage_ventilation::ventilation_unit_type;
  const double flow = usage->get_flow();
  switch (usage->get_unit_type()) {
    case unit_type::flow_per_area:
      write_positive("OAFlowPerArea", flow, "CubicMPerHourPerSquareM", xml);
      break;
    case unit_type::flow:
      write_positive("OAFlowPerZone", flow, "CubicMPerHr", xml);
      break;
    case unit_type::renewal_date:
      if (flow > 0) xml.leaf("AirChangesPerHour", qv_number_text(flow));
      break;
  }
}

void qv_usage_export::write_schedules(qv_xml_writer& xml) const {
  schedule_writer writer(xml);
  for (const qv_source_schedule& source : model_.schedules) writer.write(source);
  writer.write_weeks_and_days();
}

}  // namespace qv
