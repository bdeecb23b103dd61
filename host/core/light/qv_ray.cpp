#include "core/light/qv_ray.h"

namespace qv {

qv_ray::qv_ray() = default;

qv_ray::qv_ray(const qv_3dvector& ray_origin, const qv_3dvector& ray_direction)
    : origin(ray_origin), direction(ray_direction) {}

qv_ray::~qv_ray() = default;

void qv_ray::clear_hit() {
  hit_distance = -1;
  hit_mesh = nullptr;
  hit_mesh_index = -1;
  hit_triangle = -1;
  hit_normal = qv_3dvector();
}

}  // namespace qv
