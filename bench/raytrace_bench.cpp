#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include "bench/qv_bare_kernel.h"
#include "core/light/qv_ray.h"
#include "core/light/qv_raytracer.h"
#include "core/shapes/qvi_mesh.h"
#include "utilities/qv_random.h"

using namespace qv;

namespace {

constexpr int mesh_count = 50000;  // of two triangles each
constexpr float extent = 100;      // m
constexpr float height = 30;       // m
constexpr std::size_t ray_count = 100000;

struct item_destroyer {
  void operator()(qv_item* item) const { qv_item::destroy(item); }
};

qv_3dvector dice_point(qv_random& random) {
  const float x = random.dice_float() * extent, y = random.dice_float() * extent;
  return {x, y, random.dice_float() * height};
}

/// Parallelograms about two metres in size scattered over a block: as many meshes as a large
/// building has faces.
struct block_of_faces {
  block_of_faces() {
    qv_random random(1);
    for (int i = 0; i < mesh_count; ++i) {
      const qv_3dvector a = dice_point(random);
      const qv_3dvector u = random.dice_vector() * 2, v = random.dice_vector() * 2;
      meshes.emplace_back(new qvi_mesh);
      meshes.back()->load_from_triangles({a, a + u, a + u + v, a + v}, {0, 1, 2, 0, 2, 3});
      list.append(meshes.back().get());
    }
  }
  std::vector<std::unique_ptr<qvi_mesh, item_destroyer>> meshes;
  qv_list<qvi_mesh*> list;
};

block_of_faces& faces() {
  static block_of_faces instance;
  return instance;
}

qv_raytracer& tracer() {
  static qv_raytracer instance(faces().list);
  instance.update();
  return instance;
}

/// The same triangles in the bare kernel.
const qv_bench::bare_kernel& kernel() {
  static const qv_bench::bare_kernel instance(faces().list);
  return instance;
}

/// Rays into every direction from anywhere in the block.
const std::vector<qv_ray>& diffuse_rays() {
  static const std::vector<qv_ray> rays = [] {
    std::vector<qv_ray> made;
    qv_random random(2);
    for (std::size_t i = 0; i < ray_count; ++i) {
      const qv_3dvector origin = dice_point(random);
      made.emplace_back(origin, random.dice_vector());
    }
    return made;
  }();
  return rays;
}

/// Rays from a grid over the ground, row by row, all towards the sun.
const std::vector<qv_ray>& sun_rays() {
  static const std::vector<qv_ray> rays = [] {
    std::vector<qv_ray> made;
    const qv_3dvector sun = qv_3dvector(0.4f, -0.5f, 0.8f).normalized();
    constexpr int rows = 316;
    for (int i = 0; i < rows; ++i)
      for (int k = 0; k < rows; ++k)
        made.emplace_back(qv_3dvector(static_cast<float>(i), static_cast<float>(k), 0) *
                              (extent / static_cast<float>(rows)),
                          sun);
    return made;
  }();
  return rays;
}

void count_rays(benchmark::State& state, const std::vector<qv_ray>& rays, std::size_t hits) {
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(rays.size()));
  state.counters["hit_share"] = static_cast<double>(hits) /
                                static_cast<double>(state.iterations()) /
                                static_cast<double>(rays.size());
}

void closest_hit_qv(benchmark::State& state, const std::vector<qv_ray>& (*rays)()) {
  const qv_raytracer& subject = tracer();
  std::size_t hits = 0;
  for (auto _ : state) {
    for (const qv_ray& from : rays()) {
      qv_ray ray(from.origin, from.direction);
      if (subject.raytrace(ray)) ++hits;
      benchmark::DoNotOptimize(ray.hit_distance);
    }
  }
  count_rays(state, rays(), hits);
}

void closest_hit_kernel(benchmark::State& state, const std::vector<qv_ray>& (*rays)()) {
  const qv_bench::bare_kernel& subject = kernel();
  std::size_t hits = 0;
  for (auto _ : state) {
    for (const qv_ray& from : rays()) {
      const float distance = subject.find_nearest(from.origin, from.direction, 0);
      if (std::isfinite(distance)) ++hits;
      benchmark::DoNotOptimize(distance);
    }
  }
  count_rays(state, rays(), hits);
}

void occluded_qv(benchmark::State& state) {
  const qv_raytracer& subject = tracer();
  std::size_t hits = 0;
  for (auto _ : state)
    for (const qv_ray& from : diffuse_rays())
      if (subject.is_occluded(from)) ++hits;
  count_rays(state, diffuse_rays(), hits);
}

void occluded_kernel(benchmark::State& state) {
  const qv_bench::bare_kernel& subject = kernel();
  std::size_t hits = 0;
  for (auto _ : state)
    for (const qv_ray& from : diffuse_rays())
      if (subject.is_occluded(from.origin, from.direction)) ++hits;
  count_rays(state, diffuse_rays(), hits);
}

/// The whole structure from nothing.
void update_all(benchmark::State& state) {
  const auto count = static_cast<int>(state.range(0));
  qv_list<qvi_mesh*> some;
  for (int i = 0; i < count / 2; ++i) some.append(faces().list[i]);
  for (auto _ : state) {
    qv_raytracer made(some);
    made.update();
    benchmark::DoNotOptimize(made.get_triangle_count());
  }
  state.counters["time_per_triangle"] =
      benchmark::Counter(static_cast<double>(count), benchmark::Counter::kIsIterationInvariantRate |
                                                         benchmark::Counter::kInvert);
}

/// One mesh after the other changes, each followed by an update.
void update_one_changed(benchmark::State& state) {
  const auto count = static_cast<int>(state.range(0));
  qv_list<qvi_mesh*> some;
  for (int i = 0; i < count / 2; ++i) some.append(faces().list[i]);
  qv_raytracer subject(some);
  subject.update();
  int next = 0;
  for (auto _ : state) {
    qvi_mesh* mesh = some[next++ % some.get_count()];
    mesh->reverse();
    subject.update_changed({mesh});
  }
}

BENCHMARK_CAPTURE(closest_hit_qv, diffuse, diffuse_rays)->Name("raytrace/closest_hit/qv");
BENCHMARK_CAPTURE(closest_hit_kernel, diffuse, diffuse_rays)->Name("raytrace/closest_hit/kernel");
BENCHMARK_CAPTURE(closest_hit_qv, sun, sun_rays)->Name("raytrace/closest_hit_sun/qv");
BENCHMARK_CAPTURE(closest_hit_kernel, sun, sun_rays)->Name("raytrace/closest_hit_sun/kernel");
BENCHMARK(occluded_qv)->Name("raytrace/occluded/qv");
BENCHMARK(occluded_kernel)->Name("raytrace/occluded/kernel");
BENCHMARK(update_all)->Name("raytrace/update_all")->RangeMultiplier(10)->Range(1000, 100000);
BENCHMARK(update_one_changed)
    ->Name("raytrace/update_one_changed")
    ->RangeMultiplier(10)
    ->Range(1000, 100000);

}  // namespace
