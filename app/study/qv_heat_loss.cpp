#include "app/study/qv_heat_loss.h"

#include <algorithm>

namespace qv {

namespace {

constexpr double outer_resistance = 0.04;
constexpr double inner_resistance_up = 0.10;
constexpr double inner_resistance_level = 0.13;
constexpr double inner_resistance_down = 0.17;
// Degrees; a flow within 30° of the horizontal is horizontal.
constexpr double steepest_level_up = 60.0;
constexpr double steepest_level_down = 120.0;

double inner_resistance(std::optional<double> tilt) {
  if (tilt.has_value() && *tilt < steepest_level_up) return inner_resistance_up;
  if (tilt.has_value() && *tilt > steepest_level_down) return inner_resistance_down;
  return inner_resistance_level;
}

std::optional<double> ratio(double loss, double measure) {
  if (!(measure > 0.0)) return std::nullopt;
  return loss / measure;
}

qv_surface_loss& find_group(std::vector<qv_surface_loss>& groups, const std::string& type,
                            const std::string& boundary) {
  const auto found = std::find_if(groups.begin(), groups.end(), [&](const auto& group) {
    return group.type == type && group.boundary == boundary;
  });
  if (found != groups.end()) return *found;
  groups.push_back({type, boundary});
  return groups.back();
}

void add(const qv_loss_surface& surface, qv_surface_loss& group) {
  ++group.count;
  group.area += surface.area;
  if (!surface.u.has_value()) {
    group.unknown_area += surface.area;
    return;
  }
  group.loss += surface.area * *surface.u;
  group.loss_with_surfaces += surface.area * surface.u_with_surfaces.value_or(*surface.u);
}

void sum_surfaces(const std::vector<qv_loss_surface>& surfaces,
                  std::vector<qv_surface_loss>& groups, qv_heat_loss& sums) {
  for (const qv_loss_surface& surface : surfaces) {
    add(surface, find_group(groups, surface.type, surface.boundary));
    add(surface, find_group(sums.boundaries, "", surface.boundary));
  }
}

void sum_bridges(const std::vector<qv_loss_bridge>& bridges, qv_heat_loss& sums) {
  for (const qv_loss_bridge& bridge : bridges) {
    auto group = std::find_if(sums.bridges.begin(), sums.bridges.end(),
                              [&](const auto& known) { return known.type == bridge.type; });
    if (group == sums.bridges.end()) group = sums.bridges.insert(group, {bridge.type});
    ++group->count;
    group->length += bridge.length;
    if (bridge.psi.has_value()) {
      group->loss += bridge.length * *bridge.psi;
    } else {
      group->unknown_length += bridge.length;
    }
  }
}

}  // namespace

std::optional<double> qv_surface_loss::get_mean_u() const {
  return ratio(loss, area - unknown_area);
}
std::optional<double> qv_surface_loss::get_mean_u_with_surfaces() const {
  return ratio(loss_with_surfaces, area - unknown_area);
}
std::optional<double> qv_bridge_loss::get_mean_psi() const {
  return ratio(loss, length - unknown_length);
}
std::optional<double> qv_heat_loss::get_mean_u() const {
  return ratio(h_t, area - unknown_area);
}
std::optional<double> qv_heat_loss::get_mean_u_with_surfaces() const {
  return ratio(h_t_with_surfaces, area - unknown_area);
}

qv_heat_loss qv_sum_heat_loss(const std::vector<qv_loss_surface>& walls,
                              const std::vector<qv_loss_surface>& openings,
                              const std::vector<qv_loss_bridge>& bridges) {
  qv_heat_loss sums;
  sum_surfaces(walls, sums.walls, sums);
  sum_surfaces(openings, sums.openings, sums);
  sum_bridges(bridges, sums);
  for (const qv_surface_loss& beyond : sums.boundaries) {
    if (beyond.boundary == qv_adiabatic_boundary) continue;
    sums.area += beyond.area;
    sums.unknown_area += beyond.unknown_area;
    sums.h_t += beyond.loss;
    sums.h_t_with_surfaces += beyond.loss_with_surfaces;
  }
  for (const qv_bridge_loss& group : sums.bridges) sums.bridge_loss += group.loss;
  sums.h_t += sums.bridge_loss;
  sums.h_t_with_surfaces += sums.bridge_loss;
  return sums;
}

double qv_surface_resistances(std::optional<double> tilt) {
  return outer_resistance + inner_resistance(tilt);
}

double qv_inner_surface_resistances(std::optional<double> tilt) {
  return 2 * inner_resistance(tilt);
}

double qv_u_with_surfaces(double u, double surface_resistances) {
  return u > 0.0 ? 1.0 / (1.0 / u + surface_resistances) : 0.0;
}

}  // namespace qv
