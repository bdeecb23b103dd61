#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace qv {

struct qv_gbxml_model;
struct qv_study_results;

/// How much time the sun may take for how small an error.
enum class qv_solar_quality : int { draft, normal, fine };

struct qv_solar_options {
  bool wanted = false;
  /// An EPW file; empty: a clear-sky year of the model's own place.
  std::string weather;
  qv_solar_quality quality = qv_solar_quality::normal;
  /// Reflexions and diffuse transmissions that are followed.
  int reflexions = 2;
  /// Surfaces that are computed at once; 0: one for each processor. No result depends on it.
  unsigned int threads = 0;
  /// Keep the hours of every surface, not only months and sums; of a single one also their parts.
  bool keep_hours = false;
  /// Only the wall or opening with this id; empty: all.
  std::string only;
};

/// What a surface receives, kWh/m² over the whole period.
struct qv_surface_sun {
  double direct = 0;     // beam without reflexion
  double diffuse = 0;    // sky without reflexion
  double reflected = 0;  // both after reflexions or diffuse transmissions
  double total = 0;
  double half_width_95 = 0;  // of the total
  std::array<double, 12> monthly_total{};
  /// Through an opening, kWh: total × area × solar factor. Absent for walls, and where the solar
  /// factor is not known.
  std::optional<std::array<double, 12>> monthly_heat;
  /// W/m² at each step; empty unless they were to be kept.
  std::vector<float> hours;
  /// Of these beam, sky, and both after reflexions; kept for a single surface only.
  std::array<std::vector<float>, 3> hour_parts;
};

/// What faces into one direction receives, all surfaces together.
struct qv_sun_by_orientation {
  std::string orientation;  // "north", "east", "south", "west", "up", "down"
  std::size_t surfaces = 0;
  double area = 0;   // m²
  double total = 0;  // kWh
};

/// When a step's middle is, local standard time.
struct qv_sun_time {
  int month = 1;
  int day = 1;
  double hour = 0;
};

struct qv_study_sun {
  /// The file, or `qv_clear_sky_source`; empty when nothing was computed.
  std::string weather;
  std::string place;
  double latitude = 0;
  double longitude = 0;
  double step_hours = 1;
  std::vector<qv_sun_time> times;
  /// In the order of the study's walls and openings; absent where it was not computed.
  std::vector<std::optional<qv_surface_sun>> walls;
  std::vector<std::optional<qv_surface_sun>> openings;
  std::vector<qv_sun_by_orientation> orientations;

  /// Of the study's wall or opening number `index`; null where it was not computed.
  const qv_surface_sun* get_wall(std::size_t index) const;
  const qv_surface_sun* get_opening(std::size_t index) const;
};

/// Told how many of the surfaces are done; returns false to stop. Called by any thread, one at a
/// time.
using qv_solar_progress = std::function<bool(std::size_t done, std::size_t count)>;

/// The user asked to stop.
class qv_interrupted : public std::runtime_error {
 public:
  qv_interrupted() : std::runtime_error("interrupted; nothing was written") {}
};

/// The sun on every wall towards the outside air and on every opening in such a wall, on all
/// processors, into `study.sun`; what is worth knowing into `study.notes`. The items are those from
/// which `study` was gathered. Nothing is computed where neither a weather file nor the model tells
/// the place.
///
/// Throws `qv_input_error` for a weather file that cannot be used, and `qv_interrupted`.
void qv_compute_sun(const qv_gbxml_model& model, const qv_solar_options& options,
                    const qv_solar_progress& progress, qv_study_results& study);

}  // namespace qv
