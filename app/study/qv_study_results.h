#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "app/check/qv_finding.h"
#include "app/study/qv_heat_loss.h"
#include "app/study/qv_study_sun.h"

namespace qv {

// What a study found out, as plain values: nothing here knows an item or a scene, so that reports
// may be written, kept and compared after the model is gone. Lengths in m, areas in m², volumes in
// m³, angles in degrees, U values in W/(m².K), resistances in m².K/W. A value that cannot be known
// is absent, never 0.

/// The site. Latitude and longitude in degrees, north and east positive; azimuth of the model's +Y
/// axis, clockwise from north.
struct qv_study_location {
  std::optional<std::string> name;
  std::optional<double> latitude;
  std::optional<double> longitude;
  std::optional<double> azimuth;
  std::optional<double> elevation;
};

struct qv_study_zone {
  std::string name;
  std::vector<std::string> spaces;  // ids
};

struct qv_study_building {
  std::string name;
  std::string status;
  std::vector<float> floors;  // for each storey, the height under which the spaces of it begin
  float area = 0.0f;
  float volume = 0.0f;
  std::vector<qv_study_zone> zones;
  std::size_t space_count = 0;
};

struct qv_study_space {
  std::string id;
  std::string name;
  std::optional<std::string> building;
  std::optional<std::string> zone;
  std::optional<int> floor;  // 0 is the lowest storey
  float area = 0.0f;         // floor under more than 1.8 m of free height
  float volume = 0.0f;
  std::optional<double> stated_area;  // by the model file itself
  std::optional<double> stated_volume;
  std::string html;  // information panel
  /// Share of the rays from the space's surfaces that escape through holes; absent when it does not
  /// leak. Area and volume of a leaking space are not to be relied on.
  std::optional<double> leaking_share = std::nullopt;
};

struct qv_study_wall {
  std::string id;
  std::string name;
  std::string wall_type;
  std::string contact_type;
  std::optional<std::string> space_0;  // ids
  std::optional<std::string> space_1;
  float area = 0.0f;             // loss area
  std::optional<float> azimuth;  // of the outward normal, clockwise from +Y; absent when level
  std::optional<float> tilt;     // of the outward normal, from the upward vertical
  std::optional<float> u;
  std::optional<std::string> composition;
  std::optional<std::string> limit_condition;
  std::string boundary = "outside";  // or "space", or the typology of the limit condition
  std::optional<float> u_with_surfaces = std::nullopt;

  /// Whether the wall stands between one space and what is no space: it loses heat.
  bool is_loss() const { return space_0.has_value() && !space_1.has_value(); }
};

/// A segment along which walls meet.
struct qv_study_thermal_bridge {
  std::string id;
  std::string type;
  float length = 0.0f;
  std::optional<float> psi;        // W/(m.K)
  std::optional<double> loss;      // W/K
  std::vector<std::string> walls;  // ids
  std::vector<float> point_0;      // x, y, z
  std::vector<float> point_1;
  std::string insulation;  // where that of the façade lies
};

/// How a zone, or some spaces of it, are used. What its kind does not have is absent.
struct qv_study_usage {
  std::string zone;
  std::string kind;  // "heating_cooling", "ventilation", "lighting", "internal_gains"
  std::string name;
  std::vector<std::string> spaces;  // ids; none when the zone as a whole has it
  std::optional<std::string> unit_type;
  std::optional<float> persons;           // per m² or in total
  std::optional<float> person_heat_gain;  // W
  std::optional<float> power;             // of light or equipment: W/m², or W in total
  std::optional<float> flow;              // m³/(h.m²), m³/h, or 1/h
  std::optional<std::string> schedule;
  std::optional<std::string> occupation_schedule;
  std::optional<std::string> heating_period;
  std::vector<float> heating_range;  // lowest and highest set point, °C; none without heating
  std::optional<std::string> heating_schedule;
  std::optional<std::string> cooling_period;
  std::vector<float> cooling_range;
  std::optional<std::string> cooling_schedule;
};

/// A choice that a configuration changed.
struct qv_study_change {
  std::string element;  // "wall", "opening", "thermal_bridge"
  std::string id;       // of the source element, or a name
  std::string param;    // "composition", "psi"
  std::optional<std::string> before;
  std::optional<std::string> after;
};

struct qv_study_layer {
  std::string name;
  std::optional<float> thickness;
  std::optional<float> conductivity;
  std::optional<float> resistance;
};

struct qv_study_composition {
  std::string name;
  std::string typology;
  std::optional<float> u;
  std::optional<float> resistance;
  std::optional<float> thickness;
  std::vector<qv_study_layer> layers;  // outside first; of a floor, bottom first
};

struct qv_study_opening {
  std::string id;
  std::string name;
  std::optional<std::string> wall;  // id
  std::string opening_type;
  std::optional<std::string> composition;
  float glazing_area = 0.0f;
  float opaque_area = 0.0f;
  float frame_area = 0.0f;
  float full_area = 0.0f;
  // Absent where it is not known what fills the opening. Glazing with surface resistances, panels
  // without.
  std::optional<float> u;
  std::optional<float> solar_factor;           // 0 … 1
  std::optional<float> visible_transmittance;  // 0 … 1
  std::string html;                            // information panel
  /// "north", "east", "south", "west", "roof", "floor", "inside" (between spaces), "no space".
  std::string facing;
  /// Whether its wall loses heat.
  bool loses_heat = false;
};

/// What stands in the scene beside the rooms and casts shadows: a shade, a column, a neighbour.
struct qv_study_object {
  std::string id;
  std::string name;
  double area = 0.0;  // of all its faces
  std::string kind;   // "Shade", "FreestandingColumn", "EmbeddedColumn", "context"
};

/// A pane, a gap or a film. What only panes have is absent of gaps.
struct qv_study_glazing_layer {
  std::string name;
  std::string kind;  // "glass", "gas", "interlayer", "pv"
  float thickness = 0.0f;
  float conductivity = 0.0f;
  std::optional<std::string> gas;
  std::optional<float> solar_transmittance;
  std::optional<float> solar_reflectance_front;
  std::optional<float> solar_reflectance_back;
  std::optional<float> visible_transmittance;
  std::optional<float> visible_reflectance_front;
  std::optional<float> visible_reflectance_back;
  std::optional<float> emissivity_front;
  std::optional<float> emissivity_back;
};

struct qv_study_glazing {
  std::string name;
  float u_vertical = 0.0f;
  float u_horizontal = 0.0f;
  float u_inclined = 0.0f;
  float solar_factor = 0.0f;
  float visible_transmittance = 0.0f;
  float thickness = 0.0f;
  std::vector<qv_study_glazing_layer> layers;  // outside first
};

/// The outer walls that look to one quarter.
struct qv_study_facade {
  std::string orientation;
  std::size_t walls = 0;
  std::size_t openings = 0;
  double wall_area = 0.0;     // openings included
  double opening_area = 0.0;  // windows, doors and all
  double window_area = 0.0;   // glazing and frames

