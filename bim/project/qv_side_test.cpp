#include "bim/project/qv_side_test.h"

#include "bim/envelope/qvi_wall.h"
#include "core/light/qv_ray.h"
#include "core/light/qv_raytracer.h"
#include "core/shapes/qvi_polygon.h"
#include "utilities/qv_random.h"

namespace qv {

namespace {

// Seeds and spread fix the rays, and with them the outcome, once and for all.
constexpr int direction_seed = 54873;
constexpr int sample_seed = 65421;
constexpr int sample_count = 100;
constexpr float surface_offset = 0.01f;  // m; a ray does not see the face that it leaves
constexpr float tilt_to_normal = 0.1f;   // of the spread of directions

const qvi_wall* find_wall(const qv_item* item) {
  for (; item != nullptr; item = item->get_parent()) {
    if (item->has_type("wall")) return static_cast<const qvi_wall*>(item);
  }
  return nullptr;
}

}  // namespace

float qv_test_side(qvi_polygon* face, const qv_3dvector& direction, const qvi_space* space,
                   const qv_raytracer& raytracer) {
  if (face == nullptr) return 0.0f;
  qv_random random(direction_seed);
  qv_polygon polygon;
  face->fill_polygon(&polygon);
  int hits = 0;
  int misses = 0;
  for (const qv_3dvector& point : polygon.random_distribution(sample_count, sample_seed)) {
    qv_3dvector spread = random.dice_vector();
    if (direction.dot(spread) < 0.0f) spread = -spread;
    qv_ray ray(point, (spread + direction * tilt_to_normal).normalized());
    ray.minimum_distance = surface_offset;
    const qvi_wall* const wall = raytracer.raytrace(ray) ? find_wall(ray.hit_mesh) : nullptr;
    const bool bounds_space =
        wall != nullptr && (wall->get_space_0() == space || wall->get_space_1() == space);
    ++(bounds_space ? hits : misses);
  }
  return hits + misses == 0 ? 0.0f : static_cast<float>(hits) / static_cast<float>(hits + misses);
}

}  // namespace qv
