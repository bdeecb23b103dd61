#include "core/shapes/coplanar_polygons.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <numeric>
#include <vector>

#include "core/shapes/surface_topology.h"
#include "utilities/qv_tolerances.h"

namespace qv {
namespace {

// Sine of half a degree: triangles whose normals differ by less are in one plane.
constexpr double coplanar_sine = 0.0087;
// m; how far rounding moves a corner out of its plane, on a site of a few hundred metres.
constexpr double coplanar_distance = 1e-4;
// More triangles at one edge than any sound model brings: they connect nothing, so that a fan of
// n triangles about one edge does not cost n².
constexpr int largest_fan = 16;
// Area by which contours may differ from their triangles by rounding, relative.
constexpr double area_error = 1e-4;
// Radians; a turn this close to a half turn goes back where it came from.
constexpr double half_turn_error = 1e-9;

struct point {
  double x, y, z;
  explicit point(const qv_3dvector& v) : x(v.x), y(v.y), z(v.z) {}
  point(double px, double py, double pz) : x(px), y(py), z(pz) {}
  point operator-(const point& o) const { return {x - o.x, y - o.y, z - o.z}; }
  double dot(const point& o) const { return x * o.x + y * o.y + z * o.z; }
  point cross(const point& o) const {
    return {y * o.z - z * o.y, z * o.x - x * o.z, x * o.y - y * o.x};
  }
  double length() const { return std::sqrt(dot(*this)); }
};

point unit(const area_vector& area, double size) {
  return {area.x / size, area.y / size, area.z / size};
}

double get_altitude(const surface_topology& surface, const surface_topology::triangle& triangle) {
  double longest = 0;
  for (int i = 0; i < 3; ++i) {
    const point from(surface.get_vertex(triangle.corners[i]));
    const point to(surface.get_vertex(triangle.corners[(i + 1) % 3]));
    longest = std::max(longest, (to - from).length());
  }
  return triangle.size / longest;
}

/// Sorts the triangles into groups; `group_of` then names each triangle's group.
class grouping {
 public:
  explicit grouping(const surface_topology& surface)
      : surface_(surface), group_of_(surface.get_triangles().size(), -1) {
    double farthest = 0;
    for (const auto& triangle : surface.get_triangles())
      for (int corner : triangle.corners) {
        const qv_3dvector& v = surface.get_vertex(corner);
        for (float c : {v.x, v.y, v.z}) farthest = std::max(farthest, std::fabs(double{c}));
      }
    slack_ = std::max(coplanar_distance, 2 * farthest * std::numeric_limits<float>::epsilon());
    grow_all();
  }

  int get_group(int triangle) const { return group_of_[triangle]; }
  /// Triangles of each group in ascending order; groups by their first triangle.
  std::vector<std::vector<int>> get_groups() const {
    std::vector<std::vector<int>> groups;
    std::vector<int> position(group_of_.size(), -1);
    for (int i = 0; i < static_cast<int>(group_of_.size()); ++i) {
      int& group = position[group_of_[i]];
      if (group < 0) {
        group = static_cast<int>(groups.size());
        groups.emplace_back();
      }
      groups[group].push_back(i);
    }
    return groups;
  }

 private:
  void grow_all() {
    const auto& triangles = surface_.get_triangles();
    std::vector<int> order(triangles.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return triangles[a].size > triangles[b].size; });
    int group = 0;
    for (int seed : order)
      if (group_of_[seed] < 0) grow(seed, group++);
  }

  void grow(int seed, int group) {
    const surface_topology::triangle& triangle = surface_.get_triangles()[seed];
    const point origin(surface_.get_vertex(triangle.corners[0]));
    const point normal = unit(triangle.area, triangle.size);
    const double altitude = get_altitude(surface_, triangle);
    std::vector<int> front = {seed};
    group_of_[seed] = group;
    while (!front.empty()) {
      const int current = front.back();
      front.pop_back();
      for (int side = 0; side < 3; ++side) {
        const int first = surface_.get_edge_of(current, side);
        const int end = surface_.get_edge_end(first);
        if (end - first > largest_fan) continue;
        for (int i = first; i < end; ++i) {
          const int next = surface_.get_edge_uses()[i].triangle;
          if (group_of_[next] >= 0 || !is_in_plane(next, origin, normal, altitude)) continue;
          group_of_[next] = group;
          front.push_back(next);
        }
      }
    }
  }

