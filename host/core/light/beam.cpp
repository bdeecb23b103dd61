#include "core/light/beam.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <memory>

#include "core/light/mirrors.h"
#include "core/light/qv_raytracer.h"
#include "core/light/sample_sequence.h"

namespace qv::light {

namespace {

constexpr int most_step_samples = 1 << 22;
/// Fewest samples of a step on each way over mirrors.
constexpr int least_way_samples = 2;
/// Short ways over mirrors, up to this number, are followed at each step, and of the longer ones as
/// many as the next number, chosen anew each time.
constexpr double most_short_ways = 16;
constexpr int long_way_choices = 4;

/// Block of random numbers that make the points of a pool; those of steps count from 0.
constexpr int pool_block = -1;

/// Random numbers. Those of different blocks, and of different steps in a block, have nothing in
/// common.
class step_random {
 public:
  step_random(std::uint32_t seed, int block)
      : state_((std::uint64_t{combine_seeds(seed, static_cast<std::uint32_t>(block))} << 32) |
               combine_seeds(seed + 1, static_cast<std::uint32_t>(block))) {}

  /// Those of a step: a stretch of the block's own that no other step comes to.
  step_random at_step(int step) const {
    step_random from = *this;
    from.state_ += increment * (static_cast<std::uint64_t>(step) << stretch_bits);
    return from;
  }

  /// SplitMix64: G. L. Steele, D. Lea, C. H. Flood, Fast splittable pseudorandom number generators,
  /// 2014.
  std::uint64_t dice() {
    state_ += increment;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return z ^ (z >> 31);
  }

 private:
  static constexpr std::uint64_t increment = 0x9e3779b97f4a7c15u;
  /// More numbers than the samples of a step ever take.
  static constexpr int stretch_bits = 24;
  std::uint64_t state_;
};

/// Points of a surface, evenly along its row (`surface_sampler`), to be chosen from where many
/// steps need a few points each: a choice costs a fraction of a new point.
///
/// They are themselves random, one in each of 2^`bits` equal parts of the area. What they are off
/// the whole surface is common to all steps, and with 128 of them or more for each sample of a step
/// it is still small beside what the samples of some thousand steps are off them.
class point_pool {
 public:
  static constexpr int least_bits = 11;
  static constexpr int most_bits = 13;
  static constexpr int points_per_sample = 128;

  point_pool(const surface_sampler& surface, int bits, step_random random)
      : points_(std::size_t{1} << bits), shift_(32 - bits) {
    const double width = 1.0 / static_cast<double>(points_.size());
    double begin = 0;
    for (qv_3dvector& point : points_) {
      const std::uint64_t dice = random.dice();
      const double within = to_unit(static_cast<std::uint32_t>(dice >> 32));
      point = surface.get_point((begin + within) * width, to_unit(static_cast<std::uint32_t>(dice)),
                                bits - 1);
      begin += 1;
    }
  }

  /// A pool for steps of `step_samples` samples each, null where new points do better.
  static std::unique_ptr<const point_pool> make(const surface_sampler& surface, int step_samples,
                                                std::size_t step_count, step_random random) {
    const auto wanted = static_cast<unsigned int>(points_per_sample * step_samples);
    const int bits = std::max(least_bits, static_cast<int>(std::bit_width(wanted - 1)));
    const double samples = static_cast<double>(step_samples) * static_cast<double>(step_count);
    if (bits > most_bits || samples < 2.0 * (1 << bits)) return nullptr;
    return std::make_unique<const point_pool>(surface, bits, random);
  }

  const qv_3dvector& get_point(std::uint32_t position) const { return points_[position >> shift_]; }

 private:
  std::vector<qv_3dvector> points_;
  int shift_;
};

/// Positions on a surface's row, as shares of 2³²: two in each of `count` / 2 equal strata.
class paired_positions {
 public:
  paired_positions(int count, step_random random)
      : width_((std::uint64_t{1} << 32) / static_cast<unsigned int>(count / 2)),
        random_(random),
        stratum_(static_cast<std::uint32_t>(random_.dice() >> 32)) {}

