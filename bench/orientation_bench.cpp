#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "bench/qv_bare_kernel.h"
#include "bim/project/qvi_bim_root.h"
#include "bim/qv_load_bim_items.h"
#include "core/items/qv_scene.h"
#include "core/shapes/qvi_polygon.h"
#include "tests/support/qv_test_buildings.h"
#include "tests/support/qv_turned_walls.h"
#include "utilities/qv_log.h"
#include "utilities/qv_random.h"

using namespace qv;

namespace {

// As many as the check sends to each side of a wall that has a space there.
constexpr int rays_for_a_side = 100;

/// Rooms along x, y and z that make about this many walls.
struct block_size {
  int walls, x, y, z;
};
constexpr block_size sizes[] = {{100, 4, 3, 2}, {1000, 10, 10, 3}, {10000, 20, 30, 5}};

/// A block of rooms under a root, each wall one face between two rooms or a room and the outside.
class block_model {
 public:
  explicit block_model(std::int64_t walls) {
    scene_.reset(new qv_scene);
    scene_->add_child(root_ = new qvi_bim_root, -1);
    for (const block_size& size : sizes)
      if (size.walls == walls)
        block_ = qv_test::add_block(*root_, {0, 0, 0}, size.x, size.y, size.z, {4, 5, 2.5f}, 0);
    root_->check_orientation();
    for (const qvi_wall* wall : block_.walls) side_count_ += wall->get_space_1() == nullptr ? 1 : 2;
  }

  qvi_bim_root& get_root() { return *root_; }
  const std::vector<qvi_wall*>& get_walls() const { return block_.walls; }

  void report(benchmark::State& state, std::int64_t rays) const {
    if (rays > 0) state.SetItemsProcessed(state.iterations() * rays);
    const auto count = static_cast<double>(block_.walls.size());
    state.counters["walls"] = count;
    state.counters["time_per_wall"] = benchmark::Counter(
        count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  }
  /// Rays of a check that finds every wall right.
  std::int64_t get_ray_count() const { return std::int64_t{rays_for_a_side} * side_count_; }

 private:
  struct destroyer {
    void operator()(qv_item* item) const { qv_item::destroy(item); }
  };
  std::unique_ptr<qv_scene, destroyer> scene_;
  qvi_bim_root* root_ = nullptr;
  qv_test::block block_;
  int side_count_ = 0;
};

/// The check of a model that is right, ray-tracing structure included.
void check_qv(benchmark::State& state) {
  block_model model(state.range(0));
  for (auto _ : state) model.get_root().check_orientation();
  model.report(state, model.get_ray_count());
}

/// As many rays into the rooms in the bare kernel, whose structure stands.
void check_kernel(benchmark::State& state) {
  block_model model(state.range(0));
  qv_list<qvi_mesh*> faces;
  for (const qvi_wall* wall : model.get_walls()) faces.append(wall->get_face_0());
  const qv_bench::bare_kernel kernel(faces);
  struct half_line {
    qv_3dvector origin, direction;
  };
  std::vector<half_line> rays;
  qv_random random(1);
  for (const qvi_wall* wall : model.get_walls()) {
    qv_polygon region;
    wall->get_face_0()->fill_polygon(&region);
    for (const float side : {-1.0f, 1.0f}) {
      if (side > 0 && wall->get_space_1() == nullptr) continue;
      const qv_3dvector inwards = wall->get_normal() * side;
      for (const qv_3dvector& point : region.random_distribution(rays_for_a_side, 2)) {
        const qv_3dvector spread = random.dice_vector();
        rays.push_back(
            {point, ((spread.dot(inwards) < 0 ? -spread : spread) + inwards * 0.1f).normalized()});
      }
    }
  }
  for (auto _ : state)
    for (const half_line& ray : rays)
      benchmark::DoNotOptimize(kernel.find_nearest(ray.origin, ray.direction, 0.01f));
  model.report(state, static_cast<std::int64_t>(rays.size()));
}

/// The check of a model whose walls were turned at random; turning them is not measured.
void repair_qv(benchmark::State& state) {
  block_model model(state.range(0));
  const qv_log_handler previous = qv_set_log_handler([](const std::string&) {});
  unsigned int seed = 0;
  for (auto _ : state) {
    state.PauseTiming();
    qv_test::turn_walls(model.get_root(), ++seed);
    state.ResumeTiming();
    model.get_root().check_orientation();
  }
  qv_set_log_handler(previous);
  model.report(state, 0);
}

BENCHMARK(check_qv)
    ->Name("orientation/check/qv")
    ->Unit(benchmark::kMillisecond)
    ->RangeMultiplier(10)
    ->Range(100, 10000);
BENCHMARK(check_kernel)
    ->Name("orientation/check/kernel")
    ->Unit(benchmark::kMillisecond)
    ->RangeMultiplier(10)
    ->Range(100, 10000);
BENCHMARK(repair_qv)
    ->Name("orientation/repair/qv")
    ->Unit(benchmark::kMillisecond)
    ->RangeMultiplier(10)
    ->Range(100, 10000);

}  // namespace
