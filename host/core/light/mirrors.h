#pragma once

#include <cstdint>
#include <vector>

#include "core/light/light_scene.h"
#include "utilities/qv_3dvector.h"

namespace qv::light {

/// The sun seen in mirrors. Rays in random directions never meet it, since it is a point; but on
/// its way from a plane mirror to a point the light comes from the direction of the sun's mirror
/// image. With the directions into which the mirrors of a scene face, all ways over up to `depth`
/// mirrors are known beforehand, and a ray along each tells whether the mirrors are there.
class mirrors {
 public:
  mirrors(const light_scene& scene, int depth);

  /// Number of ways: sequences of mirror directions, no two neighbours equal. 0 without mirrors.
  /// Sequences so long that there would be more than 10¹² are left out.
  double get_way_count() const { return way_count_; }

  /// Of these the first ones, which are the shortest: as many as there are up to some length, and
  /// `most` or fewer.
  double get_short_way_count(double most) const;

  /// Share of the sun's beam, from `sun`, that comes to `point` over way number `way`, and the unit
  /// direction in which it is then seen. 0 when the way is impossible or interrupted, or when the
  /// light would come from behind the plane through the point with normal `normal`.
  float get_light(const qv_3dvector& point, const qv_3dvector& normal, const qv_3dvector& sun,
                  std::int64_t way, qv_3dvector& seen_at) const;

  /// False when no mirror could send light from `sun` over this way to a surface facing `normal`.
  bool is_possible(const qv_3dvector& normal, const qv_3dvector& sun, std::int64_t way) const;

 private:
  struct route {
    std::vector<int> mirrors;             // from the point outwards
    std::vector<qv_3dvector> directions;  // of the legs from the point outwards, the sun's last
  };
  bool plan_route(const qv_3dvector& normal, const qv_3dvector& sun, std::int64_t way,
                  route& found) const;
  float follow(const qv_3dvector& from, const route& along, std::size_t leg, int surfaces) const;
  int find_mirror(const qv_3dvector& normal) const;

  const light_scene& scene_;
  std::vector<double> ways_up_to_;  // by length
  double way_count_ = 0;
};

}  // namespace qv::light
