#include "app/readers/qv_gbxml_geometry.h"

#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <utility>

namespace {

using qv::qv_double3;
using qv::qv_gbxml_context;
using qv::qv_loop;
using qv::qv_quantity;
using qv::qv_xml_element;

// Room for the corners of most surfaces.
constexpr std::size_t usual_corner_count = 8;

// Reads a CartesianPoint; returns what is wrong with it, or an empty text.
std::string read_point(qv_xml_element point, double factor, qv_double3& result) {
  std::array<double, 3> c{};
  std::size_t count = 0;
  for (const qv_xml_element child : point) {
    if (!child.is("Coordinate")) continue;
    const auto number = qv_gbxml_context::parse_number(child.get_text());
    if (!number)
      return "a coordinate is \"" + qv::qv_one_line(std::string(child.get_text()), 40) +
             "\", which is no number";
    if (count < c.size()) c[count] = *number * factor;
    ++count;
  }
  if (count != c.size())
    return "a point has " + std::to_string(count) + " coordinates instead of three";
  result = {c[0], c[1], c[2]};
  return {};
}

void build_rectangle(qv_gbxml_context& context, qv_xml_element rectangle,
                     qv::qv_read_polygon& result) {
  const double factor = context.get_unit(rectangle, qv_quantity::length).factor;
  const auto angle = [&rectangle](const char* name) {
    const auto degrees = qv_gbxml_context::parse_number(rectangle.get_child_text(name));
    return degrees ? std::optional(*degrees * std::numbers::pi / 180) : std::nullopt;
  };
  const auto azimuth = angle("Azimuth");
  const auto tilt = angle("Tilt");
  const auto width = context.read_measure(rectangle.get_child("Width"), qv_quantity::length);
  const auto height = context.read_measure(rectangle.get_child("Height"), qv_quantity::length);
  qv_double3 corner;
  const std::string fault = read_point(rectangle.get_child("CartesianPoint"), factor, corner);
  if (!azimuth || !tilt || !width || !height || !fault.empty()) {
    result.fault = "it has no PlanarGeometry, and its RectangularGeometry lacks a value";
    return;
  }
  const qv_double3 normal = {std::sin(*azimuth) * std::sin(*tilt),
                             std::cos(*azimuth) * std::sin(*tilt), std::cos(*tilt)};
  const qv_double3 right = {-std::cos(*azimuth), std::sin(*azimuth), 0};
  const qv_double3 along = right * *width;
  const qv_double3 up = normal.cross(right) * *height;
  result.points = {corner, corner + along, corner + along + up, corner + up};
  result.repair = "built from its RectangularGeometry";
}

bool has_point(qv_xml_element planar) {
  return static_cast<bool>(planar.get_child("PolyLoop").get_child("CartesianPoint"));
}

}  // namespace

namespace qv {

std::string qv_read_poly_loop(qv_xml_element poly_loop, double factor, qv_loop& points) {
  for (const qv_xml_element child : poly_loop) {
    if (!child.is("CartesianPoint")) continue;
    qv_double3 point;
    if (std::string fault = read_point(child, factor, point); !fault.empty()) return fault;
    points.push_back(point);
  }
  return {};
}

qv_read_polygon qv_read_surface_polygon(qv_gbxml_context& context, qv_xml_element surface) {
  qv_xml_element planar;
  qv_xml_element rectangle;
  for (const qv_xml_element child : surface) {
    const std::string_view name = child.get_name();
    if (!planar && name.starts_with("Planar")) planar = child;
    if (!rectangle && name == "RectangularGeometry") rectangle = child;
  }
  return qv_read_surface_polygon(context, planar, rectangle);
}

qv_read_polygon qv_read_surface_polygon(qv_gbxml_context& context, qv_xml_element planar,
                                        qv_xml_element rectangle) {
  qv_read_polygon result;
  if (!planar || !has_point(planar)) {
    if (rectangle) {
      build_rectangle(context, rectangle, result);
    } else {
      result.fault = "it has no geometry";
    }
    return result;
  }
  const qv_xml_element loop = planar.get_child("PolyLoop");
  const double factor = context.get_unit(planar, qv_quantity::length).factor;
  result.points.reserve(usual_corner_count);
  result.fault = qv_read_poly_loop(loop, factor, result.points);
  if (!result.fault.empty()) return result;
  for (qv_xml_element next = loop.get_next(); next; next = next.get_next()) {
    if (!next.is("PolyLoop")) continue;
    qv_loop points;
    const std::string fault = qv_read_poly_loop(next, factor, points);
    if (fault.empty()) {
      result.further.push_back(std::move(points));
    } else {
      result.repair = "a further loop was left out: " + fault;
    }
  }
  return result;
}

}  // namespace qv
