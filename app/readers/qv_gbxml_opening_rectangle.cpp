#include "app/readers/qv_gbxml_opening_rectangle.h"

#include <algorithm>
#include <limits>
#include <numbers>
#include <utility>

namespace {

using qv::qv_double3;
using qv::qv_loop;

// Horizontal part of a unit normal under which a face lies and "right" needs a convention.
constexpr double lying = 1e-3;

// What is right and up on a face, seen from outside.
struct face_axes {
  qv_double3 right;
  qv_double3 up;
};

face_axes axes_of(const qv_double3& normal) {
  const double level_part = std::hypot(normal.x, normal.y);
  // A lying face is looked at from the south, as if it were a south wall that was laid down.
  const qv_double3 right = level_part > lying
                               ? qv_double3{-normal.y / level_part, normal.x / level_part, 0}
                               : qv_double3{1, 0, 0};
  return {right, normal.cross(right)};
}

qv_loop rectangle_at(const qv_double3& corner, const face_axes& axes, double width, double height) {
  const qv_double3 along = axes.right * width;
  const qv_double3 up = axes.up * height;
  return {corner, corner + along, corner + along + up, corner + up};
}

// Lower left corner of the face's extent, in its plane.
qv_double3 lower_left(const qv::qv_plane_part& face, const face_axes& axes) {
  const qv_double3 anchor = face.contours[0][0];
  double left = std::numeric_limits<double>::infinity();
  double low = left;
  for (const qv_loop& contour : face.contours)
    for (const qv_double3& p : contour) {
      left = std::min(left, (p - anchor).dot(axes.right));
      low = std::min(low, (p - anchor).dot(axes.up));
    }
  return anchor + axes.right * left + axes.up * low;
}

}  // namespace

namespace qv {

std::optional<qv_opening_rectangle> qv_read_opening_rectangle(qv_gbxml_context& context,
                                                              qv_xml_element opening) {
  const qv_xml_element element = opening.get_child("RectangularGeometry");
  if (!element) return std::nullopt;
  const double factor = context.get_unit(element, qv_quantity::length).factor;
  const auto angle = [&element](const char* name) -> std::optional<double> {
    const auto degrees = qv_gbxml_context::parse_number(element.get_child_text(name));
    if (!degrees) return std::nullopt;
    return *degrees * std::numbers::pi / 180;
  };
  const auto width = context.read_measure(element.get_child("Width"), qv_quantity::length);
  const auto height = context.read_measure(element.get_child("Height"), qv_quantity::length);
  if (!width || !height || *width <= 0 || *height <= 0) return std::nullopt;
  qv_opening_rectangle result;
  result.width = *width;
  result.height = *height;
  result.azimuth = angle("Azimuth");
  result.tilt = angle("Tilt");
  for (const qv_xml_element child : element.get_child("CartesianPoint")) {
    if (!child.is("Coordinate")) continue;
    const auto number = qv_gbxml_context::parse_number(child.get_text());
    if (!number) return std::nullopt;
    result.point.push_back(*number * factor);
  }
  if (result.point.size() != 2 && result.point.size() != 3) return std::nullopt;
  return result;
}

std::vector<qv_rectangle_place> qv_place_opening_rectangle(const qv_opening_rectangle& rectangle,
                                                           const qv_plane_part& face,
                                                           const qv_double3& origin) {
  std::vector<qv_rectangle_place> places;
  const face_axes axes = axes_of(face.normal);
  const auto& p = rectangle.point;
  if (rectangle.azimuth && rectangle.tilt && p.size() == 3) {
    const double a = *rectangle.azimuth;
    const double t = *rectangle.tilt;
    const qv_double3 normal = {std::sin(a) * std::sin(t), std::cos(a) * std::sin(t), std::cos(t)};
    const qv_double3 right = {-std::cos(a), std::sin(a), 0};
    const face_axes own = {right, normal.cross(right)};
    const qv_double3 point = qv_double3{p[0], p[1], p[2]} - origin;
    places.push_back({rectangle_at(point, own, rectangle.width, rectangle.height),
                      "its point is its lower left corner in the model"});
    const qv_double3 half = own.right * (rectangle.width / 2) + own.up * (rectangle.height / 2);
    places.push_back({rectangle_at(point - half, own, rectangle.width, rectangle.height),
                      "its point is its middle in the model"});
  }
  const qv_double3 corner = lower_left(face, axes) + axes.right * p[0] + axes.up * p[1];
  places.push_back({rectangle_at(corner, axes, rectangle.width, rectangle.height),
                    "its point is measured from its Surface's lower left corner"});
  return places;
}

}  // namespace qv
