#include "core/light/light_paths.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "core/light/qv_ray.h"
#include "core/light/qv_raytracer.h"
#include "core/light/sample_sequence.h"
#include "core/light/wide.h"

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
constexpr int kept_scramblings = 8;
/// Surfaces that a path may go straight through, so that none goes on for ever.
constexpr int most_surfaces = 256;
/// Seeds of what is diced apart from the sequences.
constexpr std::uint32_t mirror_seed = 0x6d697272u;
constexpr std::uint32_t survival_seed = 0x73757276u;
/// Paths that carry less than this are ended at random, and those that go on count more.
constexpr float least_weight = 0.02f;
constexpr int packet_size = qv_ray_packet::size;

/// Eight vectors, component by component.
struct eight_vectors {
  alignas(32) float x[packet_size];
  alignas(32) float y[packet_size];
  alignas(32) float z[packet_size];

  void set(int index, const qv_3dvector& v) {
    x[index] = v.x;
    y[index] = v.y;
    z[index] = v.z;
  }
  qv_3dvector get(int index) const { return {x[index], y[index], z[index]}; }
};

/// Directions about unit normals, distributed as the cosine, from uniform `u` and `v` below 1.
///
/// Two vectors at right angles to the normal and to each other: T. Duff et al., Building an
/// orthonormal basis, revisited, 2017. Sine and cosine of a quarter turn either way are their
/// series, to 1e-7; those of twice the angle go round.
QV_WIDE void get_cosine_directions(const eight_vectors& normals, const float* u, const float* v,
                                   eight_vectors& directions) {
  for (int i = 0; i < packet_size; ++i) {
    const float nx = normals.x[i], ny = normals.y[i], nz = normals.z[i];
    const float sign = std::copysign(1.0f, nz);
    const float a = -1 / (sign + nz);
    const float b = nx * ny * a;

    const float t = (v[i] - 0.5f) * std::numbers::pi_v<float>;
    const float q = t * t;
    const float sine =
        t * (1 + q * (-1.6666667e-1f +
                      q * (8.3333333e-3f +
                           q * (-1.9841270e-4f + q * (2.7557319e-6f - q * 2.5052108e-8f)))));
    const float cosine =
        1 +
        q * (-0.5f + q * (4.1666667e-2f +
                          q * (-1.3888889e-3f +
                               q * (2.4801587e-5f + q * (-2.7557319e-7f + q * 2.0876757e-9f)))));
    const float radius = std::sqrt(u[i]), up = std::sqrt(1 - u[i]);
    const float first = radius * (1 - 2 * sine * sine), second = radius * (2 * sine * cosine);
    directions.x[i] = first * (1 + sign * nx * nx * a) + second * b + up * nx;
    directions.y[i] = first * (sign * b) + second * (sign + ny * ny * a) + up * ny;
    directions.z[i] = first * (-sign * nx) - second * ny + up * nz;
  }
}

/// Of a packet of rays towards nodes of the sun keeps those that lie before a surface, and lets
/// these count by their cosines.
void leave_out_suns_behind(const qv_3dvector& normal, qv_ray_packet& packet, std::uint16_t* nodes,
                           float* weights) {
  int kept = 0;
  for (int i = 0; i < packet.count; ++i) {
    const qv_3dvector direction(packet.direction_x[i], packet.direction_y[i],
                                packet.direction_z[i]);
    const float cosine = direction.dot(normal);
    if (!(cosine > 0)) continue;
    packet.direction_x[kept] = direction.x;
    packet.direction_y[kept] = direction.y;
    packet.direction_z[kept] = direction.z;
    nodes[kept] = nodes[i];
    weights[kept++] = cosine * weights[i];
  }
  packet.count = kept;
}

/// The sequence of starts (number 0) and those of what happens at a path's first, second… surface.
scrambling make_scrambling(std::uint32_t set_seed, int number) {
  return scrambling(combine_seeds(set_seed, static_cast<std::uint32_t>(number)));
}

}  // namespace

