#include "core/light/mirrors.h"

#include "core/light/qv_ray.h"
#include "core/light/qv_raytracer.h"

namespace qv::light {

namespace {

constexpr double most_ways = 1e12;
/// Panes and mirrors that one way may meet.
constexpr int most_surfaces = 32;

}  // namespace

mirrors::mirrors(const light_scene& scene, int depth) : scene_(scene) {
  const auto count = static_cast<double>(scene.mirror_normals.size());
  double ways = count;
  for (int length = 1; length <= depth && ways > 0; ++length, ways *= count - 1) {
    if (way_count_ + ways > most_ways) break;
    way_count_ += ways;
    ways_up_to_.push_back(way_count_);
  }
}

double mirrors::get_short_way_count(double most) const {
  double count = 0;
  for (double up_to : ways_up_to_)
    if (up_to <= most) count = up_to;
  return count;
}

bool mirrors::plan_route(const qv_3dvector& normal, const qv_3dvector& sun, std::int64_t way,
                         route& found) const {
  std::size_t length = 1;
  while (length < ways_up_to_.size() && static_cast<double>(way) >= ways_up_to_[length - 1]) {
    ++length;
  }
  std::int64_t rest = way;
  if (length > 1) rest -= static_cast<std::int64_t>(ways_up_to_[length - 2]);

  const auto count = static_cast<std::int64_t>(scene_.mirror_normals.size());
  found.mirrors.clear();
  for (std::size_t i = 0; i < length; ++i) {
    if (i == 0) {
      found.mirrors.push_back(static_cast<int>(rest % count));
      rest /= count;
    } else {
      // One of the others: those from the previous one on move up by one.
      const auto choice = static_cast<int>(rest % (count - 1));
      found.mirrors.push_back(choice >= found.mirrors.back() ? choice + 1 : choice);
      rest /= count - 1;
    }
  }

  // From the sun inwards.
  found.directions.assign(length + 1, sun);
  for (std::size_t i = length; i-- > 0;) {
    const qv_3dvector& mirror = scene_.mirror_normals[static_cast<std::size_t>(found.mirrors[i])];
    const qv_3dvector& out = found.directions[i + 1];
    const float cosine = out.dot(mirror);
    if (!(cosine > 0)) return false;
    found.directions[i] = out - mirror * (2 * cosine);
  }
  return found.directions[0].dot(normal) > 0;
}

bool mirrors::is_possible(const qv_3dvector& normal, const qv_3dvector& sun,
                          std::int64_t way) const {
  thread_local route planned;
  return plan_route(normal, sun, way, planned);
}

int mirrors::find_mirror(const qv_3dvector& normal) const {
  for (std::size_t i = 0; i < scene_.mirror_normals.size(); ++i)
    if (is_same_normal(scene_.mirror_normals[i], normal)) return static_cast<int>(i);
  return -1;
}

float mirrors::get_light(const qv_3dvector& point, const qv_3dvector& normal,
                         const qv_3dvector& sun, std::int64_t way, qv_3dvector& seen_at) const {
  thread_local route planned;
  if (!plan_route(normal, sun, way, planned)) return 0;
  seen_at = planned.directions[0];
  return follow(point, planned, 0, 0);
}

float mirrors::follow(const qv_3dvector& from, const route& along, std::size_t leg,
                      int surfaces) const {
  if (leg == along.mirrors.size()) {
    qv_ray_packet packet;
    packet.count = 1;
    packet.set_ray(0, from, along.directions[leg]);
    scene_.tracer->find_light(packet, scene_.get_transmission(), false);
    return packet.light[0];
  }
  qv_ray ray(from, along.directions[leg]);
  if (surfaces == most_surfaces || !scene_.tracer->raytrace(ray)) return 0;

  const bool front = ray.direction.dot(ray.hit_normal) < 0;
  const qv_3dvector facing = front ? ray.hit_normal : -ray.hit_normal;
  const surface_optics& optics = scene_.optics[static_cast<std::size_t>(ray.hit_mesh_index)];
  const float reflected = optics[front ? 0 : 1].direct_reflexion;
  const float let_through = optics[front ? 1 : 0].direct_transmission;
  float light = 0;
  if (reflected > 0 && find_mirror(facing) == along.mirrors[leg]) {
    light +=
        reflected * follow(lift_off(ray.get_hit_point(), facing), along, leg + 1, surfaces + 1);
  }
  if (let_through > 0) {
    light += let_through * follow(lift_off(ray.get_hit_point(), -facing), along, leg, surfaces + 1);
  }
  return light;
}

}  // namespace qv::light
