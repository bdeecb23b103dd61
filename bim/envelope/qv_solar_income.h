#pragma once

#include <memory>

#include "utilities/qv_3dvector.h"
#include "utilities/qv_list.h"

namespace qv {

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
  /// Number of samples of the beam and of the sky.
  float get_solar_income_direct_samples() const { return get_results().direct_samples; }
  float get_solar_income_diffuse_samples() const { return get_results().diffuse_samples; }

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
    float direct_samples = 0;
    float diffuse_samples = 0;
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
