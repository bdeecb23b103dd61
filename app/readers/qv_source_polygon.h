#pragma once

#include <string>
#include <vector>

#include "core/shapes/qv_double3.h"

namespace qv {

using qv_loop = std::vector<qv_double3>;

/// Limits of what a reader takes for a polygon. All lengths in metres.
namespace polygon_limits {

/// Consecutive points closer than this are one point.
inline constexpr double repeated_point = 1e-6;
/// A polygon with less area (m²), or thinner than this (twice the area over the perimeter), bounds
/// nothing: below what the geometry library keeps.
inline constexpr double least_area = 1e-6;
inline constexpr double least_width = 1e-5;
/// Vertices farther from the best plane than this make a polygon worth a note: a millimetre is what
/// rounding to three decimals leaves.
inline constexpr double noted_deviation = 1e-3;
/// Farther than this and moving the vertices onto the plane would tear visible gaps towards the
/// neighbours: the polygon becomes triangles.
inline constexpr double largest_deviation = 2e-2;
/// Coordinates beyond this are not geometry.
inline constexpr double largest_coordinate = 1e7;
/// No surface of a building has more corners.
inline constexpr std::size_t largest_point_count = 10000;

}  // namespace polygon_limits

/// A plane piece of a surface: its contours lie in one plane, the first runs counter-clockwise
/// about the normal; more than one only where a polygon crosses itself or has holes.
struct qv_plane_part {
  std::vector<qv_loop> contours;
  qv_double3 normal;  // unit length
  double area = 0;    // m²
};

/// What became of a polygon of a file.
struct qv_source_polygon {
  /// Empty when the polygon cannot bound anything: `fault` then says why.
  std::vector<qv_plane_part> parts;
  std::string fault;
  /// What was mended, in words, one entry each; empty when the polygon was taken as it stands.
  std::vector<std::string> repairs;
  /// Area of the polygon as the file has it, m²: by Newell's formula, for a self-crossing one by
  /// the even-odd rule, for one that is not plane the sum of its triangles. 0 with a fault of the
  /// coordinates.
  double area = 0;
};

/// Cleans a polygon given by its corner points.
///
/// - a coordinate that is not finite or beyond `largest_coordinate`: a fault;
/// - the first point repeated at the end, and points repeated one after the other: removed;
/// - fewer than three distinct points, no area, or thinner than `least_width`: a fault;
/// - a contour that crosses itself: the regions that it encloses by the even-odd rule;
/// - corners off the best-fit plane: moved onto it up to `largest_deviation`, above it the polygon
///   is cut into triangles.
/// Corners on a straight line and seams that lead to a hole and back stay. Time n log n in the
/// number of corners in practice.
qv_source_polygon qv_clean_polygon(qv_loop points);

/// Sum of the vector areas of the loop (Newell): its length is the area for a plane loop.
qv_double3 qv_vector_area(const qv_loop& loop);

/// Signed volume of the cone from `apex` over a plane loop, m³: positive when the loop runs
/// counter-clockwise seen from outside the cone.
double qv_cone_volume(const qv_loop& loop, const qv_double3& apex);

}  // namespace qv