/// A point where light is scattered towards the receiver.
struct light_paths::vertex {
  qv_3dvector point;   // lifted off the surface
  qv_3dvector normal;  // on the side from which the light comes
  float weight;        // share of the irradiance there that reaches the receiver
};

/// The present rays of paths of one set that have met as many surfaces as each other.
struct light_paths::wave {
  static constexpr int most = 256;
  struct block {
    qv_ray_packet packet;
    std::uint32_t index[packet_size];
    /// Share of the light along the ray that reaches the receiver.
    float weight[packet_size];
    int scatterings[packet_size];
  };

  void clear() {
    for (int i = 0; packet_size * i < count; ++i)
      blocks[static_cast<std::size_t>(i)].packet.count = 0;
    count = 0;
  }
  void add(std::uint32_t index, float weight, int scatterings, const qv_3dvector& origin,
           const qv_3dvector& direction) {
    block& last = blocks[static_cast<std::size_t>(count++ / packet_size)];
    const int at = last.packet.count++;
    last.packet.set_ray(at, origin, direction);
    last.index[at] = index;
    last.weight[at] = weight;
    last.scatterings[at] = scatterings;
  }

  std::array<block, most / packet_size> blocks;
  int count = 0;
};

/// Rays that met a surface from which the light may come on.
struct light_paths::meetings {
  struct meeting {
    qv_3dvector point;
    qv_3dvector direction;  // of the ray
    qv_3dvector facing_us;  // normal of the surface
    float weight;
    int scatterings;
    // Shares of the light: going straight through, mirrored, scattered on this side and through.
    float straight, mirrored, reflected, transmitted;
  };

  std::array<meeting, packet_size> at;
  alignas(32) std::uint32_t index[packet_size] = {};  // of the paths
  int count = 0;
};

light_paths::light_paths(const light_scene& scene, const surface_sampler& surface,
                         const qv_3dvector& normal, int depth, std::uint32_t seed)
    : scene_(scene),
      surface_(surface),
      normal_(normal),
      depth_(depth),
      mirrors_(scene, depth - 1),
      waves_(std::make_unique<std::array<wave, 2>>()) {
  for (std::size_t set = 0; set < set_count; ++set) {
    set_seeds_[set] = combine_seeds(seed, static_cast<std::uint32_t>(set));
    for (int i = 0; i < kept_scramblings; ++i)
      scramblings_[set].push_back(make_scrambling(set_seeds_[set], i));
  }
  add_facing(qv_3dvector(), false);
}

light_paths::~light_paths() = default;

scrambling light_paths::get_scrambling(std::size_t set, int number) const {
  return number < kept_scramblings ? scramblings_[set][static_cast<std::size_t>(number)]
                                   : make_scrambling(set_seeds_[set], number);
}

void light_paths::run(int rays, float error) {
  const int paths = std::max(1, rays / set_count);
  fineness_ = std::bit_width(static_cast<unsigned int>(paths));
  int next = error > 0 ? std::min(first_paths, paths) : paths;
  while (paths_per_set_ < next) {
    for (std::size_t set = 0; set < set_count; ++set)
      for (int first = paths_per_set_; first < next; first += wave::most)
        follow(set, first, std::min(wave::most, next - first));
    paths_per_set_ = next;
    if (next == paths) break;
    const set_mean sum = get_mean(get_sums());
    if (std::sqrt(sum.variance) <= error * sum.mean) break;
    next = std::min(2 * next, paths);
  }
}

// --- paths ---

/// Follows paths `first` … `first` + `count` − 1 of a set.
void light_paths::follow(std::size_t set, int first, int count) {
  wave* rays = &waves_->front();
  wave* next = &waves_->back();
  rays->clear();
  start(*rays, set, first, count);
  for (int surfaces = 0; surfaces < most_surfaces && rays->count > 0; ++surfaces) {
    next->clear();
    trace(*rays, set, surfaces, *next);
    std::swap(rays, next);
  }
}

