#include "app/readers/qv_gbxml_glazing_layers.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>
#include <utility>

#include "bim/materials/qv_glazing_physics.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_glass.h"

namespace {

using qv::qv_gbxml_context;
using qv::qv_glazing_layer_text;
using qv::qv_quantity;
using qv::qv_xml_element;

std::string lower_case(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return lower;
}

// A number between 0 and 1, also where it is written in percent.
std::optional<double> read_fraction(qv_gbxml_context& context, qv_xml_element element) {
  const auto number = qv_gbxml_context::parse_number(element.get_text());
  const bool percent = lower_case(element.get_attribute("unit")).starts_with("percent");
  const double value = number ? *number * (percent ? 0.01 : 1) : -1;
  if (value >= 0 && value <= 1) return value;
  if (!element.get_text().empty())
    context.warn(element, "\"" + qv::qv_one_line(std::string(element.get_text()), 40) +
                              "\" is no fraction for a " + std::string(element.get_name()) +
                              "; ignored");
  return std::nullopt;
}

std::optional<double> read_positive(qv_gbxml_context& context, qv_xml_element element,
                                    qv_quantity quantity) {
  const auto value = context.read_measure(element, quantity);
  return value && *value > 0 ? value : std::nullopt;
}

std::optional<double> read_solar_factor(qv_gbxml_context& context, qv_xml_element element) {
  qv_xml_element chosen;
  int preference = -1;
  for (const qv_xml_element child : element) {
    if (!child.is("SolarHeatGainCoeff")) continue;
    const std::string_view angle = child.get_attribute("solarIncidentAngle");
    const auto degrees = qv_gbxml_context::parse_number(angle);
    const int wanted = degrees && *degrees == 0 ? 2 : angle.empty() ? 1 : 0;
    if (wanted <= preference) continue;
    preference = wanted;
    chosen = child;
  }
  return chosen ? read_fraction(context, chosen) : std::nullopt;
}

std::optional<double> read_visible_transmittance(qv_gbxml_context& context,
                                                 qv_xml_element element) {
  for (const qv_xml_element child : element) {
    if (!child.is("Transmittance")) continue;
    const std::string type = lower_case(child.get_attribute("type"));
    if (type.empty() || type == "visible") return read_fraction(context, child);
  }
  return std::nullopt;
}

// Words of what a pane lacks, in the order of the file's format.
class assumptions_of {
 public:
  double take(const std::optional<double>& value, double otherwise, const char* what) {
    if (value) return *value;
    words_ += (words_.empty() ? "" : ", ") + std::string(what);
    return otherwise;
  }
  const std::string& get_words() const { return words_; }

