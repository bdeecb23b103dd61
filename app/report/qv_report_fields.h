#pragma once

#include <span>

#include "app/report/qv_report_value.h"
#include "app/study/qv_study_results.h"

namespace qv {

// The keys of each kind of record, in the order in which reports show them. Keys are added at the
// end; none is renamed or taken away. Names end in their unit where they have one.

std::span<const qv_report_field<qv_study_location>> qv_location_fields();
std::span<const qv_report_field<qv_study_results>> qv_totals_fields();
std::span<const qv_report_field<qv_study_building>> qv_building_fields();
std::span<const qv_report_field<qv_study_zone>> qv_zone_fields();
std::span<const qv_report_field<qv_study_space>> qv_space_fields();
std::span<const qv_report_field<qv_study_wall>> qv_wall_fields();
std::span<const qv_report_field<qv_study_thermal_bridge>> qv_thermal_bridge_fields();
std::span<const qv_report_field<qv_study_change>> qv_change_fields();
std::span<const qv_report_field<qv_study_usage>> qv_usage_fields();
std::span<const qv_report_field<qv_heat_loss>> qv_heat_loss_fields();
std::span<const qv_report_field<qv_surface_loss>> qv_surface_loss_fields();
std::span<const qv_report_field<qv_bridge_loss>> qv_bridge_loss_fields();
std::span<const qv_report_field<qv_study_composition>> qv_composition_fields();
std::span<const qv_report_field<qv_study_layer>> qv_layer_fields();
std::span<const qv_report_field<qv_study_opening>> qv_opening_fields();
std::span<const qv_report_field<qv_study_object>> qv_object_fields();
std::span<const qv_report_field<qv_study_glazing>> qv_glazing_fields();
std::span<const qv_report_field<qv_study_glazing_layer>> qv_glazing_layer_fields();
std::span<const qv_report_field<qv_study_facade>> qv_facade_fields();
std::span<const qv_report_field<qv_study_refusal>> qv_refusal_fields();
std::span<const qv_report_field<qv_finding>> qv_finding_fields();
std::span<const qv_report_field<qv_study_fate>> qv_fate_fields();
std::span<const qv_report_field<qv_study_balance>> qv_balance_fields();
std::span<const qv_report_field<qv_study_opening_balance>> qv_opening_balance_fields();

}  // namespace qv
