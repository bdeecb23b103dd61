#pragma once

namespace qv_test {

/// Every item class of the building model: type name and the type above it, then its own parameters
/// in the order of their declaration: name, kind, default (lists, references and matrices start
/// empty), and the labels of an enumeration.
inline constexpr const char* data_model = R"(
class bim_configuration : item
  contact_types enum_list outer_wall inner_wall lower_floor intermediate_floor roof outside_wall outside_slab
  wall_compositions item_list
  opening_types enum_list window door curtain_wall skylight
  opening_compositions item_list
  connexion_types enum_list no_loss unknown facade_angle_outer facade_angle_inner facade_inner_wall roof_roof roof_roof_inner_wall roof_facade roof_facade_intermediate roof_upper_facade facade_intermediate facade_balcony_intermediate lower_floor_soil_facade lower_floor_crawlspace_facade lower_floor_air_facade lower_floor_soil_inner_wall lower_floor_crawlspace_inner_wall lower_floor_air_inner_wall
  connexion_values float_list
class bim_root : item
  original_walls_spaces bool 0
  original_thermal_bridges bool 0
class bim_property : item
  source_id string ""
class bim_object : item
  bim_type enum 0 unknown wall slab roof opening curtain_wall other
  original_bim_type enum 0 unknown wall slab roof opening curtain_wall other
  source_type string ""
  source_id string ""
  matrix matrix
  visibility bool 1
  bim_properties item_list
class custom_bim_object : bim_object
  thickness float 0.1
  base_polygon item
class bim_polygon : polygon
  bim_objects item_list
  dirty_perimeter float 0
class bim_piercing : item
  piercing_object item
  pierced_object item
class usage : item
class usage_heating_cooling : usage
  heating_period enum 1 never always dates
  heating_start int 0
  heating_end int 364
  heating_schedule item
  cooling_period enum 0 never always dates
  cooling_start int 0
  cooling_end int 364
  cooling_schedule item
class usage_internal_gains : usage
  unit_type enum 0 per_area total
  number_of_persons float 0
  person_heat_gain float 70
  occupation_schedule item
  equipment_power float 0
  equipment_schedule item
class usage_lighting : usage
  unit_type enum 0 power_per_area power
  power float 0
  schedule item
class usage_ventilation : usage
  unit_type enum 0 flow_per_area flow renewal_date
  flow float 0
  schedule item
class campus : item
  translation 3dvector 0 0 0
  rotation_z float 0
class building : item
  building_status enum 0 new existing
  floors float_list
class zone : item
  building item
  usage_heating_cooling item
  usage_ventilation item
  usage_lighting item
  usage_internal_gains item
class xspace : item
  source_type string ""
  outside bool 1
  source_ids string_list
class space : xspace
  building item
  zone item
  floor int -1
  forced_area float -1
  forced_volume float -1
  usage_lighting item
  usage_internal_gains item
class wall : item
  source_ids string_list
  wall_type enum 1 wall floor roof
  contact_type enum 2 outer_wall inner_wall lower_floor intermediate_floor roof outside_wall outside_slab
  space_0 item
  space_1 item
  composition item
  composition_reverse bool 0
  limit_condition item
  normal 3dvector 0 0 1
  face item
  pierced_face item
  face_0 item
  pierced_face_0 item
  face_1 item
  pierced_face_1 item
class opening : item
  source_ids string_list
  opening_type enum 0 window door curtain_wall skylight
  wall item
  composition item
  normal 3dvector 0 0 1
  forced_U float -1
  forced_solar_factor float -1
  forced_visible_transmittance float -1
class opening_composition : item
  typology enum 5 single_glazing double_glazing triple_glazing door skylight other
  forced_U float -1
  forced_solar_factor float -1
  forced_visible_transmittance float -1
  glazing item
  opaque item
class connexion : item
  point_0 3dvector 0 0 0
  point_1 3dvector 0 0 0
  walls item_list
  contour_vertices 3dvector_list
  psi float 0
  connexion_type enum 1 no_loss unknown facade_angle_outer facade_angle_inner facade_inner_wall roof_roof roof_roof_inner_wall roof_facade roof_facade_intermediate roof_upper_facade facade_intermediate facade_balcony_intermediate lower_floor_soil_facade lower_floor_crawlspace_facade lower_floor_air_facade lower_floor_soil_inner_wall lower_floor_crawlspace_inner_wall lower_floor_air_inner_wall
class covering : item
  covering_type enum 0 wall floor roof ceiling outside_wall unknown
  walls item_list
  space item
  face item
  pierced_face item
class matter : shader
  typology enum 5 heavy_structure light_structure insulator facing inner_facing other
  conductivity float 0
  density float 0
  specific_heat float 0
class material : matter
  resistance float 0
  thickness float 0
class material_mix : material
  materials item_list
  materials_ratios float_list
class composition : item
  insulation enum 0 none interior exterior integrated
  typology enum 0 wall floor roof
  layers item_list
  layer_thicknesses float_list
class glazing_layer : item
  thickness float 0.01
  conductivity float 0.05
  diffuse_color color 1 1 1 0.1
class glazing_gaz : glazing_layer
  gaz_type enum 0 air argon krypton xenon sf6 other
  gaz_mixing float_list
  viscosity float 0
  specific_heat float 0
  volumic_mass float 0
class glazing_glass : glazing_layer
  supplier string ""
  model string ""
  solar_transmittance float 0.8
  solar_reflectance_front float 0.2
  solar_reflectance_back float 0.2
  visible_transmittance float 0.8
  visible_reflectance_front float 0.2
  visible_reflectance_back float 0.2
  thermal_transmittance float 0.8
  thermal_emissivity_front float 0.2
  thermal_emissivity_back float 0.2
class glazing_interlayer : glazing_glass
class glazing_pv : glazing_glass
  occupancy float 0.3
class opening_shader : shader
class glazing : opening_shader
  supplier string ""
  model string ""
  layers item_list
class opaque : opening_shader
  thickness float 0.01
  conductivity float 0.05
class limit_condition : item
  typology enum 0 soil crawlspace adiabatic regulated
  conductivity float 1.5
  density float 1500
  specific_heat float 2100
  b_coefficient float 5
  temperature float 19
)";

