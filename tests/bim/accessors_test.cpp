#include <gtest/gtest.h>

#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_covering.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_opening_composition.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/imported/qvi_bim_custom_object.h"
#include "bim/imported/qvi_bim_piercing.h"
#include "bim/imported/qvi_bim_polygon.h"
#include "bim/imported/qvi_bim_property.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_pv.h"
#include "bim/materials/qvi_limit_condition.h"
#include "bim/materials/qvi_material_mix.h"
#include "bim/materials/qvi_opaque.h"
#include "bim/project/qvi_bim_configuration.h"
#include "bim/project/qvi_bim_root.h"
#include "bim/usages/qvi_usage_heating_cooling.h"
#include "bim/usages/qvi_usage_internal_gains.h"
#include "bim/usages/qvi_usage_lighting.h"
#include "bim/usages/qvi_usage_ventilation.h"
#include "core/light/qvi_schedule.h"
#include "tests/support/qv_recorders.h"
#include "utilities/qv_date.h"

using namespace qv;
using qv_test::notification;
using qv_test::recording_scene;

namespace {

// Something to refer to: one item per class, kept for the whole run.
template <class T>
T* some() {
  static T* item = new T;
  return item;
}

// Sets a new value twice through the accessors of one parameter of a fresh item: the first time
// changes, stamps and announces under `name`, the second does nothing.
template <class C, class Set, class Holds, class Date>
void expect_accessors(const std::string& name, Set set, Holds holds, Date date) {
  SCOPED_TRACE(name);
  recording_scene scene;
  auto* item = new C;
  scene.add_child(item, -1);
  const qv_param* param = item->find_param(name);
  ASSERT_NE(param, nullptr);
  EXPECT_EQ(date(*item), param->get_date());
  ASSERT_FALSE(holds(*item)) << "the value must differ from the default";
  scene.forget();
  const unsigned int before = qv_get_date();
  set(*item);
  EXPECT_TRUE(holds(*item));
  EXPECT_GT(date(*item), before);
  EXPECT_EQ(date(*item), param->get_date());
  EXPECT_EQ(scene.changed, (std::vector<notification>{{item, name}}));
  const unsigned int stamped = qv_get_date();
  set(*item);
  EXPECT_EQ(qv_get_date(), stamped);
  EXPECT_EQ(scene.changed.size(), 1u);
}

#define EXPECT_NAMED_ACCESSORS(key, type, stem, ...)                                        \
  expect_accessors<type>(                                                                   \
      key, [](type& item) { item.set_##stem(__VA_ARGS__); },                                \
      [](const type& item) {                                                                \
        return item.get_##stem() == std::decay_t<decltype(item.get_##stem())>(__VA_ARGS__); \
      },                                                                                    \
      [](const type& item) { return item.get_##stem##_date(); })
#define EXPECT_ACCESSORS(type, stem, ...) EXPECT_NAMED_ACCESSORS(#stem, type, stem, __VA_ARGS__)

// Lists of setters by kind are made of pointers to them.
TEST(accessors, take_numbers_and_references_by_value_and_what_is_larger_by_reference) {
  using wall = qvi_wall;
  void (qvi_matter::*const number)(float) = &qvi_matter::set_density;
  void (wall::*const flag)(bool) = &wall::set_composition_reverse;
  void (wall::*const kind)(wall::wall_type) = &wall::set_wall_type;
  void (wall::*const item)(qvi_space*) = &wall::set_space_0;
  void (wall::*const vector)(const qv_3dvector&) = &wall::set_normal;
  void (wall::*const strings)(const qv_list<std::string>&) = &wall::set_source_ids;
  void (qvi_connexion::*const items)(const qv_list<wall*>&) = &qvi_connexion::set_walls;
  void (qvi_glazing_layer::*const color)(const qv_color&) = &qvi_glazing_layer::set_diffuse_color;
  void (qvi_glazing::*const text)(const std::string&) = &qvi_glazing::set_model;

  qvi_matter matter;
  (matter.*number)(2300);
  EXPECT_EQ(matter.get_density(), 2300);
  wall one;
  (one.*flag)(true);
  (one.*kind)(wall::wall_type::roof);
  (one.*item)(some<qvi_space>());
  (one.*vector)({0, 1, 0});
  (one.*strings)({"a"});
  EXPECT_TRUE(one.get_composition_reverse());
  EXPECT_EQ(one.get_wall_type(), wall::wall_type::roof);
  EXPECT_EQ(one.get_space_0(), some<qvi_space>());
  EXPECT_EQ(one.get_normal(), qv_3dvector(0, 1, 0));
  EXPECT_EQ(one.get_source_ids(), qv_list<std::string>{"a"});
  qvi_connexion connexion;
  (connexion.*items)({&one});
  EXPECT_EQ(connexion.get_walls(), qv_list<wall*>{&one});
  qvi_glazing_layer layer;
  (layer.*color)({1, 0, 0, 1});
  EXPECT_EQ(layer.get_diffuse_color(), qv_color(1, 0, 0, 1));
  qvi_glazing glazing;
  (glazing.*text)("4/16/4");
  EXPECT_EQ(glazing.get_model(), "4/16/4");
}

TEST(accessors, of_the_project) {
  using c = qvi_bim_configuration;
  EXPECT_ACCESSORS(c, contact_types, {qvi_wall::contact_type::roof});
  EXPECT_ACCESSORS(c, wall_compositions, {some<qvi_composition>(), nullptr});
  EXPECT_ACCESSORS(c, opening_types, {qvi_opening::opening_type::door});
  EXPECT_ACCESSORS(c, opening_compositions, {some<qvi_opening_composition>()});
  EXPECT_ACCESSORS(c, connexion_types, {qvi_connexion::connexion_type::roof_facade});
  EXPECT_ACCESSORS(c, connexion_values, {0.5f, 0.25f});
  EXPECT_ACCESSORS(qvi_bim_root, original_walls_spaces, true);
  EXPECT_ACCESSORS(qvi_bim_root, original_thermal_bridges, true);
}

TEST(accessors, of_usages) {
  using h = qvi_usage_heating_cooling;
  EXPECT_ACCESSORS(h, heating_period, h::active_period::dates);
  EXPECT_ACCESSORS(h, heating_start, 12);
  EXPECT_ACCESSORS(h, heating_end, 120);
  EXPECT_ACCESSORS(h, heating_schedule, some<qvi_schedule>());
  EXPECT_ACCESSORS(h, cooling_period, h::active_period::always);
  EXPECT_ACCESSORS(h, cooling_start, 150);
  EXPECT_ACCESSORS(h, cooling_end, 240);
  EXPECT_ACCESSORS(h, cooling_schedule, some<qvi_schedule>());
  using g = qvi_usage_internal_gains;
  EXPECT_ACCESSORS(g, unit_type, g::gain_unit_type::total);
  EXPECT_ACCESSORS(g, number_of_persons, 4.0f);
  EXPECT_ACCESSORS(g, person_heat_gain, 90.0f);
  EXPECT_ACCESSORS(g, occupation_schedule, some<qvi_schedule>());
  EXPECT_ACCESSORS(g, equipment_power, 5.0f);
  EXPECT_ACCESSORS(g, equipment_schedule, some<qvi_schedule>());
  using l = qvi_usage_lighting;
  EXPECT_ACCESSORS(l, unit_type, l::lighting_unit_type::power);
  EXPECT_ACCESSORS(l, power, 8.0f);
  EXPECT_ACCESSORS(l, schedule, some<qvi_schedule>());
  using v = qvi_usage_ventilation;
  EXPECT_ACCESSORS(v, unit_type, v::ventilation_unit_type::renewal_date);
  EXPECT_ACCESSORS(v, flow, 0.5f);
  EXPECT_ACCESSORS(v, schedule, some<qvi_schedule>());
}

TEST(accessors, of_imported_geometry) {
  using o = qvi_bim_object;
  EXPECT_ACCESSORS(o, bim_type, o::bim_type::slab);
  EXPECT_ACCESSORS(o, original_bim_type, o::bim_type::curtain_wall);
  EXPECT_ACCESSORS(o, source_type, "IfcSlab");
  EXPECT_ACCESSORS(o, source_id, "7");
  EXPECT_ACCESSORS(o, matrix, qv_matrix::rotation(2, 90));
  EXPECT_ACCESSORS(o, visibility, false);
  EXPECT_ACCESSORS(o, bim_properties, {some<qvi_bim_property>()});
  EXPECT_ACCESSORS(qvi_bim_property, source_id, "p");
  EXPECT_ACCESSORS(qvi_bim_custom_object, thickness, 0.3f);
  EXPECT_ACCESSORS(qvi_bim_custom_object, base_polygon, some<qvi_polygon>());
  EXPECT_ACCESSORS(qvi_bim_polygon, bim_objects, {some<qvi_bim_object>()});
  EXPECT_ACCESSORS(qvi_bim_polygon, dirty_perimeter, 12.0f);
  EXPECT_ACCESSORS(qvi_bim_piercing, piercing_object, some<qvi_bim_object>());
  EXPECT_ACCESSORS(qvi_bim_piercing, pierced_object, some<qvi_bim_object>());
}

TEST(accessors, of_the_hierarchy) {
  EXPECT_ACCESSORS(qvi_campus, translation, {1, 2, 3});
  EXPECT_ACCESSORS(qvi_campus, rotation_z, 45.0f);
  EXPECT_ACCESSORS(qvi_building, building_status, qvi_building::building_status::existing);
  EXPECT_ACCESSORS(qvi_building, floors, {1.5f, 4.5f});
  using z = qvi_zone;
  EXPECT_ACCESSORS(z, building, some<qvi_building>());
  EXPECT_ACCESSORS(z, usage_heating_cooling, some<qvi_usage_heating_cooling>());
  EXPECT_ACCESSORS(z, usage_ventilation, some<qvi_usage_ventilation>());
  EXPECT_ACCESSORS(z, usage_lighting, some<qvi_usage_lighting>());
  EXPECT_ACCESSORS(z, usage_internal_gains, some<qvi_usage_internal_gains>());
  EXPECT_ACCESSORS(qvi_xspace, source_type, "IfcSpace");
  EXPECT_ACCESSORS(qvi_xspace, outside, false);
  EXPECT_ACCESSORS(qvi_xspace, source_ids, {"a", "b"});
  using s = qvi_space;
  EXPECT_ACCESSORS(s, outside, true);
  EXPECT_ACCESSORS(s, building, some<qvi_building>());
  EXPECT_ACCESSORS(s, zone, some<qvi_zone>());
  EXPECT_ACCESSORS(s, floor, 0);
  EXPECT_ACCESSORS(s, forced_area, 0.0f);
  EXPECT_ACCESSORS(s, forced_volume, 0.0f);
  EXPECT_ACCESSORS(s, usage_lighting, some<qvi_usage_lighting>());
  EXPECT_ACCESSORS(s, usage_internal_gains, some<qvi_usage_internal_gains>());
}

TEST(accessors, of_the_envelope) {
  using w = qvi_wall;
  EXPECT_ACCESSORS(w, source_ids, {"a"});
  EXPECT_ACCESSORS(w, wall_type, w::wall_type::roof);
  EXPECT_ACCESSORS(w, contact_type, w::contact_type::outside_slab);
  EXPECT_ACCESSORS(w, space_0, some<qvi_space>());
  EXPECT_ACCESSORS(w, space_1, some<qvi_space>());
  EXPECT_ACCESSORS(w, composition, some<qvi_composition>());
  EXPECT_ACCESSORS(w, composition_reverse, true);
  EXPECT_ACCESSORS(w, limit_condition, some<qvi_limit_condition>());
  EXPECT_ACCESSORS(w, normal, {1, 0, 0});
  EXPECT_ACCESSORS(w, face, some<qvi_polygon>());
  EXPECT_ACCESSORS(w, pierced_face, some<qvi_polygon>());
  EXPECT_ACCESSORS(w, face_0, some<qvi_polygon>());
  EXPECT_ACCESSORS(w, pierced_face_0, some<qvi_polygon>());
  EXPECT_ACCESSORS(w, face_1, some<qvi_polygon>());
  EXPECT_ACCESSORS(w, pierced_face_1, some<qvi_polygon>());
  using o = qvi_opening;
  EXPECT_ACCESSORS(o, source_ids, {"a"});
  EXPECT_ACCESSORS(o, opening_type, o::opening_type::skylight);
  EXPECT_ACCESSORS(o, wall, some<qvi_wall>());
  EXPECT_ACCESSORS(o, composition, some<qvi_opening_composition>());
  EXPECT_ACCESSORS(o, normal, {1, 0, 0});
  EXPECT_ACCESSORS(o, forced_U, 1.1f);
  EXPECT_ACCESSORS(o, forced_solar_factor, 0.5f);
  EXPECT_ACCESSORS(o, forced_visible_transmittance, 0.7f);
  using k = qvi_opening_composition;
  EXPECT_ACCESSORS(k, typology, k::opening_composition_typology::door);
  EXPECT_ACCESSORS(k, forced_U, 1.1f);
  EXPECT_ACCESSORS(k, forced_solar_factor, 0.5f);
  EXPECT_ACCESSORS(k, forced_visible_transmittance, 0.7f);
  EXPECT_ACCESSORS(k, glazing, some<qvi_glazing>());
  EXPECT_ACCESSORS(k, opaque, some<qvi_opaque>());
  EXPECT_ACCESSORS(qvi_covering, covering_type, qvi_covering::covering_type::ceiling);
  EXPECT_ACCESSORS(qvi_covering, walls, {some<qvi_wall>()});
  EXPECT_ACCESSORS(qvi_covering, space, some<qvi_space>());
  EXPECT_ACCESSORS(qvi_covering, face, some<qvi_polygon>());
  EXPECT_ACCESSORS(qvi_covering, pierced_face, some<qvi_polygon>());
}

TEST(accessors, of_connexions) {
  using c = qvi_connexion;
  EXPECT_ACCESSORS(c, point_0, {1, 0, 0});
  EXPECT_ACCESSORS(c, point_1, {1, 0, 2});
  EXPECT_ACCESSORS(c, walls, {some<qvi_wall>()});
  EXPECT_ACCESSORS(c, psi, 0.5f);
  EXPECT_ACCESSORS(c, connexion_type, c::connexion_type::roof_roof);
}

// The one parameter whose accessors are named otherwise than its key; both names are deliberate.
TEST(accessors, of_a_connexions_wall_directions_stand_for_its_contour_vertices) {
  EXPECT_NAMED_ACCESSORS("contour_vertices", qvi_connexion, wall_directions, {{1, 0, 0}});
  EXPECT_EQ(some<qvi_connexion>()->find_param("wall_directions"), nullptr);
}

TEST(accessors, of_materials_and_compositions) {
  using m = qvi_material_mix;
  EXPECT_ACCESSORS(m, typology, m::material_typology::insulator);
  EXPECT_ACCESSORS(m, conductivity, 0.04f);
  EXPECT_ACCESSORS(m, density, 30.0f);
  EXPECT_ACCESSORS(m, specific_heat, 1000.0f);
  EXPECT_ACCESSORS(m, resistance, 2.5f);
  EXPECT_ACCESSORS(m, thickness, 0.1f);
  EXPECT_ACCESSORS(m, materials, {some<qvi_material>()});
  EXPECT_ACCESSORS(m, materials_ratios, {0.5f});
  using c = qvi_composition;
  EXPECT_ACCESSORS(c, insulation, c::composition_insulation::integrated);
  EXPECT_ACCESSORS(c, typology, c::composition_typology::roof);
  EXPECT_ACCESSORS(c, layers, {some<qvi_matter>(), some<qvi_material>()});
  EXPECT_ACCESSORS(c, layer_thicknesses, {0.1f, 0.2f});
  using l = qvi_limit_condition;
  EXPECT_ACCESSORS(l, typology, l::limit_condition_typology::regulated);
  EXPECT_ACCESSORS(l, conductivity, 2.0f);
  EXPECT_ACCESSORS(l, density, 2000.0f);
  EXPECT_ACCESSORS(l, specific_heat, 1000.0f);
  EXPECT_ACCESSORS(l, b_coefficient, 0.5f);
  EXPECT_ACCESSORS(l, temperature, 16.0f);
}

TEST(accessors, of_glazings) {
  EXPECT_ACCESSORS(qvi_glazing, supplier, "s");
  EXPECT_ACCESSORS(qvi_glazing, model, "m");
  EXPECT_ACCESSORS(qvi_glazing, layers, {some<qvi_glazing_pv>()});
  EXPECT_ACCESSORS(qvi_opaque, thickness, 0.04f);
  EXPECT_ACCESSORS(qvi_opaque, conductivity, 0.03f);
  using g = qvi_glazing_gaz;
  EXPECT_ACCESSORS(g, thickness, 0.016f);
  EXPECT_ACCESSORS(g, conductivity, 0.016f);
  EXPECT_ACCESSORS(g, diffuse_color, {0, 0, 0, 1});
  EXPECT_ACCESSORS(g, gaz_type, g::gaz_type::argon);
  EXPECT_ACCESSORS(g, gaz_mixing, {0.1f, 0.9f});
  EXPECT_ACCESSORS(g, viscosity, 1.0f);
  EXPECT_ACCESSORS(g, specific_heat, 500.0f);
  EXPECT_ACCESSORS(g, volumic_mass, 1.2f);
  using p = qvi_glazing_pv;
  EXPECT_ACCESSORS(p, supplier, "s");
  EXPECT_ACCESSORS(p, model, "m");
  EXPECT_ACCESSORS(p, solar_transmittance, 0.5f);
  EXPECT_ACCESSORS(p, solar_reflectance_front, 0.5f);
  EXPECT_ACCESSORS(p, solar_reflectance_back, 0.5f);
  EXPECT_ACCESSORS(p, visible_transmittance, 0.5f);
  EXPECT_ACCESSORS(p, visible_reflectance_front, 0.5f);
  EXPECT_ACCESSORS(p, visible_reflectance_back, 0.5f);
  EXPECT_ACCESSORS(p, thermal_transmittance, 0.5f);
  EXPECT_ACCESSORS(p, thermal_emissivity_front, 0.5f);
  EXPECT_ACCESSORS(p, thermal_emissivity_back, 0.5f);
  EXPECT_ACCESSORS(p, occupancy, 0.5f);
}

}  // namespace