  /// Two of the next stratum.
  std::array<std::uint32_t, 2> take() {
    const std::uint64_t bits = random_.dice();
    const std::array<std::uint32_t, 2> pair = {get_position(bits >> 32),
                                               get_position(bits & 0xffffffffu)};
    stratum_ += static_cast<std::uint32_t>(width_);
    return pair;
  }

  /// Those of the next four strata, each one of 2¹⁶ that its stratum has: enough for a choice among
  /// the points of a pool, for half the random numbers.
  void take_packet(std::array<std::uint32_t, qv_ray_packet::size>& positions) {
    const auto step = static_cast<std::uint32_t>(width_ >> 16);
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < positions.size(); ++i, bits >>= 16) {
      if (i % 4 == 0) bits = random_.dice();
      positions[i] = stratum_ + static_cast<std::uint32_t>(bits & 0xffffu) * step;
      if (i % 2 == 1) stratum_ += static_cast<std::uint32_t>(width_);
    }
  }

  std::uint64_t dice() { return random_.dice(); }

 private:
  std::uint32_t get_position(std::uint64_t bits) const {
    return stratum_ + static_cast<std::uint32_t>((bits * width_) >> 32);
  }

  std::uint64_t width_;  // of a stratum, as a share of 2³²
  step_random random_;
  // Where the next stratum begins, going round. The first begins anywhere: straight shadows and
  // strata would else often have edges in common, and errors would be none or rare and large.
  std::uint32_t stratum_;
};

/// Points of a surface at such positions.
class paired_points {
 public:
  paired_points(const surface_sampler& surface, int count, step_random random)
      : surface_(surface),
        fineness_(std::bit_width(static_cast<unsigned int>(count / 2 - 1))),
        positions_(count, random) {}

  /// Calls `use` with the next stratum's two points.
  template <class taker>
  void take_pair(taker use) {
    const auto [first, second] = positions_.take();
    const std::uint64_t across = positions_.dice();
    use(surface_.get_point(first * 0x1p-32, to_unit(static_cast<std::uint32_t>(across >> 32)),
                           fineness_),
        surface_.get_point(second * 0x1p-32, to_unit(static_cast<std::uint32_t>(across)),
                           fineness_));
  }

 private:
  const surface_sampler& surface_;
  int fineness_;
  paired_positions positions_;
};

/// Mean of pairs of samples, each pair from a stratum of its own, and the square of its standard
/// error.
struct pair_sums {
  double sum = 0;
  double squares = 0;
  int count = 0;