/// What constructors set beyond the declared defaults: class, then parameter and value.
inline constexpr const char* constructor_values = R"(
class space
  outside bool 0
class matter
  diffuse_color color 0.8 0.8 0.8 1
class material
  diffuse_color color 0.8 0.8 0.8 1
class material_mix
  diffuse_color color 0.8 0.8 0.8 1
class glazing_gaz
  thickness float 0.01
  conductivity float 0.05
  diffuse_color color 1 1 1 0
class glazing_glass
  thickness float 0.005
  conductivity float 0.05
  diffuse_color color 1 1 1 0.1
class glazing_interlayer
  thickness float 0.00038
  conductivity float 0.05
  solar_transmittance float 0.85
  solar_reflectance_front float 0
  solar_reflectance_back float 0
  visible_transmittance float 0.92
  visible_reflectance_front float 0
  visible_reflectance_back float 0
  thermal_transmittance float 0.9
  thermal_emissivity_front float 0
  thermal_emissivity_back float 0
class glazing_pv
  thickness float 0.001
  conductivity float 999
  solar_transmittance float 1
  solar_reflectance_front float 0
  solar_reflectance_back float 0
  visible_transmittance float 1
  visible_reflectance_front float 0
  visible_reflectance_back float 0
  thermal_transmittance float 1
  thermal_emissivity_front float 0
  thermal_emissivity_back float 0
  occupancy float 0.3
class glazing
  diffuse_color color 1 1 1 0.2
  specular_color color 1 1 1 1
  shininess float 20
)";

}  // namespace qv_test
