#include "app/readers/qv_gbxml_schedules.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "app/readers/qv_unique_ids.h"
#include "app/readers/qv_year_schedule.h"
#include "core/light/qvi_schedule.h"

namespace qv {

namespace {

bool means_temperature(std::string_view type) {
  return type.starts_with("Temp");
}

qv_list<float> make_year(float value) {
  qv_list<float> year;
  year.resize(qv_hours_of_year);
  std::fill(year.begin(), year.end(), value);
  return year;
}

}  // namespace

void qv_gbxml_schedules::read(qv_xml_element root) {
  for (const qv_xml_element child : root) {
    if (child.is("Schedule")) {
      read_schedule(child);
    } else if (child.is("WeekSchedule")) {
      read_week(child);
    } else if (child.is("DaySchedule")) {
      read_day(child);
    }
  }
}

void qv_gbxml_schedules::read_schedule(qv_xml_element element) {
  schedule s;
  s.id = std::string(element.get_attribute("id"));
  s.element = element;
  if (!schedule_by_id_.try_emplace(s.id, static_cast<int>(schedules_.size())).second) {
    context_.warn(element, "a second Schedule of this id was left out");
    return;
  }
  const std::string_view name = element.get_child_text("Name");
  s.name = name.empty() ? s.id : std::string(name);
  s.type = std::string(element.get_attribute("type"));
  for (const qv_xml_element child : element) {
    if (!child.is("YearSchedule")) continue;
    const std::string_view begin = child.get_child_text("BeginDate");
    const auto first = qv_day_of_year(begin);
    const auto last = qv_day_of_year(child.get_child_text("EndDate"));
    if (!first || !last) {
      context_.warn(element, "a YearSchedule without its dates was left out");
      continue;
    }
    if (s.begin_date.empty()) s.begin_date = std::string(begin);
    s.parts.push_back(
        {*first, *last,
         std::string(child.get_child("WeekScheduleId").get_attribute("weekScheduleIdRef"))});
  }
  schedules_.push_back(std::move(s));
}

void qv_gbxml_schedules::read_week(qv_xml_element element) {
  week_by_id_.try_emplace(std::string(element.get_attribute("id")),
                          static_cast<int>(weeks_.size()));
  auto& week = weeks_.emplace_back();
  for (const qv_xml_element child : element) {
    if (!child.is("Day")) continue;
    week.push_back({std::string(child.get_attribute("dayType")),
                    std::string(child.get_attribute("dayScheduleIdRef"))});
  }
}

void qv_gbxml_schedules::read_day(qv_xml_element element) {
  day_by_id_.try_emplace(std::string(element.get_attribute("id")), static_cast<int>(days_.size()));
  const bool temperature = means_temperature(element.get_attribute("type"));
  std::vector<double> steps;
  for (const qv_xml_element child : element) {
    if (!child.is("ScheduleValue")) continue;
    const auto value = temperature ? context_.read_measure(child, qv_quantity::temperature)
                                   : qv_gbxml_context::parse_number(child.get_text());
    steps.push_back(value.value_or(0.0));
  }
  days_.push_back(qv_hours_of_day(steps));
}

const std::vector<float>* qv_gbxml_schedules::find_hours(const std::string& week,
                                                         int weekday) const {
  const auto found = week_by_id_.find(week);
  if (found == week_by_id_.end()) return nullptr;
  const std::vector<float>* hours = nullptr;
  int best = -1;
  for (const week_day& day : weeks_[static_cast<std::size_t>(found->second)]) {
    const int fit = qv_day_type_fit(day.type, weekday);
    const auto values = day_by_id_.find(day.day);
    if (fit <= best || values == day_by_id_.end()) continue;
    best = fit;
    hours = &days_[static_cast<std::size_t>(values->second)];
  }
  return hours;
}

// The year hour by hour; a later part stands over an earlier one.
qv_list<float> qv_gbxml_schedules::expand(const schedule& s, int& silent_days) const {
  qv_list<float> year = make_year(0);
  std::vector<char> told(qv_days_of_year, 0);
  const std::vector<int> weekdays = qv_weekdays_of_year(s.begin_date);
  for (const year_part& part : s.parts) {
    std::array<const std::vector<float>*, 7> week{};
    for (std::size_t weekday = 0; weekday < week.size(); ++weekday)
      week[weekday] = find_hours(part.week, static_cast<int>(weekday));
    // A part that ends before it begins goes over the turn of the year.
    const int last = part.last < part.first ? part.last + qv_days_of_year : part.last;
    for (int day = part.first; day <= last; ++day) {
      const auto place = static_cast<std::size_t>(day % qv_days_of_year);
      const std::vector<float>* hours = week[static_cast<std::size_t>(weekdays[place])];
      if (hours == nullptr) continue;
      told[place] = 1;
      std::copy(hours->begin(), hours->end(),
                year.begin() + static_cast<std::ptrdiff_t>(place * hours->size()));
    }
  }
  silent_days = static_cast<int>(std::count(told.begin(), told.end(), 0));
  return year;
}

void qv_gbxml_schedules::make_items(qv_item* parent, qv_unique_ids& ids) {
  parent_ = parent;
  for (schedule& s : schedules_) {
    int silent_days = 0;
    const qv_list<float> year = expand(s, silent_days);
    if (silent_days == qv_days_of_year) {
      context_.warn(s.element, "the schedule has no day with values and was left out");
      continue;
    }
    if (silent_days > 0) {
      context_.warn(s.element, std::to_string(silent_days) +
                                   " days of the schedule have no values and count as 0");
    }
    s.item = new qvi_schedule;
    s.item->set_name(s.name);
    ids.give(s.item, s.id);
    s.item->set_values(year);
    parent->add_child(s.item, -1);
    context_.get_model().schedules.push_back({s.item, s.type, s.begin_date});
  }
}

qvi_schedule* qv_gbxml_schedules::find(std::string_view id) const {
  const auto found = schedule_by_id_.find(id);
  return id.empty() || found == schedule_by_id_.end()
             ? nullptr
             : schedules_[static_cast<std::size_t>(found->second)].item;
}

bool qv_gbxml_schedules::is_temperature(std::string_view id) const {
  const auto found = schedule_by_id_.find(id);
  return found != schedule_by_id_.end() &&
         means_temperature(schedules_[static_cast<std::size_t>(found->second)].type);
}

qvi_schedule* qv_gbxml_schedules::make_constant(double temperature) {
  char digits[32];
  const auto [end, fault] =
      std::to_chars(digits, digits + sizeof digits, temperature, std::chars_format::fixed, 2);
  const std::string name = std::string(digits, fault == std::errc() ? end : digits) + " °C";
  qvi_schedule*& item = constants_[name];
  if (item != nullptr) return item;
  item = new qvi_schedule;
  item->set_name(name);
  item->set_values(make_year(static_cast<float>(temperature)));
  parent_->add_child(item, -1);
  return item;
}

}  // namespace qv
