#include <benchmark/benchmark.h>

#include <vector>

#include "bim/imported/qvi_bim_object.h"
#include "core/shapes/qvi_solid.h"
#include "tests/support/qv_shapes.h"

using namespace qv;

namespace {

// An upright prism over a rectangle of the façade, `depth` metres deep.
void add_prism(qv_item& parent, float x, float z, float width, float height, float depth) {
  qv_solid prism;
  prism.extrusion(qv_test::make_rectangle(x, z, x + width, z + height), {0, 0, depth});
  auto* solid = new qvi_solid;
  solid->load_from_solid(&prism);
  solid->matrix_transform(qv_matrix::rotation(0, 90), true);
  parent.add_child(solid, -1);
}

void report(benchmark::State& state, int footprints) {
  state.counters["footprints"] = footprints;
  state.counters["time_per_mesh"] = benchmark::Counter(
      static_cast<double>(state.range(0)),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// Plain walls of 4 × 2.5 × 0.3 m, each an object of its own.
void footprint_walls(benchmark::State& state) {
  int footprints = 0;
  for (auto _ : state) {
    state.PauseTiming();
    {
      std::vector<qv_test::owned_item<qvi_bim_object>> walls;
      for (int i = 0; i < state.range(0); ++i) {
        walls.push_back(qv_test::make_item<qvi_bim_object>());
        add_prism(*walls.back(), 5 * static_cast<float>(i % 100), 0, 4, 2.5f, 0.3f);
      }
      state.ResumeTiming();
      footprints = 0;
      for (const auto& wall : walls) footprints += wall->get_footprints().get_count();
      state.PauseTiming();
    }
    state.ResumeTiming();
  }
  report(state, footprints);
}

/// One curtain wall: panes of 1 × 1 m between flat mullions, in rows of twenty.
void footprint_curtain_wall(benchmark::State& state) {
  int footprints = 0;
  for (auto _ : state) {
    state.PauseTiming();
    {
      auto wall = qv_test::make_item<qvi_bim_object>();
      for (int i = 0; i < state.range(0); i += 2) {
        const int column = i / 2 % 20, row = i / 40;
        const auto x = static_cast<float>(column), z = static_cast<float>(row);
        add_prism(*wall, x + 0.05f, z, 0.95f, 1, 0.02f);
        add_prism(*wall, x, z, 0.05f, 1, 0.15f);
      }
      state.ResumeTiming();
      footprints = wall->get_footprints().get_count();
      state.PauseTiming();
    }
    state.ResumeTiming();
  }
  report(state, footprints);
}

BENCHMARK(footprint_walls)
    ->Name("footprint/walls")
    ->Unit(benchmark::kMillisecond)
    ->RangeMultiplier(10)
    ->Range(10, 1000);
BENCHMARK(footprint_curtain_wall)
    ->Name("footprint/curtain_wall")
    ->Unit(benchmark::kMillisecond)
    ->RangeMultiplier(10)
    ->Range(10, 1000);

}  // namespace