  void add(double first, double second) {
    sum += first + second;
    squares += (first - second) * (first - second);
    count += 2;
  }
  /// The pairs of a whole packet.
  void add_packet(const float* light) {
    float packet_sum = 0, packet_squares = 0;
    for (int i = 0; i < qv_ray_packet::size; i += 2) {
      packet_sum += light[i] + light[i + 1];
      packet_squares += (light[i] - light[i + 1]) * (light[i] - light[i + 1]);
    }
    sum += packet_sum;
    squares += packet_squares;
    count += qv_ray_packet::size;
  }
  void add(const pair_sums& others) {
    sum += others.sum;
    squares += others.squares;
    count += others.count;
  }
  double get_mean() const { return sum / count; }
  // A pair's mean has the variance (a − b)² / 4, and the mean of n / 2 pairs that of their sum
  // over (n / 2)².
  double get_variance() const { return squares / (static_cast<double>(count) * count); }
  // As if half a pair more had differed: where few do, their number is itself uncertain (the rule
  // of Jeffreys for the rate of rare events).
  double get_cautious_variance() const {
    return (squares + 0.5) / (static_cast<double>(count) * count);
  }
};

int get_step_samples(double rays, std::size_t steps, int least) {
  const double share = std::clamp(rays / static_cast<double>(std::max<std::size_t>(steps, 1)),
                                  static_cast<double>(least), double{most_step_samples});
  constexpr int packet = qv_ray_packet::size;
  return least < packet ? static_cast<int>(share) / 2 * 2
                        : (static_cast<int>(std::ceil(share)) + packet - 1) / packet * packet;
}

void set_directions(qv_ray_packet& packet, const qv_3dvector& direction) {
  std::fill_n(packet.direction_x, qv_ray_packet::size, direction.x);
  std::fill_n(packet.direction_y, qv_ray_packet::size, direction.y);
  std::fill_n(packet.direction_z, qv_ray_packet::size, direction.z);
}

void set_origin(qv_ray_packet& packet, int index, const qv_3dvector& origin) {
  packet.origin_x[index] = origin.x;
  packet.origin_y[index] = origin.y;
  packet.origin_z[index] = origin.z;
}

/// Samples a step at points of `pool`, or at new ones when it is null. `packet` is room to work in.
pair_sums sample_step(const light_scene& scene, const surface_sampler& surface,
                      const point_pool* pool, const lit_step& step, int count, step_random random,
                      qv_ray_packet& packet) {
  constexpr int size = qv_ray_packet::size;
  pair_sums sums;
  packet.count = size;
  set_directions(packet, step.direction);
  const auto trace = [&] {
    scene.tracer->find_light(packet, scene.get_transmission(), true);
    sums.add_packet(packet.light);
  };
  if (pool != nullptr) {
    paired_positions positions(count, random);
    std::array<std::uint32_t, size> chosen;
    for (int done = 0; done < count; done += size) {
      positions.take_packet(chosen);
      for (int i = 0; i < size; ++i)
        set_origin(packet, i, pool->get_point(chosen[static_cast<std::size_t>(i)]));
      trace();
    }
  } else {
    paired_points points(surface, count, random);
    for (int done = 0; done < count; done += size) {
      for (int i = 0; i < size; i += 2) {
        points.take_pair([&](const qv_3dvector& first, const qv_3dvector& second) {
          set_origin(packet, i, first);
          set_origin(packet, i + 1, second);
        });
      }
      trace();
    }
  }
  return sums;
}

double square(double value) {
  return value * value;
}

/// What a step's mean light counts in the sum over all steps.
double get_weight(const qv_3dvector& normal, const lit_step& step) {
  return static_cast<double>(step.irradiation) * normal.dot(step.direction);
}

pair_sums sample_way(const mirrors& over, const surface_sampler& surface, const qv_3dvector& normal,
                     const lit_step& step, std::int64_t way, int count, step_random random) {
  paired_points points(surface, count, random);
  pair_sums sums;
  const auto sample = [&](const qv_3dvector& point) {
    qv_3dvector seen_at;
    const float light = over.get_light(point, normal, step.direction, way, seen_at);
    return light > 0 ? light * normal.dot(seen_at) : 0.0f;
  };
  for (int i = 0; i < count; i += 2) {
    points.take_pair([&](const qv_3dvector& first, const qv_3dvector& second) {
      sums.add(sample(first), sample(second));
    });
  }
  return sums;
}

}  // namespace

