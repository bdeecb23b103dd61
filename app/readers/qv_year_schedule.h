#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qv {

// A year of 365 days as hourly values, from the days and weeks that a model file describes it by.

inline constexpr int qv_days_of_year = 365;
inline constexpr int qv_hours_of_year = 24 * qv_days_of_year;

/// The day of the year, 0 to 364, of a date "2015-03-01"; 29 February counts as the 28th. Nothing
/// for what is no date.
std::optional<int> qv_day_of_year(std::string_view date);

/// The day of the year, 0 to 364, as a date in the year of `date`: "2015-03-01". In a year that is
/// not known it is one of 2018, which begins on a Monday.
std::string qv_date_text(int day, std::string_view date);

/// Day of the week, 0 Sunday to 6 Saturday, of each day of the year of `date`; a year that is not
/// known begins on a Monday. In a leap year 29 February is passed over, so that dates keep their
/// days of the week.
std::vector<int> qv_weekdays_of_year(std::string_view date);

/// How closely a day type of gbXML ("Weekday", "Sat", "All") speaks of a day of the week: 3 that
/// very day, 2 weekdays or weekends, 1 all days, 0 any day that no other type speaks of, −1 not at
/// all (holidays and design days, which no calendar tells).
int qv_day_type_fit(std::string_view day_type, int weekday);

/// The 24 hourly means of a day given in any number of equal steps; zeros for none.
std::vector<float> qv_hours_of_day(const std::vector<double>& steps);

}  // namespace qv
