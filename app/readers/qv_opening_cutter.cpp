#include "app/readers/qv_opening_cutter.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <optional>
#include <utility>

#include "core/shapes/qv_double3.h"

namespace {

using qv::qv_double3;
using qv::qv_polygon;

// m; regions that reach into each other by less only touch.
constexpr double touching = 1e-6;
// m; panes this far from each other and from the face's border are holes without any overlay.
constexpr double clear = 1e-3;
// A contour of more corners is not worth the test for convexity.
constexpr int most_convex_corners = 32;
constexpr double same_share = 0.9;

qv_double3 to_double(const qv::qv_3dvector& v) {
  return {v.x, v.y, v.z};
}

// Extent of a region along two directions of its plane, m.
struct flat_box {
  double low_u = std::numeric_limits<double>::infinity();
  double low_v = std::numeric_limits<double>::infinity();
  double high_u = -std::numeric_limits<double>::infinity();
  double high_v = -std::numeric_limits<double>::infinity();

  bool reaches_into(const flat_box& other, double distance) const {
    return low_u < other.high_u - distance && other.low_u < high_u - distance &&
           low_v < other.high_v - distance && other.low_v < high_v - distance;
  }
};

class plane_axes {
 public:
  explicit plane_axes(const qv_polygon& face) {
    const qv_double3 n = to_double(face.get_normal());
    const qv_double3 helper = std::abs(n.z) < 0.9 ? qv_double3{0, 0, 1} : qv_double3{1, 0, 0};
    const qv_double3 across = helper.cross(n);
    u_ = across * (1 / std::max(across.length(), std::numeric_limits<double>::min()));
    v_ = n.cross(u_);
  }

  flat_box get_box(const qv_polygon& region) const {
    flat_box box;
    for (const qv::qv_3dvector& corner : region.get_contour_vertices()) {
      const double u = to_double(corner).dot(u_);
      const double v = to_double(corner).dot(v_);
      box.low_u = std::min(box.low_u, u);
      box.low_v = std::min(box.low_v, v);
      box.high_u = std::max(box.high_u, u);
      box.high_v = std::max(box.high_v, v);
    }
    return box;
  }

 private:
  qv_double3 u_;
  qv_double3 v_;
};

// A convex face as the half-planes of its edges.
class convex_face {
 public:
  // Nothing for a face that is not convex.
  static std::optional<convex_face> make(const qv_polygon& face) {
    if (face.get_contour_count() != 1) return std::nullopt;
    const auto& corners = face.get_contour_vertices();
    const int count = corners.get_count();
    if (count < 3 || count > most_convex_corners) return std::nullopt;
    convex_face result;
    const qv_double3 normal = to_double(face.get_normal());
    for (int i = 0; i < count; ++i) {
      const qv_double3 a = to_double(corners[i]);
      const qv_double3 along = to_double(corners[(i + 1) % count]) - a;
      if (along.length() == 0) continue;
      result.edges_.push_back({a, normal.cross(along) * (1 / along.length())});
    }
    for (const qv::qv_3dvector& corner : corners)
      if (result.get_depth(to_double(corner)) < -touching) return std::nullopt;
    return result;
  }

  // Of the corner of `region` nearest to the border, m; negative outside.
  double get_depth(const qv_polygon& region) const {
    double least = std::numeric_limits<double>::infinity();
    for (const qv::qv_3dvector& corner : region.get_contour_vertices())
      least = std::min(least, get_depth(to_double(corner)));
    return least;
  }

 private:
  struct edge {
    qv_double3 point;
    qv_double3 inwards;
  };

  double get_depth(const qv_double3& point) const {
    double least = std::numeric_limits<double>::infinity();
    for (const edge& e : edges_) least = std::min(least, (point - e.point).dot(e.inwards));
    return least;
  }

