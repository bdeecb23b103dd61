#pragma once

#include <string>

#include "app/readers/qv_input_error.h"
#include "app/readers/qv_weather.h"

namespace qv {

/// Reads an EnergyPlus weather file (EPW): place, direct normal and diffuse horizontal irradiation.
///
/// A row holds the mean over the step that ends at its time: hour 1 of an hourly file is the time
/// from 0:00 to 1:00, whether its minute is given as 0 or 60. Where DATA PERIODS tells of several
/// records in an hour, these part the hour evenly in the order in which they stand. Every row has
/// its own year; 29 February is taken in whatever year. Irradiations that are missing (9999 or
/// more, empty or below 0) count as 0; how many by daylight is told in a warning, and so are steps
/// with beam while the sun is down (a wrong place or time zone), rows that the period lacks, a last
/// line that is cut off and times that do not follow each other.
///
/// Throws `qv_input_error`: no access for a file that cannot be read; bad input, with the line, for
/// a file that does not begin with LOCATION, for a place without sense, a file without DATA PERIODS
/// or without rows, and a row that is none.
qv_weather qv_read_epw(const std::string& path);

/// As `qv_read_epw` for bytes in memory; `name` stands for the file in messages.
qv_weather qv_read_epw_bytes(const std::string& name, const std::string& bytes);

}  // namespace qv
