#include "utilities/qv_plane_projection.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "utilities/qv_point_grid.h"
#include "utilities/qv_tolerances.h"

namespace qv::plane {

namespace {

// Steps between neighbouring floats by which the coordinates of a vertex in a plane may miss it.
constexpr double float_steps_off_plane = 4;

bool is_geometry(const qv_3dvector& v) {
  return std::fabs(v.x) <= tolerance::largest_coordinate &&
         std::fabs(v.y) <= tolerance::largest_coordinate &&
         std::fabs(v.z) <= tolerance::largest_coordinate;
}

qv_3dvector get_origin(const qv_polygon& receiver) {
  for (const qv_3dvector& vertex : receiver.get_contour_vertices())
    if (is_geometry(vertex)) return vertex;
  return receiver.get_point();
}

bool is_repeated(const point& p, const point& q) {
  constexpr double limit = tolerance::repeated_point;
  return (p.a - q.a) * (p.a - q.a) + (p.b - q.b) * (p.b - q.b) < limit * limit;
}

template <class Function>
void for_each_point(region& pieces, Function function) {
  for (part& piece : pieces) {
    for (point& p : piece.outer) function(p);
    for (ring& hole : piece.holes)
      for (point& p : hole) function(p);
  }
}

// The contours of `operand` in the frame, without those that enclose nothing. `number_of` numbers
// the vertex that a point stands for.
template <class Numbering>
std::vector<ring> make_contours(const qv_polygon& operand, const qv_plane_frame& frame,
                                Numbering number_of) {
  std::vector<ring> contours;
  contours.reserve(static_cast<std::size_t>(operand.get_contour_count()));
  const qv_3dvector* vertex = operand.get_contour_vertices().begin();
  for (const unsigned int size : operand.get_contour_sizes()) {
    const qv_3dvector* const first = vertex;
    vertex += size;
    if (size < 3 || !std::all_of(first, vertex, is_geometry)) continue;
    ring contour;
    contour.reserve(size);
    for (const qv_3dvector* v = first; v != vertex; ++v) {
      point p;
      frame.to_plane(*v, p.a, p.b);
      if (!contour.empty() && is_repeated(contour.back(), p)) continue;
      p.source = number_of(*v);
      contour.push_back(p);
    }
    while (contour.size() > 1 && is_repeated(contour.front(), contour.back())) contour.pop_back();
    if (contour.size() >= 3) contours.push_back(std::move(contour));
  }
  return contours;
}

}  // namespace

region get_own_region(const qv_polygon& polygon) {
  const qv_plane_frame frame(get_origin(polygon), polygon.get_normal());
  if (!frame.is_valid()) return {};
  return normalise(make_contours(polygon, frame, [](const qv_3dvector&) { return -1; }));
}

projection::projection(const qv_polygon& receiver)
    : receiver_(receiver), frame_(get_origin(receiver), receiver.get_normal()) {}

region projection::get_region(const qv_polygon& operand) {
  if (!frame_.is_valid()) return {};
  region pieces = normalise(get_contours(operand));
  find_sources(pieces);
  return pieces;
}

void projection::find_sources(region& pieces) const {
  std::optional<point_grid> known;
  for_each_point(pieces, [&](point& p) {
    if (p.source >= 0) return;
    if (!known) known.emplace(known_points_);
    if (const point* nearest = known->find_nearest(p.a, p.b)) p.source = nearest->source;
  });
}

void projection::adopt_new_points(region& pieces) {
  for_each_point(pieces, [&](point& p) {
    if (p.source >= 0) return;
    vertices_.push_back(frame_.to_space(p.a, p.b));
    p.source = static_cast<int>(vertices_.size()) - 1;
  });
}

qv_list<qv_3dvector> projection::to_space(const ring& contour) const {
  qv_list<qv_3dvector> vertices;
  vertices.reserve(static_cast<int>(contour.size()));
  for (const point& p : contour) {
    const qv_3dvector vertex = to_space(p);
    if (vertices.is_empty() || !(vertices[vertices.get_count() - 1] == vertex))
      vertices.append(vertex);
  }
  while (vertices.get_count() > 1 && vertices[vertices.get_count() - 1] == vertices[0])
    vertices.resize(vertices.get_count() - 1);
  return vertices;
}

void projection::write(const region& pieces, qv_polygon& polygon) const {
  polygon.clear();
  for (const part& piece : pieces) {
    const qv_list<qv_3dvector> outer = to_space(piece.outer);
    if (outer.get_count() < 3) continue;
    polygon.add_contour(outer);
    for (const ring& hole : piece.holes) {
      const qv_list<qv_3dvector> contour = to_space(hole);
      if (contour.get_count() >= 3) polygon.add_contour(contour);
    }
  }
}

std::vector<ring> projection::get_contours(const qv_polygon& operand) {
  const bool is_receiver = &operand == &receiver_;
  std::vector<ring> contours = make_contours(operand, frame_, [&](const qv_3dvector& vertex) {
    if (!is_receiver && !is_in_plane(vertex)) return -1;
    vertices_.push_back(vertex);
    return static_cast<int>(vertices_.size()) - 1;
  });
  for (const ring& contour : contours)
    for (const point& p : contour)
      if (p.source >= 0) known_points_.push_back(p);
  return contours;
}

bool projection::is_in_plane(const qv_3dvector& vertex) const {
  const double coordinate =
      std::max({std::fabs(vertex.x), std::fabs(vertex.y), std::fabs(vertex.z)});
  const double step = coordinate * std::numeric_limits<float>::epsilon();
  return std::fabs(frame_.get_height(vertex)) <=
         std::max(tolerance::plane_distance, float_steps_off_plane * step);
}

}  // namespace qv::plane
