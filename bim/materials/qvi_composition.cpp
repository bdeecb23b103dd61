#include "bim/materials/qvi_composition.h"

#include <algorithm>
#include <cmath>

#include "bim/materials/qvi_material.h"
#include "bim/qv_panel.h"
#include "core/items/qv_scene.h"
#include "utilities/qv_date.h"

namespace qv {

namespace {

// m, of a layer that has no thickness yet.
constexpr float usual_layer_thickness = 0.1f;
// K·m²/W; a build-up that resists less is taken for none.
constexpr float least_resistance = 0.001f;
// W/(m²·K); below, the panel shows the largest resistance instead of an inverse.
constexpr float least_U = 0.001f;
// Shown and kept where there is nothing to take the inverse of.
constexpr float no_inverse = 999.0f;

const char* get_typology_label(qvi_composition::composition_typology typology) {
  switch (typology) {
    case qvi_composition::composition_typology::wall:
      return "Mur";
    case qvi_composition::composition_typology::floor:
      return "Plancher";
    case qvi_composition::composition_typology::roof:
      return "Toiture";
  }
  return "";
}

const char* get_insulation_label(qvi_composition::composition_insulation insulation) {
  switch (insulation) {
    case qvi_composition::composition_insulation::none:
      return "Aucune";
    case qvi_composition::composition_insulation::interior:
      return "Intérieure";
    case qvi_composition::composition_insulation::exterior:
      return "Extérieure";
    case qvi_composition::composition_insulation::integrated:
      return "Intégrée";
  }
  return "";
}

bool is_material(const qvi_matter* layer) {
  return layer != nullptr && layer->has_type("material");
}

/// Two thicknesses that are not numbers do not differ: writing one for the other would never end.
bool differ(float a, float b) {
  return a != b && !(std::isnan(a) && std::isnan(b));
}

std::string millimetres(float metres) {
  return panel::truncated(metres * 1000.0f);
}

}  // namespace

QV_ITEM_CLASS_IMPLEMENTATION(qvi_composition)

float qvi_composition::get_layer_thickness(int index) {
  const qv_list<qvi_matter*> layers = get_layers();
  if (index < 0 || index >= layers.get_count()) return 0.0f;
  if (is_material(layers[index])) {
    return static_cast<qvi_material*>(layers[index])->get_thickness();
  }
  const qv_list<float>& thicknesses = get_layer_thicknesses();
  return index < thicknesses.get_count() ? thicknesses[index] : 0.0f;
}

int qvi_composition::get_wall_count() {
  if (get_scene() == nullptr) return 0;
  return get_scene()->get_referrers("wall", "composition", this).get_count();
}

bool qvi_composition::has_selected_layer() {
  const qv_list<qvi_matter*> layers = get_layers();
  return std::any_of(layers.begin(), layers.end(), [](const qvi_matter* layer) {
    return layer != nullptr && layer->is_selected();
  });
}

bool qvi_composition::is_similar_to(qv_item* other, bool compare_names) {
  if (other == this) return true;
  if (other == nullptr || other->get_item_type() != get_item_type()) return false;
  auto* const composition = static_cast<qvi_composition*>(other);
  if (composition->get_typology() != get_typology()) return false;
  if (composition->get_insulation() != get_insulation()) return false;
  if (compare_names && composition->get_name() != get_name()) return false;

  const qv_list<qvi_matter*> mine = get_layers();
  const qv_list<qvi_matter*> theirs = composition->get_layers();
  return std::equal(mine.begin(), mine.end(), theirs.begin(), theirs.end(),
                    [compare_names](qvi_matter* a, qvi_matter* b) {
                      return a == b || (a != nullptr && a->is_similar_to(b, compare_names));
                    });
}

/// A layer that is gone adds nothing.
qvi_composition::layer_values qvi_composition::get_layer_values(const qvi_matter* layer,
                                                                float stated_thickness) {
  if (layer == nullptr) return {};
  if (is_material(layer)) {
    const auto* const material = static_cast<const qvi_material*>(layer);
    return {material->get_thickness(), material->get_resistance()};
  }
  return {stated_thickness, stated_thickness / layer->get_conductivity()};
}

void qvi_composition::precompute() {
  qv_item::precompute();
  if (get_scene() != nullptr && results_->date >= get_scene()->get_date()) return;

  const qv_list<qvi_matter*> layers = get_layers();
  qv_list<float> thicknesses = get_layer_thicknesses();
  bool changed = thicknesses.get_count() != layers.get_count();
  if (thicknesses.get_count() > layers.get_count()) thicknesses.resize(layers.get_count());
  while (thicknesses.get_count() < layers.get_count()) thicknesses.append(usual_layer_thickness);

  results_->thickness = 0.0f;
  results_->resistance = 0.0f;
  for (int i = 0; i < layers.get_count(); ++i) {
    const layer_values layer = get_layer_values(layers[i], thicknesses[i]);
    if (is_material(layers[i]) && differ(thicknesses[i], layer.thickness)) {
      thicknesses[i] = layer.thickness;
      changed = true;
    }
    results_->thickness += layer.thickness;
    results_->resistance += layer.resistance;
  }
  results_->U = results_->resistance > least_resistance ? 1.0f / results_->resistance : no_inverse;
  if (changed) set_layer_thicknesses(thicknesses);
  results_->date = qv_get_date();
}

std::string qvi_composition::get_html_information() {
  const float resistance = get_U() > least_U ? 1.0f / get_U() : no_inverse;
  std::string html = panel::title(get_name()).append(panel::table_start);
  html += panel::row("Typologie :", get_typology_label(get_typology()));
  // The insulation stands under the typology's caption, as readers of the panel expect it.
  html += panel::row("Typologie :", get_insulation_label(get_insulation()));
  html += panel::row("Epaisseur :", millimetres(get_thickness()) + " mm");
  html += panel::row("Résistance :", panel::fixed(resistance, 3) + " K.m<sup>2</sup>/W");
  html += panel::row("U :", panel::fixed(get_U(), 3) + " W/m/K");
  html.append(panel::table_end);
  html += get_typology() == composition_typology::wall
              ? "Liste des couches de l'extérieur vers l'intérieur :"
              : "Liste des couches du haut vers le bas :";
  return html + get_layer_table();
}

std::string qvi_composition::get_layer_table() {
  const qv_list<qvi_matter*> layers = get_layers();
  const qv_list<float>& thicknesses = get_layer_thicknesses();
  const int count = layers.get_count();
  const bool upwards = get_typology() == composition_typology::floor;
  layer_values total;
  std::string html =
      "<table width=100% border=2><tr><td><b>Matériau</b></td><td align=right><b>Ep. (mm)</b></td>"
      "<td align=right><b>R (K.m²/W)</b></td></tr>";
  for (int row = 0; row < count; ++row) {
    const int i = upwards ? count - 1 - row : row;
    const layer_values layer =
        get_layer_values(layers[i], i < thicknesses.get_count() ? thicknesses[i] : 0.0f);
    html += "<tr><td>" + (layers[i] == nullptr ? std::string() : layers[i]->get_name()) + "</td>";
    html += "<td align=right>" + millimetres(layer.thickness) + "</td>";
    html += "<td align=right>" + panel::fixed(layer.resistance, 3) + "</td></tr>";
    total.thickness += layer.thickness;
    total.resistance += layer.resistance;
  }
  html += "<tr><td><b>Total :</b></td>";
  html += "<td align=right><b>" + millimetres(total.thickness) + "</b></td>";
  html += "<td align=right><b>" + panel::fixed(total.resistance, 3) + "</b></td></tr>";
  return html.append(panel::table_end);
}

}  // namespace qv
