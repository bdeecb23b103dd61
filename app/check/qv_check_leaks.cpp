#include <fmt/format.h>

#include <algorithm>
#include <limits>

#include "app/check/qv_check_scope.h"
#include "core/light/qv_ray.h"
#include "core/shapes/qvi_polygon.h"
#include "utilities/qv_random.h"

namespace qv {
namespace {

constexpr int rays_for_a_face = 50;
constexpr int sample_seed = 3301;
constexpr int direction_seed = 3302;
constexpr float surface_offset = 0.01f;  // m; a ray does not see the face that it leaves
// Share of escaping rays from which a space leaks: less is what edges let through that miss each
// other by rounding.
constexpr double least_share = 0.002;

// Where a ray that meets nothing leaves the box around the space.
qv_3dvector exit_point(const qv_ray& ray, const qv_box& box) {
  float distance = std::numeric_limits<float>::max();
  const auto reach = [&distance](float origin, float direction, float low, float high) {
    if (direction > 0) distance = std::min(distance, (high - origin) / direction);
    if (direction < 0) distance = std::min(distance, (low - origin) / direction);
  };
  reach(ray.origin.x, ray.direction.x, box.get_min().x, box.get_max().x);
  reach(ray.origin.y, ray.direction.y, box.get_min().y, box.get_max().y);
  reach(ray.origin.z, ray.direction.z, box.get_min().z, box.get_max().z);
  return ray.origin + ray.direction * std::max(0.0f, distance);
}

struct escapes {
  int rays = 0;
  std::vector<qv_3dvector> exits;

  double get_share() const {
    return rays == 0 ? 0.0 : static_cast<double>(exits.size()) / static_cast<double>(rays);
  }
  // The exit nearest to the middle of all: on a hole, also where there are several.
  qv_3dvector get_place() const {
    qv_3dvector middle;
    for (const qv_3dvector& exit : exits) middle += exit / static_cast<float>(exits.size());
    return *std::min_element(exits.begin(), exits.end(),
                             [&middle](const qv_3dvector& a, const qv_3dvector& b) {
                               return (a - middle).length() < (b - middle).length();
                             });
  }
};

// Rays from every face into the space, traced among its own faces.
escapes find_escapes(const qv_check_scope& scope, const qvi_space* space) {
  qv_list<qvi_mesh*> faces;
  qv_box box;
  for (const qvi_wall* wall : scope.get_walls_of(space)) {
    if (qvi_polygon* const face = scope.get_face(wall)) {
      faces.append(face);
      box.enlarge(face->get_local_bounding_box());
    }
  }
  qv_raytracer rays(faces);
  rays.update();
  escapes found;
  qv_random random(direction_seed);
  for (const qvi_wall* wall : scope.get_walls_of(space)) {
    qvi_polygon* const face = scope.get_face(wall);
    // A partition within the space has it on both sides and hides no hole.
    if (face == nullptr || wall->get_space_0() == wall->get_space_1()) continue;
    const qv_3dvector inwards =
        wall->get_space_0() == space ? -wall->get_normal() : wall->get_normal();
    qv_polygon region;
    face->fill_polygon(&region);
    for (const qv_3dvector& point : region.random_distribution(rays_for_a_face, sample_seed)) {
      const qv_3dvector spread = random.dice_vector();
      qv_ray ray(point, spread.dot(inwards) < 0 ? -spread : spread);
      ray.minimum_distance = surface_offset;
      ++found.rays;
      if (!rays.raytrace(ray)) found.exits.push_back(exit_point(ray, box));
    }
  }
  return found;
}

}  // namespace

void qv_check_leaks(qv_check_scope& scope) {
  for (const qvi_space* space : scope.get_spaces()) {
    const qv_source_space* const source = scope.find_source(space);
    if (source != nullptr && source->closed) continue;
    const escapes found = find_escapes(scope, space);
    const double share = found.get_share();
    if (share < least_share) continue;
    scope.report.leaking_shares[space] = share;
    if (scope.is_open(space)) continue;  // told already, with the reason
    scope.mark_open(space);
    scope.add("leaking-space", "Space", scope.id_of(space),
              fmt::format("{:.1f} % of the rays from its surfaces escape", 100 * share),
              found.get_place());
  }
}

}  // namespace qv
