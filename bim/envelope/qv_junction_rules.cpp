#include "bim/envelope/qv_junction_rules.h"

#include "bim/materials/qvi_limit_condition.h"

namespace qv {

namespace {

using connexion_type = qvi_connexion::connexion_type;
using contact_type = qvi_wall::contact_type;

constexpr float straight_on_cosine = -0.9f;  // below, two walls continue each other

}  // namespace

junction::junction(const qv_list<qvi_wall*>& walls, const qv_list<qv_3dvector>& directions) {
  for (int i = 0; i < walls.get_count(); ++i) {
    qvi_wall* const wall = walls[i];
    if (wall == nullptr) continue;
    const int contact = static_cast<int>(wall->get_contact_type());
    if (contact >= 0 && contact < contact_type_count) {
      groups_[contact].push_back(
          {wall, i < directions.get_count() ? directions[i] : qv_3dvector()});
    }
    vertical_ = vertical_ && wall->get_wall_type() == qvi_wall::wall_type::wall;
    lossy_ = lossy_ || (wall->get_space_0() == nullptr) != (wall->get_space_1() == nullptr);
  }
  if (directions.get_count() == 2 && directions[0].dot(directions[1]) < straight_on_cosine) {
    lossy_ = false;
  }
}

connexion_type junction::get_type() const {
  if (!lossy_) return connexion_type::no_loss;
  return vertical_ ? get_vertical_type() : get_horizontal_type();
}

connexion_type junction::get_vertical_type() const {
  const group& facades = get_group(contact_type::outer_wall);
  if (facades.size() != 2) {
    return get_group(contact_type::inner_wall).empty() ? connexion_type::unknown
                                                       : connexion_type::facade_inner_wall;
  }
  const qv_3dvector& a = facades[0].direction;
  const qv_3dvector& b = facades[1].direction;
  // Façades that continue each other stay unknown even where an inner wall meets them: deliberate,
  // ψ of such a junction is given by hand.
  if (a.dot(b) < straight_on_cosine) return connexion_type::unknown;
  const qvi_wall& first = *facades[0].wall;
  const qv_3dvector outward =
      first.get_space_1() != nullptr ? -first.get_normal() : first.get_normal();
  return outward.dot(b) > 0.0f ? connexion_type::facade_angle_inner
                               : connexion_type::facade_angle_outer;
}

connexion_type junction::get_horizontal_type() const {
  if (!get_group(contact_type::roof).empty()) return get_roof_type();
  if (!get_group(contact_type::lower_floor).empty()) return get_lower_floor_type();
  if (get_group(contact_type::outer_wall).size() > 1 &&
      !get_group(contact_type::intermediate_floor).empty()) {
    return get_group(contact_type::outside_slab).empty()
               ? connexion_type::facade_intermediate
               : connexion_type::facade_balcony_intermediate;
  }
  return connexion_type::unknown;
}

connexion_type junction::get_roof_type() const {
  const group& facades = get_group(contact_type::outer_wall);
  if (facades.empty()) {
    if (get_group(contact_type::roof).size() < 2) return connexion_type::unknown;
    return get_group(contact_type::inner_wall).empty() ? connexion_type::roof_roof
                                                       : connexion_type::roof_roof_inner_wall;
  }
  if (!get_group(contact_type::intermediate_floor).empty()) {
    return connexion_type::roof_facade_intermediate;
  }
  // A façade that rises above the roof stands on it.
  return facades[0].direction.z > 0.0f ? connexion_type::roof_upper_facade
                                       : connexion_type::roof_facade;
}

connexion_type junction::get_lower_floor_type() const {
  connexion_type with_facade = connexion_type::lower_floor_air_facade;
  connexion_type with_inner_wall = connexion_type::lower_floor_air_inner_wall;
  const qvi_wall& floor = *get_group(contact_type::lower_floor)[0].wall;
  if (const qvi_limit_condition* below = floor.get_limit_condition()) {
    using typology = qvi_limit_condition::limit_condition_typology;
    if (below->get_typology() == typology::soil) {
      with_facade = connexion_type::lower_floor_soil_facade;
      with_inner_wall = connexion_type::lower_floor_soil_inner_wall;
    } else if (below->get_typology() == typology::crawlspace) {
      with_facade = connexion_type::lower_floor_crawlspace_facade;
      with_inner_wall = connexion_type::lower_floor_crawlspace_inner_wall;
    } else {
      return connexion_type::unknown;
    }
  }
  if (!get_group(contact_type::outer_wall).empty()) return with_facade;
  return get_group(contact_type::inner_wall).empty() ? connexion_type::unknown : with_inner_wall;
}

}  // namespace qv
