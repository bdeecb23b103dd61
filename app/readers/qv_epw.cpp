#include "app/readers/qv_epw.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "app/readers/qv_file.h"

namespace qv {

namespace {

// Fields of a row, from 0.
constexpr std::size_t year_field = 0, month_field = 1, day_field = 2, hour_field = 3,
                      direct_field = 14, diffuse_field = 15;
/// Fields of LOCATION.
constexpr std::size_t place_field = 1, latitude_field = 6, longitude_field = 7, time_zone_field = 8,
                      elevation_field = 9;
/// W/m²; a value from here on stands for a missing one.
constexpr double missing = 9999;
/// W/m²; the sun never brings more to the ground.
constexpr double largest_irradiation = 1500;
constexpr int month_days[12] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
constexpr int hours_of_year = 8760;
constexpr std::string_view blanks = " \t\r";

std::string_view trim(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(blanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::vector<std::string_view> split(std::string_view line) {
  std::vector<std::string_view> fields;
  while (true) {
    const std::size_t comma = line.find(',');
    fields.push_back(trim(line.substr(0, comma)));
    if (comma == std::string_view::npos) return fields;
    line.remove_prefix(comma + 1);
  }
}

std::optional<double> to_number(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
    return std::nullopt;
  return value;
}

/// A whole number; some writers give it decimals.
std::optional<int> to_whole(std::string_view text) {
  const auto value = to_number(text);
  if (!value || *value != std::floor(*value) || std::fabs(*value) > 1e6) return std::nullopt;
  return static_cast<int>(*value);
}

bool has_name(std::string_view field, std::string_view name) {
  if (field.size() != name.size()) return false;
  for (std::size_t i = 0; i < name.size(); ++i)
    if ((field[i] & ~0x20) != (name[i] & ~0x20)) return false;
  return true;
}

class epw_reader {
 public:
  epw_reader(const std::string& name, std::string_view text) : name_(name), text_(text) {
    weather_.source = name;
    constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";
    if (text_.starts_with(byte_order_mark)) text_.remove_prefix(byte_order_mark.size());
  }

  qv_weather read() {
    std::string_view line;
    if (!next_line(line)) fail("is empty", "name an EPW weather file");
    read_location(split(line));
    bool has_periods = false;
    while (!has_periods && next_line(line)) {
      const auto fields = split(line);
      if (!has_name(fields.front(), "DATA PERIODS")) continue;
      has_periods = true;
      read_periods(fields);
    }
    if (!has_periods) fail("has no line DATA PERIODS", "export the weather file again");
    while (next_line(line)) read_row(line);
    if (weather_.steps.empty()) fail("has no hours after DATA PERIODS", "export it again");
    finish();
    return std::move(weather_);
  }

 private:
  /// The next line that is not blank.
  bool next_line(std::string_view& line) {
    while (position_ < text_.size()) {
      const std::size_t end = std::min(text_.find('\n', position_), text_.size());
      line = trim(text_.substr(position_, end - position_));
      line_is_whole_ = end < text_.size();
      position_ = end + 1;
      ++line_number_;
      if (!line.empty()) return true;
    }
    return false;
  }

  [[noreturn]] void fail(const std::string& problem, const std::string& advice) const {
    throw qv_input_error(qv_input_error::kind::bad_input, {name_, line_number_, {}, {}}, problem,
                         advice);
  }

  double read_place_number(const std::vector<std::string_view>& fields, std::size_t index,
                           const char* what, double largest) const {
    const auto value = index < fields.size() ? to_number(fields[index]) : std::nullopt;
    if (!value || std::fabs(*value) > largest)
      fail(std::string("LOCATION has no sound ") + what, "correct the first line");
    return *value;
  }

  void read_location(const std::vector<std::string_view>& fields) {
    if (!has_name(fields.front(), "LOCATION"))
      fail("does not begin with LOCATION", "name an EPW weather file");
    if (fields.size() > place_field) weather_.place = std::string(fields[place_field]);
    weather_.latitude = read_place_number(fields, latitude_field, "latitude", 90);
    weather_.longitude = read_place_number(fields, longitude_field, "longitude", 360);
    weather_.time_zone = read_place_number(fields, time_zone_field, "time zone", 15);
    weather_.elevation = read_place_number(fields, elevation_field, "elevation", 10000);
  }

  void read_periods(const std::vector<std::string_view>& fields) {
    const auto periods = fields.size() > 1 ? to_whole(fields[1]) : std::nullopt;
    const auto records = fields.size() > 2 ? to_whole(fields[2]) : std::nullopt;
    if (!records || *records < 1 || *records > 60)
      fail("DATA PERIODS does not say how many records an hour has", "write 1 for hourly data");
    records_per_hour_ = *records;
    weather_.step_hours = 1.0 / *records;
    // Name, weekday, first and last day of each period.
    for (int i = 0; periods && i < *periods; ++i) {
      const std::size_t first = 5 + 4 * static_cast<std::size_t>(i);
      if (first + 1 >= fields.size()) break;
      whole_year_ =
          *periods == 1 && is_day(fields[first], 1, 1) && is_day(fields[first + 1], 12, 31);
      several_years_ = fields[first].find('/') != fields[first].rfind('/');
    }
  }

  static bool is_day(std::string_view text, int month, int day) {
    const std::size_t slash = text.find('/');
    if (slash == std::string_view::npos) return false;
    std::string_view rest = text.substr(slash + 1);
    rest = rest.substr(0, rest.find('/'));
    return to_whole(trim(text.substr(0, slash))) == month && to_whole(trim(rest)) == day;
  }

  void read_row(std::string_view line) {
    const auto fields = split(line);
    int time[4] = {};
    bool sound = fields.size() > diffuse_field;
    for (std::size_t i = year_field; sound && i <= hour_field; ++i) {
      const auto value = to_whole(fields[i]);
      sound = value.has_value();
      if (sound) time[i] = *value;
    }
    sound = sound && time[month_field] >= 1 && time[month_field] <= 12 && time[day_field] >= 1 &&
            time[day_field] <= month_days[time[month_field] - 1] && time[hour_field] >= 0 &&
            time[hour_field] <= 24;
    if (!sound) {
      const bool last = text_.find_first_not_of(" \t\r\n", position_) == std::string_view::npos;
      if (last && !line_is_whole_ && !weather_.steps.empty()) {
        weather_.warnings.push_back("the last line is cut off and was left out");
        return;
      }
      fail("is no row of weather data", "export the weather file again");
    }
    add_step(time, read_irradiation(fields[direct_field]), read_irradiation(fields[diffuse_field]));
  }

  std::optional<float> read_irradiation(std::string_view field) const {
    const auto value = to_number(field);
    if (!value) {
      if (!field.empty()) fail("has an irradiation that is no number", "correct the row");
      return std::nullopt;
    }
    if (*value >= missing || *value < 0) return std::nullopt;
    return static_cast<float>(*value);
  }

  void add_step(const int (&time)[4], std::optional<float> direct, std::optional<float> diffuse) {
    const bool same_hour = !weather_.steps.empty() && std::equal(time, time + 4, last_time_);
    record_ = same_hour ? record_ + 1 : 1;
    if (record_ > records_per_hour_) ++surplus_records_;
    std::copy(time, time + 4, last_time_);

    qv_weather_step step;
    step.month = time[month_field];
    step.day = time[day_field];
    // Hour h ends at h o'clock; files that count from 0 to 23 exist, too.
    const double hour = time[hour_field] == 0 ? 24 : time[hour_field];
    step.hour = hour - 1 + (record_ - 0.5) * weather_.step_hours;
    step.middle =
        qv_make_moment(time[year_field], step.month, step.day, 60 * step.hour, weather_.time_zone);
    step.direct = direct.value_or(0.0f);
    step.diffuse = diffuse.value_or(0.0f);
    missing_.push_back(!direct || !diffuse);
    if (step.direct > largest_irradiation || step.diffuse > largest_irradiation) ++too_bright_;
    weather_.steps.push_back(step);
  }

  void warn(std::size_t count, const std::string& what) {
    if (count > 0) weather_.warnings.push_back(std::to_string(count) + what);
  }

  void finish() {
    qv_sun_position position(weather_.latitude, weather_.longitude, weather_.elevation);
    std::size_t dark = 0;
    for (std::size_t i = 0; i < missing_.size(); ++i)
      if (missing_[i] && position.get_angles(weather_.steps[i].middle).elevation > 0) ++dark;
    warn(dark, " steps by daylight have no irradiation in the file and count as dark");
    // The sun sinks by 15° an hour at most, and the air lifts it by less than 1°.
    const double night = -(15 * weather_.step_hours / 2 + 1);
    std::size_t sunny_nights = 0;
    for (const qv_weather_step& step : weather_.steps)
      if (step.direct > 0 && position.get_angles(step.middle).elevation < night) ++sunny_nights;
    warn(sunny_nights,
         " steps have beam while the sun is down, and lose it: look at the place and the time zone "
         "in the first line");
    warn(too_bright_, " steps have more irradiation than the sun can give");
    warn(surplus_records_, " rows are more than their hour has room for");
    const auto expected =
        static_cast<std::size_t>(hours_of_year) * static_cast<std::size_t>(records_per_hour_);
    const std::size_t count = weather_.steps.size();
    if (several_years_ ? count < expected : whole_year_ && count < expected) {
      weather_.warnings.push_back("the file ends after " + std::to_string(count) +
                                  " steps, before the period that it announces");
    }
  }

  std::string name_;
  std::string_view text_;
  std::size_t position_ = 0;
  std::size_t line_number_ = 0;
  bool line_is_whole_ = true;
  qv_weather weather_;
  int records_per_hour_ = 1;
  bool whole_year_ = false;
  bool several_years_ = false;
  int last_time_[4] = {};
  int record_ = 0;
  std::vector<bool> missing_;
  std::size_t too_bright_ = 0;
  std::size_t surplus_records_ = 0;
};

}  // namespace

qv_weather qv_read_epw_bytes(const std::string& name, const std::string& bytes) {
  return epw_reader(name, bytes).read();
}

qv_weather qv_read_epw(const std::string& path) {
  return qv_read_epw_bytes(path, qv_read_file(path, "an EPW weather file"));
}

}  // namespace qv
