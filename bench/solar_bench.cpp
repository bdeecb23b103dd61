#include <benchmark/benchmark.h>
#include <embree3/rtcore.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

#include "bench/solar_town.h"
#include "core/light/qvi_sun.h"
#include "utilities/qv_random.h"

using namespace qv;
using namespace qv_bench;

namespace {

constexpr int seed = 874597;
/// Some 16 rays towards the sun for each lit hour, and as many paths as make 1 % of error.
constexpr solar_effort normal_effort = {32000, 4096, 2, 0};

/// What one computation of all receivers of a town was and found.
struct year_totals {
  double beam_rays = 0;
  double sun_rays = 0;
  double path_rays = 0;
  double largest_half_width = 0;  // 95 %, share of the annual value
  double mean_half_width = 0;
};

year_totals compute_year(solar_town& town, const solar_effort& effort) {
  year_totals totals;
  for (const qv_polygon& facade : town.facades) {
    facade_receiver receiver(town, facade, effort);
    receiver.compute(seed);
    totals.beam_rays += receiver.get_direct_samples();
    totals.sun_rays += receiver.get_reflected_sun_rays();
    totals.path_rays += receiver.get_path_rays();
    const double year = receiver.get_year();
    const double half_width = year > 0 ? 1.96 * receiver.get_sum_sigma() / year : 0;
    totals.largest_half_width = std::max(totals.largest_half_width, half_width);
    totals.mean_half_width += half_width / static_cast<double>(town.facades.size());
  }
  return totals;
}

void report(benchmark::State& state, const year_totals& totals, std::size_t receivers) {
  const double rays = totals.beam_rays + totals.sun_rays + totals.path_rays;
  state.counters["receivers"] = static_cast<double>(receivers);
  state.counters["rays"] = rays;
  state.counters["path_rays"] = totals.path_rays;
  state.counters["rays_per_second"] =
      benchmark::Counter(rays, benchmark::Counter::kIsIterationInvariantRate);
  if (totals.mean_half_width > 0) {
    state.counters["mean_half_width_percent"] = 100 * totals.mean_half_width;
    state.counters["largest_half_width_percent"] = 100 * totals.largest_half_width;
  }
}

template <class maker>
std::unique_ptr<solar_town> build(float reflexion, maker make) {
  auto town = std::make_unique<solar_town>(reflexion);
  make(*town);
  // What is found once for all receivers is not theirs to pay for here.
  facade_receiver first(*town, town->facades.front(), {16, 16, 0, 0});
  first.compute(seed);
  return town;
}

solar_town& box() {
  static const auto instance = build(0.3f, make_box);
  return *instance;
}
solar_town& courtyard() {
  static const auto instance = build(0.4f, make_courtyard);
  return *instance;
}
solar_town& block_1000() {
  static const auto instance = build(0.3f, [](solar_town& town) { make_block(town, 1000); });
  return *instance;
}

void year_qv(benchmark::State& state, solar_town& (*town)(), solar_effort effort) {
  year_totals totals;
  solar_town& place = town();
  for (auto _ : state) totals = compute_year(place, effort);
  report(state, totals, place.facades.size());
}

/// The same numbers of rays of the same kinds in the bare kernel: parallel ones in packets, from a
/// point towards several suns in packets, and nearest hits about the surface's normal.
class bare_kernel {
 public:
  explicit bare_kernel(solar_town& town)
      : town_(town), device_(rtcNewDevice("threads=1")), scene_(rtcNewScene(device_)) {
    for (qv_item* item : town.scene.get_items("mesh")) {
      auto* mesh = static_cast<qvi_mesh*>(item);
      qv_3dvector corners[3];
      for (int t = 0; t < mesh->get_nb_triangles(); ++t) {
        mesh->read_triangle(t, corners[0], corners[1], corners[2], nullptr);
        for (const qv_3dvector& p : corners) {
          indices_.push_back(static_cast<std::uint32_t>(indices_.size()));
          vertices_.insert(vertices_.end(), {p.x, p.y, p.z});
        }
      }
    }
    vertices_.resize(vertices_.size() + 4);
    rtcSetSceneFlags(scene_, RTC_SCENE_FLAG_ROBUST);
    RTCGeometry geometry = rtcNewGeometry(device_, RTC_GEOMETRY_TYPE_TRIANGLE);
    rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3,
                               vertices_.data(), 0, 3 * sizeof(float), indices_.size());
    rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
                               indices_.data(), 0, 3 * sizeof(std::uint32_t), indices_.size() / 3);
    rtcCommitGeometry(geometry);
    rtcAttachGeometry(scene_, geometry);
    rtcReleaseGeometry(geometry);
    rtcCommitScene(scene_);
    const qvi_sun* sun = static_cast<const qvi_sun*>(town.scene.get_items("sun")[0]);
    for (int i = 0; i < sun->get_nb_values(); ++i)
      if (sun->get_direct_irradiation()[i] > 0) suns_.push_back(sun->get_directions()[i]);
    prepare_points();
  }
  ~bare_kernel() {
    rtcReleaseScene(scene_);
    rtcReleaseDevice(device_);
  }

  double trace(const year_totals& totals) {
    const auto share = static_cast<double>(town_.facades.size());
    double hits = 0;
    for (std::size_t f = 0; f < town_.facades.size(); ++f) {
      hits += trace_suns(f, totals.beam_rays / share, true);
      hits += trace_suns(f, totals.sun_rays / share, false);
      hits += trace_paths(f, totals.path_rays / share);
    }
    return hits;
  }

 private:
  static constexpr std::size_t point_count = 256;

  void prepare_points() {
    qv_random random(1);
    for (const qv_polygon& facade : town_.facades) {
      const qv_3dvector normal = facade.get_normal();
      for (const qv_3dvector& p : facade.random_distribution(point_count, seed))
        points_.push_back(p + normal * 0.01f);
      for (std::size_t i = 0; i < point_count; ++i)
        directions_.push_back((random.dice_vector() * 0.999f + normal).normalized());
    }
  }

  double trace_suns(std::size_t f, double count, bool parallel) {
    const qv_3dvector normal = town_.facades[f].get_normal();
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    if (parallel) context.flags = RTC_INTERSECT_CONTEXT_FLAG_COHERENT;
    alignas(32) int valid[8] = {-1, -1, -1, -1, -1, -1, -1, -1};
    RTCRay8 query;
    double hits = 0;
    std::size_t next = 0, sun = 0;
    for (double done = 0; done < count; done += 8) {
      do sun = (sun + 1) % suns_.size();
      while (parallel && suns_[sun].dot(normal) <= 0);
      for (std::size_t i = 0; i < 8; ++i) {
        const qv_3dvector& from =
            points_[f * point_count + (parallel ? next + i : next) % point_count];
        const qv_3dvector& to = suns_[parallel ? sun : (sun + 97 * i) % suns_.size()];
        query.org_x[i] = from.x;
        query.org_y[i] = from.y;
        query.org_z[i] = from.z;
        query.dir_x[i] = to.x;
        query.dir_y[i] = to.y;
        query.dir_z[i] = to.z;
        query.tnear[i] = 0;
        query.tfar[i] = 1e8f;
        query.time[i] = 0;
        query.mask[i] = ~0u;
        query.id[i] = 0;
        query.flags[i] = 0;
      }
      rtcOccluded8(valid, scene_, &context, &query);
      hits += query.tfar[0] < 0 ? 1 : 0;
      next += 8;
    }
    return hits;
  }

  double trace_paths(std::size_t f, double count) {
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    double hits = 0;
    std::size_t next = 0;
    for (double done = 0; done < count; ++done, ++next) {
      const std::size_t at = f * point_count + next % point_count;
      const qv_3dvector &from = points_[at], &to = directions_[(at * 7) % directions_.size()];
      RTCRayHit query;
      query.ray = {from.x, from.y, from.z, 0, to.x, to.y, to.z, 0, 1e8f, ~0u, 0, 0};
      query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
      query.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
      rtcIntersect1(scene_, &context, &query);
      hits += query.hit.geomID != RTC_INVALID_GEOMETRY_ID ? 1 : 0;
    }
    return hits;
  }

  solar_town& town_;
  RTCDevice device_;
  RTCScene scene_;
  std::vector<float> vertices_;
  std::vector<std::uint32_t> indices_;
  std::vector<qv_3dvector> suns_, points_, directions_;
};

