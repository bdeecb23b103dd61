#include "utilities/qv_contour_contacts.h"

#include <algorithm>
#include <cmath>

namespace qv::plane {

namespace {

// A cross product of two vectors below this share of the product of their lengths may be rounding;
// some fifty times the error bound of its evaluation in double precision.
constexpr double uncertain_cross = 1e-14;

// 1 left, −1 right, 0 cannot be told.
int turn(double a0, double b0, double a1, double b1) {
  const double cross = a0 * b1 - b0 * a1;
  const double bound =
      uncertain_cross * (std::fabs(a0) + std::fabs(b0)) * (std::fabs(a1) + std::fabs(b1));
  return cross > bound ? 1 : cross < -bound ? -1 : 0;
}

int corner_turn(const point& before, const point& corner, const point& after) {
  return turn(corner.a - before.a, corner.b - before.b, after.a - corner.a, after.b - corner.b);
}

bool folds_back(const point& before, const point& corner, const point& after) {
  return (corner.a - before.a) * (after.a - corner.a) +
             (corner.b - before.b) * (after.b - corner.b) <
         0;
}

struct edge {
  const point* from;
  const point* to;
  double min_a;
  double max_a;
  double min_b;
  double max_b;
};

void add_edges(const ring& contour, std::vector<edge>& edges) {
  for (std::size_t i = 0; i < contour.size(); ++i) {
    const point& from = contour[i];
    const point& to = contour[i + 1 == contour.size() ? 0 : i + 1];
    edges.push_back({&from, &to, std::min(from.a, to.a), std::max(from.a, to.a),
                     std::min(from.b, to.b), std::max(from.b, to.b)});
  }
}

// Points have an address of their own, so edges that share one follow each other in a contour.
bool are_neighbours(const edge& e, const edge& f) {
  return e.to == f.from || f.to == e.from;
}

int side(const edge& e, const point& p) {
  return turn(e.to->a - e.from->a, e.to->b - e.from->b, p.a - e.from->a, p.b - e.from->b);
}

bool are_in_contact(const edge& e, const edge& f) {
  if (side(e, *f.from) * side(e, *f.to) > 0) return false;
  return side(f, *e.from) * side(f, *e.to) <= 0;
}

std::size_t count_spikes(const std::vector<ring>& contours) {
  std::size_t spikes = 0;
  for (const ring& contour : contours) {
    const std::size_t n = contour.size();
    for (std::size_t i = 0; i < n; ++i) {
      const point& before = contour[i == 0 ? n - 1 : i - 1];
      const point& after = contour[i + 1 == n ? 0 : i + 1];
      if (corner_turn(before, contour[i], after) == 0 && folds_back(before, contour[i], after))
        ++spikes;
    }
  }
  return spikes;
}

}  // namespace

bool is_convex(const ring& contour) {
  const std::size_t n = contour.size();
  int direction = 0;
  int changes = 0;
  bool was_rightwards = contour[0].a > contour[n - 1].a;
  for (std::size_t i = 0; i < n; ++i) {
    const point& before = contour[i == 0 ? n - 1 : i - 1];
    const point& after = contour[i + 1 == n ? 0 : i + 1];
    const int turned = corner_turn(before, contour[i], after);
    if (turned == 0) {
      if (folds_back(before, contour[i], after)) return false;
    } else if (direction == 0) {
      direction = turned;
    } else if (turned != direction) {
      return false;
    }
    const bool rightwards = after.a > contour[i].a;
    if (rightwards != was_rightwards) ++changes;
    was_rightwards = rightwards;
  }
  // Going round once, the first coordinate rises once and falls once.
  return direction != 0 && changes <= 2;
}

bool is_strictly_convex(const ring& contour) {
  if (!is_convex(contour)) return false;
  const std::size_t n = contour.size();
  for (std::size_t i = 0; i < n; ++i)
    if (corner_turn(contour[(i + n - 1) % n], contour[i], contour[(i + 1) % n]) == 0) return false;
  return true;
}

std::size_t count_contacts(const std::vector<ring>& contours, std::size_t limit) {
  std::size_t contacts = count_spikes(contours);
  if (contacts > limit) return contacts;
  std::size_t count = 0;
  for (const ring& contour : contours) count += contour.size();
  std::vector<edge> edges;
  edges.reserve(count);
  for (const ring& contour : contours) add_edges(contour, edges);
  std::sort(edges.begin(), edges.end(),
            [](const edge& e, const edge& f) { return e.min_a < f.min_a; });
  for (std::size_t i = 0; i < count; ++i) {
    const edge& e = edges[i];
    for (std::size_t j = i + 1; j < count && edges[j].min_a <= e.max_a; ++j) {
      const edge& f = edges[j];
      if (e.min_b > f.max_b || f.min_b > e.max_b || are_neighbours(e, f) || !are_in_contact(e, f))
        continue;
      if (++contacts > limit) return contacts;
    }
  }
  return contacts;
}

}  // namespace qv::plane
