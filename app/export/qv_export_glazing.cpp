#include "app/export/qv_export_glazing.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "app/readers/qv_gbxml_glazing_layers.h"
#include "app/report/qv_report_value.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_glass.h"

namespace qv {
namespace {

/// An element of a Glaze that holds a share.
struct share {
  const char* element;
  const char* type;
  float value;
};

std::array<share, 9> list_shares(const qvi_glazing_glass& pane) {
  return {{{"Transmittance", "Solar", pane.get_solar_transmittance()},
           {"Reflectance", "ExtSolar", pane.get_solar_reflectance_front()},
           {"Reflectance", "IntSolar", pane.get_solar_reflectance_back()},
           {"Transmittance", "Visible", pane.get_visible_transmittance()},
           {"Reflectance", "ExtVisible", pane.get_visible_reflectance_front()},
           {"Reflectance", "IntVisible", pane.get_visible_reflectance_back()},
           {"Transmittance", "IR", pane.get_thermal_transmittance()},
           {"Emittance", "ExtIR", pane.get_thermal_emissivity_front()},
           {"Emittance", "IntIR", pane.get_thermal_emissivity_back()}}};
}

bool is_sayable(const qvi_glazing_layer& layer) {
  if (!(layer.get_thickness() > 0)) return false;
  // Solar cells and films are kinds of panes and of layers that the format does not know.
  if (layer.has_exact_type("glazing_gaz"))
    return static_cast<const qvi_glazing_gaz&>(layer).get_gaz_type() <=
           qvi_glazing_gaz::gaz_type::sf6;
  if (!layer.has_exact_type("glazing_glass") || !(layer.get_conductivity() > 0)) return false;
  const auto shares = list_shares(static_cast<const qvi_glazing_glass&>(layer));
  return std::all_of(shares.begin(), shares.end(),
                     [](const share& s) { return s.value >= 0 && s.value <= 1; });
}

// Whether the pane is the one that a reader makes of its figures.
bool stands_for_figures(qvi_glazing& glazing, const qvi_glazing_glass& pane) {
  constexpr float upright = 90;      // degrees
  constexpr float rounding = 1e-3f;  // what figures in single precision leave, relative
  qv_opening_figures figures;
  figures.u = glazing.get_U(upright);
  figures.solar_factor = glazing.get_solar_factor();
  figures.visible_transmittance = glazing.get_visible_transmittance();
  qvi_glazing_glass* const made = qv_make_pane_of_figures(figures);
  const auto is_near = [](float a, float b) {
    return std::fabs(a - b) <= rounding * std::max(1e-3f, std::fabs(b));
  };
  const auto of_pane = list_shares(pane);
  const auto of_made = list_shares(*made);
  const bool alike =
      is_near(pane.get_thickness(), made->get_thickness()) &&
      is_near(pane.get_conductivity(), made->get_conductivity()) &&
      std::equal(of_pane.begin(), of_pane.end(), of_made.begin(),
                 [&](const share& a, const share& b) { return is_near(a.value, b.value); });
  qv_item::destroy(made);
  return alike;
}

}  // namespace

bool qv_has_gbxml_layers(qvi_glazing& glazing) {
  const qv_list<qvi_glazing_layer*>& layers = glazing.get_layers();
  if (layers.get_count() == 1 && layers[0] != nullptr && layers[0]->has_type("glazing_glass") &&
      stands_for_figures(glazing, static_cast<const qvi_glazing_glass&>(*layers[0])))
    return false;
  return std::any_of(layers.begin(), layers.end(),
                     [](const qvi_glazing_layer* layer) {
                       return layer != nullptr && layer->has_type("glazing_glass");
                     }) &&
         std::all_of(layers.begin(), layers.end(), [](const qvi_glazing_layer* layer) {
           return layer != nullptr && is_sayable(*layer);
         });
}

void qv_write_gbxml_layers(const qvi_glazing& glazing, const std::string& id, qv_xml_writer& xml) {
  int number = 0;
  for (const qvi_glazing_layer* layer : glazing.get_layers()) {
    const std::string layer_id = id + "-layer-" + std::to_string(++number);
    const bool is_gap = layer->has_type("glazing_gaz");
    if (is_gap) {
      const auto gas = static_cast<const qvi_glazing_gaz*>(layer)->get_gaz_type();
      std::string word = qvi_glazing_gaz::get_gaz_type_list()[static_cast<int>(gas)];
      word[0] = static_cast<char>(word[0] - 'a' + 'A');
      xml.begin("Gap",
                {{"id", layer_id}, {"gas", gas == qvi_glazing_gaz::gaz_type::sf6 ? "SF6" : word}});
    } else {
      xml.begin("Glaze", {{"id", layer_id}});
    }
    if (!layer->get_name().empty()) xml.leaf("Name", layer->get_name());
    xml.leaf("Thickness", qv_number_text(layer->get_thickness()), {{"unit", "Meters"}});
    if (!is_gap) {
      xml.leaf("Conductivity", qv_number_text(layer->get_conductivity()), {{"unit", "WPerMeterK"}});
      for (const share& s : list_shares(static_cast<const qvi_glazing_glass&>(*layer)))
        xml.leaf(s.element, qv_number_text(s.value), {{"unit", "Fraction"}, {"type", s.type}});
    }
    xml.end();
  }
}

}  // namespace qv
