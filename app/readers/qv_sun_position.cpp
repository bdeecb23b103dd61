#include "app/readers/qv_sun_position.h"

#include <erfa.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qv {

namespace {

constexpr double radians = std::numbers::pi / 180;
constexpr double minutes_per_day = 1440;
/// Seconds from terrestrial to atomic time and, since 2017, from atomic to universal time; a few
/// more or less matter nothing for the Earth's place on its orbit.
constexpr double terrestrial_lead = 69.184;
/// Square of the Gaussian gravitational constant, au³ / day².
constexpr double sun_attraction = 0.01720209895 * 0.01720209895;
/// µm; where the eye sees best.
constexpr double light_wavelength = 0.55;
constexpr double air_humidity = 0.5;

/// International standard atmosphere, hPa.
double get_standard_pressure(double elevation) {
  return 1013.25 * std::pow(std::max(0.1, 1 - 2.25577e-5 * elevation), 5.25588);
}

}  // namespace

qv_moment qv_make_moment(int year, int month, int day, double minutes, double time_zone) {
  double epoch = 0, first_of_month = 0;
  eraCal2jd(year, std::clamp(month, 1, 12), 1, &epoch, &first_of_month);
  const double days = first_of_month + (day - 1) + (minutes - time_zone * 60) / minutes_per_day;
  const double whole = std::floor(days);
  return {epoch + whole, days - whole};
}

/// The observer and the Earth's motion about the noon of a day.
struct qv_sun_position::prepared_day {
  double day = -1;
  eraASTROM observer;
  double place[3];  // of the Earth from the sun, au
  double speed[3];  // au / day
};

qv_sun_position::qv_sun_position(double latitude, double longitude, double elevation,
                                 double pressure, double temperature)
    : latitude_(std::clamp(latitude, -90.0, 90.0)),
      longitude_(longitude),
      elevation_(elevation),
      pressure_(pressure > 0 ? pressure : get_standard_pressure(elevation)),
      temperature_(temperature),
      day_(new prepared_day) {}

qv_sun_position::~qv_sun_position() {
  delete day_;
}

void qv_sun_position::prepare(double day) {
  day_->day = day;
  double origins = 0;
  eraApco13(day, 0.5, 0, longitude_ * radians, latitude_ * radians, elevation_, 0, 0, pressure_,
            temperature_, air_humidity, light_wavelength, &day_->observer, &origins);
  double from_sun[2][3], from_centre_of_mass[2][3];
  eraEpv00(day, 0.5 + terrestrial_lead / 86400, from_sun, from_centre_of_mass);
  std::copy_n(from_sun[0], 3, day_->place);
  std::copy_n(from_sun[1], 3, day_->speed);
}

qv_sun_angles qv_sun_position::get_angles(const qv_moment& moment) {
  if (moment.day != day_->day) prepare(moment.day);

  // The Earth's place half a day from noon at most, to the second order in time.
  const double days = moment.fraction - 0.5;
  const double* place = day_->place;
  const double distance =
      std::sqrt(place[0] * place[0] + place[1] * place[1] + place[2] * place[2]);
  const double pull = sun_attraction / (distance * distance * distance);
  double towards_sun[3];
  for (int i = 0; i < 3; ++i)
    towards_sun[i] = -(place[i] + day_->speed[i] * days - pull * place[i] * days * days / 2);

  // Turn the Earth, then aberration, precession and nutation, then refraction.
  eraAper13(moment.day, moment.fraction, &day_->observer);
  double right_ascension = 0, declination = 0;
  eraC2s(towards_sun, &right_ascension, &declination);
  double apparent_ascension = 0, apparent_declination = 0;
  eraAtciqz(eraAnp(right_ascension), declination, &day_->observer, &apparent_ascension,
            &apparent_declination);
  double azimuth = 0, zenith_distance = 0, hour_angle = 0, observed_declination = 0,
         observed_ascension = 0;
  eraAtioq(apparent_ascension, apparent_declination, &day_->observer, &azimuth, &zenith_distance,
           &hour_angle, &observed_declination, &observed_ascension);
  return {90 - zenith_distance / radians, azimuth / radians};
}

}  // namespace qv
