#pragma once

#include <optional>
#include <string>

#include "app/readers/qv_gbxml_context.h"

namespace qv {

class qvi_glazing_glass;
class qvi_glazing_layer;

/// The three figures of a window's data sheet, as far as they are stated.
struct qv_opening_figures {
  std::optional<double> u;                      // W/(m²·K), above 0
  std::optional<double> solar_factor;           // 0 … 1, at normal incidence
  std::optional<double> visible_transmittance;  // 0 … 1

  bool any() const { return u || solar_factor || visible_transmittance; }
  bool all() const { return u && solar_factor && visible_transmittance; }
};

/// The U-value, SolarHeatGainCoeff and visible Transmittance children of a WindowType or Opening.
///
/// Of several solar heat gain coefficients that at normal incidence counts, else the one without an
/// angle, else the first. A U of 0 is none; where it comes with a solar factor and a transmittance
/// of 0 or none, nothing is stated.
qv_opening_figures qv_read_opening_figures(qv_gbxml_context& context, qv_xml_element element);

/// A Glaze or Gap element, as far as it says anything. Fractions 0 … 1.
struct qv_glazing_layer_text {
  bool is_gap = false;
  std::string id;
  std::string name;
  std::optional<double> thickness;     // m
  std::optional<double> conductivity;  // W/(m·K)
  std::string gas;                     // the attribute, of a gap
  std::string gas_words;               // what else may name the gas
  std::optional<double> solar_transmittance;
  std::optional<double> solar_reflectance_front;
  std::optional<double> solar_reflectance_back;
  std::optional<double> visible_transmittance;
  std::optional<double> visible_reflectance_front;
  std::optional<double> visible_reflectance_back;
  std::optional<double> thermal_transmittance;
  std::optional<double> thermal_emissivity_front;
  std::optional<double> thermal_emissivity_back;

  /// All of it in one text, the same for the same layer.
  std::string get_key() const;
};

/// Reads a Glaze or Gap. Numbers that are no fractions are left out with a warning.
qv_glazing_layer_text qv_read_glazing_layer(qv_gbxml_context& context, qv_xml_element element);

/// What a pane or a gap is taken for where the file does not say: 4 mm of clear float glass, with
/// conductivity and emissivity of EN 673:2011 (uncoated soda lime glass) and usual optical figures
/// of makers; 12 mm of air.
namespace assumed_pane {
inline constexpr double thickness = 0.004;
inline constexpr double conductivity = 1.0;
inline constexpr double emissivity = 0.837;
inline constexpr double thermal_transmittance = 0;
inline constexpr double solar_transmittance = 0.85;
inline constexpr double solar_reflectance = 0.08;
inline constexpr double visible_transmittance = 0.90;
inline constexpr double visible_reflectance = 0.08;
inline constexpr double gap_thickness = 0.012;
}  // namespace assumed_pane

/// The layer item. `assumptions` gets, in words, what the file does not say or says wrongly.
qvi_glazing_layer* qv_make_glazing_layer(const qv_glazing_layer_text& text,
                                         std::string& assumptions);

/// A single pane that shows the three figures, all of which must be stated.
///
/// `qvi_glazing_glass::build_from_global_data` with two corrections where its fixed reflectance of
/// 0.2 would ask for a transmittance below 0 or for more than arrives: the reflectance then follows
/// from the solar factor. A U above what the surfaces alone let through stays out of reach.
qvi_glazing_glass* qv_make_pane_of_figures(const qv_opening_figures& figures);

}  // namespace qv
