#pragma once

#include <vector>

/// Regions of a plane in the coordinates (a, b) of a `qv_plane_frame`, double precision. Private to
/// this library: what `qv_polygon` computes with.
namespace qv::plane {

/// A point of a contour, m.
struct point {
  double a = 0;
  double b = 0;
  /// Number of the vertex in space that this point stands for, −1 when it is a new one.
  int source = -1;
};

/// A contour, closed by itself.
using ring = std::vector<point>;

/// A connected piece: the outer contour counter-clockwise, the holes clockwise.
struct part {
  ring outer;
  std::vector<ring> holes;
};

/// Parts that do not overlap.
using region = std::vector<part>;

/// An axis-parallel rectangle.
struct bounds {
  double min_a;
  double min_b;
  double max_a;
  double max_b;
};

/// Area of a contour, m², positive when it runs counter-clockwise.
double signed_area(const ring& contour);
double area(const part& piece);
double area(const region& pieces);
/// The rectangle around a contour or region that is not empty.
bounds get_bounds(const ring& contour);
bounds get_bounds(const region& pieces);

/// Whether (a, b) lies inside by the even-odd rule; on a contour either answer is given.
bool is_inside(const ring& contour, double a, double b);
bool is_inside(const std::vector<ring>& contours, double a, double b);

/// Whether the contour is convex without a straight corner: its fan of triangles has no triangle
/// without area.
bool is_strictly_convex(const ring& contour);

/// The region that the contours enclose by the even-odd rule. Contours have three points or more
/// and no point twice in a row, but may run in either direction, touch, and cross themselves and
/// each other. A contour given several times in the same direction counts once; given in both
/// directions it encloses nothing. Contours that cross so often that they are noise enclose
/// nothing.
///
/// Costs n log n for contours that stay clear of each other, an overlay otherwise.
region normalise(std::vector<ring> contours);

/// Removes parts, and fills holes, below `tolerance::sliver_area` or `tolerance::sliver_width`.
void drop_slivers(region& pieces);

}  // namespace qv::plane
