#include "app/report/qv_report_fields.h"

namespace qv {
namespace {

qv_report_value count_of(std::size_t count) {
  return static_cast<long long>(count);
}

template <class member>
struct owner_of;
template <class value, class record>
struct owner_of<value record::*> {
  using type = record;
};

// Reads the data member `member` of a record.
template <auto member>
qv_report_value read(const typename owner_of<decltype(member)>::type& record) {
  return qv_to_report_value(record.*member);
}

constexpr qv_report_field<qv_study_location> location_fields[] = {
    {"name", read<&qv_study_location::name>},
    {"latitude_deg", read<&qv_study_location::latitude>},
    {"longitude_deg", read<&qv_study_location::longitude>},
    {"azimuth_deg", read<&qv_study_location::azimuth>},
    {"elevation_m", read<&qv_study_location::elevation>},
};

constexpr qv_report_field<qv_study_results> totals_fields[] = {
    {"spaces", [](const qv_study_results& study) { return count_of(study.spaces.size()); }},
    {"area_m2", [](const qv_study_results& study) { return qv_report_value(study.get_area()); }},
    {"volume_m3",
     [](const qv_study_results& study) { return qv_report_value(study.get_volume()); }},
    {"loss_area_m2",
     [](const qv_study_results& study) { return qv_report_value(study.get_loss_area()); }},
    {"walls", [](const qv_study_results& study) { return count_of(study.walls.size()); }},
    {"openings", [](const qv_study_results& study) { return count_of(study.openings.size()); }},
    {"loss_opening_area_m2",
     [](const qv_study_results& study) { return qv_report_value(study.get_loss_opening_area()); }},
};

constexpr qv_report_field<qv_study_building> building_fields[] = {
    {"name", read<&qv_study_building::name>},        {"status", read<&qv_study_building::status>},
    {"floors", read<&qv_study_building::floors>},    {"area_m2", read<&qv_study_building::area>},
    {"volume_m3", read<&qv_study_building::volume>},
};

constexpr qv_report_field<qv_study_zone> zone_fields[] = {
    {"name", read<&qv_study_zone::name>},
    {"spaces", read<&qv_study_zone::spaces>},
};

constexpr qv_report_field<qv_study_space> space_fields[] = {
    {"id", read<&qv_study_space::id>},
    {"name", read<&qv_study_space::name>},
    {"building", read<&qv_study_space::building>},
    {"zone", read<&qv_study_space::zone>},
    {"floor", read<&qv_study_space::floor>},
    {"area_m2", read<&qv_study_space::area>},
    {"volume_m3", read<&qv_study_space::volume>},
    {"stated_area_m2", read<&qv_study_space::stated_area>},
    {"stated_volume_m3", read<&qv_study_space::stated_volume>},
    {"html", read<&qv_study_space::html>, false},
    {"leaking_share", read<&qv_study_space::leaking_share>},
};

constexpr qv_report_field<qv_study_wall> wall_fields[] = {
    {"id", read<&qv_study_wall::id>},
    {"name", read<&qv_study_wall::name>},
    {"wall_type", read<&qv_study_wall::wall_type>},
    {"contact_type", read<&qv_study_wall::contact_type>},
    {"space_0", read<&qv_study_wall::space_0>},
    {"space_1", read<&qv_study_wall::space_1>},
    {"area_m2", read<&qv_study_wall::area>},
    {"azimuth_deg", read<&qv_study_wall::azimuth>},
    {"tilt_deg", read<&qv_study_wall::tilt>},
    {"u", read<&qv_study_wall::u>},
    {"composition", read<&qv_study_wall::composition>},
    {"limit_condition", read<&qv_study_wall::limit_condition>},
    {"boundary", read<&qv_study_wall::boundary>},
    {"u_with_surfaces", read<&qv_study_wall::u_with_surfaces>},
};

constexpr qv_report_field<qv_study_thermal_bridge> thermal_bridge_fields[] = {
    {"id", read<&qv_study_thermal_bridge::id>},
    {"type", read<&qv_study_thermal_bridge::type>},
    {"length_m", read<&qv_study_thermal_bridge::length>},
    {"psi", read<&qv_study_thermal_bridge::psi>},
    {"loss_w_per_k", read<&qv_study_thermal_bridge::loss>},
    {"walls", read<&qv_study_thermal_bridge::walls>},
    {"point_0", read<&qv_study_thermal_bridge::point_0>},
    {"point_1", read<&qv_study_thermal_bridge::point_1>},
    {"insulation", read<&qv_study_thermal_bridge::insulation>},
};

constexpr qv_report_field<qv_study_change> change_fields[] = {
    {"element", read<&qv_study_change::element>}, {"id", read<&qv_study_change::id>},
    {"param", read<&qv_study_change::param>},     {"before", read<&qv_study_change::before>},
    {"after", read<&qv_study_change::after>},
};

constexpr qv_report_field<qv_study_usage> usage_fields[] = {
    {"zone", read<&qv_study_usage::zone>},
    {"kind", read<&qv_study_usage::kind>},
    {"name", read<&qv_study_usage::name>},
    {"spaces", read<&qv_study_usage::spaces>},
    {"unit_type", read<&qv_study_usage::unit_type>},
    {"number_of_persons", read<&qv_study_usage::persons>},
    {"person_heat_gain_w", read<&qv_study_usage::person_heat_gain>},
    {"power", read<&qv_study_usage::power>},
    {"flow", read<&qv_study_usage::flow>},
    {"schedule", read<&qv_study_usage::schedule>},
    {"occupation_schedule", read<&qv_study_usage::occupation_schedule>},
    {"heating_period", read<&qv_study_usage::heating_period>},
    {"heating_range_c", read<&qv_study_usage::heating_range>},
    {"heating_schedule", read<&qv_study_usage::heating_schedule>},
    {"cooling_period", read<&qv_study_usage::cooling_period>},
    {"cooling_range_c", read<&qv_study_usage::cooling_range>},
    {"cooling_schedule", read<&qv_study_usage::cooling_schedule>},
};

// Reads the result of a member function.
template <class T, std::optional<double> (T::*function)() const>
qv_report_value call(const T& record) {
  return qv_to_report_value((record.*function)());
}

constexpr qv_report_field<qv_heat_loss> heat_loss_fields[] = {
    {"h_t_w_per_k", read<&qv_heat_loss::h_t>},
    {"h_t_with_surfaces_w_per_k", read<&qv_heat_loss::h_t_with_surfaces>},
    {"mean_u", call<qv_heat_loss, &qv_heat_loss::get_mean_u>},
    {"mean_u_with_surfaces", call<qv_heat_loss, &qv_heat_loss::get_mean_u_with_surfaces>},
    {"area_m2", read<&qv_heat_loss::area>},
    {"unknown_u_area_m2", read<&qv_heat_loss::unknown_area>},
    {"bridges_w_per_k", read<&qv_heat_loss::bridge_loss>},
};

constexpr qv_report_field<qv_surface_loss> surface_loss_fields[] = {
    {"type", read<&qv_surface_loss::type>},
    {"boundary", read<&qv_surface_loss::boundary>},
    {"count", [](const qv_surface_loss& group) { return count_of(group.count); }},
    {"area_m2", read<&qv_surface_loss::area>},
    {"unknown_u_area_m2", read<&qv_surface_loss::unknown_area>},
    {"mean_u", call<qv_surface_loss, &qv_surface_loss::get_mean_u>},
    {"loss_w_per_k", read<&qv_surface_loss::loss>},
    {"mean_u_with_surfaces", call<qv_surface_loss, &qv_surface_loss::get_mean_u_with_surfaces>},
    {"loss_with_surfaces_w_per_k", read<&qv_surface_loss::loss_with_surfaces>},
};

constexpr qv_report_field<qv_bridge_loss> bridge_loss_fields[] = {
    {"type", read<&qv_bridge_loss::type>},
    {"count", [](const qv_bridge_loss& group) { return count_of(group.count); }},
    {"length_m", read<&qv_bridge_loss::length>},
    {"unknown_psi_length_m", read<&qv_bridge_loss::unknown_length>},
    {"mean_psi", call<qv_bridge_loss, &qv_bridge_loss::get_mean_psi>},
    {"loss_w_per_k", read<&qv_bridge_loss::loss>},
};

constexpr qv_report_field<qv_study_composition> composition_fields[] = {
    {"name", read<&qv_study_composition::name>},
    {"typology", read<&qv_study_composition::typology>},
    {"u", read<&qv_study_composition::u>},
    {"resistance", read<&qv_study_composition::resistance>},
    {"thickness", read<&qv_study_composition::thickness>},
};

constexpr qv_report_field<qv_study_layer> layer_fields[] = {
    {"name", read<&qv_study_layer::name>},
    {"thickness", read<&qv_study_layer::thickness>},
    {"conductivity", read<&qv_study_layer::conductivity>},
    {"resistance", read<&qv_study_layer::resistance>},
};

constexpr qv_report_field<qv_study_opening> opening_fields[] = {
    {"id", read<&qv_study_opening::id>},
    {"name", read<&qv_study_opening::name>},
    {"wall", read<&qv_study_opening::wall>},
    {"opening_type", read<&qv_study_opening::opening_type>},
    {"composition", read<&qv_study_opening::composition>},
    {"glazing_area_m2", read<&qv_study_opening::glazing_area>},
    {"opaque_area_m2", read<&qv_study_opening::opaque_area>},
    {"frame_area_m2", read<&qv_study_opening::frame_area>},
    {"full_area_m2", read<&qv_study_opening::full_area>},
    {"u", read<&qv_study_opening::u>},
    {"solar_factor", read<&qv_study_opening::solar_factor>},
    {"visible_transmittance", read<&qv_study_opening::visible_transmittance>},
    {"html", read<&qv_study_opening::html>, false},
};

constexpr qv_report_field<qv_study_object> object_fields[] = {
    {"id", read<&qv_study_object::id>},
    {"name", read<&qv_study_object::name>},
    {"area_m2", read<&qv_study_object::area>},
    {"kind", read<&qv_study_object::kind>},
};

constexpr qv_report_field<qv_study_glazing> glazing_fields[] = {
    {"name", read<&qv_study_glazing::name>},
    {"u_vertical", read<&qv_study_glazing::u_vertical>},
    {"u_horizontal", read<&qv_study_glazing::u_horizontal>},
    {"u_inclined", read<&qv_study_glazing::u_inclined>},
    {"solar_factor", read<&qv_study_glazing::solar_factor>},
    {"visible_transmittance", read<&qv_study_glazing::visible_transmittance>},
    {"thickness_m", read<&qv_study_glazing::thickness>},
};

constexpr qv_report_field<qv_study_glazing_layer> glazing_layer_fields[] = {
    {"name", read<&qv_study_glazing_layer::name>},
    {"kind", read<&qv_study_glazing_layer::kind>},
    {"thickness_m", read<&qv_study_glazing_layer::thickness>},
    {"conductivity", read<&qv_study_glazing_layer::conductivity>},
    {"gas", read<&qv_study_glazing_layer::gas>},
    {"solar_transmittance", read<&qv_study_glazing_layer::solar_transmittance>},
    {"solar_reflectance_front", read<&qv_study_glazing_layer::solar_reflectance_front>},
    {"solar_reflectance_back", read<&qv_study_glazing_layer::solar_reflectance_back>},
    {"visible_transmittance", read<&qv_study_glazing_layer::visible_transmittance>},
    {"visible_reflectance_front", read<&qv_study_glazing_layer::visible_reflectance_front>},
    {"visible_reflectance_back", read<&qv_study_glazing_layer::visible_reflectance_back>},
    {"emissivity_front", read<&qv_study_glazing_layer::emissivity_front>},
    {"emissivity_back", read<&qv_study_glazing_layer::emissivity_back>},
};

constexpr qv_report_field<qv_study_facade> facade_fields[] = {
    {"orientation", read<&qv_study_facade::orientation>},
    {"walls", [](const qv_study_facade& facade) { return count_of(facade.walls); }},
    {"wall_area_m2", read<&qv_study_facade::wall_area>},
    {"openings", [](const qv_study_facade& facade) { return count_of(facade.openings); }},
    {"opening_area_m2", read<&qv_study_facade::opening_area>},
    {"window_area_m2", read<&qv_study_facade::window_area>},
    {"window_to_wall_ratio",
     [](const qv_study_facade& facade) {
       return qv_to_report_value(facade.get_window_to_wall_ratio());
     }},
};

constexpr qv_report_field<qv_study_refusal> refusal_fields[] = {
    {"reason", read<&qv_study_refusal::reason>},
    {"walls", [](const qv_study_refusal& refusal) { return count_of(refusal.walls); }},
};

constexpr qv_report_field<qv_finding> finding_fields[] = {
    {"code", read<&qv_finding::code>},   {"kind", read<&qv_finding::kind>},
    {"id", read<&qv_finding::id>},       {"message", read<&qv_finding::message>},
    {"place", read<&qv_finding::place>},
};

constexpr qv_report_field<qv_study_fate> fate_fields[] = {
    {"kind", read<&qv_study_fate::kind>},       {"id", read<&qv_study_fate::id>},
    {"outcome", read<&qv_study_fate::outcome>}, {"reason", read<&qv_study_fate::reason>},
    {"area_m2", read<&qv_study_fate::area>},    {"cut_m2", read<&qv_study_fate::cut>},
};

constexpr qv_report_field<qv_study_balance> balance_fields[] = {
    {"source_m2", read<&qv_study_balance::source>},
    {"walls_m2", read<&qv_study_balance::walls>},
    {"shading_m2", read<&qv_study_balance::shading>},
    {"merged_m2", read<&qv_study_balance::merged>},
    {"dropped_m2", read<&qv_study_balance::dropped>},
    {"objects_m2", read<&qv_study_balance::objects>},
};

constexpr qv_report_field<qv_study_opening_balance> opening_balance_fields[] = {
    {"source_m2", read<&qv_study_opening_balance::source>},
    {"openings_m2", read<&qv_study_opening_balance::openings>},
    {"merged_m2", read<&qv_study_opening_balance::merged>},
    {"dropped_m2", read<&qv_study_opening_balance::dropped>},
    {"cut_m2", read<&qv_study_opening_balance::cut>},
};

}  // namespace

std::span<const qv_report_field<qv_study_location>> qv_location_fields() {
  return location_fields;
}
std::span<const qv_report_field<qv_study_results>> qv_totals_fields() {
  return totals_fields;
}
std::span<const qv_report_field<qv_study_building>> qv_building_fields() {
  return building_fields;
}
std::span<const qv_report_field<qv_study_zone>> qv_zone_fields() {
  return zone_fields;
}
std::span<const qv_report_field<qv_study_space>> qv_space_fields() {
  return space_fields;
}
std::span<const qv_report_field<qv_study_wall>> qv_wall_fields() {
  return wall_fields;
}
std::span<const qv_report_field<qv_study_thermal_bridge>> qv_thermal_bridge_fields() {
  return thermal_bridge_fields;
}
std::span<const qv_report_field<qv_study_change>> qv_change_fields() {
  return change_fields;
}
std::span<const qv_report_field<qv_study_usage>> qv_usage_fields() {
  return usage_fields;
}
std::span<const qv_report_field<qv_heat_loss>> qv_heat_loss_fields() {
  return heat_loss_fields;
}
std::span<const qv_report_field<qv_surface_loss>> qv_surface_loss_fields() {
  return surface_loss_fields;
}
std::span<const qv_report_field<qv_bridge_loss>> qv_bridge_loss_fields() {
  return bridge_loss_fields;
}
std::span<const qv_report_field<qv_study_composition>> qv_composition_fields() {
  return composition_fields;
}
std::span<const qv_report_field<qv_study_layer>> qv_layer_fields() {
  return layer_fields;
}
std::span<const qv_report_field<qv_study_opening>> qv_opening_fields() {
  return opening_fields;
}
std::span<const qv_report_field<qv_study_object>> qv_object_fields() {
  return object_fields;
}
std::span<const qv_report_field<qv_study_glazing>> qv_glazing_fields() {
  return glazing_fields;
}
std::span<const qv_report_field<qv_study_glazing_layer>> qv_glazing_layer_fields() {
  return glazing_layer_fields;
}
std::span<const qv_report_field<qv_study_facade>> qv_facade_fields() {
  return facade_fields;
}
std::span<const qv_report_field<qv_study_refusal>> qv_refusal_fields() {
  return refusal_fields;
}
std::span<const qv_report_field<qv_study_opening_balance>> qv_opening_balance_fields() {
  return opening_balance_fields;
}
std::span<const qv_report_field<qv_finding>> qv_finding_fields() {
  return finding_fields;
}
std::span<const qv_report_field<qv_study_fate>> qv_fate_fields() {
  return fate_fields;
}
std::span<const qv_report_field<qv_study_balance>> qv_balance_fields() {
  return balance_fields;
}

}  // namespace qv