  std::vector<edge> edges_;
};

qv::qv_list<qv::qv_3dvector> get_turned(const qv::qv_list<qv::qv_3dvector>& corners) {
  qv::qv_list<qv::qv_3dvector> turned;
  turned.reserve(corners.get_count());
  for (int i = corners.get_count() - 1; i >= 0; --i) turned.append(corners[i]);
  return turned;
}

// Contours of either direction become counter-clockwise outside and clockwise inside.
void orient(qv_polygon& region) {
  if (region.get_contour_count() != 1) {
    region.unites(qv_polygon(region.get_point(), region.get_normal()));
    return;
  }
  const auto& corners = region.get_contour_vertices();
  qv_double3 sum;
  const qv_double3 first = to_double(corners[0]);
  for (int i = 2; i < corners.get_count(); ++i)
    sum = sum + (to_double(corners[i - 1]) - first).cross(to_double(corners[i]) - first);
  if (sum.dot(to_double(region.get_normal())) >= 0) return;
  const auto turned = get_turned(corners);
  region.clear();
  region.add_contour(turned);
}

class cutter {
 public:
  cutter(const qv_polygon& face, std::vector<qv_polygon> openings)
      : face_(face), axes_(face), convex_(convex_face::make(face)) {
    result_.openings.resize(openings.size());
    for (std::size_t i = 0; i < openings.size(); ++i) {
      qv::qv_cut_opening& opening = result_.openings[i];
      opening.region = std::move(openings[i]);
      opening.asked = opening.region.get_area();
      opening.left = opening.asked;
      clip(opening);
    }
  }

  qv::qv_cut_face run() {
    part_overlaps();
    result_.rest = face_;
    if (!punch_holes()) subtract();
    return std::move(result_);
  }

 private:
  static bool is_left(const qv::qv_cut_opening& opening) {
    return opening.region.get_contour_count() > 0;
  }

  void clip(qv::qv_cut_opening& opening) {
    orient(opening.region);
    if (convex_ && opening.region.get_contour_count() == 1 &&
        convex_->get_depth(opening.region) >= -touching)
      return;
    opening.region.intersects(face_);
    opening.left = opening.region.get_area();
    opening.outside = std::max(0.0, opening.asked - opening.left);
  }

  void part_overlaps() {
    auto& openings = result_.openings;
    if (openings.size() < 2) return;
    std::vector<double> areas;
    std::vector<flat_box> boxes;
    for (const qv::qv_cut_opening& opening : openings) {
      areas.push_back(opening.left);
      boxes.push_back(axes_.get_box(opening.region));
    }
    std::vector<std::size_t> order(openings.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&areas](std::size_t a, std::size_t b) { return areas[a] < areas[b]; });
    for (std::size_t k = 1; k < order.size(); ++k) {
      qv::qv_cut_opening& larger = openings[order[k]];
      for (std::size_t m = 0; m < k && is_left(larger); ++m) {
        const qv::qv_cut_opening& smaller = openings[order[m]];
        if (!is_left(smaller) || !boxes[order[k]].reaches_into(boxes[order[m]], touching)) continue;
        qv_polygon rest = larger.region;
        rest.substracts(smaller.region);
        const double left = rest.get_area();
        const double lost = larger.left - left;
        if (lost <= 0) continue;
        larger.region = std::move(rest);
        larger.left = left;
        larger.covered += lost;
        larger.covered_by.push_back(static_cast<int>(order[m]));
      }
    }
  }

  bool punch_holes() {
    if (!convex_) return false;
    std::vector<flat_box> boxes;
    for (const qv::qv_cut_opening& opening : result_.openings) {
      if (!is_left(opening)) continue;
      if (opening.region.get_contour_count() != 1 || convex_->get_depth(opening.region) < clear)
        return false;
      const flat_box box = axes_.get_box(opening.region);
      for (const flat_box& other : boxes)
        if (box.reaches_into(other, -clear)) return false;
      boxes.push_back(box);
    }
    for (const qv::qv_cut_opening& opening : result_.openings)
      if (is_left(opening))
        result_.rest.add_contour(get_turned(opening.region.get_contour_vertices()));
    return true;
  }

  void subtract() {
    qv_polygon all(face_.get_point(), face_.get_normal());
    for (const qv::qv_cut_opening& opening : result_.openings)
      for (int i = 0; i < opening.region.get_contour_count(); ++i)
        all.add_contour(opening.region.get_contour(i));
    result_.rest.substracts(all);
  }

  const qv_polygon& face_;
  plane_axes axes_;
  std::optional<convex_face> convex_;
  qv::qv_cut_face result_;
};

}  // namespace

namespace qv {

qv_cut_face qv_cut_openings(const qv_polygon& face, std::vector<qv_polygon> openings) {
  return cutter(face, std::move(openings)).run();
}

bool qv_is_same_opening(const qv_polygon& a, const qv_polygon& b) {
  const double area_a = a.get_area();
  const double area_b = b.get_area();
  const double larger = std::max(area_a, area_b);
  if (std::min(area_a, area_b) < same_share * larger) return false;
  qv_polygon common = a;
  common.intersects(b);
  return common.get_area() >= same_share * larger;
}

}  // namespace qv
