#include "utilities/qv_ear_clipping.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace qv::plane {

namespace {

double cross(const point& p, const point& q, const point& r) {
  return (q.a - p.a) * (r.b - p.b) - (q.b - p.b) * (r.a - p.a);
}

bool is_at(const point& p, const point& q) {
  return p.a == q.a && p.b == q.b;
}

bool is_in_triangle(const point& p, const point& a, const point& b, const point& c) {
  return cross(a, b, p) >= 0 && cross(b, c, p) >= 0 && cross(c, a, p) >= 0;
}

std::size_t get_rightmost(const ring& contour) {
  const auto rightmost = std::max_element(contour.begin(), contour.end(),
                                          [](const point& p, const point& q) { return p.a < q.a; });
  return static_cast<std::size_t>(rightmost - contour.begin());
}

// Whether the contour's inner side at point i looks towards `p`; tells the copies of a point apart
// at which bridges begin.
bool looks_towards(const ring& contour, std::size_t i, const point& p) {
  const std::size_t n = contour.size();
  const point& before = contour[(i + n - 1) % n];
  const point& corner = contour[i];
  const point& after = contour[(i + 1) % n];
  const bool left_of_both = cross(before, corner, p) > 0 && cross(corner, after, p) > 0;
  const bool left_of_one = cross(before, corner, p) > 0 || cross(corner, after, p) > 0;
  return cross(before, corner, after) >= 0 ? left_of_both : left_of_one;
}

bool cross_each_other(const point& p, const point& q, const point& r, const point& s) {
  return cross(p, q, r) * cross(p, q, s) < 0 && cross(r, s, p) * cross(r, s, q) < 0;
}

// The point of `outer` that sees the hole's rightmost point: where a ray to the right first meets
// an edge, that edge's right end, or the point nearest in direction to the ray among those within
// the triangle that the three span (D. Eberly, Triangulation by Ear Clipping, 2002).
std::size_t get_bridge(const ring& outer, const point& from) {
  const std::size_t n = outer.size();
  double nearest = std::numeric_limits<double>::infinity();
  std::size_t bridge = n;
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t j = i + 1 == n ? 0 : i + 1;
    const point& p = outer[i];
    const point& q = outer[j];
    // Only upward edges have the inside on their left, where the ray comes from.
    if (p.b > from.b || q.b <= from.b) continue;
    const double a = p.a + (q.a - p.a) * (from.b - p.b) / (q.b - p.b);
    if (a < from.a || a >= nearest) continue;
    nearest = a;
    bridge = p.a > q.a ? i : j;
  }
  if (bridge == n) return get_rightmost(outer);

  const point hit{nearest, from.b};
  point corners[] = {from, hit, outer[bridge]};
  if (cross(corners[0], corners[1], corners[2]) < 0) std::swap(corners[1], corners[2]);
  double least_slope = std::numeric_limits<double>::infinity();
  const point end = outer[bridge];
  for (std::size_t i = 0; i < n; ++i) {
    const point& p = outer[i];
    if (is_at(p, end) || p.a <= from.a || !is_in_triangle(p, corners[0], corners[1], corners[2]) ||
        !looks_towards(outer, i, from))
      continue;
    const double slope = (p.b > from.b ? p.b - from.b : from.b - p.b) / (p.a - from.a);
    if (slope > least_slope || (slope == least_slope && p.a >= outer[bridge].a)) continue;
    least_slope = slope;
    bridge = i;
  }
  return bridge;
}

// One contour that runs along each hole and back over a bridge.
ring join_holes(const part& piece) {
  ring outer = piece.outer;
  std::vector<ring> holes = piece.holes;
  std::sort(holes.begin(), holes.end(), [](const ring& g, const ring& h) {
    return g[get_rightmost(g)].a > h[get_rightmost(h)].a;
  });
  for (ring& hole : holes) {
    std::rotate(hole.begin(), hole.begin() + static_cast<std::ptrdiff_t>(get_rightmost(hole)),
                hole.end());
    const auto bridge = static_cast<std::ptrdiff_t>(get_bridge(outer, hole.front()));
    ring detour(hole.begin(), hole.end());
    detour.push_back(hole.front());
    detour.push_back(outer[static_cast<std::size_t>(bridge)]);
    outer.insert(outer.begin() + bridge + 1, detour.begin(), detour.end());
  }
  return outer;
}

bool is_ear(const ring& contour, std::size_t i) {
  const std::size_t n = contour.size();
  const point& before = contour[(i + n - 1) % n];
  const point& corner = contour[i];
  const point& after = contour[(i + 1) % n];
  if (cross(before, corner, after) <= 0) return false;
  for (const point& p : contour) {
    if (is_at(p, before) || is_at(p, corner) || is_at(p, after)) continue;
    if (is_in_triangle(p, before, corner, after)) return false;
  }
  for (std::size_t j = 0; j < n; ++j)
    if (cross_each_other(before, after, contour[j], contour[(j + 1) % n])) return false;
  return true;
}

bool is_straight(const ring& contour, std::size_t i) {
  const std::size_t n = contour.size();
  return cross(contour[(i + n - 1) % n], contour[i], contour[(i + 1) % n]) == 0;
}

}  // namespace

std::vector<triangle> clip_ears(const part& piece) {
  std::vector<triangle> triangles;
  ring contour = join_holes(piece);
  std::size_t i = 0;
  std::size_t tries = 0;
  while (contour.size() >= 3 && tries < contour.size()) {
    const std::size_t n = contour.size();
    i %= n;
    const bool ear = is_ear(contour, i);
    if (!ear && !is_straight(contour, i)) {
      ++i;
      ++tries;
      continue;
    }
    if (ear) triangles.push_back({{contour[(i + n - 1) % n], contour[i], contour[(i + 1) % n]}});
    contour.erase(contour.begin() + static_cast<std::ptrdiff_t>(i));
    tries = 0;
  }
  return triangles;
}

}  // namespace qv::plane
