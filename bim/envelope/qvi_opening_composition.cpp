#include "bim/envelope/qvi_opening_composition.h"

#include "bim/qv_panel.h"
#include "core/items/qv_scene.h"

namespace qv {

namespace {

// In the order of opening_composition_typology. "Striple" is the panel's own spelling.
constexpr std::string_view typology_labels[] = {
    "Simple vitrage", "Double vitrage", "Striple vitrage", "Porte", "Lanterneau", "Autre"};

// "Calculé" and "Calculée" in Windows-1252, where é is the byte E9, amid a panel in UTF-8:
// deliberate, the panel's readers expect these bytes.
constexpr std::string_view computed = "Calcul\xE9";
constexpr std::string_view computed_feminine =
    "Calcul\xE9"
    "e";

std::string_view get_label(qvi_opening_composition::opening_composition_typology typology) {
  const auto index = static_cast<std::size_t>(typology);
  return typology_labels[index < std::size(typology_labels) ? index
                                                            : std::size(typology_labels) - 1];
}

std::string percentage(float fraction) {
  return panel::truncated(fraction * 100.0f) + " %";
}

}  // namespace

QV_ITEM_CLASS_IMPLEMENTATION(qvi_opening_composition)

int qvi_opening_composition::get_opening_count() const {
  qv_scene* const scene = get_scene();
  return scene == nullptr ? 0 : scene->get_referrers("opening", "composition", this).get_count();
}

std::string qvi_opening_composition::get_html_information() {
  std::string html = panel::title(get_name());
  html += panel::table_start;
  html += panel::row("Typologie :", get_label(get_typology()));
  html += panel::row("U :", get_forced_U() >= 0.0f
                                ? panel::fixed(get_forced_U(), 3) + " W/m<sup>2</sup>/K"
                                : std::string(computed));
  const bool solar_factor_forced = get_forced_solar_factor() >= 0.0f;
  html +=
      panel::row("Facteur solaire :", solar_factor_forced ? percentage(get_forced_solar_factor())
                                                          : std::string(computed));
  // The row of the light asks whether the sun is forced: deliberate, both come from one data sheet.
  html += panel::row("Transmission lumineuse :",
                     solar_factor_forced ? percentage(get_forced_visible_transmittance())
                                         : std::string(computed_feminine));
  return html.append(panel::table_end);
}

}  // namespace qv
