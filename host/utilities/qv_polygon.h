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
/// contours of either direction; Boolean operations and `offset` leave them oriented as said above,
/// each outer contour followed by its holes. Contours may touch or share edges and cross themselves
/// and each other. One exception to the rule: a contour given several times in the same direction
/// counts once (in opposite directions the two cancel out, as a hole that fills its outer contour).
///
/// Boolean operations and `offset` work in the plane of the receiving polygon, onto which the other
/// operand is projected along the receiver's normal, in double precision with a robust overlay. The
/// plane is taken through the receiver's first vertex, or its point when it has none. A vertex of
/// the receiver comes back as the same three floats, whether or not it lies quite in the plane, and
/// so does one of the other operand that lies in it (`tolerance::plane_distance`). The operands'
/// borders are brought together where they miss each other by less than `tolerance::vertex_snap`.
/// Parts below `tolerance::sliver_area` or thinner than `tolerance::sliver_width` are gone, and
/// holes of that kind are filled.
///
/// Degenerate input yields an empty result and never fails: contours of fewer than three distinct
/// points, of no area, or with coordinates that are not finite (or beyond
/// `tolerance::largest_coordinate`) are left out of every computation; they are kept as given among
/// the vertices. Contours that cross themselves or each other tens of thousands of times are noise:
/// the polygon then counts as empty, and the log says so.
class qv_polygon {
 public:
  /// Plane through the origin with normal (0, 0, 1), no contour.
  qv_polygon();
  /// Plane through `point` with `normal` (normalised; a normal that is not finite counts as zero; a
  /// zero normal is kept and makes every computation empty until contours determine the plane), no
  /// contour.
  qv_polygon(const qv_3dvector& point, const qv_3dvector& normal);
  qv_polygon(const qv_polygon&);
  qv_polygon(qv_polygon&&) noexcept;
  qv_polygon& operator=(const qv_polygon&);
  qv_polygon& operator=(qv_polygon&&) noexcept;
  virtual ~qv_polygon();

  /// Removes all contours; the plane stays.
  void clear();
  /// Adds a contour. When the normal is zero it is taken from the contour (Newell's method; where
  /// the halves of a crossed contour cancel out, from the larger triangle), and the point too. A
  /// contour without area leaves it zero.
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
  /// Sets the normal (normalised; zero when it is not finite); contours stay.
  void set_normal(const qv_3dvector& normal);
  /// Turns the polygon over: opposite normal, every contour in reverse order.
  void reverse();

  /// Area of the region in m², computed in double precision. 0 when empty. Some 0.3 µs for a plain
  /// face, up to an overlay for contours that touch or cross.
  float get_area() const;
  /// Whether nothing is enclosed; contours without area do not count.
  bool is_empty() const;

  /// Grows (distance > 0) or shrinks (distance < 0) the region by `distance` metres within its
  /// plane. Join of the corners: 0 square (cut off at `distance` from the corner), 1 round (16
  /// segments to the quarter), 2 mitre (cut off at 20 times `distance`, which only corners below 6°
  /// reach); another value gives mitres. Shrinking may leave nothing. A distance that is not finite
  /// changes nothing.
  void offset(float distance, int join);
  /// This region or `other`'s, in place. An empty receiver keeps its plane, one whose normal is
  /// zero takes `other`'s.
  void unites(const qv_polygon& other);
  /// This region and `other`'s, in place.
  void intersects(const qv_polygon& other);
  /// This region without `other`'s, in place.
  void substracts(const qv_polygon& other);

  /// Points of a square grid with the given spacing (m) along the axes of the plane's own frame
  /// (`qv_plane_frame`), those inside the region, row by row. The first cell begins at the lowest
  /// coordinates of the region, so that a rectangle along the axes whose sides are multiples of the
  /// spacing gets exactly area / spacing² points, centred in their cells. A spacing that is not
  /// positive and finite, or one that would make more than ten million points or rows, gives none.
  qv_list<qv_3dvector> regular_distribution(float spacing) const;
  /// `count` points uniformly distributed over the region, the same for the same seed on every
  /// machine. None when the region is empty, or `count` is not positive or above ten million.
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