  // A corner may be off by the slack; what that does to a normal grows as the triangle gets thin,
  // and what it does to the plane's height grows with the distance from the seed.
  bool is_in_plane(int index, const point& origin, const point& normal, double altitude) const {
    const surface_topology::triangle& triangle = surface_.get_triangles()[index];
    const point other = unit(triangle.area, triangle.size);
    const double allowed_sine =
        coplanar_sine + slack_ / altitude + slack_ / get_altitude(surface_, triangle);
    if (normal.dot(other) <= 0 || normal.cross(other).length() > allowed_sine) return false;
    for (int corner : triangle.corners) {
      const point offset = point(surface_.get_vertex(corner)) - origin;
      if (std::fabs(offset.dot(normal)) > slack_ * (1 + offset.length() / altitude)) return false;
    }
    return true;
  }

  const surface_topology& surface_;
  std::vector<int> group_of_;
  double slack_;
};

/// Makes the polygon of one group.
class outline {
 public:
  outline(const surface_topology& surface, const grouping& groups,
          const std::vector<int>& triangles)
      : surface_(surface), triangles_(triangles) {
    for (int triangle : triangles) area_ += surface.get_triangles()[triangle].area;
    find_edges(groups);
    chain();
  }

  /// Null when nothing is left of the group.
  qv_polygon* build() const {
    auto polygon = std::make_unique<qv_polygon>(build_from_contours());
    if (!has_area_of_triangles(*polygon)) *polygon = build_by_union();
    return polygon->get_contour_count() > 0 ? polygon.release() : nullptr;
  }

 private:
  struct edge {
    int from;
    int to;
    bool used = false;
  };

  int first_corner() const { return surface_.get_triangles()[triangles_.front()].corners[0]; }

  // Sides at which the group ends: those that no neighbour of the group runs in the other sense.
  void find_edges(const grouping& groups) {
    const int group = groups.get_group(triangles_.front());
    for (int triangle : triangles_) {
      for (int side = 0; side < 3; ++side) {
        const auto& corners = surface_.get_triangles()[triangle].corners;
        const edge own{corners[side], corners[(side + 1) % 3]};
        const int first = surface_.get_edge_of(triangle, side);
        const int end = surface_.get_edge_end(first);
        int upwards = 0;
        bool is_first_of_group = true;
        if (end - first <= largest_fan) {
          for (int i = first; i < end; ++i) {
            const auto& use = surface_.get_edge_uses()[i];
            if (groups.get_group(use.triangle) != group) continue;
            upwards += surface_.runs_upwards(use) ? 1 : -1;
            if (use.triangle < triangle) is_first_of_group = false;
          }
          if (!is_first_of_group || upwards == 0) continue;
          const auto [low, high] = std::minmax(own.from, own.to);
          edges_.push_back(upwards > 0 ? edge{low, high} : edge{high, low});
        } else {
          edges_.push_back(own);
        }
      }
    }
  }

  void chain() {
    by_start_.resize(edges_.size());
    std::iota(by_start_.begin(), by_start_.end(), 0);
    std::stable_sort(by_start_.begin(), by_start_.end(),
                     [&](int a, int b) { return edges_[a].from < edges_[b].from; });
    for (edge& start : edges_) {
      if (start.used) continue;
      std::vector<int> contour;
      edge* current = &start;
      while (current != nullptr) {
        current->used = true;
        contour.push_back(current->from);
        if (current->to == start.from) break;
        current = find_next(*current);
      }
      if (current != nullptr && contour.size() >= 3) contours_.push_back(std::move(contour));
    }
  }

