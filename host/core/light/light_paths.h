#pragma once

#include <array>
#include <memory>
#include <vector>

#include "core/light/beam.h"
#include "core/light/light_scene.h"
#include "core/light/mirrors.h"
#include "core/light/sample_sequence.h"
#include "core/light/sun_facing.h"
#include "core/light/surface_sampler.h"

namespace qv::light {

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
/// themselves: the spread of their results is the standard error.
class light_paths {
 public:
  static constexpr int set_count = 16;
  using set_values = std::array<double, set_count>;

  light_paths(const light_scene& scene, const surface_sampler& surface, const qv_3dvector& normal,
              int depth, std::uint32_t seed);

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
  /// The reflected sun at lit step `index`, by set, per W/m² of direct normal irradiation.
  set_values get_reflected_sun(std::size_t index) const;
  /// Sky and reflected sun times their irradiations, summed over all steps, by set, W/m².
  set_values get_sums() const;

 private:
  /// What surfaces that face into one direction reflect of the sun towards the receiver.
  struct facing {
    std::shared_ptr<const sun_facing> to_sun;
    /// By node and set; of a facing that has the cosine still to count, without it.
    std::vector<float> values;
  };
  struct vertex;

  void follow(int set, std::uint32_t index);
  void gather_sun(const vertex& at, int set, float jitter);
  void gather_mirrored_sun(const vertex& at, int set, std::uint32_t dice);
  std::size_t find_facing(const qv_3dvector& normal);
  void add_facing(const qv_3dvector& normal, bool has_cosine);
  set_values divide(const set_values& sums) const;

  const light_scene& scene_;
  const surface_sampler& surface_;
  qv_3dvector normal_;
  int depth_;
  std::uint32_t seed_;
  int fineness_ = 0;
  std::array<qv_3dvector, 2> axes_;
  mirrors mirrors_;
  std::array<std::vector<scrambling>, set_count> scramblings_;
  int paths_per_set_ = 0;
  double path_rays_ = 0;
  double sun_rays_ = 0;
  set_values direct_sky_{};
  set_values reflected_sky_{};
  std::vector<facing> facings_;
};

/// Mean of the sets' values, and the square of its standard error.
struct set_mean {
  explicit set_mean(const light_paths::set_values& values);
  double mean = 0;
  double variance = 0;
};

}  // namespace qv::light
