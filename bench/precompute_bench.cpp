#include <benchmark/benchmark.h>
#include <malloc.h>

#include <memory>
#include <string>

#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_material.h"
#include "bim/qv_load_bim_items.h"
#include "core/items/qv_scene.h"
#include "tests/support/qv_test_buildings.h"

using namespace qv;

namespace {

/// Rooms along x, y and z that make about this many walls.
struct block_size {
  int walls, x, y, z;
};
constexpr block_size sizes[] = {{1000, 10, 10, 3}, {10000, 20, 30, 5}, {100000, 60, 103, 5}};

const block_size& size_of(int walls) {
  for (const block_size& size : sizes)
    if (size.walls == walls) return size;
  return sizes[0];
}

double bytes_in_use() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

qvi_composition* add_composition(qv_scene& scene, const char* name, float conductivity,
                                 float thickness) {
  auto* material = new qvi_material;
  material->set_conductivity(conductivity);
  scene.add_child(material, -1);
  auto* composition = new qvi_composition;
  composition->set_name(name);
  composition->set_layers({material});
  composition->set_layer_thicknesses({thickness});
  scene.add_child(composition, -1);
  return composition;
}

/// A block of rooms with one composition for its outer walls and one for its inner ones.
class block_model {
 public:
  explicit block_model(int walls) : bytes_before_(bytes_in_use()) {
    scene_ = new qv_scene;
    qvi_composition* outer = add_composition(*scene_, "outer", 0.04f, 0.2f);
    qvi_composition* inner = add_composition(*scene_, "inner", 1.2f, 0.15f);
    const block_size& size = size_of(walls);
    const qv_test::block block = qv_test::add_block(*scene_, {0, 0, 0}, size.x, size.y, size.z);
    for (qvi_wall* wall : block.walls)
      wall->set_composition(wall->get_space_1() == nullptr ? outer : inner);
    wall_count_ = static_cast<int>(block.walls.size());
    space_count_ = static_cast<int>(block.spaces.size());
    some_wall_ = block.walls[block.walls.size() / 2];
    some_space_ = block.at(size.x / 2, size.y / 2, 0);
  }
  block_model(const block_model&) = delete;
  block_model& operator=(const block_model&) = delete;
  ~block_model() { qv_item::destroy(scene_); }

  qv_scene& get_scene() { return *scene_; }
  qvi_wall* get_wall() { return some_wall_; }
  int get_wall_count() const { return wall_count_; }

  void report(benchmark::State& state) const {
    state.counters["walls"] = wall_count_;
    state.counters["spaces"] = space_count_;
    state.counters["bytes_per_wall"] = (bytes_in_use() - bytes_before_) / wall_count_;
    state.counters["area_of_a_room"] = some_space_->get_area();
    state.counters["time_per_wall"] = benchmark::Counter(
        static_cast<double>(wall_count_),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  }

 private:
  double bytes_before_;
  qv_scene* scene_;
  int wall_count_ = 0;
  int space_count_ = 0;
  qvi_wall* some_wall_ = nullptr;
  qvi_space* some_space_ = nullptr;
};

/// The first pass over a model; building the model is not measured.
void precompute_full(benchmark::State& state) {
  std::unique_ptr<block_model> model;
  for (auto _ : state) {
    state.PauseTiming();
    model.reset();
    model = std::make_unique<block_model>(static_cast<int>(state.range(0)));
    state.ResumeTiming();
    model->get_scene().precompute();
  }
  model->report(state);
}

/// The pass over a model in which nothing changed since.
void precompute_unchanged(benchmark::State& state) {
  block_model model(static_cast<int>(state.range(0)));
  model.get_scene().precompute();
  for (auto _ : state) model.get_scene().precompute();
  model.report(state);
}

/// The pass after a change that no result depends on: the name of one wall.
void precompute_renamed(benchmark::State& state) {
  block_model model(static_cast<int>(state.range(0)));
  model.get_scene().precompute();
  int round = 0;
  for (auto _ : state) {
    model.get_wall()->set_name(std::to_string(++round));
    model.get_scene().precompute();
  }
  model.report(state);
}

/// The pass after one wall changed its composition.
void precompute_one_wall_changed(benchmark::State& state) {
  block_model model(static_cast<int>(state.range(0)));
  model.get_scene().precompute();
  qvi_composition* const composition = model.get_wall()->get_composition();
  for (auto _ : state) {
    model.get_wall()->set_composition(model.get_wall()->get_composition() == nullptr ? composition
                                                                                     : nullptr);
    model.get_scene().precompute();
  }
  model.report(state);
}

BENCHMARK(precompute_full)
    ->Name("precompute/full")
    ->Unit(benchmark::kMillisecond)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000);
BENCHMARK(precompute_unchanged)->Name("precompute/unchanged")->Arg(100000);
BENCHMARK(precompute_renamed)
    ->Name("precompute/renamed")
    ->Unit(benchmark::kMillisecond)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000);
BENCHMARK(precompute_one_wall_changed)
    ->Name("precompute/one_wall_changed")
    ->Unit(benchmark::kMillisecond)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000);

}  // namespace
