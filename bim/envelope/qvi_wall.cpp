#include "bim/envelope/qvi_wall.h"

#include <algorithm>

#include "bim/envelope/qvi_opening.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_limit_condition.h"
#include "bim/materials/qvi_matter.h"
#include "core/items/qv_scene.h"
#include "core/shapes/qvi_polygon.h"
#include "utilities/qv_date.h"

namespace qv {

namespace {

// W/(m²·K); exchange coefficient of an outer surface with the outside air.
constexpr float outer_exchange_coefficient = 25.0f;

}  // namespace

QV_ITEM_CLASS_IMPLEMENTATION(qvi_wall)

// --- derived values ---

void qvi_wall::precompute() {
  qv_scene* const scene = get_scene();
  if (scene != nullptr && record_->date != 0 && scene->get_date() <= record_->date) return;
  if (scene != nullptr) find_openings();
  normalise_spaces();
  complete_faces();
  update_contact_type();
  update_loss_area();
  update_face_shaders();
  record_->date = qv_get_date();
}

void qvi_wall::find_openings() {
  record_->openings.clear();
  for (qv_item* opening : get_scene()->get_referrers("opening", "wall", this))
    record_->openings.append(static_cast<qvi_opening*>(opening));
}

void qvi_wall::normalise_spaces() {
  if (get_space_0() != nullptr || get_space_1() == nullptr) return;
  set_space_0(get_space_1());
  set_space_1(nullptr);
}

void qvi_wall::complete_faces() {
  if (get_pierced_face_0() == nullptr) set_pierced_face_0(get_face_0());
  if (get_pierced_face_1() == nullptr) set_pierced_face_1(get_face_1());
  if (get_face_0() == nullptr) set_face_0(get_pierced_face_0());
  if (get_face_1() == nullptr) set_face_1(get_pierced_face_1());
}

void qvi_wall::update_contact_type() {
  // The spaces' dates are deliberately not looked at: a contact type set by hand lasts until the
  // wall's type or one of its faces changes.
  const unsigned int decided = get_contact_type_date();
  if (record_->date != 0 && decided >= get_wall_type_date() && decided >= get_face_0_date() &&
      decided >= get_face_1_date())
    return;

  const bool one_space = get_space_0() != nullptr;
  const bool two_spaces = one_space && get_space_1() != nullptr;
  contact_type contact = contact_type::roof;
  switch (get_wall_type()) {
    case wall_type::wall:
      contact = two_spaces  ? contact_type::inner_wall
                : one_space ? contact_type::outer_wall
                            : contact_type::outside_wall;
      break;
    case wall_type::floor:
      contact = two_spaces  ? contact_type::intermediate_floor
                : one_space ? contact_type::lower_floor
                            : contact_type::outside_slab;
      break;
    case wall_type::roof:
      set_contact_type(one_space ? contact_type::roof : contact_type::outside_slab);
      return;
    default:
      return;
  }
  // Deliberately through "roof": whoever follows the contact type gets a fresh date and a
  // notification even where the value comes out as it was.
  set_contact_type(contact_type::roof);
  set_contact_type(contact);
}

void qvi_wall::update_loss_area() {
  qvi_polygon* face = nullptr;
  for (qvi_polygon* candidate : {get_pierced_face(), get_pierced_face_0(), get_pierced_face_1(),
                                 get_face(), get_face_0(), get_face_1()}) {
    if (face == nullptr) face = candidate;
  }
  if (face == nullptr) {
    record_->loss_area = 0;
    return;
  }
  // The parameters tell when another face, itself perhaps an old one, took its place.
  const unsigned int changed =
      std::max({face->get_local_date(), get_pierced_face_date(), get_pierced_face_0_date(),
                get_pierced_face_1_date(), get_face_date(), get_face_0_date(), get_face_1_date()});
  if (record_->date != 0 && changed <= record_->date) return;
  qv_polygon loss_polygon;
  face->fill_polygon(&loss_polygon);
  record_->loss_area = loss_polygon.get_area();
}

void qvi_wall::update_face_shaders() {
  qvi_composition* const composition = get_composition();
  qv_scene* const scene = get_scene();
  const unsigned int date = record_->date;
  if (date != 0 && date >= get_date() && scene != nullptr) {
    const bool newer_composition = composition != nullptr && composition->get_date() > date;
    if (!newer_composition && scene->get_last_change("shader", "") <= date) return;
  }
  if (composition == nullptr) return;
  const qv_list<qvi_matter*> layers = composition->get_layers();
  if (layers.is_empty()) return;
  qvi_matter* const first = layers[0];
  qvi_matter* const last = layers[layers.get_count() - 1];
  if (first == nullptr || last == nullptr) return;

  for (qvi_polygon* face : {get_pierced_face_0(), get_pierced_face_1()}) {
    if (face == nullptr) continue;
    face->set_front_shader(first);
    face->set_back_shader(last);
  }
}

bool qvi_wall::can_have_limit_condition() const {
  const contact_type contact = get_contact_type();
  return contact != contact_type::inner_wall && contact != contact_type::intermediate_floor;
}

bool qvi_wall::is_exterior() const {
  if (get_space_0() != nullptr && get_space_1() != nullptr) return false;
  return get_limit_condition() == nullptr;
}

float qvi_wall::get_solar_factor() const {
  qvi_composition* const composition = get_composition();
  if (composition == nullptr) return 0;
  qvi_polygon* const outside_face = get_space_0() != nullptr ? get_face_1() : get_face_0();
  const qvi_shader* const shader =
      outside_face != nullptr ? outside_face->get_front_shader() : nullptr;
  if (shader == nullptr) return 0;
  const float absorptance = 1.0f - shader->get_diffuse_reflexion(qv_spectrum::solar) -
                            shader->get_direct_reflexion(qv_spectrum::solar) -
                            shader->get_direct_transmission(qv_spectrum::solar) -
                            shader->get_diffuse_transmission(qv_spectrum::solar);
  if (absorptance <= 0) return 0;
  return composition->get_U() * absorptance / outer_exchange_coefficient;
}

// --- orientation ---

void qvi_wall::check_normal_orientation() {
  precompute();
  bool turned = false;
  switch (get_contact_type()) {
    case contact_type::lower_floor:
    case contact_type::intermediate_floor:
      turned = get_normal().z > 0;
      break;
    case contact_type::roof:
    case contact_type::outside_slab:
      turned = get_normal().z < 0;
      break;
    case contact_type::outer_wall:
    case contact_type::inner_wall:
    case contact_type::outside_wall:
      break;
  }
  if (turned) set_normal(get_normal() * -1.0f);
  propagate_normal_orientation();
}

void qvi_wall::propagate_normal_orientation() {
  const qv_3dvector normal = get_normal();
  for (qvi_polygon* face : {get_face_0(), get_face_1(), get_pierced_face_0(), get_pierced_face_1()})
    if (face != nullptr && face->get_normal().dot(normal) < 0) face->reverse();
  for (qvi_opening* opening : record_->openings) {
    if (opening->get_normal().dot(normal) > 0) continue;
    opening->set_normal(opening->get_normal() * -1.0f);
    opening->precompute();
  }
}

// --- what it has to do with the selection ---

bool qvi_wall::is_selection_related(qv_item* item) const {
  if (item == nullptr) return false;
  const qvi_composition* const composition = get_composition();
  if (item == this || item == composition) return true;
  if (item->has_type("matter"))
    return composition != nullptr &&
           composition->get_layers().contains(static_cast<qvi_matter*>(item));
  if (item->has_type("limit_condition")) return item == get_limit_condition();
  return false;
}

// --- the sun ---

void qvi_wall::compute_solar_income(int direct_rays, int montecarlo_factor, int ray_depth,
                                    float direct_error, float diffuse_error) {
  // The outside face first: another order than that of the loss surface, deliberately.
  qv_polygon surface;
  for (const qvi_polygon* candidate : {get_pierced_face_1(), get_face_1(), get_pierced_face_0(),
                                       get_face_0(), get_pierced_face(), get_face()}) {
    if (candidate == nullptr) continue;
    candidate->fill_polygon(&surface);
    break;
  }
  compute_solar_income_of(get_scene(), get_normal(), surface,
                          {direct_rays, montecarlo_factor, ray_depth, direct_error, diffuse_error});
}

}  // namespace qv
