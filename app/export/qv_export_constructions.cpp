#include "app/export/qv_export_constructions.h"

#include <cmath>

#include "app/report/qv_report_value.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_material.h"
#include "core/items/qv_scene.h"

namespace qv {
namespace {

// The reader turns the layers of a floor between two spaces over when its normal points up.
bool is_reversed(const qvi_wall& wall) {
  return wall.get_space_1() != nullptr && wall.get_wall_type() == qvi_wall::wall_type::floor &&
         wall.get_normal().z > 0;
}

}  // namespace

std::string qv_construction_export::get_id(const qvi_wall& wall) {
  if (wall.get_composition() == nullptr) return {};
  return get_id(wall.get_composition(), is_reversed(wall));
}

std::string qv_construction_export::get_id(qvi_composition* composition, bool reversed) {
  const auto next = "construction-" + std::to_string(constructions_.size() + 1);
  return constructions_.try_emplace({composition, reversed}, next).first->second;
}

void qv_construction_export::write(qv_xml_writer& xml) {
  for (qv_item* item : scene_.get_items("composition")) {
    auto* const composition = static_cast<qvi_composition*>(item);
    if (!constructions_.contains({composition, false}) &&
        !constructions_.contains({composition, true}))
      get_id(composition, false);
  }
  for (qv_item* item : scene_.get_items("composition")) {
    for (const bool reversed : {false, true}) {
      const key which{static_cast<qvi_composition*>(item), reversed};
      const auto found = constructions_.find(which);
      if (found == constructions_.end()) continue;
      const std::string layers = "layers-of-" + found->second;
      const bool has_layers = !which.first->get_layers().is_empty();
      xml.begin("Construction", {{"id", found->second}});
      xml.leaf("Name", which.first->get_name());
      if (has_layers) {
        xml.begin("LayerId", {{"layerIdRef", layers}});
        xml.end();
      }
      xml.end();
      if (has_layers) write_layers(which, layers, xml);
    }
  }
  write_materials(xml);
}

void qv_construction_export::write_layers(const key& which, const std::string& id,
                                          qv_xml_writer& xml) {
  const auto& [composition, reversed] = which;
  xml.begin("Layer", {{"id", id}});
  const int count = composition->get_layers().get_count();
  for (int i = 0; i < count; ++i) {
    const std::string material = material_of(*composition, reversed ? count - 1 - i : i);
    if (material.empty()) continue;
    xml.begin("MaterialId", {{"materialIdRef", material}});
    xml.end();
  }
  xml.end();
}

std::string qv_construction_export::material_of(qvi_composition& composition, int index) {
  qvi_matter* const matter = composition.get_layers()[index];
  if (matter == nullptr) return {};
  const float thickness = composition.get_layer_thickness(index);
  const auto next = "material-" + std::to_string(materials_.size() + 1);
  const auto [slot, fresh] = material_ids_.try_emplace({matter, thickness}, next);
  if (fresh) materials_.emplace_back(matter, thickness);
  return slot->second;
}

void qv_construction_export::write_materials(qv_xml_writer& xml) const {
  for (std::size_t i = 0; i < materials_.size(); ++i) {
    const auto& [matter, thickness] = materials_[i];
    xml.begin("Material", {{"id", "material-" + std::to_string(i + 1)}});
    xml.leaf("Name", matter->get_name());
    const auto number = [&xml](const char* name, float value, const char* unit) {
      if (std::isfinite(value) && value > 0)
        xml.leaf(name, qv_number_text(value), {{"unit", unit}});
    };
    if (matter->has_type("material"))
      number("R-value", static_cast<qvi_material*>(matter)->get_resistance(), "SquareMeterKPerW");
    number("Thickness", thickness, "Meters");
    number("Conductivity", matter->get_conductivity(), "WPerMeterK");
    number("Density", matter->get_density(), "KgPerCubicM");
    number("SpecificHeat", matter->get_specific_heat(), "JPerKgK");
    xml.end();
  }
}

}  // namespace qv
