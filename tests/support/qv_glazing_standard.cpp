#include "tests/support/qv_glazing_standard.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace qv_test {

namespace {

constexpr double outer_coefficient = 25;  // he, W/(m²·K)

// EN 673, table of gases, at 283 K.
constexpr standard_gas gases[5] = {{0.02496, 1.761e-5, 1008, 1.232},
                                   {0.01684, 2.164e-5, 519, 1.699},
                                   {0.009, 2.4e-5, 245, 3.56},
                                   {0.0054, 2.28e-5, 340, 5.897},
                                   {0.01275, 1.459e-5, 614, 6.118}};

double Nusselt(standard_slope slope, double Grashof_Prandtl) {
  switch (slope) {
    case standard_slope::vertical:
      return std::max(1.0, 0.035 * std::pow(Grashof_Prandtl, 0.38));
    case standard_slope::horizontal:
      return std::max(1.0, 0.16 * std::pow(Grashof_Prandtl, 0.28));
    default:
      return std::max(1.0, 0.10 * std::pow(Grashof_Prandtl, 0.31));
  }
}

// EN 673: hs = hr + hg of a gap, W/(m²·K), for a temperature difference between its surfaces.
double gap_conductance(const standard_layer& gap, double emissivity_before,
                       double emissivity_behind, double difference, standard_slope slope) {
  constexpr double Stefan_Boltzmann = 5.67e-8, mean_temperature = 283, gravity = 9.81;
  const double hr = 4 * Stefan_Boltzmann * std::pow(mean_temperature, 3) /
                    (1 / emissivity_before + 1 / emissivity_behind - 1);
  const standard_gas gas = mix_gases(gap.gas_fractions);
  const double Grashof = gravity * std::pow(gap.thickness, 3) * difference * gas.density *
                         gas.density / (mean_temperature * gas.viscosity * gas.viscosity);
  const double Prandtl = gas.viscosity * gas.specific_heat / gas.conductivity;
  const double hg = Nusselt(slope, Grashof * Prandtl) * gas.conductivity / gap.thickness;
  return hr + hg;
}

// Conductance of each gap; none is at an end of the stack.
std::vector<double> gap_conductances(const standard_stack& stack, standard_slope slope,
                                     const standard_departures& departures) {
  std::vector<std::size_t> gaps;
  for (std::size_t i = 0; i < stack.size(); ++i)
    if (stack[i].is_gap()) gaps.push_back(i);
  constexpr double difference_across_glazing = 15;  // K
  std::vector<double> differences(
      gaps.size(), departures.full_difference_at_each_gap
                       ? difference_across_glazing
                       : difference_across_glazing / static_cast<double>(gaps.size()));
  std::vector<double> conductances(gaps.size());
  for (int round = 0; round < 200; ++round) {
    double resistance = 0;
    for (std::size_t g = 0; g < gaps.size(); ++g) {
      const standard_layer& behind = stack[gaps[g] + 1];
      conductances[g] = gap_conductance(
          stack[gaps[g]], stack[gaps[g] - 1].emissivity_back,
          departures.back_face_behind_gap ? behind.emissivity_back : behind.emissivity_front,
          differences[g], slope);
      resistance += 1 / conductances[g];
    }
    if (departures.full_difference_at_each_gap) break;
    for (std::size_t g = 0; g < gaps.size(); ++g)
      differences[g] = difference_across_glazing / conductances[g] / resistance;
  }
  return conductances;
}

double inner_coefficient(const standard_stack& stack) {
  return 3.6 + 4.1 * stack.back().emissivity_back / 0.837;
}

double thermal_transmittance(const standard_stack& stack, standard_slope slope,
                             const standard_departures& departures) {
  double resistance = 1 / outer_coefficient + 1 / inner_coefficient(stack);
  for (const double conductance : gap_conductances(stack, slope, departures))
    resistance += 1 / conductance;
  for (const standard_layer& layer : stack)
    if (!layer.is_gap()) resistance += layer.thickness / layer.conductivity;
  return 1 / resistance;
}

// The panes between two gaps, which EN 410 takes for one.
struct pane_group {
  std::vector<standard_optics> layers;
  double resistance = 0;
  bool is_plain = true;
};

std::vector<pane_group> group_panes(const standard_stack& stack) {
  std::vector<pane_group> groups(1);
  for (const standard_layer& layer : stack) {
    if (layer.is_gap()) {
      groups.emplace_back();
      continue;
    }
    pane_group& group = groups.back();
    group.is_plain = group.layers.empty();
    group.layers.push_back(layer.solar);
    group.resistance += layer.thickness / layer.conductivity;
  }
  return groups;
}

double absorbed_from_front(const standard_optics& pane) {
  return 1 - pane.transmittance - pane.reflectance_front;
}
double absorbed_from_back(const standard_optics& pane) {
  return 1 - pane.transmittance - pane.reflectance_back;
}

// What becomes of light of strength 1 that falls on a stack of at least one pane.
struct light_balance {
  double leaves_front = 0;
  double leaves_back = 0;
  std::vector<double> absorbed;  // by pane
};

light_balance follow_light_from(const std::vector<standard_optics>& panes, bool front) {
  const std::size_t count = panes.size();
  // Light on its way at each of the count + 1 places before, between and behind the panes.
  std::vector<double> inward(count + 1, 0.0), outward(count + 1, 0.0);
  (front ? inward.front() : outward.back()) = 1;
  light_balance balance;
  balance.absorbed.assign(count, 0.0);
  constexpr double nothing = 1e-18;
  for (double left = 1; left > nothing;) {
    std::vector<double> next_inward(count + 1, 0.0), next_outward(count + 1, 0.0);
    for (std::size_t i = 0; i < count; ++i) {
      const standard_optics& pane = panes[i];
      const double on_front = inward[i], on_back = outward[i + 1];
      next_inward[i + 1] += pane.transmittance * on_front + pane.reflectance_back * on_back;
      next_outward[i] += pane.transmittance * on_back + pane.reflectance_front * on_front;
      balance.absorbed[i] +=
          absorbed_from_front(pane) * on_front + absorbed_from_back(pane) * on_back;
    }
    balance.leaves_back += std::exchange(next_inward.back(), 0.0);
    balance.leaves_front += std::exchange(next_outward.front(), 0.0);
    inward = std::move(next_inward);
    outward = std::move(next_outward);
    left = std::accumulate(inward.begin(), inward.end(), 0.0) +
           std::accumulate(outward.begin(), outward.end(), 0.0);
  }
  return balance;
}

// EN 410, single glazing.
double inward_of_one(const standard_optics& pane, double hi) {
  return absorbed_from_front(pane) * hi / (outer_coefficient + hi);
}

// EN 410, double glazing; the conductance from the outer to the inner surface of the glazing.
double inward_of_two(const standard_optics& p1, const standard_optics& p2, double conductance,
                     double hi) {
  const double between = 1 - p1.reflectance_back * p2.reflectance_front;
  const double absorbed_1 = absorbed_from_front(p1) + absorbed_from_back(p1) * p1.transmittance *
                                                          p2.reflectance_front / between;
  const double absorbed_2 = absorbed_from_front(p2) * p1.transmittance / between;
  return ((absorbed_1 + absorbed_2) / outer_coefficient + absorbed_2 / conductance) /
         (1 / hi + 1 / outer_coefficient + 1 / conductance);
}

// EN 410, triple glazing; conductances from the outer surface to the middle of the second pane and
// from there to the inner surface.
double inward_of_three(const standard_optics& p1, const standard_optics& p2,
                       const standard_optics& p3, double conductance_12, double conductance_23,
                       double hi) {
  const double between_23 = 1 - p2.reflectance_back * p3.reflectance_front;
  const double between =
      (1 - p1.reflectance_back * p2.reflectance_front) * between_23 -
      p2.transmittance * p2.transmittance * p1.reflectance_back * p3.reflectance_front;
  const double absorbed_1 =
      absorbed_from_front(p1) +
      (p1.transmittance * absorbed_from_back(p1) * p2.reflectance_front * between_23 +
       p1.transmittance * p2.transmittance * p2.transmittance * absorbed_from_back(p1) *
           p3.reflectance_front) /
          between;
  const double absorbed_2 =
      (p1.transmittance * absorbed_from_front(p2) * between_23 +
       p1.transmittance * p2.transmittance * absorbed_from_back(p2) * p3.reflectance_front) /
      between;
  const double absorbed_3 = p1.transmittance * p2.transmittance * absorbed_from_front(p3) / between;
  return (absorbed_3 / conductance_23 + (absorbed_3 + absorbed_2) / conductance_12 +
          (absorbed_1 + absorbed_2 + absorbed_3) / outer_coefficient) /
         (1 / hi + 1 / outer_coefficient + 1 / conductance_12 + 1 / conductance_23);
}

// The secondary heat transfer factor towards the inside, for a vertical glazing.
double inward_heat(const standard_stack& stack, const standard_departures& departures) {
  const std::vector<pane_group> groups = group_panes(stack);
  if (departures.plain_panes_only &&
      std::any_of(groups.begin(), groups.end(), [](const pane_group& g) { return !g.is_plain; }))
    return 0;
  std::vector<double> gap_resistances;
  for (const double conductance : gap_conductances(stack, standard_slope::vertical, departures))
    gap_resistances.push_back(1 / conductance);
  if (departures.still_gap_in_solar_factor) {
    std::size_t g = 0;
    for (const standard_layer& layer : stack)
      if (layer.is_gap())
        gap_resistances[g++] = layer.thickness / mix_gases(layer.gas_fractions).conductivity;
  }
  std::vector<standard_optics> panes;
  panes.reserve(groups.size());
  for (const pane_group& group : groups) panes.push_back(follow_light(group.layers));
  const double hi = inner_coefficient(stack);
  switch (panes.size()) {
    case 1:
      return inward_of_one(panes[0], hi);
    case 2:
      return inward_of_two(panes[0], panes[1],
                           1 / (groups[0].resistance + gap_resistances[0] + groups[1].resistance),
                           hi);
    case 3:
      return inward_of_three(
          panes[0], panes[1], panes[2],
          1 / (groups[0].resistance + gap_resistances[0] + 0.5 * groups[1].resistance),
          1 / (0.5 * groups[1].resistance + gap_resistances[1] + groups[2].resistance), hi);
    default:
      return 0;  // not stated for more panes
  }
}

}  // namespace

