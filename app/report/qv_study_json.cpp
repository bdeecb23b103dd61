#include "app/report/qv_study_json.h"

#include "app/report/qv_json_writer.h"
#include "app/report/qv_report_fields.h"
#include "app/report/qv_sun_report.h"

namespace qv {
namespace {

constexpr long long format_version = 1;
constexpr auto one_line = qv_json_writer::layout::one_line;

template <class T>
void write_record(qv_json_writer& json, std::span<const qv_report_field<T>> fields,
                  const T& record) {
  json.begin_object(one_line);
  json.members(fields, record);
  json.end_object();
}

template <class T>
void write_records(qv_json_writer& json, const char* name,
                   std::span<const qv_report_field<T>> fields, const std::vector<T>& records) {
  json.key(name);
  json.begin_array();
  for (const T& record : records) write_record(json, fields, record);
  json.end_array();
}

// The same with "solar" as last member; `sun_of` gives that of a record's rank.
template <class T, class source>
void write_sunny_records(qv_json_writer& json, const char* name,
                         std::span<const qv_report_field<T>> fields, const std::vector<T>& records,
                         source&& sun_of) {
  json.key(name);
  json.begin_array();
  for (std::size_t index = 0; index < records.size(); ++index) {
    json.begin_object(one_line);
    json.members(fields, records[index]);
    json.key("solar");
    qv_write_sun(json, sun_of(index));
    json.end_object();
  }
  json.end_array();
}

void write_buildings(qv_json_writer& json, const std::vector<qv_study_building>& buildings) {
  json.key("buildings");
  json.begin_array();
  for (const auto& building : buildings) {
    json.begin_object();
    json.members(qv_building_fields(), building);
    write_records(json, "zones", qv_zone_fields(), building.zones);
    json.end_object();
  }
  json.end_array();
}

void write_compositions(qv_json_writer& json,
                        const std::vector<qv_study_composition>& compositions) {
  json.key("compositions");
  json.begin_array();
  for (const auto& composition : compositions) {
    json.begin_object();
    json.members(qv_composition_fields(), composition);
    write_records(json, "layers", qv_layer_fields(), composition.layers);
    json.end_object();
  }
  json.end_array();
}

void write_glazings(qv_json_writer& json, const std::vector<qv_study_glazing>& glazings) {
  json.key("glazings");
  json.begin_array();
  for (const auto& glazing : glazings) {
    json.begin_object();
    json.members(qv_glazing_fields(), glazing);
    write_records(json, "layers", qv_glazing_layer_fields(), glazing.layers);
    json.end_object();
  }
  json.end_array();
}

// What became of the openings that were asked for; null when none were.
void write_generation(qv_json_writer& json, const qv_study_generation& generation) {
  if (!generation.asked) {
    json.member("generated_openings", std::monostate{});
    return;
  }
  json.key("generated_openings");
  json.begin_object();
  json.member("made", static_cast<long long>(generation.made));
  json.member("walls_with_openings", static_cast<long long>(generation.walls_with_openings));
  write_records(json, "refused", qv_refusal_fields(), generation.refusals);
  json.end_object();
}

void write_heat_loss(qv_json_writer& json, const qv_study_results& study) {
  const qv_heat_loss& sums = study.heat_loss;
  json.key("heat_loss");
  json.begin_object();
  json.members(qv_heat_loss_fields(), sums);
  json.member("psi_catalogue", study.psi_catalogue);
  write_records(json, "walls", qv_surface_loss_fields(), sums.walls);
  write_records(json, "openings", qv_surface_loss_fields(), sums.openings);
  write_records(json, "bridges", qv_bridge_loss_fields(), sums.bridges);
  write_records(json, "boundaries", qv_surface_loss_fields(), sums.boundaries);
  json.end_object();
}

// {"Surface":{"kept":12,"dropped":1},…}: kinds and outcomes in the order of the tallies, which are
// sorted by kind.
void write_counts(qv_json_writer& json, const std::vector<qv_study_tally>& tallies) {
  json.key("counts");
  json.begin_object();
  for (std::size_t index = 0; index < tallies.size();) {
    const std::string& kind = tallies[index].kind;
    json.key(kind);
    json.begin_object(one_line);
    for (; index < tallies.size() && tallies[index].kind == kind; ++index) {
      json.member(tallies[index].outcome, static_cast<long long>(tallies[index].count));
    }
    json.end_object();
  }
  json.end_object();
}

void write_ledger(qv_json_writer& json, const qv_study_ledger& ledger) {
  json.key("ledger");
  json.begin_object();
  write_counts(json, ledger.tallies);
  json.key("area");
  write_record(json, qv_balance_fields(), ledger.balance);
  json.key("opening_area");
  write_record(json, qv_opening_balance_fields(), ledger.opening_balance);
  write_records(json, "elements", qv_fate_fields(), ledger.fates);
  json.end_object();
}

}  // namespace

std::string qv_study_json(const qv_study_results& study) {
  qv_json_writer json;
  json.begin_object();
  json.member("format", std::string("qv-study"));
  json.member("version", format_version);
  json.member("source", study.source);
  json.key("location");
  write_record(json, qv_location_fields(), study.location);
  json.key("totals");
  write_record(json, qv_totals_fields(), study);
  write_buildings(json, study.buildings);
  write_records(json, "spaces", qv_space_fields(), study.spaces);
  write_sunny_records(json, "walls", qv_wall_fields(), study.walls,
                      [&study](std::size_t index) { return study.sun.get_wall(index); });
  write_compositions(json, study.compositions);
  write_sunny_records(json, "openings", qv_opening_fields(), study.openings,
                      [&study](std::size_t index) { return study.sun.get_opening(index); });
  write_glazings(json, study.glazings);
  write_records(json, "facades", qv_facade_fields(), study.facades);
  write_generation(json, study.generation);
  write_records(json, "thermal_bridges", qv_thermal_bridge_fields(), study.thermal_bridges);
  write_heat_loss(json, study);
  write_records(json, "usages", qv_usage_fields(), study.usages);
  write_records(json, "configuration_changes", qv_change_fields(), study.changes);
  write_ledger(json, study.ledger);
  write_records(json, "findings", qv_finding_fields(), study.findings);
  qv_write_sun_totals(json, study.sun);
  write_records(json, "objects", qv_object_fields(), study.objects);
  json.end_object();
  return json.text();
}

}  // namespace qv
