#include "core/light/qv_receiver.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "core/items/qv_scene.h"
#include "core/light/beam.h"
#include "core/light/light_paths.h"
#include "core/light/light_scene.h"
#include "core/light/qv_raytracer.h"
#include "core/light/qvi_sun.h"
#include "core/light/sample_sequence.h"
#include "core/light/surface_sampler.h"

namespace qv {

using namespace light;

namespace {

/// m; sample points nearer to the surface might lie behind it by their rounding.
constexpr float least_offset = 1e-4f;
/// m; what reaches no farther than this in front of the sample points is not in front of them.
constexpr float front_tolerance = 1e-5f;
/// Reflexions and transmissions beyond this number carry nothing that could be told from 0.
constexpr int most_reflexions = 200;
/// Number of sample points that are kept to be looked at, a power of 2.
constexpr int kept_samples = 256;
/// Parts of a seed for what must be independent.
constexpr std::uint32_t beam_seed = 1;
constexpr std::uint32_t mirror_seed = 2;
constexpr std::uint32_t path_seed = 3;

qvi_sun* first_sun(qv_scene* scene) {
  if (scene == nullptr) return nullptr;
  const qv_list<qv_item*>& suns = scene->get_items("sun");
  return suns.is_empty() ? nullptr : static_cast<qvi_sun*>(suns[0]);
}

float to_sigma(double variance) {
  return static_cast<float>(std::sqrt(variance));
}

float to_error_bound(float error) {
  return error > 0 && std::isfinite(error) ? error : 0;
}

/// A number for where a surface lies, how large it is and where it faces. Receivers that are given
/// the same seed have errors of their own by it, so that those of a building average out.
std::uint32_t get_fingerprint(const surface_sampler& surface, const qv_3dvector& normal) {
  const qv_3dvector point = surface.get_point(0, 0, 0);
  std::uint32_t number = 0;
  for (float value : {point.x, point.y, point.z, static_cast<float>(surface.get_area()), normal.x,
                      normal.y, normal.z}) {
    number = combine_seeds(number, std::bit_cast<std::uint32_t>(value));
  }
  return number;
}

}  // namespace

/// What the parts of a computation have in common.
struct qv_receiver::work {
  const light_scene& scene;
  const surface_sampler& surface;
  qv_3dvector normal;
  /// Nothing stands before the surface.
  bool all_free;
  int depth;
  std::uint32_t seed;
  /// What the results are multiplied by: 1, or the area.
  double scale;
};

qv_receiver::qv_receiver(qv_scene* scene, qvi_sun* sun, const std::string& layer_name)
    : scene_(scene), sun_(sun != nullptr ? sun : first_sun(scene)), layer_name_(layer_name) {}

qv_receiver::~qv_receiver() = default;

void qv_receiver::clear_results() {
  step_count_ = 0;
  samples_.clear();
  for (auto* series :
       {&direct_direct_, &indirect_direct_, &direct_direct_sigma_, &indirect_direct_sigma_}) {
    series->clear();
  }
  direct_diffuse_ = indirect_diffuse_ = diffuse_sigma_ = 0;
  sum_variance_ = sum_sigma_ = 0;
  direct_samples_ = diffuse_samples_ = 0;
  path_rays_ = reflected_sun_rays_ = 0;
}

void qv_receiver::compute(int seed) {
  clear_results();
  qv_3dvector normal = normal_;
  const float length = normal.normalize();
  if (scene_ == nullptr || !(length > 0) || !std::isfinite(length)) return;
  const float offset = offset_ > least_offset && std::isfinite(offset_) ? offset_ : least_offset;
  const surface_sampler surface(polygon_, normal * offset);
  if (!(surface.get_area() > 0)) return;

  const auto scene = get_light_scene(scene_, sun_, layer_name_, spectrum_);
  step_count_ = scene->sun.step_count;
  const auto count = static_cast<std::size_t>(step_count_);
  for (auto* series :
       {&direct_direct_, &indirect_direct_, &direct_direct_sigma_, &indirect_direct_sigma_}) {
    series->assign(count, 0.0f);
  }
  for (int i = 0; i < kept_samples; ++i) {
    samples_.append(surface.get_point((i + 0.5) / kept_samples, 0.5f,
                                      static_cast<int>(std::log2(kept_samples))));
  }

  const work with = {
      *scene,
      surface,
      normal,
      scene->tracer->is_all_behind(surface.get_lowest(normal), normal, front_tolerance),
      std::clamp(ray_depth_, 0, most_reflexions),
      combine_seeds(mix_bits(static_cast<std::uint32_t>(seed)), get_fingerprint(surface, normal)),
      per_square_metre_ ? 1.0 : surface.get_area()};
  compute_beam(with);
  compute_sky(with);
  sum_sigma_ = to_sigma(sum_variance_);
}

void qv_receiver::compute_beam(const work& with) {
  const std::vector<lit_step>& lit = with.scene.sun.lit;
  const sampling_effort effort = {direct_rays_, to_error_bound(direct_error_),
                                  combine_seeds(with.seed, beam_seed)};
  const step_estimates beam =
      estimate_beam(with.scene, with.surface, with.normal, effort, with.all_free);
  step_estimates mirrored;
  if (!with.all_free && with.depth > 0) {
    mirrored = estimate_mirrored_beam(with.scene, with.surface, with.normal,
                                      {direct_rays_, 0, combine_seeds(with.seed, mirror_seed)},
                                      with.depth);
  }
  for (std::size_t i = 0; i < lit.size(); ++i) {
    const auto step = static_cast<std::size_t>(lit[i].step);
    direct_direct_[step] = static_cast<float>(with.scale * beam.means[i]);
    direct_direct_sigma_[step] = static_cast<float>(with.scale * to_sigma(beam.variances[i]));
    if (mirrored.means.empty()) continue;
    indirect_direct_[step] = static_cast<float>(with.scale * mirrored.means[i]);
    indirect_direct_sigma_[step] = static_cast<float>(with.scale * to_sigma(mirrored.variances[i]));
  }
  direct_samples_ = static_cast<float>(beam.samples + mirrored.samples);
  sum_variance_ += with.scale * with.scale * (beam.sum_variance + mirrored.sum_variance);
}

void qv_receiver::compute_sky(const work& with) {
  if (montecarlo_rays_ <= 0) return;
  if (with.all_free) {
    // The share of an evenly bright sky that a plane sees: (1 + cos tilt) / 2.
    direct_diffuse_ = static_cast<float>(with.scale * (1.0 + with.normal.z) / 2);
    diffuse_samples_ = static_cast<float>(montecarlo_rays_);
    return;
  }

  light_paths paths(with.scene, with.surface, with.normal, with.depth,
                    combine_seeds(with.seed, path_seed));
  paths.run(montecarlo_rays_, to_error_bound(diffuse_error_));
  const auto direct = paths.get_direct_sky(), reflected = paths.get_reflected_sky();
  light_paths::set_values both{};
  for (std::size_t i = 0; i < both.size(); ++i) both[i] = direct[i] + reflected[i];
  direct_diffuse_ = static_cast<float>(with.scale * get_mean(direct).mean);
  indirect_diffuse_ = static_cast<float>(with.scale * get_mean(reflected).mean);
  diffuse_sigma_ = static_cast<float>(with.scale * to_sigma(get_mean(both).variance));
  diffuse_samples_ = static_cast<float>(paths.get_path_count());
  path_rays_ = paths.get_path_rays();
  reflected_sun_rays_ = paths.get_sun_rays();
  sum_variance_ += with.scale * with.scale * get_mean(paths.get_sums()).variance;

  if (with.depth == 0) return;
  const std::vector<lit_step>& lit = with.scene.sun.lit;
  const std::vector<set_mean> suns = paths.get_reflected_sun();
  for (std::size_t i = 0; i < lit.size(); ++i) {
    const auto step = static_cast<std::size_t>(lit[i].step);
    const set_mean& sun = suns[i];
    indirect_direct_[step] += static_cast<float>(with.scale * sun.mean);
    const float mirrored = indirect_direct_sigma_[step];
    const auto scattered = static_cast<float>(with.scale * to_sigma(sun.variance));
    indirect_direct_sigma_[step] = mirrored > 0 ? std::hypot(mirrored, scattered) : scattered;
  }
}

}  // namespace qv
