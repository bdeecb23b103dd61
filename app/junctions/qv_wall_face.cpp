#include "app/junctions/qv_wall_face.h"

#include <algorithm>
#include <cmath>

namespace qv {

namespace {

/// m²; what encloses less is no wall.
constexpr double least_area = 1e-6;

bool is_finite(const qv_double3& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

}  // namespace

qv_wall_face::qv_wall_face(const qv_wall_outline& outline) {
  qv_double3 sum;
  double count = 0;
  bool first = true;
  qv_double3 doubled_area;
  for (const auto& contour : outline.contours) {
    for (std::size_t i = 0; i < contour.size(); ++i) {
      const qv_double3& a = contour[i];
      if (!is_finite(a)) {
        box_ = {};
        return;
      }
      if (first) {
        point_ = a;
        box_ = {a, a};
        first = false;
      }
      box_ = {min(box_.low, a), max(box_.high, a)};
      sum = sum + (a - point_);
      ++count;
      doubled_area = doubled_area + cross(a - point_, contour[(i + 1) % contour.size()] - point_);
    }
  }
  if (!is_finite(doubled_area) || length(doubled_area) < 2 * least_area) {
    box_ = {};
    return;
  }
  has_area_ = true;
  normal_ = normalized(doubled_area);
  middle_ = point_ + sum * (1 / count);
  const qv_double3 helper = std::abs(normal_.z) < 0.9 ? qv_double3(0, 0, 1) : qv_double3(1, 0, 0);
  axis_u_ = normalized(cross(helper, normal_));
  axis_v_ = cross(normal_, axis_u_);
  for (const auto& contour : outline.contours) {
    auto& flat = contours_.emplace_back();
    flat.reserve(contour.size());
    for (const qv_double3& p : contour) flat.push_back(flatten(p));
  }
}

qv_wall_face::flat_point qv_wall_face::flatten(const qv_double3& p) const {
  return {dot(p - point_, axis_u_), dot(p - point_, axis_v_)};
}

void qv_wall_face::find_crossings(const qv_double3& from, const qv_double3& to, double gap,
                                  double largest_sine, std::vector<double>& crossings) const {
  crossings.clear();
  const double height = dot(from - point_, normal_);
  const double rise = dot(to - point_, normal_) - height;
  if (std::abs(rise) > largest_sine * length(to - from)) return;
  double begin = 0;
  double end = 1;
  if (std::abs(height) > gap || std::abs(height + rise) > gap) {
    if (rise == 0) return;
    const double low = (-gap - height) / rise;
    const double high = (gap - height) / rise;
    begin = std::max(begin, std::min(low, high));
    end = std::min(end, std::max(low, high));
    if (begin >= end) return;
  }
  const flat_point a = flatten(from);
  const flat_point b = flatten(to);
  const double way_u = b.u - a.u;
  const double way_v = b.v - a.v;
  const double square = way_u * way_u + way_v * way_v;
  if (square == 0) return;
  for (const auto& contour : contours_) {
    for (std::size_t i = 0; i < contour.size(); ++i) {
      const flat_point& p = contour[i];
      const flat_point& q = contour[(i + 1) % contour.size()];
      const double side_p = way_u * (p.v - a.v) - way_v * (p.u - a.u);
      const double side_q = way_u * (q.v - a.v) - way_v * (q.u - a.u);
      if ((side_p > 0) == (side_q > 0)) continue;
      const double share = side_p / (side_p - side_q);
      const double u = p.u + share * (q.u - p.u) - a.u;
      const double v = p.v + share * (q.v - p.v) - a.v;
      crossings.push_back(std::clamp((u * way_u + v * way_v) / square, begin, end));
    }
  }
  std::sort(crossings.begin(), crossings.end());
}

double qv_wall_face::get_lean(const qv_double3& place, const qv_double3& direction) const {
  return dot(middle_ - place, direction);
}

}  // namespace qv
