#include "app/report/qv_sun_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "app/readers/qv_weather.h"
#include "app/report/qv_study_csv.h"
#include "app/report/qv_text_table.h"
#include "app/report/qv_utf8.h"

namespace qv {
namespace {

constexpr auto one_line = qv_json_writer::layout::one_line;
constexpr const char* month_names[12] = {"jan", "feb", "mar", "apr", "may", "jun",
                                         "jul", "aug", "sep", "oct", "nov", "dec"};

/// Reports round to what the rays can tell.
float rounded(double value) {
  return static_cast<float>(std::round(value * 1000) / 1000);
}

std::vector<float> rounded_months(const std::array<double, 12>& months) {
  std::vector<float> list(months.size());
  std::transform(months.begin(), months.end(), list.begin(), rounded);
  return list;
}

/// A wall or an opening that was computed.
struct computed {
  const char* kind;
  const std::string& id;
  float area;
  const qv_surface_sun& sun;
};

template <class T>
void for_each_computed(const qv_study_results& study, T&& action) {
  for (std::size_t i = 0; i < study.walls.size(); ++i) {
    if (const qv_surface_sun* sun = study.sun.get_wall(i))
      action(computed{"wall", study.walls[i].id, study.walls[i].area, *sun});
  }
  for (std::size_t i = 0; i < study.openings.size(); ++i) {
    if (const qv_surface_sun* sun = study.sun.get_opening(i))
      action(computed{"opening", study.openings[i].id, study.openings[i].full_area, *sun});
  }
}

std::string time_text(const qv_sun_time& time) {
  return fmt::format("{},{},{}", time.month, time.day, qv_number_text(time.hour));
}

std::string hour_text(float watts) {
  return qv_number_text(static_cast<float>(std::round(watts * 100) / 100));
}

}  // namespace

std::string qv_name_weather(const qv_study_sun& sun) {
  if (sun.weather == qv_clear_sky_source)
    return "a clear sky all year, an upper bound; --weather FILE.epw takes that of a place.";
  return sun.place.empty() ? sun.weather : sun.weather + " (" + sun.place + ")";
}

void qv_write_sun(qv_json_writer& json, const qv_surface_sun* sun) {
  if (sun == nullptr) {
    json.value(std::monostate{});
    return;
  }
  json.begin_object(one_line);
  json.member("direct_kwh_m2", rounded(sun->direct));
  json.member("diffuse_kwh_m2", rounded(sun->diffuse));
  json.member("reflected_kwh_m2", rounded(sun->reflected));
  json.member("total_kwh_m2", rounded(sun->total));
  json.member("half_width_95_kwh_m2", rounded(sun->half_width_95));
  json.member("monthly_total_kwh_m2", rounded_months(sun->monthly_total));
  if (sun->monthly_heat) json.member("monthly_heat_kwh", rounded_months(*sun->monthly_heat));
  json.end_object();
}

void qv_write_sun_totals(qv_json_writer& json, const qv_study_sun& sun) {
  json.key("weather");
  if (sun.weather.empty()) {
    json.value(std::monostate{});
  } else {
    json.begin_object(one_line);
    json.member("source", sun.weather);
    json.member("place", sun.place);
    json.member("latitude_deg", sun.latitude);
    json.member("longitude_deg", sun.longitude);
    json.member("steps", static_cast<long long>(sun.times.size()));
    json.member("step_hours", sun.step_hours);
    json.end_object();
  }
  json.key("solar_by_orientation");
  json.begin_array();
  for (const qv_sun_by_orientation& group : sun.orientations) {
    json.begin_object(one_line);
    json.member("orientation", group.orientation);
    json.member("surfaces", static_cast<long long>(group.surfaces));
    json.member("area_m2", rounded(group.area));
    json.member("total_kwh", rounded(group.total));
    if (group.area > 0) {
      json.member("total_kwh_m2", rounded(group.total / group.area));
    } else {
      json.member("total_kwh_m2", std::monostate{});
    }
    json.end_object();
  }
  json.end_array();
}

std::string qv_solar_csv(const qv_study_results& study) {
  std::string text =
      "kind,id,area_m2,direct_kwh_m2,diffuse_kwh_m2,reflected_kwh_m2,total_kwh_m2,"
      "half_width_95_kwh_m2";
  for (const char* month : month_names) text += fmt::format(",{}_kwh_m2", month);
  for (const char* month : month_names) text += fmt::format(",{}_heat_kwh", month);
  text += "\r\n";
  for_each_computed(study, [&text](const computed& from) {
    text += fmt::format("{},{},{}", from.kind, qv_csv_text(qv_valid_utf8(from.id)),
                        qv_number_text(from.area));
    for (double value : {from.sun.direct, from.sun.diffuse, from.sun.reflected, from.sun.total,
                         from.sun.half_width_95}) {
      text += ',' + qv_number_text(rounded(value));
    }
    for (double value : from.sun.monthly_total) text += ',' + qv_number_text(rounded(value));
    for (std::size_t m = 0; m < 12; ++m) {
      text += ',';
      if (from.sun.monthly_heat) text += qv_number_text(rounded((*from.sun.monthly_heat)[m]));
    }
    text += "\r\n";
  });
  return text;
}

std::string qv_hourly_csv(const qv_study_results& study) {
  std::vector<const qv_surface_sun*> columns;
  std::string text = "month,day,hour";
  for_each_computed(study, [&](const computed& from) {
    if (from.sun.hours.empty()) return;
    columns.push_back(&from.sun);
    text += ',' + qv_csv_text(qv_valid_utf8(from.id));
  });
  text += "\r\n";
  for (std::size_t step = 0; step < study.sun.times.size(); ++step) {
    text += time_text(study.sun.times[step]);
    for (const qv_surface_sun* column : columns) text += ',' + hour_text(column->hours[step]);
    text += "\r\n";
  }
  return text;
}

std::string qv_surface_hours(const qv_study_results& study, const std::string& id) {
  std::string text;
  for_each_computed(study, [&](const computed& from) {
    const qv_surface_sun& sun = from.sun;
    if (from.id != id || sun.hour_parts[0].empty() || !text.empty()) return;
    text = "month,day,hour,total_w_m2,direct_w_m2,diffuse_w_m2,reflected_w_m2\r\n";
    for (std::size_t step = 0; step < study.sun.times.size(); ++step) {
      text += fmt::format("{},{},{},{},{}\r\n", time_text(study.sun.times[step]),
                          hour_text(sun.hours[step]), hour_text(sun.hour_parts[0][step]),
                          hour_text(sun.hour_parts[1][step]), hour_text(sun.hour_parts[2][step]));
    }
  });
  return text;
}

std::string qv_sun_summary(const qv_study_sun& sun) {
  if (sun.weather.empty()) return {};
  qv_text_table table({{"Sun on what faces"},
                       {"surfaces", qv_text_table::align::right},
                       {"area m²", qv_text_table::align::right},
                       {"kWh", qv_text_table::align::right},
                       {"kWh/m²", qv_text_table::align::right}});
  for (const qv_sun_by_orientation& group : sun.orientations) {
    if (group.surfaces == 0) continue;
    table.add_row({group.orientation, std::to_string(group.surfaces),
                   fmt::format("{:.2f}", group.area), fmt::format("{:.0f}", group.total),
                   group.area > 0 ? fmt::format("{:.0f}", group.total / group.area) : "–"});
  }
  return table.text() + "  Weather: " + qv_name_weather(sun) + '\n';
}

}  // namespace qv
