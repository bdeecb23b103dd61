#pragma once

#include <memory>

#include "utilities/qv_3dvector.h"
#include "utilities/qv_list.h"

namespace qv {

class qv_ray;
class qvi_mesh;

/// Rays that are asked together whether light comes along them: fastest where they are parallel, or
/// start at one point. Each component is a list over the rays; `count` of them are looked at.
struct qv_ray_packet {
  static constexpr int size = 8;

  alignas(32) float origin_x[size] = {};
  alignas(32) float origin_y[size] = {};
  alignas(32) float origin_z[size] = {};
  /// Unit directions, towards where the light would come from.
  alignas(32) float direction_x[size] = {};
  alignas(32) float direction_y[size] = {};
  alignas(32) float direction_z[size] = {};
  /// Result: the share of the light that comes through, 1 where nothing is in the way.
  alignas(32) float light[size];
  int count = 0;

  void set_ray(int index, const qv_3dvector& origin, const qv_3dvector& direction) {
    origin_x[index] = origin.x;
    origin_y[index] = origin.y;
    origin_z[index] = origin.z;
    direction_x[index] = direction.x;
    direction_y[index] = direction.y;
    direction_z[index] = direction.z;
  }
};

/// What each ray of a packet met first.
struct qv_packet_hits {
  /// m; negative where nothing was met, and the rest has no meaning.
  float distance[qv_ray_packet::size];
  /// Index of the mesh in the ray tracer's list of meshes.
  int mesh_index[qv_ray_packet::size];
  /// Unit normal of the triangle, on its front side (it may point along the ray).
  qv_3dvector normal[qv_ray_packet::size];
};

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

  /// Finds the packet's `light`. `transmission` holds two shares for each mesh of `get_meshes()`:
  /// what of the light that strikes its front comes straight through, and of that which strikes its
  /// back; light passes any number of meshes. Null makes every surface opaque. `parallel` promises
  /// nearly equal directions and may speed things up; it changes no result. After `update` any
  /// number of threads may ask.
  void find_light(qv_ray_packet& packet, const float* transmission, bool parallel) const;

  /// Nearest hits of a packet of rays in any directions, one by one as `raytrace` finds them (to
  /// the rounding of the distance): faster where many rays are to be traced. After `update` any
  /// number of threads may ask.
  void find_hits(const qv_ray_packet& packet, qv_packet_hits& hits) const;

  /// True when no triangle reaches farther than `tolerance` metres to the side of the plane through
  /// `point` to which `normal` points. Looks at vertices until one is found there.
  bool is_all_behind(const qv_3dvector& point, const qv_3dvector& normal, float tolerance) const;

  /// Number of triangles in the structure after the last update.
  int get_triangle_count() const;

 private:
  struct kernel;
  std::unique_ptr<kernel> kernel_;
};

}  // namespace qv