 private:
  std::string words_;
};

// What of the reflectance a pane can have beside its transmittance.
float within(double reflectance, double transmittance) {
  return static_cast<float>(std::min(reflectance, 1 - transmittance));
}

std::string label(const qv_glazing_layer_text& text) {
  return std::string(text.is_gap ? "Gap" : "Glaze") + " \"" +
         qv::qv_one_line(text.name.empty() ? text.id : text.name, 80) + "\"";
}

void add(std::string& words, const std::string& more) {
  words += (words.empty() ? "" : "; ") + more;
}

qv::qvi_glazing_layer* make_pane(const qv_glazing_layer_text& text, std::string& assumptions) {
  namespace clear = qv::assumed_pane;
  assumptions_of a;
  auto* pane = new qv::qvi_glazing_glass;
  const auto single = [](double value) { return static_cast<float>(value); };
  pane->set_thickness(single(a.take(text.thickness, clear::thickness, "thickness")));
  pane->set_conductivity(single(a.take(text.conductivity, clear::conductivity, "conductivity")));

  const double solar =
      a.take(text.solar_transmittance, clear::solar_transmittance, "solar transmittance");
  const double solar_front =
      a.take(text.solar_reflectance_front, clear::solar_reflectance, "outer solar reflectance");
  const double solar_back =
      a.take(text.solar_reflectance_back, clear::solar_reflectance, "inner solar reflectance");
  pane->set_solar_transmittance(single(solar));
  pane->set_solar_reflectance_front(within(solar_front, solar));
  pane->set_solar_reflectance_back(within(solar_back, solar));

  const double visible =
      a.take(text.visible_transmittance, clear::visible_transmittance, "visible transmittance");
  const double visible_front = a.take(text.visible_reflectance_front, clear::visible_reflectance,
                                      "outer visible reflectance");
  const double visible_back = a.take(text.visible_reflectance_back, clear::visible_reflectance,
                                     "inner visible reflectance");
  pane->set_visible_transmittance(single(visible));
  pane->set_visible_reflectance_front(within(visible_front, visible));
  pane->set_visible_reflectance_back(within(visible_back, visible));

  pane->set_thermal_transmittance(
      single(text.thermal_transmittance.value_or(clear::thermal_transmittance)));
  pane->set_thermal_emissivity_front(
      single(a.take(text.thermal_emissivity_front, clear::emissivity, "outer emittance")));
  pane->set_thermal_emissivity_back(
      single(a.take(text.thermal_emissivity_back, clear::emissivity, "inner emittance")));
  if (!a.get_words().empty())
    add(assumptions,
        label(text) + " does not say " + a.get_words() + ": clear float glass assumed");
  // Rounding of both to two decimals may overshoot.
  constexpr double overshoot = 1.01;
  if (solar + std::max(solar_front, solar_back) > overshoot ||
      visible + std::max(visible_front, visible_back) > overshoot)
    add(assumptions, label(text) + " transmits and reflects more than arrives: reflects less");
  return pane;
}

qv::qvi_glazing_layer* make_gap(const qv_glazing_layer_text& text, std::string& assumptions) {
  using gaz_type = qv::qvi_glazing_gaz::gaz_type;
  auto* gap = new qv::qvi_glazing_gaz;
  if (!text.thickness) add(assumptions, label(text) + " has no thickness: 12 mm assumed");
  gap->set_thickness(static_cast<float>(text.thickness.value_or(qv::assumed_pane::gap_thickness)));
  const auto& gases = qv::qvi_glazing_gaz::get_gaz_type_list();
  const auto find = [&gases](const std::string& words) -> std::optional<gaz_type> {
    for (int i = static_cast<int>(gaz_type::sf6); i >= 0; --i)
      if (words.find(gases[i]) != std::string::npos) return static_cast<gaz_type>(i);
    return std::nullopt;
  };
  auto found = find(lower_case(text.gas));
  if (!found && text.gas.empty()) found = find(lower_case(text.gas_words));
  if (!found)
    add(assumptions, text.gas.empty() ? label(text) + " names no gas: air assumed"
                                      : "the gas \"" + qv::qv_one_line(text.gas, 40) + "\" of " +
                                            label(text) + " is not among those known: air assumed");
  gap->set_gaz_type(found.value_or(gaz_type::air));
  return gap;
}

}  // namespace

