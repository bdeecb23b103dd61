#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "bim/envelope/qvi_opening_composition.h"
#include "bim/materials/qvi_glazing.h"
#include "core/items/qv_scene.h"
#include "tests/support/qv_glazing_stacks.h"
#include "tests/support/qv_shapes.h"
#include "tests/support/qv_test_buildings.h"
#include "tests/support/qv_test_openings.h"

using namespace qv;

namespace {

// --- glazings ---

/// A glazing computes at each call; one of the known stacks.
void precompute_glazing(benchmark::State& state, const qv_test::known_stack& stack) {
  const qv_test::owned_item<qvi_glazing> glazing(qv_test::make_glazing(stack.layers));
  for (auto _ : state) glazing->precompute();
  state.counters["U"] = glazing->get_U(90);
}

const bool glazings_registered = [] {
  for (const qv_test::known_stack& stack : qv_test::get_known_stacks())
    benchmark::RegisterBenchmark(
        ("glazing/precompute/" + stack.name).c_str(),
        [&stack](benchmark::State& state) { precompute_glazing(state, stack); });
  return true;
}();

// --- openings ---

/// A window of `columns` × `rows` panes under mullions and transoms that overlap them; the first
/// pane's corner at (x, y, z), facing −y.
void add_window_pieces(qvi_opening& opening, int columns, int rows, qvi_glazing* glazing,
                       qvi_opening_shader* frame, float x = 0, float y = 0, float z = 0) {
  constexpr float width = 1.2f, height = 1.0f, bar = 0.06f, overlap = 0.015f;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      const float x0 = x + static_cast<float>(column) * width;
      const float z0 = z + static_cast<float>(row) * height;
      constexpr float inset = bar / 2 - overlap;
      qv_test::add_piece(opening,
                         qv_test::facade_rectangle(x0 + inset, z0 + inset, x0 + width - inset,
                                                   z0 + height - inset, y),
                         glazing);
    }
  }
  const float right = x + static_cast<float>(columns) * width;
  const float top = z + static_cast<float>(rows) * height;
  for (int i = 0; i <= columns; ++i) {
    const float at = x + static_cast<float>(i) * width;
    qv_test::add_piece(opening, qv_test::facade_rectangle(at - bar / 2, z, at + bar / 2, top, y),
                       frame);
  }
  for (int i = 0; i <= rows; ++i) {
    const float at = z + static_cast<float>(i) * height;
    qv_test::add_piece(opening, qv_test::facade_rectangle(x, at - bar / 2, right, at + bar / 2, y),
                       frame);
  }
}

/// Splitting an opening of 1, 10 or 100 panes into glazing and frame.
void opening_geometry(benchmark::State& state) {
  qv_scene scene;
  qvi_opening* const opening = qv_test::add_opening(scene);
  const int panes = static_cast<int>(state.range(0));
  const int rows = panes == 100 ? 10 : 1;
  add_window_pieces(*opening, panes / rows, rows, qv_test::add_new<qvi_glazing>(scene),
                    qv_test::add_new<qvi_opening_shader>(scene));
  bool turned = false;
  for (auto _ : state) {
    // Another normal makes the geometry stale; the work is the same.
    turned = !turned;
    opening->set_normal({0, turned ? -0.999999f : -1.0f, 0});
    opening->compute_geometry();
  }
  state.counters["glazing_area"] = opening->get_glazing_area();
  state.counters["time_per_pane"] = benchmark::Counter(
      panes, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(opening_geometry)
    ->Name("opening/geometry")
    ->Unit(benchmark::kMicrosecond)
    ->Arg(1)
    ->Arg(10)
    ->Arg(100);

/// Walls in a row, each with a window of two panes, and three glazings in three compositions.
class windows_model {
 public:
  explicit windows_model(int count) {
    qvi_opening_composition* compositions[3];
    for (qvi_opening_composition*& composition : compositions) {
      composition = qv_test::add_new<qvi_opening_composition>(*scene_);
      composition->set_glazing(qv_test::add_double_glazing(*scene_));
    }
    auto* const frame = qv_test::add_new<qvi_opening_shader>(*scene_);
    for (int i = 0; i < count; ++i) {
      const int column = i % 200, row = i / 200;
      const float x = static_cast<float>(column) * 5, y = static_cast<float>(row) * 10;
      qvi_wall* const wall =
          qv_test::add_wall(*scene_, qvi_wall::wall_type::wall, nullptr, nullptr,
                            qv_test::rectangle({x, y, 0}, {x + 4, y, 0}, {x, y, 2.5f}));
      qvi_opening* const opening = qv_test::add_opening(*scene_);
      opening->set_wall(wall);
      opening->set_composition(compositions[i % 3]);
      add_window_pieces(*opening, 2, 1, nullptr, frame, x + 0.5f, y, 1);
      some_opening_ = opening;
    }
  }
  windows_model(const windows_model&) = delete;
  windows_model& operator=(const windows_model&) = delete;
  ~windows_model() { qv_item::destroy(scene_); }

  qv_scene& get_scene() { return *scene_; }
  const qvi_opening& get_opening() const { return *some_opening_; }

 private:
  qv_scene* scene_ = new qv_scene;
  qvi_opening* some_opening_ = nullptr;
};

/// The first pass over a model of openings, their walls included; building it is not measured.
void precompute_openings(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  std::unique_ptr<windows_model> model;
  for (auto _ : state) {
    state.PauseTiming();
    model.reset();
    model = std::make_unique<windows_model>(count);
    state.ResumeTiming();
    model->get_scene().precompute();
  }
  state.counters["U"] = model->get_opening().get_U();
  state.counters["glazing_area"] = model->get_opening().get_glazing_area();
  state.counters["time_per_opening"] = benchmark::Counter(
      count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(precompute_openings)
    ->Name("opening/precompute")
    ->Unit(benchmark::kMillisecond)
    ->Arg(2000)
    ->Arg(20000);

// --- generated windows ---

/// Replacing the generated window of a wall among so many others, walls of one face or two.
void create_opening(benchmark::State& state, float thickness) {
  windows_model model(static_cast<int>(state.range(0)));
  qvi_wall* const wall =
      qv_test::add_wall(model.get_scene(), qvi_wall::wall_type::wall, nullptr, nullptr,
                        qv_test::rectangle({0, -10, 0}, {4, -10, 0}, {0, -10, 2.5f}), thickness);
  model.get_scene().precompute();
  bool large = false;
  for (auto _ : state) {
    large = !large;
    wall->create_opening(large ? 0.4f : 0.3f, true);
  }
  state.counters["pierced_area"] = wall->get_pierced_face_0()->get_area();
}
BENCHMARK_CAPTURE(create_opening, thin, 0.0f)
    ->Name("create_opening/thin")
    ->Unit(benchmark::kMicrosecond)
    ->Arg(1)
    ->Arg(2000);
BENCHMARK_CAPTURE(create_opening, thick, 0.2f)
    ->Name("create_opening/thick")
    ->Unit(benchmark::kMicrosecond)
    ->Arg(1)
    ->Arg(2000);

}  // namespace
