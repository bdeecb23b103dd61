#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

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

  /// Whether the wall stands between one space and what is no space: it loses heat.
  bool is_loss() const { return space_0.has_value() && !space_1.has_value(); }
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

/// What became of one element of the model file.
struct qv_study_fate {
  std::string kind;
  std::string id;
  std::string outcome;
  std::string reason;
  std::optional<double> area;
};

/// How many elements of one kind ended in one way.
struct qv_study_tally {
  std::string kind;
  std::string outcome;
  std::size_t count = 0;
};

/// Where the area of the file's surfaces went: source = walls + merged + dropped.
struct qv_study_balance {
  double source = 0.0;
  double walls = 0.0;    // of the walls made, shading included
  double shading = 0.0;  // of those among them that bound no space
  double merged = 0.0;   // said twice in the file, made once
  double dropped = 0.0;
  bool balanced = true;  // to 1e-6
};

struct qv_study_ledger {
  std::vector<qv_study_tally> tallies;  // every kind with every outcome, kind by kind
  qv_study_balance balance;
  std::vector<qv_study_fate> fates;
};

struct qv_study_results {
  std::string source;  // the model file, as the user named it
  qv_study_location location;
  std::vector<qv_study_building> buildings;
  std::vector<qv_study_space> spaces;
  std::vector<qv_study_wall> walls;
  std::vector<qv_study_composition> compositions;
  qv_study_ledger ledger;
  int closed_space_count = 0;      // spaces whose surfaces leave no gap
  std::vector<std::string> notes;  // what the user should know of this study, a sentence each
  std::string model_json;          // buildings, zones and spaces with their geometry

  /// Sums over the spaces, m² and m³.
  double get_area() const;
  double get_volume() const;
  /// Area of the walls between a space and what is no space, m².
  double get_loss_area() const;
};

}  // namespace qv