  /// Windows to walls; absent without walls.
  std::optional<double> get_window_to_wall_ratio() const;
};

/// Why openings could not be generated, and on how many walls.
struct qv_study_refusal {
  std::string reason;
  std::size_t walls = 0;
};

/// Openings made by the study itself.
struct qv_study_generation {
  bool asked = false;
  std::size_t made = 0;
  /// Outer walls that were left alone since they have openings of the file.
  std::size_t walls_with_openings = 0;
  std::vector<qv_study_refusal> refusals;
};

/// What became of one element of the model file.
struct qv_study_fate {
  std::string kind;
  std::string id;
  std::string outcome;
  std::string reason;
  std::optional<double> area;
  std::optional<double> cut = {};  // of the area, taken off an opening that was kept
};

/// How many elements of one kind ended in one way.
struct qv_study_tally {
  std::string kind;
  std::string outcome;
  std::size_t count = 0;
};

/// Where the area of the file's surfaces went: source = walls + objects + merged + dropped.
struct qv_study_balance {
  double source = 0.0;
  double walls = 0.0;    // of the walls made
  double shading = 0.0;  // of those among them that bound no space
  double merged = 0.0;   // said twice in the file, made once
  double dropped = 0.0;
  bool balanced = true;  // to 1e-6
  double objects = 0.0;  // of shades and columns
};

/// Where the area of the file's openings went: source = openings + merged + dropped + cut.
struct qv_study_opening_balance {
  double source = 0.0;
  double openings = 0.0;
  double merged = 0.0;
  double dropped = 0.0;
  double cut = 0.0;      // outside of walls or within other openings
  bool balanced = true;  // to 1e-5
};

struct qv_study_ledger {
  std::vector<qv_study_tally> tallies;  // every kind with every outcome, kind by kind
  qv_study_balance balance;
  qv_study_opening_balance opening_balance;
  std::vector<qv_study_fate> fates;
};

struct qv_study_results {
  std::string source;  // the model file, as the user named it
  qv_study_location location;
  std::vector<qv_study_building> buildings;
  std::vector<qv_study_space> spaces;
  std::vector<qv_study_wall> walls;
  std::vector<qv_study_composition> compositions;
  std::vector<qv_study_opening> openings;
  std::vector<qv_study_object> objects;
  std::vector<qv_study_glazing> glazings;
  std::vector<qv_study_facade> facades;
  qv_study_generation generation;
  std::vector<qv_study_thermal_bridge> thermal_bridges;
  std::vector<qv_study_usage> usages;
  std::vector<qv_study_change> changes;  // by a configuration
  qv_heat_loss heat_loss;
  std::string psi_catalogue;  // where the ψ values come from
  qv_study_sun sun;
  qv_study_ledger ledger;
  std::vector<qv_finding> findings;  // of the check of the model
  int closed_space_count = 0;        // spaces whose surfaces leave no gap
  std::vector<std::string> notes;    // what the user should know of this study, a sentence each
  std::vector<std::string> context_notes;  // those among them of the files that stand around
  std::string model_json;                  // buildings, zones and spaces with their geometry

  /// Sums over the spaces, m² and m³.
  double get_area() const;
  double get_volume() const;
  /// Area of the walls between a space and what is no space and of the openings in them, m².
  double get_loss_area() const;
  /// Of these openings alone, m².
  double get_loss_opening_area() const;
};

}  // namespace qv
