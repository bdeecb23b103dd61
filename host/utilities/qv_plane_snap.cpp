#include "utilities/qv_plane_snap.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "utilities/qv_point_grid.h"
#include "utilities/qv_tolerances.h"

namespace qv::plane {

namespace {

constexpr double reach = tolerance::vertex_snap;

bool is_at(const point& p, const point& q) {
  return p.a == q.a && p.b == q.b;
}

bool is_within(const bounds& box, const point& p) {
  return p.a >= box.min_a - reach && p.a <= box.max_a + reach && p.b >= box.min_b - reach &&
         p.b <= box.max_b + reach;
}

template <class Region, class Function>
void for_each_contour(Region& pieces, Function function) {
  for (auto& piece : pieces) {
    function(piece.outer);
    for (auto& hole : piece.holes) function(hole);
  }
}

// The points of `pieces` near `box`, sorted.
std::vector<point> get_points(const region& pieces, const bounds& box) {
  std::vector<point> points;
  for_each_contour(pieces, [&](const ring& contour) {
    for (const point& p : contour)
      if (is_within(box, p)) points.push_back(p);
  });
  std::sort(points.begin(), points.end(), [](const point& p, const point& q) { return p.a < q.a; });
  return points;
}

// The first of the sorted points whose first coordinate may be within reach of `a`.
std::vector<point>::const_iterator first_in_reach(const std::vector<point>& points, double a) {
  return std::lower_bound(points.begin(), points.end(), a - reach,
                          [](const point& p, double least) { return p.a < least; });
}

// Moves points of the contour onto the nearest target within reach.
bool move_onto(const point_grid& targets, ring& contour) {
  bool moved = false;
  for (point& p : contour) {
    const point* target = targets.find_nearest(p.a, p.b);
    if (target == nullptr || is_at(*target, p)) continue;
    p = *target;
    moved = true;
  }
  return moved;
}

struct edge_point {
  double position;
  point at;
};

// Those of the targets that lie within reach of the edge from `p` to `q`, but neither near its ends
// nor exactly on it, in their order along it.
std::vector<edge_point> get_points_on_edge(const std::vector<point>& targets, const point& p,
                                           const point& q) {
  std::vector<edge_point> found;
  const double along_a = q.a - p.a, along_b = q.b - p.b;
  const double length = std::sqrt(along_a * along_a + along_b * along_b);
  const double min_b = std::min(p.b, q.b) - reach, max_b = std::max(p.b, q.b) + reach;
  const double max_a = std::max(p.a, q.a) + reach;
  for (auto target = first_in_reach(targets, std::min(p.a, q.a));
       target != targets.end() && target->a <= max_a; ++target) {
    if (target->b < min_b || target->b > max_b) continue;
    const double a = target->a - p.a, b = target->b - p.b;
    const double cross = along_a * b - along_b * a;
    if (cross == 0 || std::fabs(cross) > reach * length) continue;
    const double position = (along_a * a + along_b * b) / length;
    if (position > reach && position < length - reach) found.push_back({position, *target});
  }
  std::sort(found.begin(), found.end(),
            [](const edge_point& e, const edge_point& f) { return e.position < f.position; });
  return found;
}

bool insert_into_edges(const std::vector<point>& targets, ring& contour) {
  ring extended;
  bool inserted = false;
  for (std::size_t i = 0; i < contour.size(); ++i) {
    const point& p = contour[i];
    const point& q = contour[i + 1 == contour.size() ? 0 : i + 1];
    const std::vector<edge_point> found = get_points_on_edge(targets, p, q);
    if (!found.empty() && !inserted) {
      inserted = true;
      extended.assign(contour.begin(), contour.begin() + static_cast<std::ptrdiff_t>(i));
    }
    if (!inserted) continue;
    extended.push_back(p);
    for (const edge_point& on_edge : found) extended.push_back(on_edge.at);
  }
  if (inserted) contour = std::move(extended);
  return inserted;
}

// Moved points may have closed a gap within their own region.
void normalise_again(region& pieces) {
  std::vector<ring> contours;
  for_each_contour(pieces, [&](ring& contour) {
    contour.erase(std::unique(contour.begin(), contour.end(), is_at), contour.end());
    while (contour.size() > 1 && is_at(contour.front(), contour.back())) contour.pop_back();
    if (contour.size() >= 3) contours.push_back(std::move(contour));
  });
  pieces = normalise(std::move(contours));
}

}  // namespace

void snap(region& left, region& right) {
  const bounds left_box = get_bounds(left);
  const bounds right_box = get_bounds(right);

  const std::vector<point> left_points = get_points(left, right_box);
  bool changed = false;
  if (!left_points.empty()) {
    const point_grid left_grid(left_points);
    for_each_contour(right, [&](ring& contour) {
      changed |= move_onto(left_grid, contour);
      changed |= insert_into_edges(left_points, contour);
    });
  }
  if (changed) normalise_again(right);

  const std::vector<point> right_points = get_points(right, left_box);
  changed = false;
  if (!right_points.empty())
    for_each_contour(left,
                     [&](ring& contour) { changed |= insert_into_edges(right_points, contour); });
  if (changed) normalise_again(left);
}

}  // namespace qv::plane
