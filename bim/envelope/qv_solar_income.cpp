#include "bim/envelope/qv_solar_income.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/items/qv_scene.h"
#include "core/light/qv_receiver.h"
#include "core/light/qvi_sun.h"
#include "utilities/qv_date.h"
#include "utilities/qv_log.h"

namespace qv {

namespace {

constexpr int fixed_seed = 874597;
/// m; how far sample points are lifted off the surface.
constexpr float sample_offset = 0.01f;

int multiply(int direct_rays, int montecarlo_factor) {
  const long long rays = static_cast<long long>(direct_rays) * montecarlo_factor;
  return static_cast<int>(std::clamp<long long>(rays, 0, std::numeric_limits<int>::max()));
}

float to_irradiation(float value) {
  return value > 0 && std::isfinite(value) ? value : 0;
}

}  // namespace

void qv_solar_income::compute_solar_income_of(qv_scene* scene, const qv_3dvector& normal,
                                              const qv_polygon& surface,
                                              const solar_effort& effort) {
  if (scene == nullptr) return;
  const qv_list<qv_item*>& suns = scene->get_items("sun");
  if (suns.is_empty()) return;
  const auto* sun = static_cast<const qvi_sun*>(suns[0]);
  const int count = sun->get_nb_values();

  results& found = *share_results();
  for (qv_list<float>* series :
       {&found.direct_diffuse, &found.indirect_diffuse, &found.direct_direct,
        &found.indirect_direct, &found.direct_direct_sigma, &found.indirect_direct_sigma,
        &found.diffuse_sigma}) {
    series->resize(count);
    std::fill(series->begin(), series->end(), 0.0f);
  }

  qv_receiver receiver(scene, nullptr, "simulation");
  receiver.set_normal(normal);
  receiver.set_polygon(surface);
  receiver.set_offset(sample_offset);
  receiver.set_spectrum(qv_spectrum::solar);
  receiver.set_direct_rays(effort.direct_rays);
  receiver.set_montecarlo_rays(multiply(effort.direct_rays, effort.montecarlo_factor));
  receiver.set_ray_depth(effort.ray_depth);
  receiver.set_per_square_metter(true);
  receiver.set_direct_error(effort.direct_error);
  receiver.set_diffuse_error(effort.diffuse_error);
  receiver.compute(fixed_seed);

  found.samples = receiver.get_samples();
  double cumulated = 0;
  for (int t = 0; t < count; ++t) {
    const float direct = to_irradiation(sun->get_direct_irradiation()[t]);
    const float diffuse = to_irradiation(sun->get_diffuse_irradiation()[t]);
    found.direct_diffuse[t] = receiver.get_direct_diffuse(t) * diffuse;
    found.indirect_diffuse[t] = receiver.get_indirect_diffuse(t) * diffuse;
    found.direct_direct[t] = receiver.get_direct_direct(t) * direct;
    found.indirect_direct[t] = receiver.get_indirect_direct(t) * direct;
    found.direct_direct_sigma[t] = receiver.get_direct_direct_sigma(t) * direct;
    found.indirect_direct_sigma[t] = receiver.get_indirect_direct_sigma(t) * direct;
    found.diffuse_sigma[t] = receiver.get_diffuse_sigma(t) * diffuse;
    cumulated += static_cast<double>(found.direct_diffuse[t]) + found.indirect_diffuse[t] +
                 found.direct_direct[t] + found.indirect_direct[t];
  }
  found.cumulated = static_cast<float>(cumulated);
  found.cumulated_sigma = receiver.get_sum_sigma();
  found.direct_samples = receiver.get_direct_samples();
  found.diffuse_samples = receiver.get_diffuse_samples();
  found.date = qv_get_date();
  qv_log_thread_safe("done");
}

}  // namespace qv
