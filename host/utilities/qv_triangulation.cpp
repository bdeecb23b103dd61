#include "utilities/qv_triangulation.h"

#include <GL/glu.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <memory>
#include <utility>
#include <vector>

#include "utilities/qv_ear_clipping.h"
#include "utilities/qv_log.h"
#include "utilities/qv_plane_projection.h"
#include "utilities/qv_polygon.h"

namespace qv {

namespace {

using plane::point;
using plane::triangle;

// A triangle whose height is a smaller share of its longest side has no area but for rounding.
constexpr double flat_triangle = 1e-12;
// Share of the rectangle around a part by which the areas of its triangles may miss its own.
constexpr double area_rounding = 1e-10;

double get_area(const triangle& t) {
  const point& p = t.corners[0];
  const point& q = t.corners[1];
  const point& r = t.corners[2];
  return ((q.a - p.a) * (r.b - p.b) - (q.b - p.b) * (r.a - p.a)) / 2;
}

double get_area(const std::vector<triangle>& triangles) {
  double sum = 0;
  for (const triangle& t : triangles) sum += std::fabs(get_area(t));
  return sum;
}

bool is_flat(const triangle& t) {
  double longest = 0;
  for (int i = 0; i < 3; ++i) {
    const point& p = t.corners[i];
    const point& q = t.corners[(i + 1) % 3];
    longest = std::max(longest, (q.a - p.a) * (q.a - p.a) + (q.b - p.b) * (q.b - p.b));
  }
  return 2 * std::fabs(get_area(t)) <= flat_triangle * longest;
}

std::vector<triangle> get_fan(const plane::ring& contour) {
  std::vector<triangle> triangles;
  triangles.reserve(contour.size() - 2);
  for (std::size_t i = 1; i + 1 < contour.size(); ++i)
    triangles.push_back({{contour[0], contour[i], contour[i + 1]}});
  return triangles;
}

// What the tessellator's callbacks work on: points have fixed addresses until it is done.
struct tessellation {
  std::deque<point> points;
  std::vector<point> corners;
  bool failed = false;
};

void on_vertex(void* vertex, void* data) {
  static_cast<tessellation*>(data)->corners.push_back(*static_cast<const point*>(vertex));
}

// Its presence makes the tessellator yield plain triangles instead of strips and fans.
void on_edge_flag(GLboolean, void*) {}

void on_combine(GLdouble at[3], void* merged[4], GLfloat*, void** result, void* data) {
  point combined{at[0], at[1]};
  for (int i = 0; i < 4; ++i) {
    const point* p = static_cast<const point*>(merged[i]);
    if (p != nullptr && p->a == combined.a && p->b == combined.b) combined = *p;
  }
  auto& points = static_cast<tessellation*>(data)->points;
  points.push_back(combined);
  *result = &points.back();
}

void on_error(GLenum, void* data) {
  static_cast<tessellation*>(data)->failed = true;
}

struct tessellator_deleter {
  void operator()(GLUtesselator* tessellator) const { gluDeleteTess(tessellator); }
};

void add_contour(GLUtesselator* tessellator, tessellation& work, const plane::ring& contour) {
  gluTessBeginContour(tessellator);
  for (const point& p : contour) {
    work.points.push_back(p);
    GLdouble coordinates[] = {p.a, p.b, 0};
    gluTessVertex(tessellator, coordinates, &work.points.back());
  }
  gluTessEndContour(tessellator);
}

std::vector<triangle> tessellate(const plane::part& piece) {
  using callback = void (*)();
  const std::unique_ptr<GLUtesselator, tessellator_deleter> tessellator(gluNewTess());
  if (!tessellator) return {};
  GLUtesselator* const tess = tessellator.get();
  gluTessCallback(tess, GLU_TESS_VERTEX_DATA, reinterpret_cast<callback>(on_vertex));
  gluTessCallback(tess, GLU_TESS_EDGE_FLAG_DATA, reinterpret_cast<callback>(on_edge_flag));
  gluTessCallback(tess, GLU_TESS_COMBINE_DATA, reinterpret_cast<callback>(on_combine));
  gluTessCallback(tess, GLU_TESS_ERROR_DATA, reinterpret_cast<callback>(on_error));
  gluTessProperty(tess, GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_ODD);
  gluTessNormal(tess, 0, 0, 1);

  tessellation work;
  gluTessBeginPolygon(tess, &work);
  add_contour(tess, work, piece.outer);
  for (const plane::ring& hole : piece.holes) add_contour(tess, work, hole);
  gluTessEndPolygon(tess);

  std::vector<triangle> triangles;
  if (work.failed) return triangles;
  triangles.reserve(work.corners.size() / 3);
  for (std::size_t i = 0; i + 2 < work.corners.size(); i += 3)
    triangles.push_back({{work.corners[i], work.corners[i + 1], work.corners[i + 2]}});
  return triangles;
}

double get_miss(const std::vector<triangle>& triangles, double area) {
  return std::fabs(get_area(triangles) - area);
}

std::vector<triangle> triangulate(const plane::part& piece) {
  if (piece.holes.empty() && plane::is_strictly_convex(piece.outer)) return get_fan(piece.outer);
  const double area = plane::area(piece);
  const plane::bounds box = plane::get_bounds(piece.outer);
  const double allowed = area_rounding * (box.max_a - box.min_a) * (box.max_b - box.min_b);
  std::vector<triangle> triangles = tessellate(piece);
  if (get_miss(triangles, area) <= allowed) return triangles;
  std::vector<triangle> ears = plane::clip_ears(piece);
  if (get_miss(ears, area) < get_miss(triangles, area)) triangles = std::move(ears);
  if (get_miss(triangles, area) > allowed)
    qv_log_thread_safe("polygon triangulated with an area of %g m2 instead of %g m2",
                       get_area(triangles), area);
  return triangles;
}

bool has_area(const qv_3dvector& p, const qv_3dvector& q, const qv_3dvector& r) {
  const double ux = static_cast<double>(q.x) - p.x, vx = static_cast<double>(r.x) - p.x;
  const double uy = static_cast<double>(q.y) - p.y, vy = static_cast<double>(r.y) - p.y;
  const double uz = static_cast<double>(q.z) - p.z, vz = static_cast<double>(r.z) - p.z;
  return uy * vz != uz * vy || uz * vx != ux * vz || ux * vy != uy * vx;
}

// Collects triangles, each vertex once.
class triangle_list {
 public:
  explicit triangle_list(const plane::projection& projection) : projection_(projection) {}

