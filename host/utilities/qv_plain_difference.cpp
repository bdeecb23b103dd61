#include "utilities/qv_plain_difference.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "utilities/qv_tolerances.h"

namespace qv::plane {

namespace {

// Points of both regions together; beyond it the overlay is quicker.
constexpr std::size_t most_points = 64;
constexpr int none = -1;

double cross(const point& p, const point& q, const point& r) {
  return (q.a - p.a) * (r.b - p.b) - (q.b - p.b) * (r.a - p.a);
}

// Whether `p` lies between the ends of an edge along an axis, where rounding has no say.
bool is_exactly_on(const point& p, const point& from, const point& to) {
  const auto is_inside = [](double value, double u, double v) {
    return value > std::min(u, v) && value < std::max(u, v);
  };
  return (p.a == from.a && p.a == to.a && is_inside(p.b, from.b, to.b)) ||
         (p.b == from.b && p.b == to.b && is_inside(p.a, from.a, to.a));
}

class cut {
 public:
  explicit cut(const ring& left) : left_(left) {}

  std::optional<region> run(const region& right) {
    for (const part& piece : right) insert_into_border(piece.outer);
    points_ = left_;
    next_.assign(left_.size(), none);
    is_node_.assign(left_.size(), false);
    for (std::size_t i = 0; i < left_.size(); ++i)
      next_[i] = to_int(i + 1 == left_.size() ? 0 : i + 1);
    is_node_[0] = true;
    for (const part& piece : right)
      if (!number_points(piece.outer)) return std::nullopt;
    for (const std::vector<int>& contour : numbers_)
      if (!cancel_shared_edges(contour)) return std::nullopt;
    for (const std::vector<int>& contour : numbers_)
      if (!add_reversed_edges(contour)) return std::nullopt;
    return trace();
  }

 private:
  static int to_int(std::size_t i) { return static_cast<int>(i); }
  static std::size_t to_size(int i) { return static_cast<std::size_t>(i); }

  // Makes corners of the border of points that lie exactly on one of its edges.
  void insert_into_border(const ring& contour) {
    for (const point& p : contour)
      for (std::size_t i = 0; i < left_.size(); ++i)
        if (is_exactly_on(p, left_[i], left_[i + 1 == left_.size() ? 0 : i + 1])) {
          left_.insert(left_.begin() + static_cast<std::ptrdiff_t>(i) + 1, p);
          break;
        }
  }

  // m; of the point from the nearest line along an edge, negative on its outer side. A point inside
  // of all lines sees every point of the border.
  double get_depth(const point& p) const {
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < left_.size(); ++i) {
      const point& from = left_[i];
      const point& to = left_[i + 1 == left_.size() ? 0 : i + 1];
      least = std::min(least, cross(from, to, p) / std::hypot(to.a - from.a, to.b - from.b));
    }
    return least;
  }

  bool is_clear(const point& p) const { return get_depth(p) > tolerance::vertex_snap; }

  int find(const point& p) const {
    for (std::size_t i = 0; i < points_.size(); ++i)
      if (points_[i].a == p.a && points_[i].b == p.b) return to_int(i);
    return none;
  }

  // False for a point that is neither on the border nor clear of it, or that two contours share.
  bool number_points(const ring& contour) {
    std::vector<int>& numbers = numbers_.emplace_back();
    for (const point& p : contour) {
      int number = find(p);
      if (number == none) {
        if (!is_clear(p)) return false;
        number = to_int(points_.size());
        points_.push_back(p);
        next_.push_back(none);
      } else if (is_on_border(number)) {
        is_node_[to_size(number)] = true;
      } else {
        return false;
      }
      numbers.push_back(number);
    }
    return true;
  }

  template <class Function>
  static bool for_each_edge(const std::vector<int>& contour, Function function) {
    for (std::size_t i = 0; i < contour.size(); ++i)
      if (!function(contour[i], contour[i + 1 == contour.size() ? 0 : i + 1])) return false;
    return true;
  }

  bool is_on_border(int number) const { return to_size(number) < left_.size(); }

  bool is_border_edge(int from, int to) const {
    return is_on_border(from) && to == (to_size(from) + 1 == left_.size() ? 0 : from + 1);
  }

  // False for an edge from border to border that neither is one of the border's nor runs clear of
  // it.
  bool cancel_shared_edges(const std::vector<int>& contour) {
    return for_each_edge(contour, [this](int from, int to) {
      if (is_border_edge(from, to)) {
        next_[to_size(from)] = none;
      } else if (is_on_border(from) && is_on_border(to)) {
        const point& p = points_[to_size(from)];
        const point& q = points_[to_size(to)];
        return is_clear({(p.a + q.a) / 2, (p.b + q.b) / 2});
      }
      return true;
    });
  }

  // False where several borders meet in a point.
  bool add_reversed_edges(const std::vector<int>& contour) {
    return for_each_edge(contour, [this](int from, int to) {
      if (is_border_edge(from, to)) return true;
      int& next = next_[to_size(to)];
      if (next != none) return false;
      next = from;
      return true;
    });
  }

  ring take_ring(int start) {
    ring contour;
    int number = start;
    do {
      contour.push_back(points_[to_size(number)]);
      number = std::exchange(next_[to_size(number)], none);
    } while (number != start && number != none);
    return contour;
  }

  // The overlay begins the contour of a piece where the first stretch of `left`'s border that it
  // has ends, at a point where the borders meet, and a hole with the first point of the contour
  // that it comes from.
  std::optional<region> trace() {
    region pieces;
    for (std::size_t i = 0; i < left_.size(); ++i) {
      int end = next_[i];
      if (!is_border_edge(to_int(i), end)) continue;
      while (!is_node_[to_size(end)]) end = next_[to_size(end)];
      pieces.emplace_back().outer = take_ring(end);
    }
    for (const std::vector<int>& contour : numbers_) {
      if (next_[to_size(contour.front())] == none) continue;
      if (pieces.size() != 1) return std::nullopt;
      pieces[0].holes.push_back(take_ring(contour.front()));
    }
    return pieces;
  }

  ring left_;  // counter-clockwise
  std::vector<point> points_;
  std::vector<int> next_;      // of each point, along what is left; `none` where there is nothing
  std::vector<bool> is_node_;  // of each of `left_`: the borders meet there, or the contour begins
  std::vector<std::vector<int>> numbers_;  // of the points of each of the right contours
};

}  // namespace

std::optional<region> subtract_plainly(const region& left, const region& right) {
  if (left.size() != 1 || !left[0].holes.empty()) return std::nullopt;
  std::size_t count = left[0].outer.size();
  for (const part& piece : right) {
    if (!piece.holes.empty()) return std::nullopt;
    count += piece.outer.size();
  }
  if (count > most_points) return std::nullopt;
  return cut(left[0].outer).run(right);
}

}  // namespace qv::plane
