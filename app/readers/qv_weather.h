#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/readers/qv_sun_position.h"

namespace qv {

class qvi_sun;

/// The sun and the sky over one time step.
struct qv_weather_step {
  /// Month of the step's middle, 1 to 12, local standard time, and how it reads there.
  int month = 1;
  int day = 1;
  double hour = 0;  // 0 to 24
  /// The step's middle in universal time.
  qv_moment middle;
  /// Direct normal and diffuse horizontal irradiation, mean over the step, W/m².
  float direct = 0;
  float diffuse = 0;
};

/// Where the weather comes from when no file says it.
inline constexpr const char* qv_clear_sky_source = "clear sky";

/// Weather over a period, of which a study of the sun needs only this.
struct qv_weather {
  /// Where it comes from: a file's name, or `qv_clear_sky_source`.
  std::string source;
  std::string place;
  double latitude = 0;   // degrees, north positive
  double longitude = 0;  // degrees, east positive
  double elevation = 0;  // m
  double time_zone = 0;  // hours ahead of universal time
  double step_hours = 1;
  std::vector<qv_weather_step> steps;
  /// What is odd about it, a sentence each.
  std::vector<std::string> warnings;
};

/// Unit directions towards the sun at the middle of each step, or of that part of it in which the
/// sun is up, written into `sun` together with the irradiations. `model_azimuth` says by how many
/// degrees clockwise the model's +Y turns away from north; up is +z.
void qv_fill_sun(const qv_weather& weather, double model_azimuth, qvi_sun& sun);

/// A year of 8,760 hours under a clear sky, by the model of the European Solar Radiation Atlas
/// (C. Rigollier, O. Bauer, L. Wald, On the clear sky model of the ESRA with respect to the
/// Heliosat method, Solar Energy 68, 2000) with a Linke turbidity of 3, which is that of clean
/// continental air. Clocks run by the mean solar time of the place, so that the sun culminates
/// about noon.
qv_weather qv_make_clear_sky_year(double latitude, double longitude, double elevation);

}  // namespace qv
