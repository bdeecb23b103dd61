#include "app/readers/qv_gbxml_usages.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <initializer_list>

#include "app/readers/qv_gbxml_schedules.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/usages/qvi_usage_heating_cooling.h"
#include "bim/usages/qvi_usage_internal_gains.h"
#include "bim/usages/qvi_usage_lighting.h"
#include "bim/usages/qvi_usage_ventilation.h"
#include "core/light/qvi_schedule.h"

namespace qv {

namespace {

using factors = std::unordered_map<std::string, double>;

constexpr double square_foot = 0.3048 * 0.3048;                          // m²
constexpr double cubic_foot_per_minute = 0.3048 * 0.3048 * 0.3048 * 60;  // m³/h
constexpr double btu_per_hour = 1055.05585262 / 3600;                    // W

// Units by their names in lower case.
const factors power_units = {{"wattpersquaremeter", 1.0},
                             {"wattpersquarefoot", 1.0 / square_foot},
                             {"btuperhoursquareft", btu_per_hour / square_foot}};
const factors person_units = {
    {"numberofpeople", 1.0}, {"squaremperperson", 1.0}, {"squareftperperson", square_foot}};
const factors heat_units = {{"wattperperson", 1.0}, {"btuperhourperson", btu_per_hour}};
const factors flow_units = {{"lpersec", 3.6},
                            {"cubicmperhr", 1.0},
                            {"cubicmpersec", 3600.0},
                            {"cfm", cubic_foot_per_minute}};
const factors area_flow_units = {{"lpersecpersquarem", 3.6},
                                 {"cubicmperhourpersquarem", 1.0},
                                 {"cubicmpersecpersquarem", 3600.0},
                                 {"cfmpersquarefoot", cubic_foot_per_minute / square_foot}};

std::string lower(std::string_view text) {
  std::string result(text);
  for (char& letter : result)
    letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  return result;
}

std::string text_of(double value) {
  char digits[32];
  const auto result = std::to_chars(digits, digits + sizeof digits, static_cast<float>(value));
  return std::string(digits, result.ptr);
}

// What tells one usage from another.
std::string key_of(const char* kind, std::initializer_list<double> values,
                   std::initializer_list<const qvi_schedule*> schedules) {
  std::string key = kind;
  for (const double value : values) key += '|' + text_of(value);
  for (const qvi_schedule* schedule : schedules)
    key += '|' + (schedule == nullptr ? std::string() : schedule->get_unique_id());
  return key;
}

}  // namespace

// The element's number by its unit, 0 without one, and for less than nothing.
double qv_gbxml_usages::read_scaled(qv_xml_element element, const char* what,
                                    const factors& units) {
  if (!element) return 0;
  const auto value = qv_gbxml_context::parse_number(element.get_text());
  if (!value || *value < 0) {
    if (!element.get_text().empty())
      context_.warn(element, std::string("is no ") + what + "; ignored");
    return 0;
  }
  const std::string unit = lower(element.get_attribute("unit"));
  const auto found = units.find(unit);
  if (found != units.end()) return *value * found->second;
  if (!unit.empty())
    context_.warn(element, "the unit \"" + qv_one_line(unit, 60) + "\" of a " + what +
                               " is not known; SI is assumed");
  return *value;
}

qv_gbxml_usages::measured qv_gbxml_usages::read_persons(qv_xml_element element) {
  const std::string unit = lower(element.get_attribute("unit"));
  const double value = read_scaled(element, "number of people", person_units);
  if (unit != "squaremperperson" && unit != "squareftperperson") return {value, false};
  return {value > 0 ? 1 / value : 0, true};
}

// W for each person; below 0 when the file does not say.
double qv_gbxml_usages::read_heat_gain(qv_xml_element element) {
  double total = -1;
  double parts = 0;
  bool has_parts = false;
  for (const qv_xml_element child : element) {
    if (!child.is("PeopleHeatGain")) continue;
    const double value = read_scaled(child, "heat gain of a person", heat_units);
    const std::string_view type = child.get_attribute("heatGainType");
    if (type == "Total" || type.empty()) {
      total = value;
    } else if (type == "Sensible" || type == "Latent") {
      parts += value;
      has_parts = true;
    }
  }
  return total >= 0 ? total : has_parts ? parts : -1;
}

template <class Usage, class Fill>
Usage* qv_gbxml_usages::share(const std::string& key, const std::string& name, const Fill& fill) {
  qvi_usage*& item = usages_[key];
  if (item == nullptr) {
    auto* usage = new Usage;
    usage->set_name(name);
    fill(*usage);
    parent_->add_child(usage, -1);
    item = usage;
  }
  return static_cast<Usage*>(item);
}

void qv_gbxml_usages::give_space(qv_xml_element element, qvi_space& space,
                                 const qv_source_space& source) {
  give_gains(element, space, source);
  give_lighting(element, space);
  if (space.get_zone() == nullptr) return;
  zone_facts& facts = zones_[space.get_zone()];
  const std::string_view condition = element.get_attribute("conditionType");
  if (condition == "Unconditioned") {
    ++facts.unconditioned;
  } else {
    ++facts.conditioned;
  }
  const double area = source.stated_area.value_or(source.floor_area);
  facts.area += area;
  const measured persons = read_persons(element.get_child("PeopleNumber"));
  facts.persons += persons.per_area ? persons.value * area : persons.value;
}

void qv_gbxml_usages::give_gains(qv_xml_element element, qvi_space& space,
                                 const qv_source_space& source) {
  const measured persons = read_persons(element.get_child("PeopleNumber"));
  double equipment =
      read_scaled(element.get_child("EquipPowerPerArea"), "power per area", power_units);
  const double gain = read_heat_gain(element);
  if (persons.value == 0 && equipment == 0) return;
  const bool total = !persons.per_area && persons.value > 0;
  if (total) equipment *= source.stated_area.value_or(source.floor_area);
  qvi_schedule* occupation = schedules_.find(element.get_attribute("peopleScheduleIdRef"));
  qvi_schedule* use = schedules_.find(element.get_attribute("equipmentScheduleIdRef"));
  const std::string unit = total ? "" : "/m²";
  const std::string name =
      text_of(persons.value) + unit + " pers., " + text_of(equipment) + " W" + unit;
  const std::string key =
      key_of("gains", {total ? 1.0 : 0.0, persons.value, gain, equipment}, {occupation, use});
  space.set_usage_internal_gains(
      share<qvi_usage_internal_gains>(key, name, [&](qvi_usage_internal_gains& usage) {
        using unit_type = qvi_usage_internal_gains::gain_unit_type;
        usage.set_unit_type(total ? unit_type::total : unit_type::per_area);
        usage.set_number_of_persons(static_cast<float>(persons.value));
        if (gain >= 0) usage.set_person_heat_gain(static_cast<float>(gain));
        usage.set_occupation_schedule(occupation);
        usage.set_equipment_power(static_cast<float>(equipment));
        usage.set_equipment_schedule(use);
      }));
}

void qv_gbxml_usages::give_lighting(qv_xml_element element, qvi_space& space) {
  const double power =
      read_scaled(element.get_child("LightPowerPerArea"), "power per area", power_units);
  if (power == 0) return;
  qvi_schedule* use = schedules_.find(element.get_attribute("lightScheduleIdRef"));
  space.set_usage_lighting(share<qvi_usage_lighting>(
      key_of("lighting", {power}, {use}), text_of(power) + " W/m²", [&](qvi_usage_lighting& usage) {
        usage.set_power(static_cast<float>(power));
        usage.set_schedule(use);
      }));
}

// A schedule of temperatures that the zone names, or its one temperature.
qvi_schedule* qv_gbxml_usages::find_set_point(qv_xml_element element, const char* schedule,
                                              const char* value) {
  const std::string_view id = element.get_attribute(schedule);
  if (schedules_.is_temperature(id)) {
    if (qvi_schedule* named = schedules_.find(id)) return named;
  }
  const auto constant = context_.read_measure(element.get_child(value), qv_quantity::temperature);
  return constant ? schedules_.make_constant(*constant) : nullptr;
}

void qv_gbxml_usages::give_zone(qv_xml_element element, qvi_zone& zone) {
  give_set_points(element, zone);
  give_fresh_air(element, zone);
}

void qv_gbxml_usages::give_set_points(qv_xml_element element, qvi_zone& zone) {
  qvi_schedule* heating = find_set_point(element, "heatSchedIdRef", "DesignHeatT");
  qvi_schedule* cooling = find_set_point(element, "coolSchedIdRef", "DesignCoolT");
  if (heating == nullptr && cooling == nullptr) return;
  const zone_facts& facts = zones_[&zone];
  const bool conditioned = facts.conditioned > 0 || facts.unconditioned == 0;
  const std::string name = (heating == nullptr ? "–" : heating->get_name()) + " / " +
                           (cooling == nullptr ? "–" : cooling->get_name());
  const std::string key = key_of("set points", {conditioned ? 1.0 : 0.0}, {heating, cooling});
  zone.set_usage_heating_cooling(
      share<qvi_usage_heating_cooling>(key, name, [&](qvi_usage_heating_cooling& usage) {
        using period = qvi_usage_heating_cooling::active_period;
        const auto active = [&](const qvi_schedule* schedule) {
          return conditioned && schedule != nullptr ? period::always : period::never;
        };
        usage.set_heating_period(active(heating));
        usage.set_heating_schedule(heating);
        usage.set_cooling_period(active(cooling));
        usage.set_cooling_schedule(cooling);
      }));
}

void qv_gbxml_usages::give_fresh_air(qv_xml_element element, qvi_zone& zone) {
  using unit_type = qvi_usage_ventilation::ventilation_unit_type;
  const double by_zone = read_scaled(element.get_child("OAFlowPerZone"), "flow", flow_units);
  const double by_person = read_scaled(element.get_child("OAFlowPerPerson"), "flow", flow_units);
  const double by_area =
      read_scaled(element.get_child("OAFlowPerArea"), "flow per area", area_flow_units);
  const double changes = read_scaled(element.get_child("AirChangesPerHour"), "air change", {});
  const zone_facts& facts = zones_[&zone];
  const double of_persons = by_person * facts.persons;
  double flow = 0;
  unit_type unit = unit_type::flow;
  const char* suffix = " m³/h";
  if (by_zone > 0) {
    flow = by_zone;
  } else if (of_persons > 0) {
    flow = of_persons + by_area * facts.area;
  } else if (by_area > 0) {
    flow = by_area;
    unit = unit_type::flow_per_area;
    suffix = " m³/(h.m²)";
  } else if (changes > 0) {
    flow = changes;
    unit = unit_type::renewal_date;
    suffix = " vol/h";
  } else {
    return;
  }
  qvi_schedule* use = schedules_.find(element.get_attribute("outsideAirSchedIdRef"));
  zone.set_usage_ventilation(
      share<qvi_usage_ventilation>(key_of("fresh air", {static_cast<double>(unit), flow}, {use}),
                                   text_of(flow) + suffix, [&](qvi_usage_ventilation& usage) {
                                     usage.set_unit_type(unit);
                                     usage.set_flow(static_cast<float>(flow));
                                     usage.set_schedule(use);
                                   }));
}

}  // namespace qv
