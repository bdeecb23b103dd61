#include "app/readers/qv_weather.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/light/qvi_sun.h"

namespace qv {

namespace {

constexpr double radians = std::numbers::pi / 180;
/// A year without a leap day stands for all.
constexpr int clear_sky_year = 2001;
constexpr int month_lengths[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
/// W/m² outside the atmosphere at the mean distance of the sun.
constexpr double solar_constant = 1367;
constexpr double linke_turbidity = 3;

struct irradiation {
  double direct = 0;   // normal
  double diffuse = 0;  // on the horizontal
};

/// Relative air mass (F. Kasten, A. T. Young, 1989), corrected for the elevation of the place.
double get_air_mass(double sun_elevation, double place_elevation) {
  const double mass = 1 / (std::sin(sun_elevation * radians) +
                           0.50572 * std::pow(sun_elevation + 6.07995, -1.6364));
  return mass * std::exp(-place_elevation / 8434.5);
}

/// Optical thickness of clean dry air (F. Kasten, 1996).
double get_rayleigh_thickness(double m) {
  if (m > 20) return 1 / (10.4 + 0.718 * m);
  return 1 / (6.6296 + m * (1.7513 + m * (-0.1202 + m * (0.0065 - m * 0.00013))));
}

/// The ESRA clear sky at a sun's elevation in degrees; `nearness` is the square of the mean
/// distance of the sun over the present one.
irradiation get_clear_sky(double sun_elevation, double place_elevation, double nearness) {
  if (!(sun_elevation > 0)) return {};
  const double turbidity = linke_turbidity;
  const double outside = solar_constant * nearness;
  const double mass = get_air_mass(sun_elevation, place_elevation);
  const double direct =
      outside * std::exp(-0.8662 * turbidity * mass * get_rayleigh_thickness(mass));

  const double at_zenith = -1.5843e-2 + 3.0543e-2 * turbidity + 3.797e-4 * turbidity * turbidity;
  double a0 = 2.6463e-1 - 6.1581e-2 * turbidity + 3.1408e-3 * turbidity * turbidity;
  if (a0 * at_zenith < 2e-3) a0 = 2e-3 / at_zenith;
  const double a1 = 2.0402 + 1.8945e-2 * turbidity - 1.1161e-2 * turbidity * turbidity;
  const double a2 = -1.3025 + 3.9231e-2 * turbidity + 8.5079e-3 * turbidity * turbidity;
  const double sine = std::sin(sun_elevation * radians);
  return {direct, std::max(0.0, outside * at_zenith * (a0 + sine * (a1 + sine * a2)))};
}

/// The part of a time step in which the sun is up.
struct lit_part {
  qv_moment middle;
  double share = 1;  // of the step
};

qv_moment later(const qv_moment& moment, double hours) {
  return {moment.day, moment.fraction + hours / 24};
}

/// Steps of sunrise and sunset, on whose middle the sun may be down while it shone in a part of
/// them, are lit between the horizon and the step's end that has the sun; all others are lit whole.
lit_part find_lit_part(qv_sun_position& position, const qv_moment& middle, double step_hours) {
  const auto is_up = [&](double hours) {
    return position.get_angles(later(middle, hours)).elevation > 0;
  };
  const double half = step_hours / 2;
  const bool up_first = is_up(-half), up_last = is_up(half);
  if (up_first == up_last) return {middle, 1};
  double dark = up_first ? half : -half, lit = -dark;
  constexpr double close_enough = 1e-3;  // h
  while (std::fabs(dark - lit) > close_enough) {
    const double between = (dark + lit) / 2;
    (is_up(between) ? lit : dark) = between;
  }
  const double end = up_first ? -half : half;
  return {later(middle, (lit + end) / 2), std::fabs(end - lit) / step_hours};
}

/// A sun so high in the middle of a step of an hour is up all through it: it sinks by 15° an hour
/// at most.
bool may_rise_or_set(double elevation, double step_hours) {
  constexpr double steepest = 15, for_the_air = 1;
  return std::fabs(elevation) < steepest * step_hours / 2 + for_the_air;
}

/// Where the sun stands in the middle of the lit part of a step.
lit_part get_lit_part(qv_sun_position& position, const qv_moment& middle, double step_hours) {
  return may_rise_or_set(position.get_angles(middle).elevation, step_hours)
             ? find_lit_part(position, middle, step_hours)
             : lit_part{middle, 1};
}

}  // namespace

void qv_fill_sun(const qv_weather& weather, double model_azimuth, qvi_sun& sun) {
  qv_sun_position position(weather.latitude, weather.longitude, weather.elevation);
  qv_list<qv_3dvector> directions;
  qv_list<float> direct, diffuse;
  const auto count = static_cast<int>(weather.steps.size());
  directions.reserve(count);
  direct.reserve(count);
  diffuse.reserve(count);
  for (const qv_weather_step& step : weather.steps) {
    const qv_sun_angles angles = position.get_angles(
        step.direct > 0 ? get_lit_part(position, step.middle, weather.step_hours).middle
                        : step.middle);
    const double elevation = angles.elevation * radians;
    const double azimuth = (angles.azimuth - model_azimuth) * radians;
    directions.append({static_cast<float>(std::cos(elevation) * std::sin(azimuth)),
                       static_cast<float>(std::cos(elevation) * std::cos(azimuth)),
                       static_cast<float>(std::sin(elevation))});
    direct.append(step.direct);
    diffuse.append(step.diffuse);
  }
  sun.set_directions(directions);
  sun.set_direct_irradiation(direct);
  sun.set_diffuse_irradiation(diffuse);
}

qv_weather qv_make_clear_sky_year(double latitude, double longitude, double elevation) {
  qv_weather weather;
  weather.source = qv_clear_sky_source;
  weather.latitude = latitude;
  weather.longitude = longitude;
  weather.elevation = elevation;
  weather.time_zone = longitude / 15;
  weather.steps.reserve(8760);
  qv_sun_position position(latitude, longitude, elevation);
  int day_of_year = 0;
  for (int month = 1; month <= 12; ++month) {
    for (int day = 1; day <= month_lengths[month - 1]; ++day, ++day_of_year) {
      const double nearness =
          1 + 0.03344 * std::cos(2 * std::numbers::pi * (day_of_year + 1) / 365.25 - 0.048869);
      for (int hour = 0; hour < 24; ++hour) {
        qv_weather_step step;
        step.month = month;
        step.day = day;
        step.hour = hour + 0.5;
        step.middle = qv_make_moment(clear_sky_year, month, day, 60 * step.hour, weather.time_zone);
        const lit_part lit = get_lit_part(position, step.middle, weather.step_hours);
        const irradiation sky =
            get_clear_sky(position.get_angles(lit.middle).elevation, elevation, nearness);
        step.direct = static_cast<float>(lit.share * sky.direct);
        step.diffuse = static_cast<float>(lit.share * sky.diffuse);
        weather.steps.push_back(step);
      }
    }
  }
  return weather;
}

}  // namespace qv