step_estimates estimate_beam(const light_scene& scene, const surface_sampler& surface,
                             const qv_3dvector& normal, const sampling_effort& effort,
                             bool all_free) {
  const std::vector<lit_step>& lit = scene.sun.lit;
  step_estimates found;
  found.means.assign(lit.size(), 0);
  found.variances.assign(lit.size(), 0);
  std::vector<std::size_t> front;
  for (std::size_t i = 0; i < lit.size(); ++i)
    if (normal.dot(lit[i].direction) > 0) front.push_back(i);
  if (effort.rays <= 0) return found;

  const int step_samples = get_step_samples(effort.rays, front.size(), least_step_samples);
  if (all_free) {
    for (std::size_t i : front) found.means[i] = normal.dot(lit[i].direction);
    found.samples = static_cast<double>(step_samples) * static_cast<double>(front.size());
    return found;
  }

  const auto pool = point_pool::make(surface, std::min(step_samples, 1 << 16), front.size(),
                                     step_random(effort.seed, pool_block));
  // Without an error bound all samples of a step are stratified together.
  std::vector<pair_sums> sums(front.size());
  qv_ray_packet packet;
  int next = effort.error > 0 ? least_step_samples : step_samples;
  for (int done = 0, block = 0; done < step_samples; ++block) {
    const step_random random(effort.seed, block);
    for (std::size_t k = 0; k < front.size(); ++k) {
      const lit_step& step = lit[front[k]];
      sums[k].add(
          sample_step(scene, surface, pool.get(), step, next, random.at_step(step.step), packet));
    }
    done += next;
    if (done == step_samples) break;
    double weighted_sum = 0, variance = 0;
    for (std::size_t k = 0; k < front.size(); ++k) {
      const double weight = get_weight(normal, lit[front[k]]);
      weighted_sum += weight * sums[k].get_mean();
      variance += square(weight) * sums[k].get_variance();
    }
    if (std::sqrt(variance) <= effort.error * weighted_sum) break;
    next = std::min(done, step_samples - done);
  }

  for (std::size_t k = 0; k < front.size(); ++k) {
    const lit_step& step = lit[front[k]];
    const double cosine = normal.dot(step.direction);
    found.means[front[k]] = cosine * sums[k].get_mean();
    found.variances[front[k]] = square(cosine) * sums[k].get_cautious_variance();
    found.sum_variance += square(get_weight(normal, step)) * sums[k].get_variance();
    found.samples += sums[k].count;
  }
  return found;
}

step_estimates estimate_mirrored_beam(const light_scene& scene, const surface_sampler& surface,
                                      const qv_3dvector& normal, const sampling_effort& effort,
                                      int depth) {
  const std::vector<lit_step>& lit = scene.sun.lit;
  step_estimates found;
  found.means.assign(lit.size(), 0);
  found.variances.assign(lit.size(), 0);
  const mirrors over(scene, depth);
  if (effort.rays <= 0 || over.get_way_count() == 0) return found;

  const auto short_ways = static_cast<std::int64_t>(over.get_short_way_count(most_short_ways));
  const double long_ways = over.get_way_count() - static_cast<double>(short_ways);
  const int samples = get_step_samples(effort.rays / 4.0, lit.size(), least_way_samples);
  for (std::size_t i = 0; i < lit.size(); ++i) {
    step_random choice = step_random(effort.seed, 0).at_step(lit[i].step);
    int block = 0;
    const auto sample = [&](std::int64_t way) {
      ++block;
      if (!over.is_possible(normal, lit[i].direction, way)) return pair_sums{0, 0, samples};
      found.samples += samples;
      return sample_way(over, surface, normal, lit[i], way, samples,
                        step_random(effort.seed, block).at_step(lit[i].step));
    };
    for (std::int64_t way = 0; way < short_ways; ++way) {
      const pair_sums sampled = sample(way);
      found.means[i] += sampled.get_mean();
      found.variances[i] += sampled.get_variance();
    }
    if (long_ways > 0) {
      // The mean over those chosen stands for all; the spread between them holds that of samples.
      double sum = 0, squares = 0;
      for (int k = 0; k < long_way_choices; ++k) {
        const double chosen = to_unit(static_cast<std::uint32_t>(choice.dice() >> 32)) * long_ways;
        const double light = sample(short_ways + static_cast<std::int64_t>(chosen)).get_mean();
        sum += light;
        squares += square(light);
      }
      const double mean = sum / long_way_choices;
      const double spread = std::max(0.0, squares / long_way_choices - square(mean));
      found.means[i] += long_ways * mean;
      found.variances[i] += square(long_ways) * spread / (long_way_choices - 1);
    }
    found.sum_variance += square(lit[i].irradiation) * found.variances[i];
  }
  return found;
}

}  // namespace qv::light