void light_paths::start(wave& rays, std::size_t set, int first, int count) const {
  const scrambling by = get_scrambling(set, 0);
  eight_vectors normals, directions;
  for (int i = 0; i < packet_size; ++i) normals.set(i, normal_);
  alignas(32) std::uint32_t index[packet_size];
  sequence_points points;
  for (int done = 0; done < count; done += packet_size) {
    for (int i = 0; i < packet_size; ++i) index[i] = static_cast<std::uint32_t>(first + done + i);
    get_sequence_points(index, by, points);
    const auto& [along, u, v, across] = points.coordinates;
    get_cosine_directions(normals, u, v, directions);
    for (int i = 0; i < std::min(packet_size, count - done); ++i)
      rays.add(index[i], 1, 0, surface_.get_point(along[i], across[i], fineness_),
               directions.get(i));
  }
}

/// Sees what the rays meet, after `surfaces` surfaces, and finds the next rays.
void light_paths::trace(const wave& rays, std::size_t set, int surfaces, wave& next) {
  path_rays_ += rays.count;
  meetings met;
  qv_packet_hits hits;
  for (int done = 0; done < rays.count; done += packet_size) {
    const wave::block& block = rays.blocks[static_cast<std::size_t>(done / packet_size)];
    scene_.tracer->find_hits(block.packet, hits);
    for (int i = 0; i < block.packet.count; ++i) {
      const qv_3dvector direction(block.packet.direction_x[i], block.packet.direction_y[i],
                                  block.packet.direction_z[i]);
      const int scatterings = block.scatterings[i];
      if (hits.distance[i] < 0) {
        auto& sky = scatterings == 0 ? direct_sky_ : reflected_sky_;
        if (direction.z > 0) sky[set] += block.weight[i];
        continue;
      }
      const bool front = direction.dot(hits.normal[i]) < 0;
      const surface_optics& optics = scene_.optics[static_cast<std::size_t>(hits.mesh_index[i])];
      const side_optics& near_side = optics[front ? 0 : 1];
      // Light that comes through has struck the other side.
      const side_optics& far_side = optics[front ? 1 : 0];
      const bool may_scatter = scatterings < depth_;
      const float straight = far_side.direct_transmission;
      const float mirrored = may_scatter ? near_side.direct_reflexion : 0;
      const float reflected = may_scatter ? near_side.diffuse_reflexion : 0;
      const float transmitted = may_scatter ? far_side.diffuse_transmission : 0;
      if (!(straight + mirrored + reflected + transmitted > 0)) continue;

      const qv_3dvector origin(block.packet.origin_x[i], block.packet.origin_y[i],
                               block.packet.origin_z[i]);
      met.index[met.count] = block.index[i];
      met.at[static_cast<std::size_t>(met.count++)] = {origin + direction * hits.distance[i],
                                                       direction,
                                                       front ? hits.normal[i] : -hits.normal[i],
                                                       block.weight[i],
                                                       scatterings,
                                                       straight,
                                                       mirrored,
                                                       reflected,
                                                       transmitted};
      if (met.count == packet_size) scatter(met, set, surfaces, next);
    }
  }
  if (met.count > 0) scatter(met, set, surfaces, next);
}

