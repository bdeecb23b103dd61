#pragma once

#include "utilities/qv_3dvector.h"
#include "utilities/qv_list.h"

namespace qv {

/// A plane region in space: a plane (point and normal) and any number of contours.
///
/// Outer contours run counter-clockwise about the normal, holes clockwise. The vertices of all
/// contours form one flat list, beside which a list of contour sizes tells how to split it. A
/// contour is closed by itself: its first point is not repeated at its end.
///
/// The region is what the contours enclose by the even-odd rule, so that `add_contour` takes
/// contours of either direction; Boolean operations and `offset` leave them oriented as said above.
///
/// Boolean operations and `offset` work in the plane of the receiving polygon, onto which the other
/// operand is projected along the receiver's normal, in double precision with a robust overlay. A
/// vertex of the result that was a vertex of an operand lying in the receiver's plane comes back as
/// the same three floats. Parts below `tolerance::sliver_area` or thinner than
/// `tolerance::sliver_width` are gone. Contours may touch or share edges, cross themselves or be
/// given twice.
///
/// Degenerate input yields an empty result and never fails: contours of fewer than three distinct
/// points, of no area, or with coordinates that are not finite are left out of every computation
/// (they are kept as given among the vertices).
class qv_polygon {
 public:
  /// Plane through the origin with normal (0, 0, 1), no contour.
  qv_polygon();
  /// Plane through `point` with `normal` (normalised; a zero normal is kept and makes every
  /// computation empty until contours determine the plane), no contour.
  qv_polygon(const qv_3dvector& point, const qv_3dvector& normal);
  qv_polygon(const qv_polygon&);
  qv_polygon(qv_polygon&&) noexcept;
  qv_polygon& operator=(const qv_polygon&);
  qv_polygon& operator=(qv_polygon&&) noexcept;
  virtual ~qv_polygon();

  /// Removes all contours; the plane stays.
  void clear();
  /// Adds a contour. When the normal is zero it is taken from the contour (Newell's method), and
  /// the point too.
  void add_contour(const qv_list<qv_3dvector>& vertices);
  /// Number of contours.
  int get_contour_count() const;
  /// The vertices of contour `index`, 0 … `get_contour_count() − 1`.
  qv_list<qv_3dvector> get_contour(int index) const;

  /// Vertices of all contours, one after the other.
  const qv_list<qv_3dvector>& get_contour_vertices() const;
  /// Number of vertices of each contour.
  const qv_list<unsigned int>& get_contour_sizes() const;

  /// A point of the plane.
  const qv_3dvector& get_point() const;
  void set_point(const qv_3dvector& point);
  /// Unit normal of the plane.
  const qv_3dvector& get_normal() const;
  /// Sets the normal (normalised); contours stay.
  void set_normal(const qv_3dvector& normal);
  /// Turns the polygon over: opposite normal, every contour in reverse order.
  void reverse();

  /// Area of the region in m², computed in double precision. 0 when empty.
  float get_area() const;
  bool is_empty() const;

  /// Grows (distance > 0) or shrinks (distance < 0) the region by `distance` metres within its
  /// plane. Join of the corners: 0 square, 1 round, 2 mitre. Shrinking may leave nothing.
  void offset(float distance, int join);
  /// This region or `other`'s, in place. An empty receiver keeps its plane.
  void unites(const qv_polygon& other);
  /// This region and `other`'s, in place.
  void intersects(const qv_polygon& other);
  /// This region without `other`'s, in place.
  void substracts(const qv_polygon& other);

  /// Points of a square grid with the given spacing (m) in the plane's own frame, those inside the
  /// region. The grid is anchored so that a rectangle whose sides are multiples of the spacing gets
  /// exactly area / spacing² points, centred in their cells. A spacing that is not positive, or one
  /// that would make more than ten million points, gives none.
  qv_list<qv_3dvector> regular_distribution(float spacing) const;
  /// `count` points uniformly distributed over the region, the same for the same seed on every
  /// machine. None when the region is empty or `count` is not positive.
  qv_list<qv_3dvector> random_distribution(int count, int seed) const;

  /// Fills the region with the current OpenGL colour (immediate mode, triangulated).
  void draw_opengl() const;

 private:
  qv_3dvector point_;
  qv_3dvector normal_;
  qv_list<qv_3dvector> vertices_;
  qv_list<unsigned int> sizes_;
};

}  // namespace qv