namespace qv {

qv_opening_figures qv_read_opening_figures(qv_gbxml_context& context, qv_xml_element element) {
  qv_opening_figures figures;
  figures.u =
      read_positive(context, element.get_child("U-value"), qv_quantity::thermal_transmittance);
  figures.solar_factor = read_solar_factor(context, element);
  figures.visible_transmittance = read_visible_transmittance(context, element);
  if (!figures.u && figures.solar_factor.value_or(0) == 0 &&
      figures.visible_transmittance.value_or(0) == 0)
    return {};
  return figures;
}

qv_glazing_layer_text qv_read_glazing_layer(qv_gbxml_context& context, qv_xml_element element) {
  qv_glazing_layer_text text;
  text.is_gap = element.is("Gap");
  text.id = std::string(element.get_attribute("id"));
  text.name = std::string(element.get_child_text("Name"));
  text.gas = std::string(element.get_attribute("gas"));
  text.gas_words = text.name + " " + std::string(element.get_child_text("Description"));
  text.thickness = read_positive(context, element.get_child("Thickness"), qv_quantity::length);
  text.conductivity =
      read_positive(context, element.get_child("Conductivity"), qv_quantity::conductivity);
  if (text.is_gap) return text;

  struct property {
    const char* element;
    const char* type;
    std::optional<double> qv_glazing_layer_text::*member;
  };
  static constexpr property properties[] = {
      {"Transmittance", "solar", &qv_glazing_layer_text::solar_transmittance},
      {"Transmittance", "visible", &qv_glazing_layer_text::visible_transmittance},
      {"Transmittance", "ir", &qv_glazing_layer_text::thermal_transmittance},
      {"Reflectance", "extsolar", &qv_glazing_layer_text::solar_reflectance_front},
      {"Reflectance", "intsolar", &qv_glazing_layer_text::solar_reflectance_back},
      {"Reflectance", "extvisible", &qv_glazing_layer_text::visible_reflectance_front},
      {"Reflectance", "intvisible", &qv_glazing_layer_text::visible_reflectance_back},
      {"Emittance", "extir", &qv_glazing_layer_text::thermal_emissivity_front},
      {"Emittance", "intir", &qv_glazing_layer_text::thermal_emissivity_back}};
  for (const qv_xml_element child : element) {
    const std::string type = lower_case(child.get_attribute("type"));
    for (const property& p : properties)
      if (child.is(p.element) && type == p.type && !(text.*p.member))
        text.*p.member = read_fraction(context, child);
  }
  return text;
}

std::string qv_glazing_layer_text::get_key() const {
  std::string key = is_gap ? "gap|" + gas + '|' + gas_words + '|' : "glaze|";
  for (const auto& value :
       {thickness, conductivity, solar_transmittance, solar_reflectance_front,
        solar_reflectance_back, visible_transmittance, visible_reflectance_front,
        visible_reflectance_back, thermal_transmittance, thermal_emissivity_front,
        thermal_emissivity_back}) {
    std::array<char, 40> digits{};
    if (value) std::snprintf(digits.data(), digits.size(), "%.9g", *value);
    key += digits.data();
    key += '|';
  }
  return key + name + '|';
}

qvi_glazing_layer* qv_make_glazing_layer(const qv_glazing_layer_text& text,
                                         std::string& assumptions) {
  qvi_glazing_layer* layer =
      text.is_gap ? make_gap(text, assumptions) : make_pane(text, assumptions);
  layer->set_name(text.name.empty() ? text.id : text.name);
  return layer;
}

qvi_glazing_glass* qv_make_pane_of_figures(const qv_opening_figures& figures) {
  auto* pane = new qvi_glazing_glass;
  const double g = figures.solar_factor.value();
  const double light = figures.visible_transmittance.value();
  pane->build_from_global_data(static_cast<float>(figures.u.value()), static_cast<float>(g),
                               static_cast<float>(light));
  // g = transmittance + absorptance × share, the absorptance being what is left of 1.
  const double inner = inner_surface_coefficient(pane->get_thermal_emissivity_back());
  const double share = inner / (inner + outer_surface_coefficient);
  double transmittance = pane->get_solar_transmittance();
  double reflectance = pane->get_solar_reflectance_front();
  if (transmittance < 0) {
    transmittance = 0;
    reflectance = 1 - g / share;
  } else if (transmittance + reflectance > 1) {
    transmittance = g;
    reflectance = 1 - g;
  }
  pane->set_solar_transmittance(static_cast<float>(transmittance));
  pane->set_solar_reflectance_front(static_cast<float>(reflectance));
  pane->set_solar_reflectance_back(static_cast<float>(reflectance));
  const float visible_reflectance = within(pane->get_visible_reflectance_front(), light);
  pane->set_visible_reflectance_front(visible_reflectance);
  pane->set_visible_reflectance_back(visible_reflectance);
  return pane;
}

}  // namespace qv
