#pragma once

#include "utilities/qv_3dvector.h"

namespace qv {

class qvi_mesh;

/// A half-line that looks for the nearest surface, and what it found.
class qv_ray {
 public:
  /// From the origin towards (0, 0, 1), distances 0 to 1e8 m, nothing hit.
  qv_ray();
  qv_ray(const qv_3dvector& origin, const qv_3dvector& direction);
  virtual ~qv_ray();

  /// Start, m.
  qv_3dvector origin;
  /// Unit direction.
  qv_3dvector direction{0, 0, 1};
  /// Surfaces nearer than this are not seen, m.
  float minimum_distance = 0;
  /// Surfaces farther than this are not seen, m.
  float maximum_distance = 1e8f;

  /// Distance of the hit, m; negative when nothing was hit.
  float hit_distance = -1;
  /// The mesh hit, or null.
  qvi_mesh* hit_mesh = nullptr;
  /// Index of that mesh in the ray tracer's list of meshes, or −1.
  int hit_mesh_index = -1;
  /// Index of the triangle hit in that mesh, or −1.
  int hit_triangle = -1;
  /// Unit normal of the triangle hit, on its front side (it may point along the ray).
  qv_3dvector hit_normal;

  /// Where the ray hit.
  qv_3dvector get_hit_point() const { return origin + direction * hit_distance; }
  /// Forgets the hit.
  void clear_hit();
};

}  // namespace qv
