#include "core/shapes/surface_topology.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "core/shapes/point_weld.h"

namespace qv {
namespace {

// The same triangle with its lowest corner first, the winding kept.
triangle_corners normalized(triangle_corners corners) {
  std::rotate(corners.begin(), std::min_element(corners.begin(), corners.end()), corners.end());
  return corners;
}

// Positions of the triangles that come a second time.
std::vector<bool> find_repetitions(const std::vector<surface_topology::triangle>& triangles) {
  std::vector<std::pair<triangle_corners, int>> sorted;
  sorted.reserve(triangles.size());
  for (std::size_t i = 0; i < triangles.size(); ++i)
    sorted.emplace_back(normalized(triangles[i].corners), static_cast<int>(i));
  std::sort(sorted.begin(), sorted.end());
  std::vector<bool> repeated(triangles.size(), false);
  for (std::size_t i = 1; i < sorted.size(); ++i)
    repeated[sorted[i].second] = sorted[i].first == sorted[i - 1].first;
  return repeated;
}

}  // namespace

surface_topology::surface_topology(const qv_list<qv_3dvector>& vertices,
                                   const qv_list<int>& triangles)
    : vertices_(vertices) {
  const std::vector<int> place = weld_points(vertices, corner_distance);
  std::vector<triangle> sound;
  for_each_triangle(triangles, vertices.get_count(), [&](triangle_corners corners) {
    for (int& corner : corners) corner = place[corner];
    const area_vector area(vertices[corners[0]], vertices[corners[1]], vertices[corners[2]]);
    const double size = area.length();
    if (size > 0 && std::isfinite(size)) sound.push_back({corners, area, size});
  });
  const std::vector<bool> repeated = find_repetitions(sound);
  for (std::size_t i = 0; i < sound.size(); ++i)
    if (!repeated[i]) triangles_.push_back(sound[i]);

  uses_.reserve(3 * triangles_.size());
  for (int i = 0; i < static_cast<int>(triangles_.size()); ++i) {
    for (int side = 0; side < 3; ++side) {
      const int from = triangles_[i].corners[side];
      const int to = triangles_[i].corners[(side + 1) % 3];
      uses_.push_back({std::min(from, to), std::max(from, to), i, side});
    }
  }
  std::sort(uses_.begin(), uses_.end(), [](const edge_use& a, const edge_use& b) {
    return std::tie(a.low, a.high, a.triangle) < std::tie(b.low, b.high, b.triangle);
  });
  edge_of_.resize(uses_.size());
  end_of_.resize(uses_.size());
  const int count = static_cast<int>(uses_.size());
  for (int first = 0, end = 0; first < count; first = end) {
    while (end < count && uses_[end].low == uses_[first].low &&
           uses_[end].high == uses_[first].high) {
      edge_of_[3 * uses_[end].triangle + uses_[end].side] = first;
      ++end;
    }
    end_of_[first] = end;
  }
}

std::vector<std::pair<int, int>> surface_topology::find_contour_edges(double fold_cosine) const {
  std::vector<std::pair<int, int>> edges;
  const int count = static_cast<int>(uses_.size());
  for (int first = 0, end; first < count; first = end) {
    end = get_edge_end(first);
    bool smooth = end - first == 2;
    if (smooth) {
      const edge_use& a = uses_[first];
      const edge_use& b = uses_[first + 1];
      const triangle& t = triangles_[a.triangle];
      const triangle& u = triangles_[b.triangle];
      // Neighbours that run the same way along their edge face opposite sides of one surface.
      const double sign = runs_upwards(a) == runs_upwards(b) ? -1 : 1;
      smooth = sign * t.area.dot(u.area) >= fold_cosine * t.size * u.size;
    }
    if (!smooth) edges.emplace_back(uses_[first].low, uses_[first].high);
  }
  return edges;
}

}  // namespace qv