standard_gas mix_gases(const std::array<double, 5>& fractions) {
  standard_gas mixture = {0, 0, 0, 0};
  for (std::size_t i = 0; i < fractions.size(); ++i) {
    mixture.conductivity += fractions[i] * gases[i].conductivity;
    mixture.viscosity += fractions[i] * gases[i].viscosity;
    mixture.specific_heat += fractions[i] * gases[i].specific_heat;
    mixture.density += fractions[i] * gases[i].density;
  }
  return mixture;
}

standard_optics follow_light(const std::vector<standard_optics>& panes,
                             std::vector<double>* absorbed) {
  const light_balance from_front = follow_light_from(panes, true);
  if (absorbed != nullptr) *absorbed = from_front.absorbed;
  return {from_front.leaves_back, from_front.leaves_front,
          follow_light_from(panes, false).leaves_back};
}

standard_figures work_out(const standard_stack& stack, const standard_departures& departures) {
  standard_figures figures;
  figures.U_vertical = thermal_transmittance(stack, standard_slope::vertical, departures);
  figures.U_horizontal = thermal_transmittance(stack, standard_slope::horizontal, departures);
  figures.U_inclined = thermal_transmittance(stack, standard_slope::inclined, departures);
  std::vector<standard_optics> solar, visible;
  for (const standard_layer& layer : stack) {
    if (layer.is_gap()) continue;
    solar.push_back(layer.solar);
    visible.push_back(layer.visible);
  }
  figures.solar = follow_light(solar);
  figures.visible = follow_light(visible);
  figures.solar_factor = figures.solar.transmittance + inward_heat(stack, departures);
  return figures;
}

}  // namespace qv_test
