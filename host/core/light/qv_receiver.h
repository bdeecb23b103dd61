#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/shapes/qv_spectrum.h"
#include "utilities/qv_3dvector.h"
#include "utilities/qv_list.h"
#include "utilities/qv_polygon.h"

namespace qv {

class qv_scene;
class qvi_sun;

/// A surface that receives the sun in a scene: what is to be computed, with which effort, and what
/// came out. docs/solar.md says how.
///
/// Results are per unit and per time step of the sun: direct ones per W/m² of direct normal
/// irradiation (the sun's beam), diffuse ones per W/m² of diffuse horizontal irradiation (the sky,
/// equally bright everywhere). A level surface under an open sky gets 1 of the diffuse irradiation
/// and the sine of the sun's elevation of the direct one. There is no ground but what the scene
/// has; below the horizontal there is no sky and no sun.
///
/// "Direct" results come straight from sun and sky, through any number of surfaces in so far as
/// these let light straight through (direct transmission). "Indirect" ones come after 1 to
/// `ray_depth` reflexions and diffuse transmissions.
///
/// A time step whose direct normal irradiation is not positive, or whose sun is not above the
/// horizontal, has 0 for the beam. Results are 0 throughout for a receiver without a scene, area or
/// direction, and for what no rays were granted. Nothing throws.
class qv_receiver {
 public:
  /// Receives in `scene`, through the meshes of ray-tracing layer `layer_name`. A null `sun` takes
  /// the scene's first.
  qv_receiver(qv_scene* scene, qvi_sun* sun, const std::string& layer_name);
  qv_receiver(const qv_receiver&) = delete;
  qv_receiver& operator=(const qv_receiver&) = delete;
  virtual ~qv_receiver();

  qv_scene* get_scene() const { return scene_; }
  qvi_sun* get_sun() const { return sun_; }
  const std::string& get_layer_name() const { return layer_name_; }

  /// The surface that receives: a plane region of any shape.
  void set_polygon(const qv_polygon& polygon) { polygon_ = polygon; }
  const qv_polygon& get_polygon() const { return polygon_; }
  /// The side of the surface that receives, a unit vector.
  void set_normal(const qv_3dvector& normal) { normal_ = normal; }
  const qv_3dvector& get_normal() const { return normal_; }
  /// How far sample points are lifted off the surface along the normal, m; less than 0.1 mm counts
  /// as 0.1 mm.
  void set_offset(float offset) { offset_ = offset; }
  float get_offset() const { return offset_; }
  /// The band in which surfaces reflect and transmit.
  void set_spectrum(qv_spectrum spectrum) { spectrum_ = spectrum; }
  qv_spectrum get_spectrum() const { return spectrum_; }
  /// Largest number of reflexions and transmissions that are followed; 0 leaves the indirect
  /// results at 0.
  void set_ray_depth(int depth) { ray_depth_ = depth; }
  int get_ray_depth() const { return ray_depth_; }
  /// Paths over the sky and the surroundings, at most this many; 0 casts none.
  void set_montecarlo_rays(int count) { montecarlo_rays_ = count; }
  int get_montecarlo_rays() const { return montecarlo_rays_; }
  /// Rays towards the sun, shared by the time steps with sun before the surface; each of these gets
  /// 16 at least. 0 casts none.
  void set_direct_rays(int count) { direct_rays_ = count; }
  int get_direct_rays() const { return direct_rays_; }
  /// True gives results per square metre, false for the whole surface.
  void set_per_square_metter(bool per_square_metre) { per_square_metre_ = per_square_metre; }
  bool get_per_square_metter() const { return per_square_metre_; }
  /// Sampling of the beam may stop early when the standard error of its sum over all time steps,
  /// each weighed by its irradiation, is below this share of the sum; 0 never stops early.
  void set_direct_error(float error) { direct_error_ = error; }
  float get_direct_error() const { return direct_error_; }
  /// The same for the paths: of the sum of the sky and of the reflected sun.
  void set_diffuse_error(float error) { diffuse_error_ = error; }
  float get_diffuse_error() const { return diffuse_error_; }