void year_kernel(benchmark::State& state, solar_town& (*town)(), solar_effort effort) {
  solar_town& place = town();
  year_totals totals = compute_year(place, effort);
  bare_kernel kernel(place);
  for (auto _ : state) benchmark::DoNotOptimize(kernel.trace(totals));
  totals.mean_half_width = 0;
  report(state, totals, place.facades.size());
}

/// All receivers shared out among threads; wall-clock time.
void year_threads(benchmark::State& state) {
  solar_town& place = courtyard();
  const auto count = static_cast<int>(state.range(0));
  for (auto _ : state) {
    std::atomic<std::size_t> next{0};
    std::vector<std::jthread> threads;
    threads.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
      threads.emplace_back([&] {
        for (std::size_t k = next++; k < place.facades.size(); k = next++) {
          facade_receiver receiver(place, place.facades[k], normal_effort);
          receiver.compute(seed);
        }
      });
    }
  }
}

/// Time of one receiver in towns of more receivers, and of more triangles in as many receivers.
void growth_receivers(benchmark::State& state) {
  const auto town =
      build(0.3f, [&](solar_town& made) { make_block(made, static_cast<int>(state.range(0))); });
  for (auto _ : state) compute_year(*town, normal_effort);
  state.counters["time_per_receiver"] = benchmark::Counter(
      static_cast<double>(town->facades.size()),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void growth_triangles(benchmark::State& state) {
  const auto town = build(
      0.3f, [&](solar_town& made) { make_block(made, 80, static_cast<int>(state.range(0))); });
  for (auto _ : state) compute_year(*town, normal_effort);
  double triangles = 0;
  for (qv_item* mesh : town->scene.get_items("mesh"))
    triangles += static_cast<qvi_mesh*>(mesh)->get_nb_triangles();
  state.counters["triangles"] = triangles;
}

/// How far annual sums are from those of a run with a thousand times the rays, beside their own
/// standard error: root mean squares over many seeds of each of five receivers, per cent of the
/// sum. The mean error is that of the receiver where it stands out most, in standard errors of such
/// a mean: beyond 3 or 4 the sums would be biased.
void error_against_dense(benchmark::State& state, solar_town& (*town)(), solar_effort effort) {
  constexpr int seed_count = 40;
  constexpr std::size_t receiver_count = 5;
  solar_town& place = town();
  solar_effort dense = effort;
  dense.direct_rays *= 1000;
  dense.montecarlo_rays *= 1000;
  double errors = 0, sigmas = 0, largest = 0, bias = 0;
  int count = 0;
  for (auto _ : state) {
    for (std::size_t i = 0; i < receiver_count; ++i) {
      const qv_polygon& facade = place.facades[i * place.facades.size() / receiver_count];
      facade_receiver many(place, facade, dense);
      many.compute(1);
      const double truth = many.get_year();
      double sum = 0, variance = 0;
      for (int k = 0; k < seed_count; ++k) {
        facade_receiver few(place, facade, effort);
        few.compute(seed + k);
        const double error = (few.get_year() - truth) / truth;
        sum += error;
        variance += std::pow(few.get_sum_sigma() / truth, 2);
        errors += error * error;
        largest = std::max(largest, std::fabs(error));
      }
      sigmas += variance;
      const double mean_sigma =
          std::hypot(std::sqrt(variance) / seed_count, many.get_sum_sigma() / truth);
      bias = std::max(bias, std::fabs(sum / seed_count) / mean_sigma);
      count += seed_count;
    }
  }
  state.counters["error_percent"] = 100 * std::sqrt(errors / count);
  state.counters["sigma_percent"] = 100 * std::sqrt(sigmas / count);
  state.counters["largest_error_percent"] = 100 * largest;
  state.counters["mean_error_in_sigmas"] = bias;
}

constexpr solar_effort courtyard_effort = {32000, 8192, 3, 0};
/// A thousandth part of this must still be something.
constexpr solar_effort small_effort = {32000, 1024, 3, 0};

BENCHMARK_CAPTURE(year_qv, box, box, normal_effort)
    ->Name("solar/year/box/qv")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(year_kernel, box, box, normal_effort)
    ->Name("solar/year/box/kernel")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(year_qv, courtyard, courtyard, courtyard_effort)
    ->Name("solar/year/courtyard/qv")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(year_kernel, courtyard, courtyard, courtyard_effort)
    ->Name("solar/year/courtyard/kernel")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(year_qv, block, block_1000, normal_effort)
    ->Name("solar/year/block-1000/qv")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(year_kernel, block, block_1000, normal_effort)
    ->Name("solar/year/block-1000/kernel")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(year_threads)
    ->Name("solar/threads/courtyard")
    ->Arg(1)
    ->Arg(2)
    ->Arg(static_cast<int>(std::max(2u, std::thread::hardware_concurrency())))
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(growth_receivers)
    ->Name("solar/growth/receivers")
    ->Arg(40)
    ->Arg(160)
    ->Arg(640)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(growth_triangles)
    ->Name("solar/growth/triangles")
    ->Arg(1)
    ->Arg(4)
    ->Arg(16)
    ->Arg(64)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(error_against_dense, box, box, small_effort)
    ->Name("solar/error/box/1000000")
    ->Iterations(1)
    ->Unit(benchmark::kSecond);
BENCHMARK_CAPTURE(error_against_dense, courtyard, courtyard, small_effort)
    ->Name("solar/error/courtyard/1000000")
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

}  // namespace
