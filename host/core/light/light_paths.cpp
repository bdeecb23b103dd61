#include "core/light/light_paths.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "core/light/qv_ray.h"
#include "core/light/qv_raytracer.h"
#include "core/light/sample_sequence.h"

namespace qv::light {

namespace {

/// Different directions that get values of their own; the others share one record, in which the
/// cosine of incidence is interpolated too.
constexpr std::size_t most_facings = 64;
/// Length of the difference between normals that count as one direction, 0.06°.
constexpr float facing_width = 1e-3f;
/// Paths of each set after which the error is looked at for the first time.
constexpr int first_paths = 32;
/// Sequences of a path's first surfaces that are prepared for all paths.
constexpr std::size_t kept_scramblings = 8;
/// Surfaces that a path may go straight through, so that none goes on for ever.
constexpr int most_surfaces = 256;
/// Seeds of what is diced apart from the sequences.
constexpr std::uint32_t mirror_seed = 0x6d697272u;
constexpr std::uint32_t survival_seed = 0x73757276u;
/// Paths that carry less than this are ended at random, and those that go on count more.
constexpr float least_weight = 0.02f;

/// Two unit vectors at right angles to the unit vector `normal` and to each other: T. Duff et al.,
/// Building an orthonormal basis, revisited, 2017.
std::array<qv_3dvector, 2> get_perpendiculars(const qv_3dvector& normal) {
  const float sign = std::copysign(1.0f, normal.z);
  const float a = -1 / (sign + normal.z);
  const float b = normal.x * normal.y * a;
  return {qv_3dvector(1 + sign * normal.x * normal.x * a, sign * b, -sign * normal.x),
          qv_3dvector(b, sign + normal.y * normal.y * a, -normal.y)};
}

/// Direction about `normal`, distributed as its cosine.
qv_3dvector get_cosine_direction(const qv_3dvector& normal, const qv_3dvector& first,
                                 const qv_3dvector& second, float u, float v) {
  const float radius = std::sqrt(u);
  const float turn = 2 * std::numbers::pi_v<float> * v;
  return first * (radius * std::cos(turn)) + second * (radius * std::sin(turn)) +
         normal * std::sqrt(std::max(0.0f, 1 - u));
}

/// The sequence of starts (number 0) and those of what happens at a path's first, second… surface.
scrambling make_scrambling(std::uint32_t set_seed, std::size_t number) {
  return scrambling(combine_seeds(set_seed, static_cast<std::uint32_t>(number)));
}

}  // namespace

/// A point where light is scattered towards the receiver.
struct light_paths::vertex {
  qv_3dvector point;   // lifted off the surface
  qv_3dvector normal;  // on the side from which the light comes
  float weight;        // share of the irradiance there that reaches the receiver
};

light_paths::light_paths(const light_scene& scene, const surface_sampler& surface,
                         const qv_3dvector& normal, int depth, std::uint32_t seed)
    : scene_(scene),
      surface_(surface),
      normal_(normal),
      depth_(depth),
      seed_(seed),
      axes_(get_perpendiculars(normal)),
      mirrors_(scene, depth - 1) {
  for (std::size_t set = 0; set < set_count; ++set) {
    const std::uint32_t set_seed = combine_seeds(seed_, static_cast<std::uint32_t>(set));
    for (std::size_t i = 0; i < kept_scramblings; ++i)
      scramblings_[set].push_back(make_scrambling(set_seed, i));
  }
  add_facing(qv_3dvector(), false);
}

void light_paths::run(int rays, float error) {
  const int paths = std::max(1, rays / set_count);
  fineness_ = std::bit_width(static_cast<unsigned int>(paths));
  int next = error > 0 ? std::min(first_paths, paths) : paths;
  while (paths_per_set_ < next) {
    for (int set = 0; set < set_count; ++set)
      for (int i = paths_per_set_; i < next; ++i) follow(set, static_cast<std::uint32_t>(i));
    paths_per_set_ = next;
    const set_mean sum(get_sums());
    if (std::sqrt(sum.variance) <= error * sum.mean) break;
    next = std::min(2 * next, paths);
  }
}

void light_paths::follow(int set, std::uint32_t index) {
  const std::uint32_t set_seed = combine_seeds(seed_, static_cast<std::uint32_t>(set));
  const std::vector<scrambling>& scramblings = scramblings_[static_cast<std::size_t>(set)];
  const auto start = get_sequence_point(index, scramblings[0]);
  qv_ray ray(surface_.get_point(start[0], start[3], fineness_),
             get_cosine_direction(normal_, axes_[0], axes_[1], start[1], start[2]));
  float weight = 1;
  int scatterings = 0;
  for (int surfaces = 0; surfaces < most_surfaces; ++surfaces) {
    ++path_rays_;
    if (!scene_.tracer->raytrace(ray)) {
      if (ray.direction.z > 0) {
        auto& sky = scatterings == 0 ? direct_sky_ : reflected_sky_;
        sky[static_cast<std::size_t>(set)] += weight;
      }
      return;
    }
    const bool front = ray.direction.dot(ray.hit_normal) < 0;
    const qv_3dvector facing_us = front ? ray.hit_normal : -ray.hit_normal;
    const surface_optics& optics = scene_.optics[static_cast<std::size_t>(ray.hit_mesh_index)];
    const side_optics& near_side = optics[front ? 0 : 1];
    // Light that comes through has struck the other side.
    const side_optics& far_side = optics[front ? 1 : 0];
    const float straight = far_side.direct_transmission;
    const bool may_scatter = scatterings < depth_;
    const float mirrored = may_scatter ? near_side.direct_reflexion : 0;
    const float reflected = may_scatter ? near_side.diffuse_reflexion : 0;
    const float transmitted = may_scatter ? far_side.diffuse_transmission : 0;
    const float sum = straight + mirrored + reflected + transmitted;
    if (!(sum > 0)) return;

    const auto at_surface = static_cast<std::size_t>(surfaces) + 1;
    const auto dice = get_shuffled_sequence_point(
        index, at_surface < kept_scramblings ? scramblings[at_surface]
                                             : make_scrambling(set_seed, at_surface));
    const std::uint32_t dice_number = index * most_surfaces + static_cast<std::uint32_t>(surfaces);
    weight *= sum;
    float choice = dice[2] * sum;
    if (choice < straight) {
      ray.origin = lift_off(ray.get_hit_point(), -facing_us);
      continue;
    }
    choice -= straight;
    ++scatterings;
    if (choice < mirrored) {
      ray.origin = lift_off(ray.get_hit_point(), facing_us);
      ray.direction = (ray.direction - facing_us * (2 * ray.direction.dot(facing_us))).normalized();
      continue;
    }
    choice -= mirrored;
    const qv_3dvector side = choice < reflected || !(transmitted > 0) ? facing_us : -facing_us;
    const vertex at = {lift_off(ray.get_hit_point(), side), side, weight};
    gather_sun(at, set, dice[3]);
    if (scatterings < depth_)
      gather_mirrored_sun(at, set, combine_seeds(set_seed ^ mirror_seed, dice_number));

    if (weight < least_weight) {
      const float survival = weight / least_weight;
      if (to_unit(combine_seeds(set_seed ^ survival_seed, dice_number)) >= survival) return;
      weight = least_weight;
    }
    const auto [first, second] = get_perpendiculars(side);
    ray.origin = at.point;
    ray.direction = get_cosine_direction(side, first, second, dice[0], dice[1]);
  }
}

// --- the sun ---

void light_paths::gather_sun(const vertex& at, int set, float jitter) {
  constexpr int size = qv_ray_packet::size;
  facing& found = facings_[find_facing(at.normal)];
  const sun_facing& seen = *found.to_sun;
  if (seen.lots.empty()) return;

  qv_ray_packet packet;
  int nodes[size];
  float weights[size];
  for (int i = 0; i < size; ++i) {
    const auto lot = static_cast<std::size_t>((static_cast<float>(i) + jitter) *
                                              (static_cast<float>(sun_facing::lot_count) / size));
    const int node = seen.lots[std::min<std::size_t>(lot, sun_facing::lot_count - 1)];
    const qv_3dvector& direction = seen.directions[static_cast<std::size_t>(node)];
    const float cosine = seen.has_cosine ? 1 : direction.dot(at.normal);
    if (!(cosine > 0)) continue;
    packet.set_ray(packet.count, at.point, direction);
    nodes[packet.count] = node;
    weights[packet.count] =
        cosine * at.weight * seen.lot_weights[static_cast<std::size_t>(node)] / size;
    ++packet.count;
  }
  if (packet.count == 0) return;
  sun_rays_ += packet.count;
  scene_.tracer->find_light(packet, scene_.get_transmission(), false);
  for (int i = 0; i < packet.count; ++i) {
    const auto place = static_cast<std::size_t>(nodes[i]) * set_count;
    found.values[place + static_cast<std::size_t>(set)] += weights[i] * packet.light[i];
  }
}

/// One node by one way over mirrors. The light does not come from the node itself, so its cosine of
/// incidence goes into the value.
void light_paths::gather_mirrored_sun(const vertex& at, int set, std::uint32_t dice) {
  facing& any = facings_.front();
  const double ways = mirrors_.get_way_count();
  const sun_facing& to_sun = *any.to_sun;
  if (ways == 0 || to_sun.lots.empty()) return;

  const auto way = static_cast<std::int64_t>(to_unit(dice) * ways);
  const std::uint32_t lot = mix_bits(dice) % sun_facing::lot_count;
  const auto node = static_cast<std::size_t>(to_sun.lots[lot]);
  qv_3dvector seen_at;
  const float light = mirrors_.get_light(at.point, at.normal, scene_.sun.nodes[node], way, seen_at);
  if (!(light > 0)) return;
  any.values[node * set_count + static_cast<std::size_t>(set)] +=
      at.weight * light * at.normal.dot(seen_at) * static_cast<float>(ways) *
      to_sun.lot_weights[node];
}

std::size_t light_paths::find_facing(const qv_3dvector& normal) {
  for (std::size_t i = 1; i < facings_.size(); ++i) {
    const qv_3dvector difference = facings_[i].to_sun->normal - normal;
    if (difference.dot(difference) < facing_width * facing_width) return i;
  }
  if (facings_.size() == most_facings) return 0;
  add_facing(normal, true);
  return facings_.size() - 1;
}

void light_paths::add_facing(const qv_3dvector& normal, bool has_cosine) {
  facings_.push_back({scene_.facings->get(normal, has_cosine),
                      std::vector<float>(scene_.sun.nodes.size() * set_count, 0.0f)});
}

// --- results ---

light_paths::set_values light_paths::divide(const set_values& sums) const {
  set_values means = sums;
  for (double& value : means) value /= std::max(1, paths_per_set_);
  return means;
}

light_paths::set_values light_paths::get_reflected_sun(std::size_t index) const {
  const lit_step& step = scene_.sun.lit[index];
  std::array<float, set_count> sums{};
  for (const facing& from : facings_) {
    const float cosine = from.to_sun->has_cosine ? from.to_sun->normal.dot(step.direction) : 1;
    if (!(cosine > 0)) continue;
    for (const node_weight& share : step.nodes) {
      const float weight = cosine * share.weight;
      if (!(weight > 0)) continue;
      const float* values = &from.values[static_cast<std::size_t>(share.node) * set_count];
      for (int set = 0; set < set_count; ++set)
        sums[static_cast<std::size_t>(set)] += weight * values[set];
    }
  }
  set_values found;
  std::copy(sums.begin(), sums.end(), found.begin());
  return divide(found);
}

light_paths::set_values light_paths::get_sums() const {
  set_values sums{};
  for (const facing& from : facings_) {
    for (std::size_t node = 0; node < scene_.sun.nodes.size(); ++node)
      for (std::size_t set = 0; set < set_count; ++set)
        sums[set] +=
            static_cast<double>(from.to_sun->masses[node]) * from.values[node * set_count + set];
  }
  for (std::size_t set = 0; set < set_count; ++set)
    sums[set] += scene_.sun.diffuse_sum * (direct_sky_[set] + reflected_sky_[set]);
  return divide(sums);
}

set_mean::set_mean(const light_paths::set_values& values) {
  // Four sums at a time, which do not wait for each other.
  constexpr std::size_t lanes = 4;
  std::array<double, lanes> sums{}, squares{};
  for (std::size_t i = 0; i < values.size(); ++i) sums[i % lanes] += values[i];
  mean = ((sums[0] + sums[1]) + (sums[2] + sums[3])) / light_paths::set_count;
  for (std::size_t i = 0; i < values.size(); ++i)
    squares[i % lanes] += (values[i] - mean) * (values[i] - mean);
  variance = ((squares[0] + squares[1]) + (squares[2] + squares[3])) /
             (light_paths::set_count - 1) / light_paths::set_count;
}

}  // namespace qv::light
