#pragma once

#include <string>
#include <vector>

#include "app/readers/qv_gbxml_context.h"
#include "app/readers/qv_source_polygon.h"

namespace qv {

/// Reads a PolyLoop into points in metres. Returns what is wrong with a point, in words, or an
/// empty text; the points read so far stay.
std::string qv_read_poly_loop(qv_xml_element poly_loop, double factor, qv_loop& points);

/// Where the polygon of a Surface or Opening came from.
struct qv_read_polygon {
  qv_loop points;
  /// Of further PolyLoops beside the first one, those that could be read.
  std::vector<qv_loop> further;
  /// Why there are no usable points; empty when there are.
  std::string fault;
  /// What was done beyond reading one PolyLoop; empty for the plain case.
  std::string repair;
};

/// The polygon of a Surface or Opening: of its PlanarGeometry (also under a misspelt name that
/// begins with "Planar"), or, when it has none or one without any point, the rectangle of its
/// RectangularGeometry.
///
/// The rectangle's CartesianPoint is its lower left corner seen from outside, its Azimuth the
/// outside's, clockwise from +Y, its Tilt that of the outward normal from the upward vertical.
qv_read_polygon qv_read_surface_polygon(qv_gbxml_context& context, qv_xml_element surface);

/// As above for a caller that goes over the children itself: `planar` is the first child whose name
/// begins with "Planar", `rectangle` the first RectangularGeometry, each null when there is none.
qv_read_polygon qv_read_surface_polygon(qv_gbxml_context& context, qv_xml_element planar,
                                        qv_xml_element rectangle);

}  // namespace qv
