#pragma once

namespace qv {

/// Every length and area below which the geometry of this library sees nothing, in one place.
///
/// Models come in single precision with coordinates of a few hundred metres, where neighbouring
/// floats lie 3e-5 m apart; the values below stay above that rounding and far below a building's
/// smallest dimension.
namespace tolerance {

/// m²; a part of a Boolean result with less area is a sliver and dropped.
inline constexpr double sliver_area = 1e-6;
/// m; a part of a Boolean result thinner than this (twice its area over its perimeter) is dropped.
inline constexpr double sliver_width = 1e-5;
/// m; a vertex of a result closer than this to a vertex of an operand is that vertex.
inline constexpr double vertex_snap = 2e-5;
/// m; consecutive contour points closer than this are one point.
inline constexpr double repeated_point = 1e-6;
/// m; a vertex closer than this to a plane lies in it (far from the origin, where single precision
/// is coarser, a few times the distance of neighbouring floats).
inline constexpr double plane_distance = 1e-4;
/// m; coordinates beyond this are not geometry, they count as not finite.
inline constexpr double largest_coordinate = 1e7;

}  // namespace tolerance
}  // namespace qv
