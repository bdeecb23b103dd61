#pragma once

namespace qv {

/// A moment in universal time as a Julian date in two parts, whose sum is the date: the first a
/// date at midnight, the second the fraction of that day.
struct qv_moment {
  double day = 0;
  double fraction = 0;
};

/// The moment of a civil time: date in the Gregorian calendar, minutes after its midnight (any
/// number, also below 0 or beyond the day), hours by which the clock runs ahead of universal time.
/// A day that the month does not have goes on into the next month.
qv_moment qv_make_moment(int year, int month, int day, double minutes, double time_zone);

/// Where the sun stands: degrees.
struct qv_sun_angles {
  /// Above the horizon, raised by the refraction of the air.
  double elevation = 0;
  /// Clockwise from north, 0 to 360.
  double azimuth = 0;
};

/// The sun over one place on Earth, by the standard routines of the International Astronomical
/// Union; within 0.01° for dates from 1960 to 2060.
///
/// What changes slowly is prepared once for each day: times should come in their order.
class qv_sun_position {
 public:
  /// Degrees north and east, m. A latitude beyond ±90 counts as ±90, a pressure (hPa) that is not
  /// above 0 as that of the standard atmosphere at the elevation.
  qv_sun_position(double latitude, double longitude, double elevation, double pressure = 0,
                  double temperature = 10);
  qv_sun_position(const qv_sun_position&) = delete;
  qv_sun_position& operator=(const qv_sun_position&) = delete;
  ~qv_sun_position();

  qv_sun_angles get_angles(const qv_moment& moment);

 private:
  struct prepared_day;

  void prepare(double day);

  double latitude_, longitude_, elevation_, pressure_, temperature_;
  prepared_day* day_;
};

}  // namespace qv
