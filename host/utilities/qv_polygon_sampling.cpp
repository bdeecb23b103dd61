#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "utilities/qv_plane_projection.h"
#include "utilities/qv_polygon.h"
#include "utilities/qv_random.h"
#include "utilities/qv_triangulation.h"

namespace qv {

namespace {

// More points than this are a mistake of the caller.
constexpr int most_points = 10'000'000;

struct edge {
  plane::point low;
  plane::point high;
};

// All edges that are not along the rows, by their lower ends.
std::vector<edge> get_edges(const plane::region& pieces) {
  std::vector<edge> edges;
  const auto add_contour = [&](const plane::ring& contour) {
    for (std::size_t i = 0, j = contour.size() - 1; i < contour.size(); j = i++) {
      if (contour[i].b < contour[j].b) edges.push_back({contour[i], contour[j]});
      if (contour[j].b < contour[i].b) edges.push_back({contour[j], contour[i]});
    }
  };
  for (const plane::part& piece : pieces) {
    add_contour(piece.outer);
    for (const plane::ring& hole : piece.holes) add_contour(hole);
  }
  std::sort(edges.begin(), edges.end(),
            [](const edge& e, const edge& f) { return e.low.b < f.low.b; });
  return edges;
}

double get_crossing(const edge& e, double b) {
  return e.low.a + (e.high.a - e.low.a) * ((b - e.low.b) / (e.high.b - e.low.b));
}

double get_triangle_area(const qv_3dvector& p, const qv_3dvector& q, const qv_3dvector& r) {
  const double ux = static_cast<double>(q.x) - p.x, vx = static_cast<double>(r.x) - p.x;
  const double uy = static_cast<double>(q.y) - p.y, vy = static_cast<double>(r.y) - p.y;
  const double uz = static_cast<double>(q.z) - p.z, vz = static_cast<double>(r.z) - p.z;
  const double x = uy * vz - uz * vy, y = uz * vx - ux * vz, z = ux * vy - uy * vx;
  return std::sqrt(x * x + y * y + z * z) / 2;
}

// p + s (q − p) + t (r − p), rounded once.
qv_3dvector get_mix(const qv_3dvector& p, const qv_3dvector& q, const qv_3dvector& r, double s,
                    double t) {
  const auto mix = [s, t](double from, double first, double second) {
    return static_cast<float>(from + s * (first - from) + t * (second - from));
  };
  return {mix(p.x, q.x, r.x), mix(p.y, q.y, r.y), mix(p.z, q.z, r.z)};
}

}  // namespace

qv_list<qv_3dvector> qv_polygon::regular_distribution(float spacing) const {
  qv_list<qv_3dvector> points;
  if (!(spacing > 0) || !std::isfinite(spacing)) return points;
  plane::projection projection(*this);
  const plane::region pieces = projection.get_region(*this);
  if (pieces.empty()) return points;
  const plane::bounds box = plane::get_bounds(pieces);
  const double step = spacing;
  const double rows = std::ceil((box.max_b - box.min_b) / step);
  const double expected = plane::area(pieces) / (step * step);
  if (!(rows <= most_points) || !(expected <= most_points)) return points;
  points.reserve(static_cast<int>(expected) + 1);

  const std::vector<edge> edges = get_edges(pieces);
  auto next = edges.begin();
  std::vector<edge> active;
  std::vector<double> crossings;
  for (int row = 0; row < static_cast<int>(rows); ++row) {
    const double b = box.min_b + (row + 0.5) * step;
    while (next != edges.end() && next->low.b <= b) active.push_back(*next++);
    std::erase_if(active, [b](const edge& e) { return e.high.b <= b; });
    crossings.clear();
    for (const edge& e : active) crossings.push_back(get_crossing(e, b));
    std::sort(crossings.begin(), crossings.end());
    for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
      double column = std::ceil((crossings[i] - box.min_a) / step - 0.5);
      for (; box.min_a + (column + 0.5) * step < crossings[i + 1]; ++column)
        points.append(projection.to_space({box.min_a + (column + 0.5) * step, b}));
    }
  }
  return points;
}

qv_list<qv_3dvector> qv_polygon::random_distribution(int count, int seed) const {
  qv_list<qv_3dvector> points;
  if (count <= 0 || count > most_points) return points;
  const qv_triangulation surface = qv_triangulate(*this);
  const auto corner = [&surface](std::size_t triangle, int index) -> const qv_3dvector& {
    return surface.vertices[surface.triangles[static_cast<int>(triangle) * 3 + index]];
  };
  std::vector<double> areas_up_to;
  double total = 0;
  for (int i = 0; i < surface.triangles.get_count() / 3; ++i) {
    const auto triangle = static_cast<std::size_t>(i);
    total += get_triangle_area(corner(triangle, 0), corner(triangle, 1), corner(triangle, 2));
    areas_up_to.push_back(total);
  }
  if (!(total > 0)) return points;

  points.reserve(count);
  qv_random random(seed);
  for (int i = 0; i < count; ++i) {
    const auto chosen =
        std::upper_bound(areas_up_to.begin(), areas_up_to.end() - 1, random.dice_double() * total);
    const auto triangle = static_cast<std::size_t>(chosen - areas_up_to.begin());
    double s = random.dice_double();
    double t = random.dice_double();
    // The half of the parallelogram beyond the triangle is turned back onto it.
    if (s + t > 1) {
      s = 1 - s;
      t = 1 - t;
    }
    points.append(get_mix(corner(triangle, 0), corner(triangle, 1), corner(triangle, 2), s, t));
  }
  return points;
}

}  // namespace qv
