#pragma once

#include <cstdint>
#include <vector>

#include "core/light/light_scene.h"
#include "core/light/surface_sampler.h"

namespace qv::light {

/// An estimate for each lit step of a sun plan, per W/m² of direct normal irradiation.
struct step_estimates {
  std::vector<double> means;
  /// Squares of the standard errors.
  std::vector<double> variances;
  /// Square of the standard error of the sum over the steps, each times its irradiation, (W/m²)².
  double sum_variance = 0;
  /// Number of samples.
  double samples = 0;
};

/// How much a computation may cost and when it may stop before that.
struct sampling_effort {
  int rays = 0;
  /// It may stop when the standard error of the sum over the steps falls below this share of the
  /// sum; 0 never.
  float error = 0;
  std::uint32_t seed = 0;
};

/// The sun's beam straight onto a surface with unit normal `normal`: the mean over the area of the
/// light that comes through, times the cosine of incidence.
///
/// `effort.rays` are shared by the steps at which the sun stands in front of the surface, at least
/// `least_step_samples` each. A step has points of its own, two in each of equal parts of the area:
/// their difference tells the standard error. A step's error counts as if half a pair more had
/// differed, since the edge of a shadow may have been missed; that of the sum does not. `all_free`
/// says that nothing stands before the surface: the result is then exact.
step_estimates estimate_beam(const light_scene& scene, const surface_sampler& surface,
                             const qv_3dvector& normal, const sampling_effort& effort,
                             bool all_free);

/// The sun's beam by way of mirrors, up to `depth` of them, with a quarter of the effort for each
/// way. Short ways are all followed, of long ones a few chosen at random for each step.
step_estimates estimate_mirrored_beam(const light_scene& scene, const surface_sampler& surface,
                                      const qv_3dvector& normal, const sampling_effort& effort,
                                      int depth);

/// Fewest samples of a step.
inline constexpr int least_step_samples = 16;

}  // namespace qv::light
