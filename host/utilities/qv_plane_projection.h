#pragma once

#include <vector>

#include "utilities/qv_plane_frame.h"
#include "utilities/qv_plane_region.h"
#include "utilities/qv_polygon.h"

namespace qv::plane {

/// Takes polygons into the plane of one of them and results back into space. Private to this
/// library.
///
/// The plane has the receiver's normal and passes through its first finite vertex, or through its
/// point when it has none. Points remember the vertex that they stand for: a result that still has
/// it gets the same three floats back.
class projection {
 public:
  explicit projection(const qv_polygon& receiver);

  /// The region of `operand`, projected along the normal. Its points stand for its vertices; those
  /// of an operand other than the receiver only where they lie in the plane.
  region get_region(const qv_polygon& operand);

  /// Finds the vertex that each point without one stands for: the nearest one among all vertices
  /// of the operands within `tolerance::vertex_snap`, the receiver's before others.
  void find_sources(region& pieces) const;

  /// Makes a vertex of each point that still has none.
  void adopt_new_points(region& pieces);

  qv_3dvector to_space(const point& p) const {
    return p.source >= 0 ? vertices_[static_cast<std::size_t>(p.source)]
                         : frame_.to_space(p.a, p.b);
  }
  /// The contour in space, without points that became equal.
  qv_list<qv_3dvector> to_space(const ring& contour) const;
  /// Replaces the contours of `polygon` by those of the region, each outer one followed by its
  /// holes; the plane stays. Contours of fewer than three points in space are left out.
  void write(const region& pieces, qv_polygon& polygon) const;

 private:
  std::vector<ring> get_contours(const qv_polygon& operand);
  bool is_in_plane(const qv_3dvector& vertex) const;

  const qv_polygon& receiver_;
  qv_plane_frame frame_;
  std::vector<qv_3dvector> vertices_;
  // The points of all operands that stand for a vertex.
  std::vector<point> known_points_;
};

/// The region of `polygon` in its own plane, for who asks what it encloses and not where its
/// vertices are: its points stand for none.
region get_own_region(const qv_polygon& polygon);

}  // namespace qv::plane
