#include "bim/envelope/qvi_opening.h"

#include <algorithm>

#include "bim/envelope/qvi_opening_composition.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/qv_panel.h"
#include "core/items/qv_scene.h"
#include "core/shapes/qvi_mesh.h"
#include "utilities/qv_date.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_opening)

float qvi_opening::get_U() const {
  const qvi_opening_composition* composition = get_composition();
  return get_effective(get_forced_U(), composition == nullptr ? -1.0f : composition->get_forced_U(),
                       record_->U);
}

float qvi_opening::get_solar_factor() const {
  const qvi_opening_composition* composition = get_composition();
  return get_effective(get_forced_solar_factor(),
                       composition == nullptr ? -1.0f : composition->get_forced_solar_factor(),
                       record_->solar_factor);
}

float qvi_opening::get_visible_transmittance() const {
  const qvi_opening_composition* composition = get_composition();
  return get_effective(
      get_forced_visible_transmittance(),
      composition == nullptr ? -1.0f : composition->get_forced_visible_transmittance(),
      record_->visible_transmittance);
}

float qvi_opening::get_effective(float own, float of_composition, float computed) const {
  if (own >= 0.0f) return own;
  return of_composition >= 0.0f ? of_composition : computed;
}

void qvi_opening::precompute() {
  qv_item::precompute();
  if (get_scene() != nullptr && get_scene()->get_date() <= record_->physical_date) return;
  compute_geometry();
  compute_physical();
  record_->physical_date = qv_get_date();
}

bool qvi_opening::is_physically_up_to_date() const {
  const unsigned int date = record_->physical_date;
  const qv_scene* const scene = get_scene();
  if (scene == nullptr || date == 0 || get_date() > date || record_->geometry_date > date) {
    return false;
  }
  const qvi_opening_composition* const composition = get_composition();
  if (composition != nullptr && composition->get_date() > date) return false;
  for (const qvi_opening_part& part : record_->parts) {
    if (reinterpret_cast<const qv_item*>(part.shader)->get_date() > date) return false;
  }
  // A glazing changes with its layers, which are shared items outside of it.
  return scene->get_last_change("glazing", "") <= date &&
         scene->get_last_change("glazing_layer", "") <= date;
}

void qvi_opening::compute_physical() {
  compute_geometry();
  if (is_physically_up_to_date()) return;
  // A mesh that has just received its glazing joins the parts at once.
  if (hand_out_glazing()) compute_geometry();

  float azimuth = 0;
  float tilt = 0;
  get_normal().get_angles(azimuth, tilt);
  float U = 0;
  float solar_factor = 0;
  float visible_transmittance = 0;
  for (const qvi_opening_part& part : record_->parts) {
    part.shader->precompute();
    U += part.shader->get_U(tilt) * part.area;
    solar_factor += part.shader->get_solar_factor() * part.area;
    visible_transmittance += part.shader->get_visible_transmittance() * part.area;
  }
  // An opening without area yields figures that are not finite; who uses them copes with that.
  record_->U = U / record_->full_area;
  record_->solar_factor = solar_factor / record_->full_area;
  record_->visible_transmittance = visible_transmittance / record_->full_area;
  record_->physical_date = qv_get_date();
}

qvi_glazing* qvi_opening::choose_glazing() {
  if (const qvi_opening_composition* composition = get_composition()) {
    if (qvi_glazing* glazing = composition->get_glazing()) return glazing;
  }
  qv_item* const owner = get_scene() != nullptr ? static_cast<qv_item*>(get_scene()) : this;
  for (qv_item* child : owner->get_children()) {
    if (child->has_type("glazing")) return static_cast<qvi_glazing*>(child);
  }
  auto* const made = qv_new_item<qvi_glazing>();
  owner->add_child(made, -1);
  return made;
}

bool qvi_opening::hand_out_glazing() {
  qvi_glazing* const glazing = choose_glazing();
  bool handed_out = false;
  for (qvi_mesh* mesh : qv_collect<qvi_mesh>(this, "mesh")) {
    const qvi_shader* const present = mesh->get_front_shader();
    if (present != nullptr && !present->has_type("glazing")) continue;
    handed_out = handed_out || present != glazing;
    mesh->set_front_shader(glazing);
    mesh->set_back_shader(glazing);
  }
  return handed_out;
}

std::string qvi_opening::get_html_information() {
  const auto row = [](std::string_view label, const std::string& value, std::string_view unit) {
    std::string html = "<tr><td><b>";
    html.append(label).append(" :</b></td><td align=left>");
    return html.append(value).append(unit).append("</td></tr>");
  };
  std::string html(panel::table_start);
  html += row("Surface de vitrage", panel::fixed(get_glazing_area(), 2), " m²");
  html += row("Surface opaque", panel::fixed(get_opaque_area(), 2), " m²");
  html += row("Surface de cadre", panel::fixed(get_frame_area(), 2), " m²");
  html += row("Surface totale", panel::fixed(get_full_area(), 2), " m²");
  html += row("U", panel::fixed(get_U(), 3), " W/K/m²");
  html += row("Facteur solaire", panel::fixed(get_solar_factor() * 100.0f, 1), " %");
  html +=
      row("Transmission lumineuse", panel::fixed(get_visible_transmittance() * 100.0f, 1), " %");
  return html.append(panel::table_end);
}

// --- the sun ---

void qvi_opening::compute_solar_income(int direct_rays, int montecarlo_factor, int ray_depth,
                                       float direct_error, float diffuse_error) {
  compute_solar_income_of(get_scene(), get_normal(), get_full_face(),
                          {direct_rays, montecarlo_factor, ray_depth, direct_error, diffuse_error});
}

}  // namespace qv
