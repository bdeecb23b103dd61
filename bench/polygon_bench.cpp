#include <benchmark/benchmark.h>
#include <geos_c.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "utilities/qv_polygon.h"
#include "utilities/qv_random.h"

using namespace qv;

namespace {

constexpr int pair_count = 64;

using ring = std::vector<std::pair<double, double>>;

/// A star of `count` corners about (x, y), with radii between 2 and 5 m.
ring star(qv_random& random, int count, double x, double y) {
  ring made;
  for (int i = 0; i < count; ++i) {
    const double turn = 2 * std::numbers::pi * i / count;
    const double radius = 2 + 3 * random.dice_double();
    made.emplace_back(x + radius * std::cos(turn), y + radius * std::sin(turn));
  }
  return made;
}

ring rectangle(qv_random& random, double x, double y) {
  const double a = 1 + 3 * random.dice_double(), b = 1 + 3 * random.dice_double();
  return {{x - a, y - b}, {x + a, y - b}, {x + a, y + b}, {x - a, y + b}};
}

/// Overlapping pairs, the same for both sides: stars of 20 corners, or rectangles as walls and
/// windows have them.
struct pairs {
  explicit pairs(bool rectangles) {
    qv_random random(1);
    for (int i = 0; i < pair_count; ++i) {
      const double x = 2 * random.dice_double(), y = 2 * random.dice_double();
      first.push_back(rectangles ? rectangle(random, 0, 0) : star(random, 20, 0, 0));
      second.push_back(rectangles ? rectangle(random, x, y) : star(random, 20, x, y));
    }
  }
  std::vector<ring> first, second;
};

const pairs& get_pairs(bool rectangles) {
  static const pairs stars(false), plain(true);
  return rectangles ? plain : stars;
}

/// Upright, as a façade stands.
qv_polygon to_polygon(const ring& r) {
  qv_polygon polygon({0, 0, 0}, {0, -1, 0});
  qv_list<qv_3dvector> contour;
  for (const auto& [x, y] : r) contour.append({static_cast<float>(x), 0, static_cast<float>(y)});
  polygon.add_contour(contour);
  return polygon;
}

GEOSGeometry* to_geos(GEOSContextHandle_t context, const ring& r) {
  GEOSCoordSequence* points =
      GEOSCoordSeq_create_r(context, static_cast<unsigned int>(r.size() + 1), 2);
  for (std::size_t i = 0; i <= r.size(); ++i) {
    const auto& [x, y] = r[i % r.size()];
    GEOSCoordSeq_setXY_r(context, points, static_cast<unsigned int>(i), x, y);
  }
  return GEOSGeom_createPolygon_r(context, GEOSGeom_createLinearRing_r(context, points), nullptr,
                                  0);
}

using operation = void (qv_polygon::*)(const qv_polygon&);
using bare_operation = GEOSGeometry* (*)(GEOSContextHandle_t, const GEOSGeometry*,
                                         const GEOSGeometry*);

void boolean_qv(benchmark::State& state, operation apply, bool rectangles) {
  std::vector<qv_polygon> first, second;
  for (const ring& r : get_pairs(rectangles).first) first.push_back(to_polygon(r));
  for (const ring& r : get_pairs(rectangles).second) second.push_back(to_polygon(r));
  for (auto _ : state) {
    for (std::size_t i = 0; i < pair_count; ++i) {
      qv_polygon result = first[i];
      (result.*apply)(second[i]);
      benchmark::DoNotOptimize(result.get_contour_sizes().get_count());
    }
  }
  state.SetItemsProcessed(state.iterations() * pair_count);
}

void boolean_kernel(benchmark::State& state, bare_operation apply, bool rectangles) {
  GEOSContextHandle_t context = GEOS_init_r();
  std::vector<GEOSGeometry*> first, second;
  for (const ring& r : get_pairs(rectangles).first) first.push_back(to_geos(context, r));
  for (const ring& r : get_pairs(rectangles).second) second.push_back(to_geos(context, r));
  for (auto _ : state) {
    for (std::size_t i = 0; i < pair_count; ++i) {
      GEOSGeometry* result = apply(context, first[i], second[i]);
      benchmark::DoNotOptimize(result);
      GEOSGeom_destroy_r(context, result);
    }
  }
  for (GEOSGeometry* g : first) GEOSGeom_destroy_r(context, g);
  for (GEOSGeometry* g : second) GEOSGeom_destroy_r(context, g);
  GEOS_finish_r(context);
  state.SetItemsProcessed(state.iterations() * pair_count);
}

BENCHMARK_CAPTURE(boolean_qv, u, &qv_polygon::unites, false)->Name("polygon/union/qv");
BENCHMARK_CAPTURE(boolean_kernel, u, GEOSUnion_r, false)->Name("polygon/union/kernel");
BENCHMARK_CAPTURE(boolean_qv, d, &qv_polygon::substracts, false)->Name("polygon/difference/qv");
BENCHMARK_CAPTURE(boolean_kernel, d, GEOSDifference_r, false)->Name("polygon/difference/kernel");
BENCHMARK_CAPTURE(boolean_qv, i, &qv_polygon::intersects, false)->Name("polygon/intersection/qv");
BENCHMARK_CAPTURE(boolean_kernel, i, GEOSIntersection_r, false)
    ->Name("polygon/intersection/kernel");
BENCHMARK_CAPTURE(boolean_qv, r, &qv_polygon::substracts, true)
    ->Name("polygon/difference_rectangles/qv");
BENCHMARK_CAPTURE(boolean_kernel, r, GEOSDifference_r, true)
    ->Name("polygon/difference_rectangles/kernel");

}  // namespace
