#include "app/readers/qv_year_schedule.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <chrono>
#include <string>

namespace qv {

namespace {

constexpr int hours_of_day = 24;
constexpr std::array<int, 12> month_lengths = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
constexpr int usual_first_weekday = 1;  // Monday
constexpr int usual_year = 2018;        // begins on a Monday

struct date_parts {
  int year = 0;
  int month = 0;  // from 1
  int day = 0;    // from 1
};

std::optional<date_parts> parse_date(std::string_view text) {
  date_parts parts;
  const char* at = text.data();
  const char* const end = text.data() + text.size();
  for (int* part : {&parts.year, &parts.month, &parts.day}) {
    if (part != &parts.year && (at == end || *at++ != '-')) return std::nullopt;
    const auto [next, fault] = std::from_chars(at, end, *part);
    if (fault != std::errc()) return std::nullopt;
    at = next;
  }
  const bool valid = parts.year >= 0 && parts.year < 10000 && parts.month >= 1 &&
                     parts.month <= 12 && parts.day >= 1 && parts.day <= 31;
  return valid ? std::optional(parts) : std::nullopt;
}

std::string lower(std::string_view text) {
  std::string result(text);
  for (char& letter : result)
    letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  return result;
}

}  // namespace

std::optional<int> qv_day_of_year(std::string_view date) {
  const auto parts = parse_date(date);
  if (!parts) return std::nullopt;
  int day = 0;
  for (int month = 1; month < parts->month; ++month)
    day += month_lengths[static_cast<std::size_t>(month - 1)];
  const int length = month_lengths[static_cast<std::size_t>(parts->month - 1)];
  return day + std::min(parts->day, length) - 1;
}

std::string qv_date_text(int day, std::string_view date) {
  const auto parts = parse_date(date);
  int month = 1;
  for (const int length : month_lengths) {
    if (day < length) break;
    day -= length;
    ++month;
  }
  return fmt::format("{:04}-{:02}-{:02}", parts ? parts->year : usual_year, month, day + 1);
}

std::vector<int> qv_weekdays_of_year(std::string_view date) {
  std::vector<int> weekdays;
  const auto parts = parse_date(date);
  for (int month = 1; month <= 12; ++month) {
    for (int day = 1; day <= month_lengths[static_cast<std::size_t>(month - 1)]; ++day) {
      if (!parts) {
        weekdays.push_back((usual_first_weekday + static_cast<int>(weekdays.size())) % 7);
        continue;
      }
      const std::chrono::year_month_day calendar(std::chrono::year(parts->year),
                                                 std::chrono::month(static_cast<unsigned>(month)),
                                                 std::chrono::day(static_cast<unsigned>(day)));
      weekdays.push_back(
          static_cast<int>(std::chrono::weekday(std::chrono::sys_days(calendar)).c_encoding()));
    }
  }
  return weekdays;
}

int qv_day_type_fit(std::string_view day_type, int weekday) {
  static constexpr std::array<const char*, 7> names = {"sun", "mon", "tue", "wed",
                                                       "thu", "fri", "sat"};
  const std::string type = lower(day_type);
  const bool weekend = weekday == 0 || weekday == 6;
  if (type == "all" || type.empty()) return 1;
  if (type == "weekday") return weekend ? -1 : 2;
  if (type == "weekend" || type == "weekendorholiday") return weekend ? 2 : -1;
  if (type == "allotherdays") return 0;
  if (type.starts_with(names[static_cast<std::size_t>(weekday)])) return 3;
  return -1;
}

std::vector<float> qv_hours_of_day(const std::vector<double>& steps) {
  std::vector<float> hours(hours_of_day, 0.0f);
  const auto count = static_cast<double>(steps.size());
  for (int hour = 0; hour < hours_of_day && !steps.empty(); ++hour) {
    const double begin = hour * count / hours_of_day;
    const double end = (hour + 1) * count / hours_of_day;
    double sum = 0;
    for (std::size_t i = static_cast<std::size_t>(begin); i < steps.size(); ++i) {
      const double share =
          std::min(end, static_cast<double>(i + 1)) - std::max(begin, static_cast<double>(i));
      if (share <= 0) break;
      sum += share * steps[i];
    }
    hours[static_cast<std::size_t>(hour)] = static_cast<float>(sum / (end - begin));
  }
  return hours;
}

}  // namespace qv
