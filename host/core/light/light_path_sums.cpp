#include <algorithm>
#include <array>
#include <cstring>

#include "core/light/light_paths.h"
#include "core/light/wide.h"

// What the paths yield, summed over time steps and sets.

namespace qv::light {

namespace {

constexpr std::size_t set_count = light_paths::set_count;

/// Surfaces of one direction: what they reflect of each node, all sets of a node side by side.
struct step_source {
  const sun_facing* to_sun;
  std::vector<float> values;
};

/// Values of eight sets.
using lanes [[gnu::vector_size(32)]] = float;
static_assert(2 * sizeof(lanes) == set_count * sizeof(float));

inline void add_product(lanes& sum, const float* values, float factor) {
  lanes loaded;
  std::memcpy(&loaded, values, sizeof loaded);
  sum += loaded * factor;
}

inline double get_sum(const lanes& of) {
  return ((of[0] + of[4]) + (of[1] + of[5])) + ((of[2] + of[6]) + (of[3] + of[7]));
}

QV_WIDE void sum_steps(const std::vector<lit_step>& lit, const std::vector<step_source>& sources,
                       int paths_per_set, std::vector<set_mean>& found) {
  const double share = 1.0 / paths_per_set / set_count;
  for (std::size_t i = 0; i < lit.size(); ++i) {
    const lit_step& step = lit[i];
    lanes low{}, high{};
    for (const step_source& source : sources) {
      const sun_facing& facing = *source.to_sun;
      const float cosine = facing.has_cosine ? facing.normal.dot(step.direction) : 1;
      if (!(cosine > 0)) continue;
      for (const node_weight& node : step.nodes) {
        const float* values = &source.values[static_cast<std::size_t>(node.node) * set_count];
        add_product(low, values, cosine * node.weight);
        add_product(high, values + set_count / 2, cosine * node.weight);
      }
    }
    const double total = get_sum(low + high);
    const auto mean = static_cast<float>(total / set_count);
    low -= mean;
    high -= mean;
    const double squares = get_sum(low * low + high * high);
    found[i] = {total * share, squares * set_count / (set_count - 1) * share * share};
  }
}

/// Sum of the products of two lists.
QV_WIDE double get_product(const float* a, const float* b, std::size_t count) {
  // Four sums at a time, which do not wait for each other.
  constexpr std::size_t width = 4;
  double sums[width] = {};
  std::size_t i = 0;
  for (; i + width <= count; i += width)
    for (std::size_t k = 0; k < width; ++k) sums[k] += static_cast<double>(a[i + k]) * b[i + k];
  for (; i < count; ++i) sums[0] += static_cast<double>(a[i]) * b[i];
  return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

}  // namespace

set_mean get_mean(const light_paths::set_values& values) {
  set_mean found;
  for (double value : values) found.mean += value / set_count;
  for (double value : values) found.variance += (value - found.mean) * (value - found.mean);
  found.variance /= (set_count - 1) * set_count;
  return found;
}

light_paths::set_values light_paths::divide(const set_values& sums) const {
  set_values means = sums;
  for (double& value : means) value /= std::max(1, paths_per_set_);
  return means;
}

std::vector<set_mean> light_paths::get_reflected_sun() const {
  const std::size_t node_count = scene_.sun.nodes.size();
  std::vector<step_source> sources;
  for (const facing& from : facings_) {
    const auto dark = [](float value) { return value == 0; };
    if (std::all_of(from.values.begin(), from.values.end(), dark)) continue;
    step_source& source = sources.emplace_back();
    source.to_sun = from.to_sun.get();
    source.values.resize(from.values.size());
    for (std::size_t set = 0; set < set_count; ++set)
      for (std::size_t node = 0; node < node_count; ++node)
        source.values[node * set_count + set] = from.values[set * node_count + node];
  }
  std::vector<set_mean> found(scene_.sun.lit.size());
  sum_steps(scene_.sun.lit, sources, std::max(1, paths_per_set_), found);
  return found;
}

light_paths::set_values light_paths::get_sums() const {
  const std::size_t node_count = scene_.sun.nodes.size();
  set_values sums{};
  for (const facing& from : facings_) {
    const float* values = from.values.data();
    for (double& sum : sums) {
      sum += get_product(from.to_sun->masses.data(), values, node_count);
      values += node_count;
    }
  }
  for (std::size_t set = 0; set < set_count; ++set)
    sums[set] += scene_.sun.diffuse_sum * (direct_sky_[set] + reflected_sky_[set]);
  return divide(sums);
}

}  // namespace qv::light
