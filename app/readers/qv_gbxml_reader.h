#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/readers/qv_import_ledger.h"
#include "app/readers/qv_input_error.h"
#include "core/items/qv_scene.h"

namespace qv {

class qvi_bim_root;
class qvi_schedule;
class qvi_space;
class qvi_wall;

/// Units that the file states at its root, as it writes them; empty when it states none.
struct qv_source_units {
  std::string length;
  std::string area;
  std::string volume;
  std::string temperature;
};

/// Where a campus stands. What the file does not say is absent.
struct qv_site_location {
  std::string campus_id;
  std::string name;
  std::optional<double> latitude;   // degrees, north positive
  std::optional<double> longitude;  // degrees, east positive
  std::optional<double> elevation;  // m
  /// Degrees clockwise by which the model's +Y turns away from north.
  std::optional<double> model_azimuth;
};

struct qv_storey_level {
  std::string id;
  std::string name;
  /// Id of the building that lists the storey.
  std::string building_id;
  std::optional<double> level;  // m
};

/// What the file says of a thermal zone, beside the item made from it.
struct qv_source_zone {
  std::string id;
  std::string name;
  std::optional<double> heating_temperature;  // °C
  std::optional<double> cooling_temperature;  // °C
};

/// What the file says of a space, and what its own surfaces enclose.
struct qv_source_space {
  std::string id;
  qvi_space* item = nullptr;
  std::string storey_id;
  /// Its conditionType, "HeatedAndCooled" or another; empty when the file does not say.
  std::string condition;
  std::optional<double> stated_area;    // m²
  std::optional<double> stated_volume;  // m³
  /// Volume of the ShellGeometry (divergence theorem), m³: negative when the shell is inside out.
  std::optional<double> shell_volume;
  /// Number of SpaceBoundary elements, and of those that name a surface which is not there.
  int boundary_count = 0;
  int dangling_boundary_count = 0;
  /// Number of walls of which one side or both are this space's.
  int surface_count = 0;
  /// True when these surfaces, turned outwards, leave no edge open: the volume is then exact.
  bool closed = false;
  /// Volume that the surfaces enclose (divergence theorem over the turned polygons, double
  /// precision), m³. Meaningful only when closed; otherwise what the formula gives.
  double enclosed_volume = 0;
  /// Area of those walls that are floors of this space (including floor under low ceilings), m².
  double floor_area = 0;
};

/// What the file says of a schedule, beside the item made from it.
struct qv_source_schedule {
  qvi_schedule* item = nullptr;
  /// Of what its values are: "Fraction", "Temp" or another word of gbXML.
  std::string type;
  /// The first date that it speaks of, "2015-01-01", in whose year its weeks lie.
  std::string begin_date;
};

/// Something wrong in the file that the reader mended or put up with.
struct qv_source_flaw {
  enum class kind : int {
    /// A Surface's polygon looks into its first space; it was turned.
    polygon_faces_its_space,
    /// Its corners lie farther from a plane than rounding explains.
    polygon_not_plane,
    /// It bounds nothing: no area, thinner than a hair, coordinates that are none.
    polygon_degenerate,
    /// A Surface that is no shade names no space, or none that is there.
    names_no_space,
    /// A Material's value that no substance has; it was left out.
    impossible_value
  };
  kind what = kind::polygon_not_plane;
  /// Id of the Surface or Material.
  std::string id;
  /// The particulars, "its Density is -3"; empty where the kind says it all.
  std::string words;
};

/// A model read from a file.
///
/// The scene holds one `qvi_bim_root`. Under it, in the order of the file: materials, compositions,
/// and a `qvi_campus` for each Campus with its buildings, zones, spaces and walls. A space without
/// a zone of its own (none named, or one that is not there) joins a zone "Zone N-1" made for
/// building N, so that a file's building owns all its spaces through zones; without a building in
/// the file a space without a zone stays so.
///
/// Every item bears the id of its source element as unique id and, where its class has them, among
/// "source_ids". Shades and columns that bound no space are `qvi_bim_object`s, with their
/// surfaceType as "source_type"; other surfaces of no space are walls without spaces. Both cast
/// shadows and take no part in measuring. Openings stand beside their walls, after all of these; a
/// wall with openings keeps its whole face, hidden, and shows the pierced one.
struct qv_gbxml_model {
  // Declared in this order so that the scene outlives what points into it.
  std::unique_ptr<qv_scene> scene;
  qvi_bim_root* root = nullptr;
  qv_import_ledger ledger;
  qv_source_units units;
  /// What wrote the file, as it says: "Autodesk Revit 2025 2025.0"; empty when it does not.
  std::string program;
  std::vector<qv_site_location> locations;
  std::vector<qv_source_space> spaces;
  std::vector<qv_source_zone> zones;
  std::vector<qv_source_schedule> schedules;
  std::vector<qv_storey_level> storeys;
  /// Those made from surfaces that the file says to stand in the ground.
  std::vector<qvi_wall*> underground_walls;
  /// Number of Building elements: with none, grouping spaces into buildings is the caller's.
  int building_count = 0;
  /// Metres that were taken off every coordinate because the model lies too far from the origin for
  /// single precision; (0, 0, 0) otherwise.
  double origin[3] = {0, 0, 0};
  /// In the order in which the reader met them.
  std::vector<qv_source_flaw> flaws;
  /// What is odd about the file but did not stop the reading, one line each with its place.
  std::vector<std::string> warnings;
};

/// Reads a gbXML file.
///
/// Throws `qv_input_error`: no access for a file that is missing, a directory or unreadable; bad
/// input for content that is not well-formed XML, is no gbXML, has no surface, uses an unknown unit
/// at its root, or gives an id twice to elements that are referred to.
qv_gbxml_model qv_read_gbxml(const std::string& path);

/// As `qv_read_gbxml` for bytes in memory; `name` stands for the file in messages.
qv_gbxml_model qv_read_gbxml_bytes(const std::string& name, std::string bytes);

}  // namespace qv
