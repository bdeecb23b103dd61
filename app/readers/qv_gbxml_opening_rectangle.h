#pragma once

#include <optional>
#include <vector>

#include "app/readers/qv_gbxml_context.h"
#include "app/readers/qv_source_polygon.h"

namespace qv {

/// The RectangularGeometry of an Opening that has no polygon of its own.
struct qv_opening_rectangle {
  /// Coordinates of its CartesianPoint, two or three, m.
  std::vector<double> point;
  double width = 0;   // m
  double height = 0;  // m
  /// Direction of its outside in radians, clockwise from +Y, and tilt of it from the upward
  /// vertical; absent where the file leaves them to the surface.
  std::optional<double> azimuth;
  std::optional<double> tilt;
};

/// A place at which the rectangle may be meant to lie.
struct qv_rectangle_place {
  qv_loop corners;
  /// How its CartesianPoint was understood.
  const char* words = "";
};

/// Reads the RectangularGeometry of an Opening; nothing when it has none or lacks a value, a
/// coordinate is no number, or a side is not positive.
std::optional<qv_opening_rectangle> qv_read_opening_rectangle(qv_gbxml_context& context,
                                                              qv_xml_element opening);

/// The places that the rectangle may have in a face with outward normal `face.normal`, the
/// likeliest first. Corners counter-clockwise about that normal.
///
/// gbXML wants the distances of its lower left corner, seen from outside, from the surface's lower
/// left corner, and neither Azimuth nor Tilt. Programs that do write these mean points of the
/// model: the lower left corner, or the middle. `origin` was taken off the model's coordinates.
std::vector<qv_rectangle_place> qv_place_opening_rectangle(const qv_opening_rectangle& rectangle,
                                                           const qv_plane_part& face,
                                                           const qv_double3& origin);

}  // namespace qv
