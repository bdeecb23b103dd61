#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <tuple>
#include <vector>

#include "core/light/sun_plan.h"
#include "utilities/qv_3dvector.h"

namespace qv::light {

/// How surfaces that face into one direction look for the nodes of a sun plan.
struct sun_facing {
  /// Lots from which nodes are drawn; with at most some 300 nodes each has one.
  static constexpr int lot_count = 2048;

  qv_3dvector normal;
  /// True when the cosine of incidence is still to be counted at each step; false for surfaces of
  /// any direction, where it counts at the node.
  bool has_cosine = false;
  /// By node: irradiation times cosine of its steps, W/m².
  std::vector<float> masses;
  /// Where a node is looked for.
  struct target {
    /// Unit direction. Nodes behind the surface or grazing it are looked for a little above it: the
    /// visibility of a sun that grazes the surface is wanted, not that of a node behind it.
    qv_3dvector direction;
    /// Number of lots over the node's share of them; 0 for a node that has none.
    float weight = 0;
  };
  /// By node.
  std::vector<target> targets;
  /// Node numbers, each as often as it is to be drawn; none when no step shines on these surfaces.
  std::vector<std::uint16_t> lots;
};

/// The facing for surfaces of unit normal `normal`; with `has_cosine` false, for all of them.
sun_facing make_sun_facing(const sun_plan& sun, const qv_3dvector& normal, bool has_cosine);

/// Facings of one sun plan, each made once: a building's surfaces face few directions, and its
/// receivers see the same surfaces. Any number of threads may ask.
class sun_facings {
 public:
  explicit sun_facings(const sun_plan& sun) : sun_(sun) {}

  /// As `make_sun_facing`.
  std::shared_ptr<const sun_facing> get(const qv_3dvector& normal, bool has_cosine);

 private:
  using key = std::tuple<float, float, float, bool>;

  const sun_plan& sun_;
  std::mutex mutex_;
  std::map<key, std::shared_ptr<const sun_facing>> made_;
};

}  // namespace qv::light
