#pragma once

#include <memory>

#include "utilities/qv_list.h"

namespace qv {

class qv_ray;
class qvi_mesh;

/// Finds what rays hit among a set of meshes.
///
/// Built on the Embree kernel in its robust mode, around the centre of the meshes, so that models
/// far from the origin keep their precision. The meshes are borrowed and must outlive the tracer or
/// be taken out by `set_meshes`.
///
/// Of surfaces at the very same distance the one whose mesh comes first in the set is hit, and in a
/// mesh the first triangle, so that coincident faces give the same answer whatever the history of
/// the structure and the number of threads.
class qv_raytracer {
 public:
  explicit qv_raytracer(const qv_list<qvi_mesh*>& meshes);
  qv_raytracer(const qv_raytracer&) = delete;
  qv_raytracer& operator=(const qv_raytracer&) = delete;
  virtual ~qv_raytracer();

  /// Replaces the set; null entries and repetitions are left out. Takes effect at the next
  /// `update`.
  void set_meshes(const qv_list<qvi_mesh*>& meshes);
  const qv_list<qvi_mesh*>& get_meshes() const;

  /// Brings the acceleration structure in step with the meshes: only meshes whose geometry changed
  /// since the last update are read again, and nothing is done when none did. Triangles that are
  /// not finite or have no area are left out. Asks every mesh for its geometry date; a change costs
  /// time proportional to the logarithm of the size of the set and to the size of what changed.
  virtual void update();
  /// As `update`, for a caller that knows that of the present meshes no other ones than `changed`
  /// changed since the last update. Meshes outside the set are ignored.
  void update_changed(const qv_list<qvi_mesh*>& changed);

  /// Nearest hit between the ray's distances: true and the ray's hit fields filled, or false and
  /// the hit cleared. After `update` any number of threads may trace. False for a direction that is
  /// zero or not finite. Distances are in units of the direction's length.
  bool raytrace(qv_ray& ray) const;
  /// True when anything lies between the ray's distances; the ray is not written.
  bool is_occluded(const qv_ray& ray) const;

  /// Number of triangles in the structure after the last update.
  int get_triangle_count() const;

 private:
  struct kernel;
  std::unique_ptr<kernel> kernel_;
};

}  // namespace qv
