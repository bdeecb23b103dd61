#include <cmath>
#include <iterator>
#include <optional>
#include <utility>

#include "utilities/qv_plain_difference.h"
#include "utilities/qv_plane_projection.h"
#include "utilities/qv_plane_snap.h"
#include "utilities/qv_polygon.h"
#include "utilities/qv_polygon_overlay.h"
#include "utilities/qv_tolerances.h"

namespace qv {

namespace {

using plane::boolean_operation;

bool is_apart(const plane::bounds& p, const plane::bounds& q) {
  constexpr double gap = tolerance::vertex_snap;
  return p.max_a + gap < q.min_a || q.max_a + gap < p.min_a || p.max_b + gap < q.min_b ||
         q.max_b + gap < p.min_b;
}

plane::region combine(boolean_operation operation, plane::region left, plane::region right) {
  if (left.empty() || right.empty() ||
      is_apart(plane::get_bounds(left), plane::get_bounds(right))) {
    if (operation == boolean_operation::intersect) return {};
    if (operation == boolean_operation::unite)
      left.insert(left.end(), std::make_move_iterator(right.begin()),
                  std::make_move_iterator(right.end()));
    return left;
  }
  plane::snap(left, right);
  std::optional<plane::region> plain;
  if (operation == boolean_operation::subtract) plain = plane::subtract_plainly(left, right);
  plane::region result = plain ? *std::move(plain) : plane::overlay(operation, left, right);
  plane::drop_slivers(result);
  return result;
}

void operate(boolean_operation operation, qv_polygon& polygon, const qv_polygon& other) {
  plane::projection projection(polygon);
  plane::region left = projection.get_region(polygon);
  plane::region right = projection.get_region(other);
  plane::region result = combine(operation, std::move(left), std::move(right));
  projection.find_sources(result);
  projection.write(result, polygon);
}

}  // namespace

void qv_polygon::unites(const qv_polygon& other) {
  if (normal_ == qv_3dvector()) {
    normal_ = other.normal_;
    point_ = other.point_;
  }
  operate(boolean_operation::unite, *this, other);
}

void qv_polygon::intersects(const qv_polygon& other) {
  operate(boolean_operation::intersect, *this, other);
}

void qv_polygon::substracts(const qv_polygon& other) {
  operate(boolean_operation::subtract, *this, other);
}

void qv_polygon::offset(float distance, int join) {
  if (!(std::fabs(distance) <= tolerance::largest_coordinate)) return;
  plane::projection projection(*this);
  plane::region pieces = projection.get_region(*this);
  if (distance != 0 && !pieces.empty()) {
    pieces = plane::overlay_offset(pieces, distance, join);
    plane::drop_slivers(pieces);
  }
  projection.write(pieces, *this);
}

}  // namespace qv
