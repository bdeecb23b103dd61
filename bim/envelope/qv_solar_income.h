#pragma once

#include <memory>

#include "utilities/qv_3dvector.h"
#include "utilities/qv_list.h"

namespace qv {

class qv_polygon;
class qv_scene;

/// The sun that a surface receives over a period, as walls and openings keep it: irradiations in
/// W/m², one value for each time step of the sun. Series are empty and numbers 0 until computed;
/// until then they take no memory. A copy shares its source's results, also later ones.
///
/// "Direct" before the underscore means straight from its source, "indirect" after reflexions;
/// after it, "direct" means the sun's beam and "diffuse" the sky.
class qv_solar_income {
 public:
  qv_solar_income() = default;
  qv_solar_income(const qv_solar_income& other) : results_(other.share_results()) {}
  qv_solar_income& operator=(const qv_solar_income& other) {
    if (this != &other) results_ = other.share_results();
    return *this;
  }

  // Each a pointer to the first value of the series; null while it is empty.
  const float* get_solar_income_direct_direct() const { return get_results().direct_direct.data(); }
  const float* get_solar_income_direct_diffuse() const {
    return get_results().direct_diffuse.data();
  }
  const float* get_solar_income_indirect_direct() const {
    return get_results().indirect_direct.data();
  }
  const float* get_solar_income_indirect_diffuse() const {
    return get_results().indirect_diffuse.data();
  }
  // Spread of the values, in the same unit.
  const float* get_solar_income_direct_direct_sigma() const {
    return get_results().direct_direct_sigma.data();
  }
  const float* get_solar_income_indirect_direct_sigma() const {
    return get_results().indirect_direct_sigma.data();
  }
  const float* get_solar_income_diffuse_sigma() const { return get_results().diffuse_sigma.data(); }

  /// Points of the surface at which it was sampled.
  const qv_list<qv_3dvector>& get_solar_income_samples() const { return get_results().samples; }
  /// Sum of the four series over all steps.
  float get_solar_income_cumulated() const { return get_results().cumulated; }
  /// Standard error of that sum. It does not follow from those of the steps, since errors of
  /// different steps have much in common or nothing.
  float get_solar_income_cumulated_sigma() const { return get_results().cumulated_sigma; }
  /// Number of samples of the beam and of the sky.
  float get_solar_income_direct_samples() const { return get_results().direct_samples; }
  float get_solar_income_diffuse_samples() const { return get_results().diffuse_samples; }
  /// Date counter at the end of the last computation; 0 never.
  unsigned int get_solar_income_date() const { return get_results().date; }

 protected:
  /// How much a computation may cost, in the words of `qv_receiver`.
  struct solar_effort {
    int direct_rays = 0;
    int montecarlo_factor = 0;  // Monte-Carlo rays for each direct ray
    int ray_depth = 0;
    float direct_error = 0;
    float diffuse_error = 0;
  };
  /// Computes what `surface` receives on the side of `normal` in the scene's first sun, through the
  /// meshes of ray-tracing layer "simulation", for solar radiation. Always with the same seed, so
  /// that an unchanged scene gives the same results. Without a scene or a sun nothing changes.
  ///
  /// Irradiations below 0 or not finite count as 0. Writes nothing but this record and the log, so
  /// that surfaces of one scene may be computed in several threads.
  void compute_solar_income_of(qv_scene* scene, const qv_3dvector& normal,
                               const qv_polygon& surface, const solar_effort& effort);

 private:
  struct results {
    qv_list<float> direct_direct;
    qv_list<float> direct_diffuse;
    qv_list<float> indirect_direct;
    qv_list<float> indirect_diffuse;
    qv_list<float> direct_direct_sigma;
    qv_list<float> indirect_direct_sigma;
    qv_list<float> diffuse_sigma;
    qv_list<qv_3dvector> samples;
    float cumulated = 0;
    float cumulated_sigma = 0;
    float direct_samples = 0;
    float diffuse_samples = 0;
    unsigned int date = 0;
  };
  const results& get_results() const {
    static const results not_computed;
    return results_ != nullptr ? *results_ : not_computed;
  }
  const std::shared_ptr<results>& share_results() const {
    if (results_ == nullptr) results_ = std::make_shared<results>();
    return results_;
  }

  mutable std::shared_ptr<results> results_;  // null until computed or shared
};

}  // namespace qv
