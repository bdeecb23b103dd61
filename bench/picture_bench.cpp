#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>

#include "app/pictures/qv_canvas.h"
#include "app/pictures/qv_picture.h"
#include "bim/qv_load_bim_items.h"
#include "tests/support/qv_test_buildings.h"

using namespace qv;

namespace {

/// A computed block of rooms; it stays for the cases of its size, since computing it takes long.
qv_scene& block_of(int walls) {
  struct model {
    int walls = 0;
    qv_scene* scene = nullptr;
  };
  static model kept;
  if (kept.walls == walls) return *kept.scene;
  qv_load_bim_items();
  if (kept.scene != nullptr) qv_item::destroy(kept.scene);
  kept = {walls, new qv_scene};
  // Rooms side by side make some three walls each.
  const int floors = walls >= 10000 ? 5 : 3;
  int side = 1;
  while (3 * side * side * floors < walls) ++side;
  qv_test::add_block(*kept.scene, {0, 0, 0}, side, side, floors);
  kept.scene->precompute();
  return *kept.scene;
}

void report(benchmark::State& state, qv_scene& scene, const qv_picture& picture) {
  state.counters["walls"] = scene.get_items("wall").get_count();
  const auto drawn = std::count_if(picture.pixels.rows.begin(), picture.pixels.rows.end(),
                                   [](std::uint32_t pixel) { return pixel != 0xffffff; });
  state.counters["pixels_drawn"] = static_cast<double>(drawn);
}

/// The whole of a picture, 1280 × 800 with its key, from the scene to pixels; the drawing context
/// is there already.
void picture_frame(benchmark::State& state) {
  qv_picture_subject subject;
  subject.scene = &block_of(static_cast<int>(state.range(0)));
  qv_picture_maker maker;
  qv_picture picture;
  for (auto _ : state) picture = maker.draw(subject, {}, "block");
  report(state, *subject.scene, picture);
}

/// The same with a new context each time, and written as PNG.
void picture_first(benchmark::State& state) {
  qv_picture_subject subject;
  subject.scene = &block_of(static_cast<int>(state.range(0)));
  qv_picture picture;
  for (auto _ : state) {
    qv_picture_maker maker;
    picture = maker.draw(subject, {}, "block");
    benchmark::DoNotOptimize(qv_encode_png(picture.pixels));
  }
  report(state, *subject.scene, picture);
}

void all_sizes(benchmark::internal::Benchmark* bench) {
  for (const int walls : {1000, 10000, 100000}) bench->Arg(walls);
  bench->MeasureProcessCPUTime()->UseRealTime()->Unit(benchmark::kMillisecond);
}

}  // namespace

BENCHMARK(picture_frame)->Name("picture/frame")->Apply(all_sizes);
BENCHMARK(picture_first)->Name("picture/first")->Apply(all_sizes);
