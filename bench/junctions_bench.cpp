#include <benchmark/benchmark.h>

#include <memory>

#include "app/junctions/qv_connexions.h"
#include "bim/envelope/qvi_connexion.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/materials/qvi_composition.h"
#include "bim/project/qvi_bim_configuration.h"
#include "core/items/qv_scene.h"
#include "tests/support/qv_test_buildings.h"

// Blocks of rooms whose walls meet edge to edge.

using namespace qv;

namespace {

struct block_size {
  int walls, x, y, z;
};
constexpr block_size sizes[] = {{1000, 10, 10, 3}, {10000, 20, 30, 5}, {100000, 60, 103, 5}};

class block_model {
 public:
  explicit block_model(std::int64_t walls) : scene_(new qv_scene) {
    campus_ = new qvi_campus;
    for (const block_size& size : sizes) {
      if (size.walls != walls) continue;
      const qv_test::block block =
          qv_test::add_block(*campus_, {0, 0, 0}, size.x, size.y, size.z, {4, 5, 2.5f}, 0);
      walls_ = block.walls;
    }
    scene_->add_child(campus_, -1);
  }
  block_model(const block_model&) = delete;
  block_model& operator=(const block_model&) = delete;
  ~block_model() { qv_item::destroy(scene_); }

  qv_scene& get_scene() { return *scene_; }
  qvi_campus& get_campus() { return *campus_; }
  const std::vector<qvi_wall*>& get_walls() const { return walls_; }

  void report(benchmark::State& state) const {
    state.counters["walls"] = static_cast<double>(walls_.size());
    state.counters["time_per_wall"] = benchmark::Counter(
        static_cast<double>(walls_.size()),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  }

 private:
  qv_scene* scene_;
  qvi_campus* campus_;
  std::vector<qvi_wall*> walls_;
};

/// Finding the segments, on values.
void find_junctions(benchmark::State& state) {
  block_model model(state.range(0));
  std::vector<qv_wall_outline> outlines;
  for (const qvi_wall* wall : model.get_walls()) outlines.push_back(qv_outline_of(*wall));
  std::size_t count = 0;
  for (auto _ : state) count = qv_find_junctions(outlines).size();
  state.counters["junctions"] = static_cast<double>(count);
  model.report(state);
}

/// Finding them and making the connexions; building the model is not measured.
void add_connexions(benchmark::State& state) {
  std::unique_ptr<block_model> model;
  for (auto _ : state) {
    state.PauseTiming();
    model = std::make_unique<block_model>(state.range(0));
    state.ResumeTiming();
    qv_add_connexions(model->get_scene());
  }
  model->report(state);
}

/// Measuring and typing every connexion after a change of its ends.
void precompute_connexions(benchmark::State& state) {
  block_model model(state.range(0));
  qv_add_connexions(model.get_scene());
  model.get_scene().precompute();
  const qv_list<qv_item*> connexions = model.get_scene().get_items("connexion");
  float lift = 0;
  for (auto _ : state) {
    state.PauseTiming();
    lift = lift == 0 ? 1e-3f : 0;
    for (qv_item* item : connexions) {
      auto* connexion = static_cast<qvi_connexion*>(item);
      qv_3dvector end = connexion->get_point_1();
      connexion->set_point_1(end + qv_3dvector(0, 0, lift == 0 ? -1e-3f : 1e-3f));
    }
    state.ResumeTiming();
    for (qv_item* item : connexions) item->precompute();
  }
  state.counters["connexions"] = connexions.get_count();
  model.report(state);
}

/// Turning the site, with its walls and thermal bridges.
void transform_campus(benchmark::State& state) {
  block_model model(state.range(0));
  qv_add_connexions(model.get_scene());
  float angle = 0;
  for (auto _ : state) model.get_campus().transform({0, 0, 0}, angle += 10);
  model.report(state);
}

/// Giving every wall the composition of its contact type, another one each time.
void apply_configuration(benchmark::State& state) {
  block_model model(state.range(0));
  qv_scene& scene = model.get_scene();
  scene.precompute();
  qvi_composition* compositions[2];
  for (qvi_composition*& composition : compositions) {
    composition = new qvi_composition;
    composition->set_name(&composition == compositions ? "a" : "b");
    scene.add_child(composition, -1);
  }
  auto* configuration = new qvi_bim_configuration;
  scene.add_child(configuration, -1);
  qv_list<qvi_wall::contact_type> types;
  for (int type = 0; type < qvi_wall::get_contact_type_list().get_count(); ++type)
    types.append(static_cast<qvi_wall::contact_type>(type));
  configuration->set_contact_types(types);
  qv_list<qvi_wall*> walls;
  for (qvi_wall* wall : model.get_walls()) walls.append(wall);
  int round = 0;
  for (auto _ : state) {
    state.PauseTiming();
    qv_list<qvi_composition*> choices;
    ++round;
    for (int type = 0; type < types.get_count(); ++type) choices.append(compositions[round % 2]);
    configuration->set_wall_compositions(choices);
    state.ResumeTiming();
    configuration->apply_walls_to_scene(&scene, walls, true);
  }
  model.report(state);
}

void all_sizes(benchmark::internal::Benchmark* bench) {
  bench->Unit(benchmark::kMillisecond)->Arg(1000)->Arg(10000)->Arg(100000);
}

BENCHMARK(find_junctions)->Name("junctions/find")->Apply(all_sizes);
BENCHMARK(add_connexions)->Name("junctions/add")->Apply(all_sizes);
BENCHMARK(precompute_connexions)->Name("connexion/precompute")->Apply(all_sizes);
BENCHMARK(transform_campus)->Name("campus/transform")->Apply(all_sizes);
BENCHMARK(apply_configuration)->Name("configuration/apply")->Apply(all_sizes);

}  // namespace
