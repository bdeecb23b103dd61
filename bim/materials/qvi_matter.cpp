#include "bim/materials/qvi_matter.h"

#include "bim/qv_panel.h"
#include "core/items/qv_scene.h"

namespace qv {

namespace {

/// Inner facings are shown as "Autre" like everything after them: the labels are one short, and
/// shown panels rely on it.
const char* get_typology_label(qvi_matter::material_typology typology) {
  switch (typology) {
    case qvi_matter::material_typology::heavy_structure:
      return "Structure lourde";
    case qvi_matter::material_typology::light_structure:
      return "Structure légère";
    case qvi_matter::material_typology::insulator:
      return "Isolant";
    case qvi_matter::material_typology::facing:
      return "Parement";
    case qvi_matter::material_typology::inner_facing:
    case qvi_matter::material_typology::other:
      break;
  }
  return "Autre";
}

}  // namespace

QV_ITEM_CLASS_COPYING(qvi_matter)

qvi_matter::qvi_matter() {
  set_diffuse_color(qv_color(0.8f, 0.8f, 0.8f, 1.0f));
  for (qv_spectrum spectrum : {qv_spectrum::solar, qv_spectrum::visible, qv_spectrum::thermal}) {
    set_direct_reflexion(0.0f, spectrum);
    set_direct_transmission(0.0f, spectrum);
    set_diffuse_reflexion(0.4f, spectrum);
    set_diffuse_transmission(0.0f, spectrum);
  }
}

int qvi_matter::get_composition_count() {
  if (get_scene() == nullptr) return 0;
  return get_scene()->get_referrers("composition", "layers", this).get_count();
}

std::string qvi_matter::get_html_information() {
  return get_panel_head() + get_panel_tail();
}

std::string qvi_matter::get_panel_head() {
  return panel::title(get_name()).append(panel::table_start) +
         panel::row("Typologie :", get_typology_label(get_typology()));
}

std::string qvi_matter::get_panel_tail() {
  std::string html;
  html += panel::row("Conductivité :", panel::fixed(get_conductivity(), 3) + " W/m/K");
  html += panel::row("Chaleur massique :", panel::truncated(get_specific_heat()) + " J/(Kg.K)");
  html += panel::row("Masse volumique :", panel::truncated(get_density()) + " Kg/m<sup>3</sup>");
  html += panel::row("Albedo :", panel::fixed(get_diffuse_reflexion(qv_spectrum::solar), 2));
  html += panel::row("Reflectance visible :",
                     panel::fixed(get_diffuse_reflexion(qv_spectrum::visible), 2));
  html += panel::row("Emissivité thermique :",
                     panel::fixed(get_diffuse_reflexion(qv_spectrum::thermal), 2));
  return html.append(panel::table_end);
}

}  // namespace qv
