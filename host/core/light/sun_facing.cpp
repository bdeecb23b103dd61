#include "core/light/sun_facing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace qv::light {

namespace {

/// Cosine below which a node is looked for as if it stood this high above the surface.
constexpr float least_node_cosine = 0.02f;
/// Part of the lots that is dealt out evenly, so that every step gets its share.
constexpr double even_share = 0.3;
/// Facings that are kept; those of rounder buildings are made again.
constexpr std::size_t most_kept = 1024;

/// Deals the lots out to the nodes in use, by their masses.
void deal_lots(sun_facing& facing, const std::vector<bool>& used) {
  const std::size_t node_count = used.size();
  double mass = 0;
  int used_count = 0;
  for (std::size_t i = 0; i < node_count; ++i) {
    mass += facing.masses[i];
    used_count += used[i] ? 1 : 0;
  }
  if (used_count == 0) return;
  // Every node in use has a lot, whatever the rounding of its share.
  constexpr int lot_count = sun_facing::lot_count;
  double position = 0;
  const double free_lots = lot_count - used_count;
  for (std::size_t i = 0; i < node_count; ++i) {
    if (!used[i]) continue;
    const double share =
        (1 - even_share) * (mass > 0 ? facing.masses[i] / mass : 1.0 / used_count) +
        even_share / used_count;
    position += share * free_lots + 1;
    const int end = std::min(lot_count, static_cast<int>(std::lround(position)));
    const int lots = end - static_cast<int>(facing.lots.size());
    if (lots <= 0) continue;
    facing.lots.resize(static_cast<std::size_t>(end), static_cast<std::uint16_t>(i));
    facing.targets[i].weight = static_cast<float>(lot_count) / static_cast<float>(lots);
  }
}

}  // namespace

sun_facing make_sun_facing(const sun_plan& sun, const qv_3dvector& normal, bool has_cosine) {
  const std::size_t node_count = sun.nodes.size();
  sun_facing made;
  made.normal = normal;
  made.has_cosine = has_cosine;
  made.masses.assign(node_count, 0);
  for (const qv_3dvector& node : sun.nodes) made.targets.push_back({node, 0});

  std::vector<bool> used(node_count, false);
  for (const lit_step& step : sun.lit) {
    const float cosine = has_cosine ? normal.dot(step.direction) : 1;
    if (!(cosine > 0)) continue;
    for (const node_weight& share : step.nodes) {
      if (!(share.weight > 0)) continue;
      const auto node = static_cast<std::size_t>(share.node);
      used[node] = true;
      made.masses[node] += step.irradiation * cosine * share.weight;
    }
  }
  if (has_cosine && !sun.exact_nodes) {
    for (sun_facing::target& t : made.targets) {
      const float missing = least_node_cosine - t.direction.dot(normal);
      if (missing > 0) t.direction = (t.direction + normal * missing).normalized();
    }
  }
  deal_lots(made, used);
  return made;
}

std::shared_ptr<const sun_facing> sun_facings::get(const qv_3dvector& normal, bool has_cosine) {
  const key wanted(normal.x, normal.y, normal.z, has_cosine);
  {
    const std::lock_guard guard(mutex_);
    const auto known = made_.find(wanted);
    if (known != made_.end()) return known->second;
  }
  auto made = std::make_shared<const sun_facing>(make_sun_facing(sun_, normal, has_cosine));
  const std::lock_guard guard(mutex_);
  if (made_.size() < most_kept) made_.emplace(wanted, made);
  return made;
}

}  // namespace qv::light
