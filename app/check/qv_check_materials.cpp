#include <fmt/format.h>

#include "app/check/qv_check_scope.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_matter.h"

namespace qv {
namespace {

constexpr float largest_conductivity = 500;     // W/(m·K); above copper and silver
constexpr float largest_density = 25000;        // kg/m³; above osmium
constexpr float largest_specific_heat = 15000;  // J/(kg·K); above hydrogen

void check_largest(qv_check_scope& scope, const qvi_matter* matter, const char* what, float value,
                   float largest, const char* unit) {
  if (value <= largest) return;
  scope.add("impossible-material", "Material", matter->get_name(),
            fmt::format("its {} is {:g} {}, more than {:g}", what, value, unit, largest));
}

}  // namespace

void qv_check_materials(qv_check_scope& scope) {
  for (qv_item* item : scope.get_model().scene->get_items("composition")) {
    if (static_cast<qvi_composition*>(item)->get_layers().is_empty())
      scope.add("composition-without-layers", "Construction", item->get_name(),
                "it has no layer and no U-value: what it is made of is not known");
  }
  for (const qv_source_flaw& flaw : scope.get_model().flaws) {
    if (flaw.what == qv_source_flaw::kind::impossible_value)
      scope.add("impossible-material", "Material", flaw.id, flaw.words);
  }
  for (qv_item* item : scope.get_model().scene->get_items("matter")) {
    const auto* matter = static_cast<qvi_matter*>(item);
    check_largest(scope, matter, "Conductivity", matter->get_conductivity(), largest_conductivity,
                  "W/(m.K)");
    check_largest(scope, matter, "Density", matter->get_density(), largest_density, "kg/m³");
    check_largest(scope, matter, "SpecificHeat", matter->get_specific_heat(), largest_specific_heat,
                  "J/(kg.K)");
  }
}

}  // namespace qv
