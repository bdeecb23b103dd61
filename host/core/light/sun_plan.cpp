#include "core/light/sun_plan.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <unordered_map>

#include "core/light/qvi_sun.h"

namespace qv::light {

namespace {

/// Up to as many lit steps get a node each.
constexpr std::size_t most_exact_nodes = 64;
/// The grid: rings of nodes from the horizon to the zenith, 7.5° apart, and as far apart on a ring.
constexpr int ring_count = 12;
/// Sine of the elevation at which the lowest ring lies: 0.5°, since rays along the horizontal would
/// graze the ground.
constexpr float lowest_sine = 0.0087f;

int get_ring_size(int ring) {
  const double elevation = std::numbers::pi / 2 * ring / ring_count;
  return std::max(1, static_cast<int>(std::lround(4 * ring_count * std::cos(elevation))));
}

qv_3dvector get_ring_direction(int ring, int place) {
  const double elevation = std::numbers::pi / 2 * ring / ring_count;
  const double azimuth = 2 * std::numbers::pi * place / get_ring_size(ring);
  const qv_3dvector direction(static_cast<float>(std::cos(elevation) * std::cos(azimuth)),
                              static_cast<float>(std::cos(elevation) * std::sin(azimuth)),
                              std::max(static_cast<float>(std::sin(elevation)), lowest_sine));
  return direction.normalized();
}

/// Gives the nodes of the grid that are in use their numbers.
class grid_nodes {
 public:
  explicit grid_nodes(sun_plan& plan) : plan_(plan) {}

  void place(lit_step& step) {
    const double elevation = std::asin(std::min(1.0, static_cast<double>(step.direction.z))) * 2 *
                             ring_count / std::numbers::pi;
    const int ring = std::min(static_cast<int>(elevation), ring_count - 1);
    const auto above = static_cast<float>(elevation - ring);
    double turn = std::atan2(step.direction.y, step.direction.x) / (2 * std::numbers::pi);
    if (turn < 0) turn += 1;
    place_on_ring(ring, turn, 1 - above, &step.nodes[0]);
    place_on_ring(ring + 1, turn, above, &step.nodes[2]);
  }

 private:
  void place_on_ring(int ring, double turn, float weight, node_weight* nodes) {
    const int size = get_ring_size(ring);
    const double position = turn * size;
    const int before = static_cast<int>(position) % size;
    const auto after = static_cast<float>(position - std::floor(position));
    nodes[0] = {get_number(ring, before), weight * (1 - after)};
    nodes[1] = {get_number(ring, (before + 1) % size), weight * after};
  }

  int get_number(int ring, int place) {
    const int key = ring * 4 * ring_count + place;
    const auto [found, fresh] = numbers_.emplace(key, static_cast<int>(plan_.nodes.size()));
    if (fresh) plan_.nodes.push_back(get_ring_direction(ring, place));
    return found->second;
  }

  sun_plan& plan_;
  std::unordered_map<int, int> numbers_;
};

bool shines(float irradiation) {
  return irradiation > 0 && std::isfinite(irradiation);
}

}  // namespace

sun_plan make_sun_plan(const qvi_sun* sun) {
  sun_plan plan;
  if (sun == nullptr) return plan;
  plan.step_count = sun->get_nb_values();
  for (int i = 0; i < plan.step_count; ++i) {
    const float diffuse = sun->get_diffuse_irradiation()[i];
    if (shines(diffuse)) plan.diffuse_sum += diffuse;
    lit_step step;
    step.step = i;
    step.irradiation = sun->get_direct_irradiation()[i];
    step.direction = sun->get_directions()[i];
    const float length = step.direction.normalize();
    if (!shines(step.irradiation) || !(length > 0) || !std::isfinite(length)) continue;
    if (step.direction.z > 0) plan.lit.push_back(step);
  }

  plan.exact_nodes = plan.lit.size() <= most_exact_nodes;
  grid_nodes grid(plan);
  for (lit_step& step : plan.lit) {
    if (plan.exact_nodes) {
      step.nodes[0] = {static_cast<int>(plan.nodes.size()), 1.0f};
      plan.nodes.push_back(step.direction);
    } else {
      grid.place(step);
    }
  }
  return plan;
}

}  // namespace qv::light
