#include "utilities/qv_polygon.h"

#include <GL/gl.h>

#include <algorithm>
#include <cassert>
#include <cmath>

#include "utilities/qv_plane_projection.h"
#include "utilities/qv_triangulation.h"

namespace qv {

namespace {

struct double_vector {
  double x, y, z;
};

double_vector difference(const qv_3dvector& p, const qv_3dvector& q) {
  return {static_cast<double>(p.x) - q.x, static_cast<double>(p.y) - q.y,
          static_cast<double>(p.z) - q.z};
}

double_vector cross(const double_vector& u, const double_vector& v) {
  return {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
}

double square(const double_vector& v) {
  return v.x * v.x + v.y * v.y + v.z * v.z;
}

qv_3dvector unit(const double_vector& v) {
  const double length = std::sqrt(square(v));
  if (!(length > 0) || !std::isfinite(length)) return {};
  return {static_cast<float>(v.x / length), static_cast<float>(v.y / length),
          static_cast<float>(v.z / length)};
}

// A sum of area vectors below this share of the largest of them is rounding: a bow-tie whose halves
// cancel out.
constexpr double cancelled_share = 1e-9;

// Normal of a contour: the sum of the area vectors of its fan, or the largest of them where the
// halves of a crossed contour cancel out. Zero for a contour without area.
qv_3dvector get_contour_normal(const qv_list<qv_3dvector>& vertices) {
  double_vector sum{0, 0, 0};
  double_vector largest{0, 0, 0};
  for (const qv_3dvector& vertex : vertices)
    if (!vertex.is_finite()) return {};
  for (int i = 1; i + 1 < vertices.get_count(); ++i) {
    const double_vector area =
        cross(difference(vertices[i], vertices[0]), difference(vertices[i + 1], vertices[0]));
    sum = {sum.x + area.x, sum.y + area.y, sum.z + area.z};
    if (square(area) > square(largest)) largest = area;
  }
  const bool cancelled = square(sum) <= cancelled_share * cancelled_share * square(largest);
  return unit(cancelled ? largest : sum);
}

bool is_zero(const qv_3dvector& v) {
  return v == qv_3dvector();
}

qv_3dvector to_unit_normal(const qv_3dvector& normal) {
  return normal.is_finite() ? normal.normalized() : qv_3dvector();
}

}  // namespace

qv_polygon::qv_polygon() : normal_(0, 0, 1) {}

qv_polygon::qv_polygon(const qv_3dvector& point, const qv_3dvector& normal)
    : point_(point), normal_(to_unit_normal(normal)) {}

qv_polygon::qv_polygon(const qv_polygon&) = default;
qv_polygon::qv_polygon(qv_polygon&&) noexcept = default;
qv_polygon& qv_polygon::operator=(const qv_polygon&) = default;
qv_polygon& qv_polygon::operator=(qv_polygon&&) noexcept = default;
qv_polygon::~qv_polygon() = default;

void qv_polygon::clear() {
  vertices_.clear();
  sizes_.clear();
}

void qv_polygon::add_contour(const qv_list<qv_3dvector>& vertices) {
  // A copy where the contour is this polygon's own list, which is about to grow.
  if (&vertices == &vertices_) {
    add_contour(qv_list<qv_3dvector>(vertices));
    return;
  }
  if (is_zero(normal_)) {
    normal_ = get_contour_normal(vertices);
    if (!is_zero(normal_)) point_ = vertices[0];
  }
  vertices_.reserve(vertices_.get_count() + vertices.get_count());
  for (const qv_3dvector& vertex : vertices) vertices_.append(vertex);
  sizes_.append(static_cast<unsigned int>(vertices.get_count()));
}

int qv_polygon::get_contour_count() const {
  return sizes_.get_count();
}

qv_list<qv_3dvector> qv_polygon::get_contour(int index) const {
  assert(index >= 0 && index < sizes_.get_count());
  int first = 0;
  for (int i = 0; i < index; ++i) first += static_cast<int>(sizes_[i]);
  const int count = static_cast<int>(sizes_[index]);
  qv_list<qv_3dvector> contour;
  contour.reserve(count);
  for (int i = 0; i < count; ++i) contour.append(vertices_[first + i]);
  return contour;
}

const qv_list<qv_3dvector>& qv_polygon::get_contour_vertices() const {
  return vertices_;
}

const qv_list<unsigned int>& qv_polygon::get_contour_sizes() const {
  return sizes_;
}

const qv_3dvector& qv_polygon::get_point() const {
  return point_;
}

void qv_polygon::set_point(const qv_3dvector& point) {
  point_ = point;
}

const qv_3dvector& qv_polygon::get_normal() const {
  return normal_;
}

void qv_polygon::set_normal(const qv_3dvector& normal) {
  normal_ = to_unit_normal(normal);
}

void qv_polygon::reverse() {
  normal_ = -normal_;
  qv_3dvector* first = vertices_.begin();
  for (const unsigned int size : sizes_) {
    std::reverse(first, first + size);
    first += size;
  }
}

float qv_polygon::get_area() const {
  return static_cast<float>(plane::area(plane::get_own_region(*this)));
}

bool qv_polygon::is_empty() const {
  return sizes_.is_empty() || plane::get_own_region(*this).empty();
}

void qv_polygon::draw_opengl() const {
  const qv_triangulation surface = qv_triangulate(*this);
  if (surface.triangles.is_empty()) return;
  glBegin(GL_TRIANGLES);
  glNormal3f(normal_.x, normal_.y, normal_.z);
  for (const int index : surface.triangles) {
    const qv_3dvector& vertex = surface.vertices[index];
    glVertex3f(vertex.x, vertex.y, vertex.z);
  }
  glEnd();
}

}  // namespace qv
