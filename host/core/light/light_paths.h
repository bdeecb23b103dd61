#pragma once

#include <array>
#include <memory>
#include <vector>

#include "core/light/beam.h"
#include "core/light/light_scene.h"
#include "core/light/mirrors.h"
#include "core/light/qv_raytracer.h"
#include "core/light/sample_sequence.h"
#include "core/light/sun_facing.h"
#include "core/light/surface_sampler.h"

namespace qv::light {

/// Mean of the values of independent sets of paths, and the square of its standard error.
struct set_mean {
  double mean = 0;
  double variance = 0;
};

/// What a surface receives of the sky, and of the sun by way of diffuse reflexions and
/// transmissions.
///
/// Paths start at points of the surface in directions of the half-space before it, as many in each
/// solid angle as its cosine asks for, and are followed against the light from surface to surface,
/// up to `depth` reflexions and transmissions (going straight through a pane is none). A path that
/// ends in the open above the horizontal sees the sky. Where it is scattered diffusely the sun's
/// nodes (`sun_plan`) are looked for, eight of them at a time, and what comes from them is kept by
/// node and by the direction into which the scattering surface faces; the sun of a time step then
/// counts with the cosine at which it strikes that direction and with its nodes' weights. So only
/// the visibility of the sun is interpolated between nodes, and that only in reflected light.
///
/// There are 16 independent sets of paths, each from low-discrepancy sequences scrambled by
/// themselves: the spread of their results is the standard error. Paths of a set are followed
/// together from surface to surface, so that their rays are traced eight at a time.
class light_paths {
 public:
  static constexpr int set_count = 16;
  using set_values = std::array<double, set_count>;

  light_paths(const light_scene& scene, const surface_sampler& surface, const qv_3dvector& normal,
              int depth, std::uint32_t seed);
  ~light_paths();

  /// Follows `rays` paths (at least one in each set), or fewer once the standard error of
  /// `get_sums` is below `error` times its mean; an error of 0 never stops early.
  void run(int rays, float error);

  /// Number of paths.
  double get_path_count() const { return static_cast<double>(set_count) * paths_per_set_; }
  /// Numbers of rays that looked for the nearest surface, and for the sun.
  double get_path_rays() const { return path_rays_; }
  double get_sun_rays() const { return sun_rays_; }
  /// Sky without, and after, reflexions and transmissions: by set, per W/m² of diffuse horizontal
  /// irradiation.
  set_values get_direct_sky() const { return divide(direct_sky_); }
  set_values get_reflected_sky() const { return divide(reflected_sky_); }
  /// The reflected sun at each lit step, per W/m² of direct normal irradiation.
  std::vector<set_mean> get_reflected_sun() const;
  /// Sky and reflected sun times their irradiations, summed over all steps, by set, W/m².
  set_values get_sums() const;

 private:
  /// What surfaces that face into one direction reflect of the sun towards the receiver.
  struct facing {
    std::shared_ptr<const sun_facing> to_sun;
    /// By set, and in each by node; of a facing that has the cosine still to count, without it.
    std::vector<float> values;
  };
  struct vertex;
  struct wave;
  struct meetings;

  void follow(std::size_t set, int first, int count);
  void start(wave& rays, std::size_t set, int first, int count) const;
  void trace(const wave& rays, std::size_t set, int surfaces, wave& next);
  void scatter(meetings& met, std::size_t set, int surfaces, wave& next);
  void gather_sun(const vertex& at, std::size_t set, float jitter);
  void gather_mirrored_sun(const vertex& at, std::size_t set, std::uint32_t dice);
  float* get_values(facing& of, std::size_t set) const {
    return of.values.data() + set * scene_.sun.nodes.size();
  }
  std::size_t find_facing(const qv_3dvector& normal);
  void add_facing(const qv_3dvector& normal, bool has_cosine);
  scrambling get_scrambling(std::size_t set, int number) const;
  set_values divide(const set_values& sums) const;

  const light_scene& scene_;
  const surface_sampler& surface_;
  qv_3dvector normal_;
  int depth_;
  int fineness_ = 0;
  mirrors mirrors_;
  std::array<std::uint32_t, set_count> set_seeds_;
  std::array<std::vector<scrambling>, set_count> scramblings_;
  int paths_per_set_ = 0;
  double path_rays_ = 0;
  double sun_rays_ = 0;
  set_values direct_sky_{};
  set_values reflected_sky_{};
  std::vector<facing> facings_;
  std::vector<qv_3dvector> facing_normals_;
  // Room to work in.
  std::unique_ptr<std::array<wave, 2>> waves_;
  qv_ray_packet sun_packet_;
};

/// Mean over the sets.
set_mean get_mean(const light_paths::set_values& values);

}  // namespace qv::light
