#include "utilities/qv_solid.h"

#include <cmath>
#include <memory>
#include <optional>
#include <utility>

#include "utilities/qv_plane_projection.h"
#include "utilities/qv_tolerances.h"

namespace qv {

namespace {

double dot(const qv_3dvector& u, const qv_3dvector& v) {
  return static_cast<double>(u.x) * v.x + static_cast<double>(u.y) * v.y +
         static_cast<double>(u.z) * v.z;
}

qv_polygon get_moved(const qv_polygon& polygon, const qv_3dvector& by) {
  qv_polygon moved(polygon.get_point() + by, polygon.get_normal());
  for (int i = 0; i < polygon.get_contour_count(); ++i) {
    qv_list<qv_3dvector> contour = polygon.get_contour(i);
    for (qv_3dvector& vertex : contour) vertex += by;
    moved.add_contour(contour);
  }
  return moved;
}

// Six times the volume between the contour and the reference point.
double get_cone(const qv_list<qv_3dvector>& contour, const qv_3dvector& reference) {
  struct arm {
    double x, y, z;
  };
  const auto from_reference = [&reference](const qv_3dvector& p) {
    return arm{static_cast<double>(p.x) - reference.x, static_cast<double>(p.y) - reference.y,
               static_cast<double>(p.z) - reference.z};
  };
  double sum = 0;
  const arm first = from_reference(contour[0]);
  for (int i = 1; i + 1 < contour.get_count(); ++i) {
    const arm p = from_reference(contour[i]);
    const arm q = from_reference(contour[i + 1]);
    sum += first.x * (p.y * q.z - p.z * q.y) + first.y * (p.z * q.x - p.x * q.z) +
           first.z * (p.x * q.y - p.y * q.x);
  }
  return sum;
}

}  // namespace

qv_solid::qv_solid() = default;

qv_solid::qv_solid(const qv_solid& other) {
  for (const qv_polygon* face : other.faces_) add_face(*face);
}

qv_solid& qv_solid::operator=(const qv_solid& other) {
  if (this != &other) {
    qv_solid copy(other);
    faces_.swap(copy.faces_);
  }
  return *this;
}

qv_solid::~qv_solid() {
  clear();
}

void qv_solid::extrusion(const qv_polygon& base, const qv_3dvector& direction) {
  plane::projection projection(base);
  const plane::region pieces = projection.get_region(base);
  const double height = dot(base.get_normal(), direction);
  qv_polygon floor = base;
  clear();
  if (pieces.empty() || !direction.is_finite() || !(std::fabs(height) > tolerance::repeated_point))
    return;

  projection.write(pieces, floor);
  // From here on the direction leaves the side that the normal points to.
  if (height < 0) floor.reverse();
  const qv_polygon ceiling = get_moved(floor, direction);
  qv_polygon underside = floor;
  underside.reverse();
  add_face(underside);
  add_face(ceiling);
  for (int i = 0; i < floor.get_contour_count(); ++i) {
    const qv_list<qv_3dvector> contour = floor.get_contour(i);
    for (int j = 0; j < contour.get_count(); ++j) {
      const qv_3dvector& p = contour[j];
      const qv_3dvector& q = contour[(j + 1) % contour.get_count()];
      qv_polygon side(p, (q - p).cross(direction));
      side.add_contour({p, q, q + direction, p + direction});
      add_face(side);
    }
  }
}

const qv_list<qv_polygon*>& qv_solid::get_faces() const {
  return faces_;
}

void qv_solid::add_face(const qv_polygon& face) {
  faces_.append(std::make_unique<qv_polygon>(face).release());
}

void qv_solid::clear() {
  for (const qv_polygon* face : faces_) delete face;
  faces_.clear();
}

double qv_solid::get_volume() const {
  double sum = 0;
  std::optional<qv_3dvector> reference;
  for (const qv_polygon* face : faces_) {
    plane::projection projection(*face);
    const plane::region pieces = projection.get_region(*face);
    if (!pieces.empty() && !reference) reference = projection.to_space(pieces[0].outer[0]);
    for (const plane::part& piece : pieces) {
      sum += get_cone(projection.to_space(piece.outer), *reference);
      for (const plane::ring& hole : piece.holes)
        sum += get_cone(projection.to_space(hole), *reference);
    }
  }
  return sum / 6;
}

}  // namespace qv
