#pragma once

#include <vector>

#include "core/shapes/triangles.h"
#include "utilities/qv_3dvector.h"
#include "utilities/qv_list.h"

namespace qv {

/// The triangles of a surface and how they meet at their edges.
///
/// Corners closer than `corner_distance` are one corner, so that surfaces of loose triangles hang
/// together. Triangles without area, that are not finite or that come a second time with the same
/// winding are left out.
class surface_topology {
 public:
  surface_topology(const qv_list<qv_3dvector>& vertices, const qv_list<int>& triangles);

  /// m; three times the distance of neighbouring floats at the far end of a large site (500 m).
  static constexpr float corner_distance = 1e-4f;

  struct triangle {
    triangle_corners corners;
    area_vector area;
    double size;  // length of `area`, twice the triangle's area in m²
  };
  /// One side of a triangle, from corner `side` to the next.
  struct edge_use {
    int low;
    int high;
    int triangle;
    int side;
  };

  const qv_3dvector& get_vertex(int index) const { return vertices_[index]; }
  const std::vector<triangle>& get_triangles() const { return triangles_; }
  /// The sides of all triangles, those of one edge next to each other, in a fixed order.
  const std::vector<edge_use>& get_edge_uses() const { return uses_; }
  /// One past the last use of the edge whose first use is `first`.
  int get_edge_end(int first) const { return end_of_[first]; }
  /// Position of the first use of the edge that is side `side` of triangle `index`.
  int get_edge_of(int index, int side) const { return edge_of_[3 * index + side]; }
  /// True when the use runs from the lower to the higher vertex index.
  bool runs_upwards(const edge_use& use) const {
    return triangles_[use.triangle].corners[use.side] == use.low;
  }

  /// Vertex pairs of the edges that bound the surface, at which more than two triangles meet, or
  /// where it folds by more than the angle with this cosine.
  std::vector<std::pair<int, int>> find_contour_edges(double fold_cosine) const;

 private:
  const qv_list<qv_3dvector>& vertices_;
  std::vector<triangle> triangles_;
  std::vector<edge_use> uses_;
  std::vector<int> edge_of_;  // by triangle and side
  std::vector<int> end_of_;   // by position of a first use
};

}  // namespace qv
