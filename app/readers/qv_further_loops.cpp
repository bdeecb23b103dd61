#include "app/readers/qv_further_loops.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "app/readers/qv_opening_cutter.h"
#include "utilities/qv_polygon.h"

namespace {

using qv::qv_double3;
using qv::qv_loop;
using qv::qv_plane_part;
using qv::qv_polygon;
namespace limits = qv::polygon_limits;

// Cosine of the largest angle between planes that are taken for one.
constexpr double same_direction = 0.999;
// Of a loop's area; what lies within to this share lies within.
constexpr double nearly_all = 0.999;

// Polygons near the origin, where single precision is finest.
class local_frame {
 public:
  explicit local_frame(const qv_double3& origin) : origin_(origin) {}

  qv_polygon to_polygon(const std::vector<qv_loop>& contours, const qv_double3& normal) const {
    qv_polygon polygon(
        near(contours[0][0]),
        {static_cast<float>(normal.x), static_cast<float>(normal.y), static_cast<float>(normal.z)});
    for (const qv_loop& contour : contours) {
      qv::qv_list<qv::qv_3dvector> corners;
      for (const qv_double3& p : contour) corners.append(near(p));
      polygon.add_contour(corners);
    }
    return polygon;
  }
  std::vector<qv_loop> to_contours(const qv_polygon& polygon) const {
    std::vector<qv_loop> contours(static_cast<std::size_t>(polygon.get_contour_count()));
    for (std::size_t i = 0; i < contours.size(); ++i)
      for (const qv::qv_3dvector& v : polygon.get_contour(static_cast<int>(i)))
        contours[i].push_back(qv_double3{v.x, v.y, v.z} + origin_);
    return contours;
  }

 private:
  qv::qv_3dvector near(const qv_double3& p) const {
    const qv_double3 d = p - origin_;
    return {static_cast<float>(d.x), static_cast<float>(d.y), static_cast<float>(d.z)};
  }

  qv_double3 origin_;
};

bool lie_in_one_plane(const qv_plane_part& part, const qv_plane_part& other) {
  if (std::abs(part.normal.dot(other.normal)) < same_direction) return false;
  const qv_loop& contour = other.contours[0];
  return std::all_of(contour.begin(), contour.end(), [&part](const qv_double3& p) {
    return std::abs((p - part.contours[0][0]).dot(part.normal)) <= limits::largest_deviation;
  });
}

// The loop's corners moved onto the plane of `part`, running the way `along` does about its normal.
qv_loop lay_on(const qv_plane_part& part, const qv_plane_part& loop, double along) {
  qv_loop corners = loop.contours[0];
  for (qv_double3& p : corners) p = p - part.normal * (p - part.contours[0][0]).dot(part.normal);
  if (loop.normal.dot(part.normal) * along < 0) std::reverse(corners.begin(), corners.end());
  return corners;
}

class loop_adder {
 public:
  loop_adder(qv::qv_source_polygon& polygon, const std::vector<qv_loop>& openings)
      : polygon_(polygon), openings_(openings), frame_(polygon.parts[0].contours[0][0]) {}

  void add(const qv_loop& points) {
    qv::qv_source_polygon loop = qv_clean_polygon(points);
    if (loop.parts.empty()) return say("a further loop was left out: " + loop.fault);
    const bool simple = loop.parts.size() == 1 && loop.parts[0].contours.size() == 1;
    for (qv_plane_part& part : loop.parts) {
      qv_plane_part* const host = simple ? find_host(part) : nullptr;
      if (host != nullptr) {
        add_in_plane(*host, part);
      } else {
        add_piece(std::move(part));
      }
    }
  }

 private:
  void say(const std::string& repair) {
    auto& repairs = polygon_.repairs;
    if (std::find(repairs.begin(), repairs.end(), repair) == repairs.end())
      repairs.push_back(repair);
  }

  qv_polygon region_of(const qv_plane_part& part) const {
    return frame_.to_polygon(part.contours, part.normal);
  }

  // The part that the loop shares a plane with: the one that it overlaps most.
  qv_plane_part* find_host(const qv_plane_part& loop) {
    qv_plane_part* host = nullptr;
    double most = -1;
    for (qv_plane_part& part : polygon_.parts) {
      if (!lie_in_one_plane(part, loop)) continue;
      const double overlap = get_overlap(part, loop);
      if (overlap <= most) continue;
      most = overlap;
      host = &part;
    }
    return host;
  }

  double get_overlap(const qv_plane_part& part, const qv_plane_part& loop) const {
    qv_polygon common = region_of(part);
    common.intersects(region_of(loop));
    return common.get_area();
  }

  void add_in_plane(qv_plane_part& host, const qv_plane_part& loop) {
    const double overlap = get_overlap(host, loop);
    if (overlap >= nearly_all * loop.area) return cut_hole(host, loop);
    if (overlap >= nearly_all * host.area)
      say("a further loop goes round the first one: what it adds is a piece of its own");
    qv_plane_part piece = {{lay_on(host, loop, 1)}, host.normal, loop.area};
    if (overlap > (1 - nearly_all) * loop.area) {
      qv_polygon outside = region_of(piece);
      outside.substracts(region_of(host));
      piece.contours = frame_.to_contours(outside);
      piece.area = outside.get_area();
      if (piece.contours.empty() || piece.area < limits::least_area) return;
      say("a further loop overlapped another one: counted once");
    }
    add_piece(std::move(piece));
  }

  void cut_hole(qv_plane_part& host, const qv_plane_part& loop) {
    if (loop.area >= nearly_all * host.area) return say("a loop was said twice");
    const qv_polygon hole = region_of(loop);
    const bool filled = std::any_of(openings_.begin(), openings_.end(), [&](const qv_loop& o) {
      return o.size() > 2 && qv_is_same_opening(hole, frame_.to_polygon({o}, loop.normal));
    });
    if (filled) return say("a further loop is the outline of an Opening: the wall is whole there");
    qv_polygon rest = region_of(host);
    const int before = rest.get_contour_count();
    rest.substracts(hole);
    if (rest.get_contour_count() == 0) return say("a loop was said twice");
    if (rest.get_contour_count() == before + 1) {
      // The corners as the file has them.
      host.contours.push_back(lay_on(host, loop, -1));
      host.area -= loop.area;
    } else {
      host.contours = frame_.to_contours(rest);
      host.area = rest.get_area();
    }
    say("its further loops are holes");
  }

  void add_piece(qv_plane_part piece) {
    polygon_.parts.push_back(std::move(piece));
    say("its further loops are pieces of their own");
  }

  qv::qv_source_polygon& polygon_;
  const std::vector<qv_loop>& openings_;
  local_frame frame_;
};

}  // namespace

namespace qv {

void qv_add_further_loops(qv_source_polygon& polygon, const std::vector<qv_loop>& loops,
                          const std::vector<qv_loop>& openings) {
  if (polygon.parts.empty() || loops.empty()) return;
  loop_adder adder(polygon, openings);
  for (const qv_loop& loop : loops) adder.add(loop);
  polygon.area = 0;
  for (const qv_plane_part& part : polygon.parts) polygon.area += part.area;
}

}  // namespace qv