/// Chooses where light comes from at the surfaces met, and sends rays there.
void light_paths::scatter(meetings& met, std::size_t set, int surfaces, wave& next) {
  sequence_points dice;
  get_shuffled_sequence_points(met.index, get_scrambling(set, surfaces + 1), dice);
  const auto& [u, v, choices, jitters] = dice.coordinates;
  eight_vectors normals, directions;
  for (int i = 0; i < packet_size; ++i) normals.set(i, normal_);
  bool goes_on[packet_size] = {};

  for (int i = 0; i < met.count; ++i) {
    meetings::meeting& m = met.at[static_cast<std::size_t>(i)];
    const float sum = m.straight + m.mirrored + m.reflected + m.transmitted;
    const float weight = m.weight * sum;
    float choice = choices[i] * sum;
    if (choice < m.straight) {
      next.add(met.index[i], weight, m.scatterings, lift_off(m.point, -m.facing_us), m.direction);
      continue;
    }
    choice -= m.straight;
    m.scatterings += 1;
    if (choice < m.mirrored) {
      const qv_3dvector mirrored = m.direction - m.facing_us * (2 * m.direction.dot(m.facing_us));
      next.add(met.index[i], weight, m.scatterings, lift_off(m.point, m.facing_us),
               mirrored.normalized());
      continue;
    }
    choice -= m.mirrored;
    const qv_3dvector side =
        choice < m.reflected || !(m.transmitted > 0) ? m.facing_us : -m.facing_us;
    const vertex at = {lift_off(m.point, side), side, weight};
    gather_sun(at, set, jitters[i]);
    const std::uint32_t number =
        met.index[i] * most_surfaces + static_cast<std::uint32_t>(surfaces);
    if (m.scatterings < depth_)
      gather_mirrored_sun(at, set, combine_seeds(set_seeds_[set] ^ mirror_seed, number));

    m.weight = weight;
    if (weight < least_weight) {
      const float survival = weight / least_weight;
      if (to_unit(combine_seeds(set_seeds_[set] ^ survival_seed, number)) >= survival) continue;
      m.weight = least_weight;
    }
    m.point = at.point;
    normals.set(i, side);
    goes_on[i] = true;
  }

  get_cosine_directions(normals, u, v, directions);
  for (int i = 0; i < met.count; ++i) {
    const meetings::meeting& m = met.at[static_cast<std::size_t>(i)];
    if (goes_on[i]) next.add(met.index[i], m.weight, m.scatterings, m.point, directions.get(i));
  }
  met.count = 0;
}

// --- the sun ---

void light_paths::gather_sun(const vertex& at, std::size_t set, float jitter) {
  facing& found = facings_[find_facing(at.normal)];
  const sun_facing& seen = *found.to_sun;
  if (seen.lots.empty()) return;

  qv_ray_packet& packet = sun_packet_;
  packet.count = packet_size;
  std::fill_n(packet.origin_x, packet_size, at.point.x);
  std::fill_n(packet.origin_y, packet_size, at.point.y);
  std::fill_n(packet.origin_z, packet_size, at.point.z);
  std::uint16_t nodes[packet_size];
  float weights[packet_size];
  constexpr int lots_each = sun_facing::lot_count / packet_size;
  const std::uint16_t* lot = seen.lots.data() + static_cast<int>(jitter * lots_each);
  for (int i = 0; i < packet_size; ++i, lot += lots_each) {
    const sun_facing::target& target = seen.targets[*lot];
    packet.direction_x[i] = target.direction.x;
    packet.direction_y[i] = target.direction.y;
    packet.direction_z[i] = target.direction.z;
    weights[i] = target.weight;
    nodes[i] = *lot;
  }
  if (!seen.has_cosine) leave_out_suns_behind(at.normal, packet, nodes, weights);
  if (packet.count == 0) return;
  sun_rays_ += packet.count;
  scene_.tracer->find_light(packet, scene_.get_transmission(), false);
  float* values = get_values(found, set);
  const float share = at.weight / packet_size;
  for (int i = 0; i < packet.count; ++i) values[nodes[i]] += share * weights[i] * packet.light[i];
}

/// One node by one way over mirrors. The light does not come from the node itself, so its cosine of
/// incidence goes into the value.
void light_paths::gather_mirrored_sun(const vertex& at, std::size_t set, std::uint32_t dice) {
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
  get_values(any, set)[node] += at.weight * light * at.normal.dot(seen_at) *
                                static_cast<float>(ways) * to_sun.targets[node].weight;
}

std::size_t light_paths::find_facing(const qv_3dvector& normal) {
  for (std::size_t i = 1; i < facing_normals_.size(); ++i) {
    const qv_3dvector difference = facing_normals_[i] - normal;
    if (difference.dot(difference) < facing_width * facing_width) return i;
  }
  if (facings_.size() == most_facings) return 0;
  add_facing(normal, true);
  return facings_.size() - 1;
}

void light_paths::add_facing(const qv_3dvector& normal, bool has_cosine) {
  facings_.push_back({scene_.facings->get(normal, has_cosine),
                      std::vector<float>(scene_.sun.nodes.size() * set_count, 0.0f)});
  facing_normals_.push_back(facings_.back().to_sun->normal);
}

}  // namespace qv::light
