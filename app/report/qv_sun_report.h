#pragma once

#include <string>

#include "app/report/qv_json_writer.h"
#include "app/study/qv_study_results.h"

namespace qv {

/// The value of "solar" of a wall or an opening; null for one that was not computed.
void qv_write_sun(qv_json_writer& json, const qv_surface_sun* sun);

/// "weather" and "solar_by_orientation", null and an empty list when nothing was computed.
void qv_write_sun_totals(qv_json_writer& json, const qv_study_sun& sun);

/// Months of every wall and opening that was computed, kWh/m²; of openings the heat that gets
/// inside as well, kWh (RFC 4180).
std::string qv_solar_csv(const qv_study_results& study);

/// Every step of every surface that was computed: a row for each step with its month, day and hour
/// (of its middle), and a column for each surface with its total, W/m² (RFC 4180). Needs the hours
/// to have been kept.
std::string qv_hourly_csv(const qv_study_results& study);

/// Steps of the one wall or opening `id`: total, beam, sky and reflected, W/m². Empty when its
/// hours were not kept with their parts.
std::string qv_surface_hours(const qv_study_results& study, const std::string& id);

/// The weather that was taken, in words for the user.
std::string qv_name_weather(const qv_study_sun& sun);

/// What the quarters receive, for the summary; empty when nothing was computed.
std::string qv_sun_summary(const qv_study_sun& sun);

}  // namespace qv