  void add(const triangle& t) {
    const bool turned = get_area(t) < 0;
    const point& first = t.corners[0];
    const point& second = t.corners[turned ? 2 : 1];
    const point& third = t.corners[turned ? 1 : 2];
    if (is_flat(t) || !has_area(projection_.to_space(first), projection_.to_space(second),
                                projection_.to_space(third)))
      return;
    for (const point* p : {&first, &second, &third}) result_.triangles.append(get_index(*p));
  }
  qv_triangulation take() { return std::move(result_); }

 private:
  int get_index(const point& p) {
    if (p.source < 0) return append(p);
    const auto source = static_cast<std::size_t>(p.source);
    if (source >= index_of_source_.size()) index_of_source_.resize(source + 1, -1);
    int& index = index_of_source_[source];
    if (index < 0) index = append(p);
    return index;
  }
  int append(const point& p) {
    result_.vertices.append(projection_.to_space(p));
    return result_.vertices.get_count() - 1;
  }

  const plane::projection& projection_;
  qv_triangulation result_;
  std::vector<int> index_of_source_;
};

}  // namespace

qv_triangulation qv_triangulate(const qv_polygon& polygon) {
  plane::projection projection(polygon);
  plane::region pieces = projection.get_region(polygon);
  projection.adopt_new_points(pieces);
  triangle_list triangles(projection);
  for (const plane::part& piece : pieces)
    for (const triangle& t : triangulate(piece)) triangles.add(t);
  return triangles.take();
}

}  // namespace qv
