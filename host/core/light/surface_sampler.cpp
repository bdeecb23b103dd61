#include "core/light/surface_sampler.h"

#include <algorithm>
#include <cmath>

#include "utilities/qv_polygon.h"
#include "utilities/qv_triangulation.h"

namespace qv::light {

namespace {

/// Halving a triangle more often leaves nothing that single precision tells apart.
constexpr int most_halvings = 40;

struct triangle {
  qv_3dvector apex, from, to;
  double area;
};

/// The triangle with its longest side opposite the apex.
triangle make_triangle(const qv_3dvector& a, const qv_3dvector& b, const qv_3dvector& c) {
  const float bc = (c - b).length(), ca = (a - c).length(), ab = (b - a).length();
  const double ux = double(b.x) - a.x, uy = double(b.y) - a.y, uz = double(b.z) - a.z;
  const double vx = double(c.x) - a.x, vy = double(c.y) - a.y, vz = double(c.z) - a.z;
  const double x = uy * vz - uz * vy, y = uz * vx - ux * vz, z = ux * vy - uy * vx;
  const double area = std::sqrt(x * x + y * y + z * z) / 2;
  if (bc >= ca && bc >= ab) return {a, b, c, area};
  if (ca >= ab) return {b, c, a, area};
  return {c, a, b, area};
}

}  // namespace

surface_sampler::surface_sampler(const qv_polygon& polygon, const qv_3dvector& lift) {
  const qv_triangulation surface = qv_triangulate(polygon);
  std::vector<triangle> triangles;
  const auto corner = [&](int index) { return surface.vertices[surface.triangles[index]] + lift; };
  for (int i = 0; i + 2 < surface.triangles.get_count(); i += 3) {
    const triangle t = make_triangle(corner(i), corner(i + 1), corner(i + 2));
    if (!(t.area > 0) || !std::isfinite(t.area)) continue;
    triangles.push_back(t);
    area_ += t.area;
  }
  double begin = 0;
  for (const triangle& t : triangles) {
    const double share = t.area / area_;
    pieces_.push_back({t.apex, t.from, t.to, begin, share,
                       std::max(0, static_cast<int>(std::floor(-std::log2(share))))});
    begin += share;
  }
}

qv_3dvector surface_sampler::get_lowest(const qv_3dvector& direction) const {
  qv_3dvector lowest = pieces_.front().apex;
  for (const piece& p : pieces_)
    for (const qv_3dvector* corner : {&p.apex, &p.from, &p.to})
      if (corner->dot(direction) < lowest.dot(direction)) lowest = *corner;
  return lowest;
}

qv_3dvector surface_sampler::get_point(double position, float across, int fineness) const {
  const auto after = std::upper_bound(pieces_.begin() + 1, pieces_.end(), position,
                                      [](double value, const piece& p) { return value < p.begin; });
  const piece& p = *(after - 1);
  double rest = std::clamp((position - p.begin) / p.share, 0.0, 1.0);
  qv_3dvector apex = p.apex, from = p.from, to = p.to;
  const int halvings = std::min(fineness + 1 - p.coarseness, most_halvings);
  for (int i = 0; i < halvings; ++i) {
    const qv_3dvector middle = (from + to) * 0.5f;
    rest *= 2;
    if (rest < 1) {
      to = apex;
    } else {
      from = apex;
      rest -= 1;
    }
    apex = middle;
  }
  // The half of the parallelogram beyond the triangle is turned back onto it.
  auto along = static_cast<float>(rest);
  if (along + across > 1) {
    along = 1 - along;
    across = 1 - across;
  }
  return apex + (from - apex) * along + (to - apex) * across;
}

}  // namespace qv::light
