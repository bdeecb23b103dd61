#include "utilities/qv_polygon_overlay.h"

#include <geos_c.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "utilities/qv_log.h"

namespace qv::plane {

namespace {

// Segments that replace a quarter of a circle in a round join: the area of a full circle is off by
// 0.16 %.
constexpr int quadrant_segments = 16;
// A mitre longer than this many times the distance is cut off; only corners below 6° have one.
constexpr double mitre_limit = 20;
// A square corner is a mitre that is cut off at the distance itself.
constexpr double square_limit = 1;
// m; the grid of the last attempt at an overlay, below every tolerance.
constexpr double rounding_grid = 1e-7;

// The library wants a context for each thread that calls it.
class overlay_context {
 public:
  overlay_context() : handle_(GEOS_init_r()) {}
  ~overlay_context() { GEOS_finish_r(handle_); }
  overlay_context(const overlay_context&) = delete;
  overlay_context& operator=(const overlay_context&) = delete;
  GEOSContextHandle_t get() const { return handle_; }

 private:
  GEOSContextHandle_t handle_;
};

GEOSContextHandle_t context() {
  thread_local const overlay_context instance;
  return instance.get();
}

struct geometry_deleter {
  void operator()(GEOSGeometry* geometry) const { GEOSGeom_destroy_r(context(), geometry); }
};
using geometry = std::unique_ptr<GEOSGeometry, geometry_deleter>;

struct buffer_deleter {
  void operator()(GEOSBufferParams* parameters) const {
    GEOSBufferParams_destroy_r(context(), parameters);
  }
};

// Hands a list of geometries over to a collection, which owns them from then on.
geometry make_collection(int type, std::vector<geometry>& members) {
  std::vector<GEOSGeometry*> pointers;
  pointers.reserve(members.size());
  for (geometry& member : members) {
    if (!member) return nullptr;
    pointers.push_back(member.get());
  }
  geometry result(GEOSGeom_createCollection_r(context(), type, pointers.data(),
                                              static_cast<unsigned int>(pointers.size())));
  for (geometry& member : members) static_cast<void>(member.release());
  return result;
}

// Closed by repeating the first point, as the library wants it.
GEOSCoordSequence* make_coordinates(const ring& contour) {
  std::vector<double> pairs;
  pairs.reserve(2 * contour.size() + 2);
  for (const point& p : contour) {
    pairs.push_back(p.a);
    pairs.push_back(p.b);
  }
  pairs.push_back(contour.front().a);
  pairs.push_back(contour.front().b);
  return GEOSCoordSeq_copyFromBuffer_r(context(), pairs.data(),
                                       static_cast<unsigned int>(contour.size() + 1), 0, 0);
}

geometry make_ring(const ring& contour) {
  GEOSCoordSequence* coordinates = make_coordinates(contour);
  if (coordinates == nullptr) return nullptr;
  return geometry(GEOSGeom_createLinearRing_r(context(), coordinates));
}

geometry make_polygon(const part& piece) {
  geometry outer = make_ring(piece.outer);
  if (!outer) return nullptr;
  std::vector<geometry> holes;
  std::vector<GEOSGeometry*> pointers;
  for (const ring& hole : piece.holes) {
    holes.push_back(make_ring(hole));
    if (!holes.back()) return nullptr;
    pointers.push_back(holes.back().get());
  }
  for (geometry& hole : holes) static_cast<void>(hole.release());
  return geometry(GEOSGeom_createPolygon_r(context(), outer.release(), pointers.data(),
                                           static_cast<unsigned int>(pointers.size())));
}

geometry make_geometry(const region& pieces) {
  if (pieces.size() == 1) return make_polygon(pieces[0]);
  std::vector<geometry> polygons;
  polygons.reserve(pieces.size());
  for (const part& piece : pieces) polygons.push_back(make_polygon(piece));
  return make_collection(GEOS_MULTIPOLYGON, polygons);
}

ring read_ring(const GEOSGeometry* line, bool counter_clockwise) {
  const GEOSCoordSequence* coordinates = GEOSGeom_getCoordSeq_r(context(), line);
  unsigned int count = 0;
  if (coordinates == nullptr || !GEOSCoordSeq_getSize_r(context(), coordinates, &count) ||
      count < 4)
    return {};
  std::vector<double> pairs(2 * static_cast<std::size_t>(count));
  if (!GEOSCoordSeq_copyToBuffer_r(context(), coordinates, pairs.data(), 0, 0)) return {};
  ring contour;
  contour.reserve(count - 1);
  for (unsigned int i = 0; i + 1 < count; ++i) contour.push_back({pairs[2 * i], pairs[2 * i + 1]});
  if ((signed_area(contour) > 0) != counter_clockwise) std::reverse(contour.begin(), contour.end());
  return contour;
}

// Adds the polygons among `source` and its members; points and lines have no area.
void read_region(const GEOSGeometry* source, region& pieces) {
  const int type = GEOSGeomTypeId_r(context(), source);
  if (type == GEOS_POLYGON) {
    const GEOSGeometry* outer = GEOSGetExteriorRing_r(context(), source);
    if (outer == nullptr) return;
    part piece;
    piece.outer = read_ring(outer, true);
    if (piece.outer.empty()) return;
    const int holes = GEOSGetNumInteriorRings_r(context(), source);
    for (int i = 0; i < holes; ++i) {
      ring hole = read_ring(GEOSGetInteriorRingN_r(context(), source, i), false);
      if (!hole.empty()) piece.holes.push_back(std::move(hole));
    }
    pieces.push_back(std::move(piece));
  } else if (type == GEOS_MULTIPOLYGON || type == GEOS_GEOMETRYCOLLECTION) {
    const int members = GEOSGetNumGeometries_r(context(), source);
    for (int i = 0; i < members; ++i) read_region(GEOSGetGeometryN_r(context(), source, i), pieces);
  }
}

geometry overlay_exactly(boolean_operation operation, const geometry& left, const geometry& right) {
  switch (operation) {
    case boolean_operation::unite:
      return geometry(GEOSUnion_r(context(), left.get(), right.get()));
    case boolean_operation::intersect:
      return geometry(GEOSIntersection_r(context(), left.get(), right.get()));
    case boolean_operation::subtract:
      return geometry(GEOSDifference_r(context(), left.get(), right.get()));
  }
  return nullptr;
}

geometry overlay_rounded(boolean_operation operation, const geometry& left, const geometry& right) {
  switch (operation) {
    case boolean_operation::unite:
      return geometry(GEOSUnionPrec_r(context(), left.get(), right.get(), rounding_grid));
    case boolean_operation::intersect:
      return geometry(GEOSIntersectionPrec_r(context(), left.get(), right.get(), rounding_grid));
    case boolean_operation::subtract:
      return geometry(GEOSDifferencePrec_r(context(), left.get(), right.get(), rounding_grid));
  }
  return nullptr;
}

geometry try_overlay(boolean_operation operation, geometry left, geometry right) {
  if (!left || !right) return nullptr;
  if (geometry result = overlay_exactly(operation, left, right)) return result;
  left.reset(GEOSMakeValid_r(context(), left.get()));
  right.reset(GEOSMakeValid_r(context(), right.get()));
  if (!left || !right) return nullptr;
  if (geometry result = overlay_exactly(operation, left, right)) return result;
  return overlay_rounded(operation, left, right);
}

// The faces into which the contours cut the plane.
geometry get_faces(const std::vector<ring>& contours) {
  std::vector<geometry> lines;
  lines.reserve(contours.size());
  for (const ring& contour : contours) {
    GEOSCoordSequence* coordinates = make_coordinates(contour);
    if (coordinates == nullptr) return nullptr;
    lines.emplace_back(GEOSGeom_createLineString_r(context(), coordinates));
  }
  const geometry all_lines = make_collection(GEOS_MULTILINESTRING, lines);
  if (!all_lines) return nullptr;
  const geometry crossed(GEOSUnaryUnion_r(context(), all_lines.get()));
  if (!crossed) return nullptr;
  const GEOSGeometry* const inputs[] = {crossed.get()};
  return geometry(GEOSPolygonize_r(context(), inputs, 1));
}

bool is_enclosed(const GEOSGeometry* face, const std::vector<ring>& contours) {
  const geometry inner(GEOSPointOnSurface_r(context(), face));
  double a = 0, b = 0;
  return inner && GEOSGeomGetX_r(context(), inner.get(), &a) == 1 &&
         GEOSGeomGetY_r(context(), inner.get(), &b) == 1 && is_inside(contours, a, b);
}

}  // namespace

region overlay(boolean_operation operation, const region& left, const region& right) {
  const geometry result = try_overlay(operation, make_geometry(left), make_geometry(right));
  if (!result) {
    qv_log_thread_safe("polygon overlay failed: the second polygon is left out");
    return operation == boolean_operation::intersect ? region{} : left;
  }
  region pieces;
  read_region(result.get(), pieces);
  return pieces;
}

region overlay_even_odd(const std::vector<ring>& contours) {
  const geometry faces = get_faces(contours);
  if (!faces) {
    qv_log_thread_safe("polygon left out: its contours cannot be separated");
    return {};
  }
  std::vector<geometry> enclosed;
  const int count = GEOSGetNumGeometries_r(context(), faces.get());
  for (int i = 0; i < count; ++i) {
    const GEOSGeometry* face = GEOSGetGeometryN_r(context(), faces.get(), i);
    if (is_enclosed(face, contours)) enclosed.emplace_back(GEOSGeom_clone_r(context(), face));
  }
  region pieces;
  if (enclosed.empty()) return pieces;
  const geometry collection = make_collection(GEOS_GEOMETRYCOLLECTION, enclosed);
  if (!collection) return pieces;
  // Faces on both sides of an edge that counts twice grow together.
  const geometry united(GEOSUnaryUnion_r(context(), collection.get()));
  read_region(united ? united.get() : collection.get(), pieces);
  return pieces;
}

region overlay_offset(const region& pieces, double distance, int join) {
  const geometry source = make_geometry(pieces);
  const std::unique_ptr<GEOSBufferParams, buffer_deleter> parameters(
      GEOSBufferParams_create_r(context()));
  if (!source || !parameters) return {};
  GEOSBufferParams_setJoinStyle_r(context(), parameters.get(),
                                  join == 1 ? GEOSBUF_JOIN_ROUND : GEOSBUF_JOIN_MITRE);
  GEOSBufferParams_setMitreLimit_r(context(), parameters.get(),
                                   join == 0 ? square_limit : mitre_limit);
  GEOSBufferParams_setQuadrantSegments_r(context(), parameters.get(), quadrant_segments);
  const geometry result(
      GEOSBufferWithParams_r(context(), source.get(), parameters.get(), distance));
  if (!result) {
    qv_log_thread_safe("polygon offset by %g failed: nothing is left", distance);
    return {};
  }
  region grown;
  read_region(result.get(), grown);
  return grown;
}

}  // namespace qv::plane
