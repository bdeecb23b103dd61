#include "app/study/qv_study_gather_openings.h"

#include <cmath>
#include <unordered_set>

#include "app/study/qv_study_gather.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_opening_composition.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_glass.h"

namespace qv {
namespace {

constexpr float flat = 0.0f;  // degrees from the horizontal
constexpr float inclined = 45.0f;
constexpr float upright = 90.0f;

// Where an opening looks to, in a word.
std::string facing_of(const qvi_opening& opening, double north) {
  const qvi_wall* wall = opening.get_wall();
  if (wall == nullptr) return "no wall";
  switch (wall->get_contact_type()) {
    case qvi_wall::contact_type::inner_wall:
    case qvi_wall::contact_type::intermediate_floor:
      return "inside";
    case qvi_wall::contact_type::outside_wall:
    case qvi_wall::contact_type::outside_slab:
      return "no space";
    case qvi_wall::contact_type::roof:
      return wall->get_space_1() == nullptr ? "roof" : "inside";
    case qvi_wall::contact_type::lower_floor:
      return "floor";
    case qvi_wall::contact_type::outer_wall:
      break;
  }
  const auto orientation = qv_facing_of(*wall, north);
  return orientation ? qv_orientation_name(*orientation) : "level";
}

// A figure of an opening: known when it is imposed, or when it is known what fills the opening.
std::optional<float> figure(float value, float own, float of_composition, bool filled) {
  const bool known = own >= 0.0f || of_composition >= 0.0f || filled;
  return known && std::isfinite(value) ? std::optional<float>(value) : std::nullopt;
}

qv_study_opening gather_opening(qvi_opening& opening) {
  qv_study_opening result;
  result.name = opening.get_name();
  result.opening_type =
      qvi_opening::get_opening_type_list()[static_cast<int>(opening.get_opening_type())];
  const qvi_opening_composition* composition = opening.get_composition();
  if (composition != nullptr) result.composition = composition->get_name();
  result.glazing_area = opening.get_glazing_area();
  result.opaque_area = opening.get_opaque_area();
  result.frame_area = opening.get_frame_area();
  result.full_area = opening.get_full_area();

  const bool filled = composition != nullptr && (composition->get_glazing() != nullptr ||
                                                 composition->get_opaque() != nullptr);
  const auto forced = [composition](float (qvi_opening_composition::*get)() const) {
    return composition == nullptr ? -1.0f : (composition->*get)();
  };
  result.u = figure(opening.get_U(), opening.get_forced_U(),
                    forced(&qvi_opening_composition::get_forced_U), filled);
  result.solar_factor = figure(opening.get_solar_factor(), opening.get_forced_solar_factor(),
                               forced(&qvi_opening_composition::get_forced_solar_factor), filled);
  result.visible_transmittance =
      figure(opening.get_visible_transmittance(), opening.get_forced_visible_transmittance(),
             forced(&qvi_opening_composition::get_forced_visible_transmittance), filled);
  result.html = opening.get_html_information();
  return result;
}

qv_study_glazing_layer gather_layer(qvi_glazing_layer& layer) {
  qv_study_glazing_layer result;
  result.name = layer.get_name();
  result.thickness = layer.get_thickness();
  result.conductivity = layer.get_conductivity();
  if (layer.has_type("glazing_gaz")) {
    result.kind = "gas";
    const auto& gas = static_cast<const qvi_glazing_gaz&>(layer);
    const int type = static_cast<int>(gas.get_gaz_type());
    const auto& gases = qvi_glazing_gaz::get_gaz_type_list();
    result.gas = type < gases.get_count() ? gases[type] : "by hand";
  } else if (layer.has_type("glazing_glass")) {
    result.kind = layer.has_type("glazing_interlayer") ? "interlayer"
                  : layer.has_type("glazing_pv")       ? "pv"
                                                       : "glass";
    const auto& pane = static_cast<const qvi_glazing_glass&>(layer);
    result.solar_transmittance = pane.get_solar_transmittance();
    result.solar_reflectance_front = pane.get_solar_reflectance_front();
    result.solar_reflectance_back = pane.get_solar_reflectance_back();
    result.visible_transmittance = pane.get_visible_transmittance();
    result.visible_reflectance_front = pane.get_visible_reflectance_front();
    result.visible_reflectance_back = pane.get_visible_reflectance_back();
    result.emissivity_front = pane.get_thermal_emissivity_front();
    result.emissivity_back = pane.get_thermal_emissivity_back();
  }
  return result;
}

qv_study_glazing gather_glazing(qvi_glazing& glazing) {
  // One that no opening uses has not been computed yet.
  glazing.precompute();
  qv_study_glazing result;
  result.name = glazing.get_name();
  result.u_vertical = glazing.get_U(upright);
  result.u_horizontal = glazing.get_U(flat);
  result.u_inclined = glazing.get_U(inclined);
  result.solar_factor = glazing.get_solar_factor();
  result.visible_transmittance = glazing.get_visible_transmittance();
  result.thickness = glazing.get_thickness();
  for (qvi_glazing_layer* layer : glazing.get_layers()) {
    if (layer != nullptr) result.layers.push_back(gather_layer(*layer));
  }
  return result;
}

}  // namespace

std::optional<qv_orientation> qv_facing_of(const qvi_wall& wall, double north) {
  const auto azimuth = qv_direction_of(wall.get_normal()).azimuth;
  return azimuth ? qv_orientation_of(*azimuth + north) : std::nullopt;
}

void qv_gather_openings(qv_scene& scene, double north,
                        const std::function<std::optional<std::string>(const qvi_wall*)>& wall_id,
                        const std::function<std::string(const qvi_opening&)>& opening_id,
                        qv_study_results& study) {
  for (qv_item* item : scene.get_items("opening")) {
    auto& opening = static_cast<qvi_opening&>(*item);
    qv_study_opening& gathered = study.openings.emplace_back(gather_opening(opening));
    gathered.id = opening_id(opening);
    gathered.wall = wall_id(opening.get_wall());
    gathered.facing = facing_of(opening, north);
    const qvi_wall* wall = opening.get_wall();
    gathered.loses_heat =
        wall != nullptr && wall->get_space_0() != nullptr && wall->get_space_1() == nullptr;
  }
  std::unordered_set<const qvi_glazing*> seen;
  for (qv_item* item : scene.get_items("opening_composition")) {
    qvi_glazing* glazing = static_cast<qvi_opening_composition&>(*item).get_glazing();
    if (glazing == nullptr || glazing->get_layers().is_empty()) continue;
    if (seen.insert(glazing).second) study.glazings.push_back(gather_glazing(*glazing));
  }
}

void qv_gather_facades(qv_scene& scene, double north, qv_study_results& study) {
  for (const qv_orientation orientation : qv_orientations) {
    study.facades.push_back({qv_orientation_name(orientation)});
  }
  for (qv_item* item : scene.get_items("wall")) {
    auto& wall = static_cast<qvi_wall&>(*item);
    if (wall.get_contact_type() != qvi_wall::contact_type::outer_wall) continue;
    const auto orientation = qv_facing_of(wall, north);
    if (!orientation) continue;
    qv_study_facade& facade = study.facades[static_cast<std::size_t>(*orientation)];
    ++facade.walls;
    facade.wall_area += wall.get_loss_area();
    for (const qvi_opening* opening : wall.get_openings()) {
      ++facade.openings;
      facade.wall_area += opening->get_full_area();
      facade.opening_area += opening->get_full_area();
      if (opening->get_glazing_area() > 0.0f) {
        facade.window_area += opening->get_glazing_area() + opening->get_frame_area();
      }
    }
  }
}

}  // namespace qv
