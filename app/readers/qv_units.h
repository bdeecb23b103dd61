#pragma once

#include <optional>
#include <string_view>

namespace qv {

/// What a number of a building file measures.
enum class qv_quantity : int {
  length,
  area,
  volume,
  temperature,
  conductivity,
  density,
  specific_heat,
  thermal_resistance,
  thermal_transmittance
};

/// A unit of measure: value × factor + offset is the same quantity in the unit that the model
/// uses: m, m², m³, °C, W/(m·K), kg/m³, J/(kg·K), m²·K/W, W/(m²·K).
struct qv_unit {
  double factor = 1;
  double offset = 0;

  double to_model(double value) const { return value * factor + offset; }
};

/// The unit that gbXML calls `name` ("Feet", "SquareMeters", "HrSquareFtFPerBTU", …).
///
/// Upper and lower case, blanks, hyphens and underscores make no difference; British spelling,
/// singular forms and the usual symbols (m, ft, …) are understood too. Nothing for an unknown name.
///
/// Imperial units are the international ones: foot 0.3048 m, pound 0.45359237 kg, British thermal
/// unit 1055.05585262 J (International Steam Table, ISO 31-4).
std::optional<qv_unit> qv_find_unit(qv_quantity quantity, std::string_view name);

}  // namespace qv