  // The edge farthest to the right, with the triangles on the left: a hole that touches the border
  // or another hole at a corner so stays a contour by itself.
  edge* find_next(const edge& arriving) {
    const auto starts_before = [&](int index, int vertex) { return edges_[index].from < vertex; };
    auto it = std::lower_bound(by_start_.begin(), by_start_.end(), arriving.to, starts_before);
    edge* best = nullptr;
    double best_turn = 0;
    for (; it != by_start_.end() && edges_[*it].from == arriving.to; ++it) {
      edge& candidate = edges_[*it];
      if (candidate.used) continue;
      const double turn = get_turn(arriving, candidate);
      if (best == nullptr || turn < best_turn) {
        best = &candidate;
        best_turn = turn;
      }
    }
    return best;
  }

  double get_turn(const edge& arriving, const edge& leaving) const {
    const point corner(surface_.get_vertex(arriving.to));
    const point in = corner - point(surface_.get_vertex(arriving.from));
    const point out = point(surface_.get_vertex(leaving.to)) - corner;
    const point normal(area_.x, area_.y, area_.z);
    const double turn = std::atan2(in.cross(out).dot(normal) / normal.length(), in.dot(out));
    return turn < half_turn_error - std::numbers::pi ? std::numbers::pi : turn;
  }

  area_vector get_area(const std::vector<int>& contour) const {
    area_vector area;
    const qv_3dvector& first = surface_.get_vertex(contour[0]);
    for (std::size_t i = 1; i + 1 < contour.size(); ++i)
      area +=
          area_vector(first, surface_.get_vertex(contour[i]), surface_.get_vertex(contour[i + 1]));
    return area;
  }

  qv_polygon build_from_contours() const {
    qv_polygon polygon(surface_.get_vertex(first_corner()), area_.get_normal());
    for (bool outer : {true, false})
      for (const std::vector<int>& contour : contours_)
        if ((get_area(contour).dot(area_) > 0) == outer) polygon.add_contour(to_points(contour));
    return polygon;
  }

  // False where triangles overlap, or where so many meet at an edge that the contours are torn.
  bool has_area_of_triangles(const qv_polygon& polygon) const {
    const double expected = area_.length() / 2;
    return std::fabs(polygon.get_area() - expected) <=
           area_error * expected + tolerance::sliver_area;
  }

  qv_list<qv_3dvector> to_points(const std::vector<int>& contour) const {
    qv_list<qv_3dvector> points;
    points.reserve(static_cast<int>(contour.size()));
    for (int vertex : contour) points.append(surface_.get_vertex(vertex));
    return points;
  }

  // Neighbours are united first, so that the parts stay small.
  qv_polygon build_by_union() const {
    std::vector<qv_polygon> parts;
    for (int triangle : triangles_) {
      const auto& corners = surface_.get_triangles()[triangle].corners;
      parts.emplace_back(surface_.get_vertex(first_corner()), area_.get_normal());
      parts.back().add_contour(to_points({corners.begin(), corners.end()}));
    }
    for (std::size_t step = 1; step < parts.size(); step *= 2)
      for (std::size_t i = 0; i + step < parts.size(); i += 2 * step)
        parts[i].unites(parts[i + step]);
    return std::move(parts.front());
  }

  const surface_topology& surface_;
  const std::vector<int>& triangles_;
  area_vector area_;
  std::vector<edge> edges_;
  std::vector<int> by_start_;
  std::vector<std::vector<int>> contours_;
};

}  // namespace

qv_list<qv_polygon*> build_coplanar_polygons(const qv_list<qv_3dvector>& vertices,
                                             const qv_list<int>& triangles) {
  const surface_topology surface(vertices, triangles);
  const grouping groups(surface);
  qv_list<qv_polygon*> polygons;
  for (const std::vector<int>& group : groups.get_groups())
    if (qv_polygon* polygon = outline(surface, groups, group).build()) polygons.append(polygon);
  return polygons;
}

}  // namespace qv