  /// Computes the results. The same scene, settings and `seed` give the same bits, whatever other
  /// receivers are computed at the same time. Different seeds give independent errors, and so do
  /// different surfaces of the same seed. Receivers of one scene may be computed by several threads
  /// at once while nothing changes the scene.
  virtual void compute(int seed);

  // --- results of the last computation ---

  /// Points of the surface at which it was sampled, spread over its area; of many, the first few
  /// hundred.
  const qv_list<qv_3dvector>& get_samples() const { return samples_; }
  // Of time step `step`; 0 for one that does not exist.
  float get_direct_direct(int step) const { return read(direct_direct_, step); }
  float get_indirect_direct(int step) const { return read(indirect_direct_, step); }
  float get_direct_diffuse(int step) const { return has_step(step) ? direct_diffuse_ : 0; }
  float get_indirect_diffuse(int step) const { return has_step(step) ? indirect_diffuse_ : 0; }
  // Standard errors of these; that of the sky is for the sum of direct and indirect. 0 where
  // nothing stands before the surface, since the values are exact then.
  float get_direct_direct_sigma(int step) const { return read(direct_direct_sigma_, step); }
  float get_indirect_direct_sigma(int step) const { return read(indirect_direct_sigma_, step); }
  float get_diffuse_sigma(int step) const { return has_step(step) ? diffuse_sigma_ : 0; }
  /// Standard error of the sum of all four over the time steps, each times its irradiation; W/m²
  /// (W for the whole surface). Errors of different steps have much in common or nothing, so it
  /// does not follow from theirs.
  float get_sum_sigma() const { return sum_sigma_; }
  /// Numbers of samples of the beam (over all steps) and of the sky. Samples that were known to be
  /// free without tracing count too.
  float get_direct_samples() const { return direct_samples_; }
  float get_diffuse_samples() const { return diffuse_samples_; }
  /// What was traced, for measuring: rays along paths, and rays from these towards the sun. (Rays
  /// straight towards the sun are the direct samples.)
  double get_path_rays() const { return path_rays_; }
  double get_reflected_sun_rays() const { return reflected_sun_rays_; }

 private:
  struct work;

  static float read(const std::vector<float>& values, int step) {
    return step >= 0 && static_cast<std::size_t>(step) < values.size()
               ? values[static_cast<std::size_t>(step)]
               : 0.0f;
  }
  bool has_step(int step) const { return step >= 0 && step < step_count_; }
  void clear_results();
  void compute_beam(const work& with);
  void compute_sky(const work& with);

  qv_scene* scene_;
  qvi_sun* sun_;
  std::string layer_name_;
  qv_polygon polygon_;
  qv_3dvector normal_{0, 0, 1};
  float offset_ = 0;
  qv_spectrum spectrum_ = qv_spectrum::solar;
  int ray_depth_ = 0;
  int montecarlo_rays_ = 0;
  int direct_rays_ = 0;
  bool per_square_metre_ = true;
  float direct_error_ = 0;
  float diffuse_error_ = 0;

  int step_count_ = 0;
  qv_list<qv_3dvector> samples_;
  std::vector<float> direct_direct_;
  std::vector<float> indirect_direct_;
  std::vector<float> direct_direct_sigma_;
  std::vector<float> indirect_direct_sigma_;
  float direct_diffuse_ = 0;
  float indirect_diffuse_ = 0;
  float diffuse_sigma_ = 0;
  float sum_sigma_ = 0;
  double sum_variance_ = 0;
  float direct_samples_ = 0;
  float diffuse_samples_ = 0;
  double path_rays_ = 0;
  double reflected_sun_rays_ = 0;
};

}  // namespace qv
