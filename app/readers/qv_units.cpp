#include "app/readers/qv_units.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace {

using qv::qv_unit;

constexpr double foot = 0.3048;
constexpr double inch = 0.0254;
constexpr double yard = 0.9144;
constexpr double mile = 1609.344;
constexpr double pound = 0.45359237;
constexpr double british_thermal_unit = 1055.05585262;
constexpr double hour = 3600;
constexpr double degrees_fahrenheit_per_kelvin = 1.8;
constexpr double ice_point_kelvin = 273.15;
constexpr double ice_point_fahrenheit = 32;

struct named_unit {
  const char* name;  // lower case, letters and digits only
  qv_unit unit;
};

constexpr named_unit length_units[] = {
    {"meters", {1}},          {"meter", {1}},          {"m", {1}},
    {"kilometers", {1000}},   {"kilometer", {1000}},   {"km", {1000}},
    {"centimeters", {0.01}},  {"centimeter", {0.01}},  {"cm", {0.01}},
    {"millimeters", {0.001}}, {"millimeter", {0.001}}, {"mm", {0.001}},
    {"feet", {foot}},         {"foot", {foot}},        {"ft", {foot}},
    {"inches", {inch}},       {"inch", {inch}},        {"in", {inch}},
    {"yards", {yard}},        {"yard", {yard}},        {"yd", {yard}},
    {"miles", {mile}},        {"mile", {mile}},        {"mi", {mile}}};

constexpr named_unit temperature_units[] = {
    {"c", {1, 0}},
    {"celsius", {1, 0}},
    {"f",
     {1 / degrees_fahrenheit_per_kelvin, -ice_point_fahrenheit / degrees_fahrenheit_per_kelvin}},
    {"fahrenheit",
     {1 / degrees_fahrenheit_per_kelvin, -ice_point_fahrenheit / degrees_fahrenheit_per_kelvin}},
    {"k", {1, -ice_point_kelvin}},
    {"kelvin", {1, -ice_point_kelvin}},
    {"r", {1 / degrees_fahrenheit_per_kelvin, -ice_point_kelvin}},
    {"rankine", {1 / degrees_fahrenheit_per_kelvin, -ice_point_kelvin}}};

constexpr double imperial_conductivity =
    british_thermal_unit / hour / foot * degrees_fahrenheit_per_kelvin;
constexpr double imperial_transmittance = imperial_conductivity / foot;

constexpr named_unit conductivity_units[] = {{"wpermeterk", {1}},
                                             {"wpermeterc", {1}},
                                             {"wpercmc", {100}},
                                             {"wpercmk", {100}},
                                             {"btuperhourftf", {imperial_conductivity}}};

constexpr named_unit density_units[] = {{"kgpercubicm", {1}},
                                        {"kgpercubicmeter", {1}},
                                        {"gramspercubiccm", {1000}},
                                        {"lbspercubicft", {pound / (foot * foot * foot)}},
                                        {"lbspercubicin", {pound / (inch * inch * inch)}}};

constexpr named_unit specific_heat_units[] = {
    {"jperkgk", {1}},
    {"jperkgc", {1}},
    {"btuperlbf", {british_thermal_unit / pound * degrees_fahrenheit_per_kelvin}}};

constexpr named_unit resistance_units[] = {{"squaremeterkperw", {1}},
                                           {"squaremkperw", {1}},
                                           {"hrsquareftfperbtu", {1 / imperial_transmittance}}};

constexpr named_unit transmittance_units[] = {{"wpersquaremeterk", {1}},
                                              {"wpersquaremeterc", {1}},
                                              {"btuperhoursquareftf", {imperial_transmittance}}};

// Lower case without what makes no difference, and "metre" as "meter".
std::string normalise(std::string_view name) {
  std::string text;
  for (const char c : name) {
    if (c == ' ' || c == '-' || c == '_' || c == '\t' || c == '\n' || c == '\r') continue;
    text += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  if (const auto at = text.find("metre"); at != std::string::npos) text.replace(at, 5, "meter");
  return text;
}

std::optional<qv_unit> find(std::span<const named_unit> units, std::string_view name) {
  const auto* found = std::find_if(units.data(), units.data() + units.size(),
                                   [name](const named_unit& unit) { return unit.name == name; });
  if (found == units.data() + units.size()) return std::nullopt;
  return found->unit;
}

// "squarefeet" and "cubicfeet" from the length of that name; "ft2", "m3" in the same way.
std::optional<qv_unit> find_power(std::string name, std::string_view prefix, char digit,
                                  int exponent) {
  if (name.starts_with(prefix)) {
    name.erase(0, prefix.size());
  } else if (name.ends_with(digit)) {
    name.pop_back();
  } else {
    return std::nullopt;
  }
  auto unit = find(length_units, name);
  if (unit)
    unit->factor =
        exponent == 2 ? unit->factor * unit->factor : unit->factor * unit->factor * unit->factor;
  return unit;
}

}  // namespace

namespace qv {

std::optional<qv_unit> qv_find_unit(qv_quantity quantity, std::string_view name) {
  const std::string normal = normalise(name);
  switch (quantity) {
    case qv_quantity::length:
      return find(length_units, normal);
    case qv_quantity::area:
      return find_power(normal, "square", '2', 2);
    case qv_quantity::volume:
      return find_power(normal, "cubic", '3', 3);
    case qv_quantity::temperature:
      return find(temperature_units, normal);
    case qv_quantity::conductivity:
      return find(conductivity_units, normal);
    case qv_quantity::density:
      return find(density_units, normal);
    case qv_quantity::specific_heat:
      return find(specific_heat_units, normal);
    case qv_quantity::thermal_resistance:
      return find(resistance_units, normal);
    case qv_quantity::thermal_transmittance:
      return find(transmittance_units, normal);
  }
  return std::nullopt;
}

}  // namespace qv
