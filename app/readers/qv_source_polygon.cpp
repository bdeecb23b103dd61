#include "app/readers/qv_source_polygon.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <numeric>
#include <utility>

#include "utilities/qv_polygon.h"

namespace {

using qv::qv_double3;
using qv::qv_loop;
namespace limits = qv::polygon_limits;

// Of the extent squared; a vector area below this says nothing about the plane, since the parts of
// a crossing contour may cancel out.
constexpr double telling_area = 1e-3;

struct point2 {
  double a = 0;
  double b = 0;
};

qv_double3 unit(const qv_double3& v) {
  const double length = v.length();
  return length > 0 ? v * (1 / length) : v;
}

bool is_usable(const qv_double3& p) {
  for (const double c : {p.x, p.y, p.z})
    if (!std::isfinite(c) || std::abs(c) > limits::largest_coordinate) return false;
  return true;
}

std::string millimetres(double metres) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.0f mm", metres * 1000);
  return text.data();
}

void remove_repeats(qv_loop& points, std::vector<std::string>& repairs) {
  const auto same = [](const qv_double3& a, const qv_double3& b) {
    return (a - b).length() <= limits::repeated_point;
  };
  if (points.size() > 1 && same(points.front(), points.back())) {
    while (points.size() > 1 && same(points.front(), points.back())) points.pop_back();
    repairs.emplace_back("its first point was repeated at the end");
  }
  const auto end = std::unique(points.begin(), points.end(), same);
  if (end == points.end()) return;
  points.erase(end, points.end());
  repairs.emplace_back("points were repeated");
}

double perimeter(const qv_loop& loop) {
  double sum = 0;
  for (std::size_t i = 0; i < loop.size(); ++i)
    sum += (loop[i + 1 < loop.size() ? i + 1 : 0] - loop[i]).length();
  return sum;
}

double extent(const qv_loop& loop) {
  double largest = 0;
  for (const qv_double3& p : loop) largest = std::max(largest, (p - loop[0]).length());
  return largest;
}

// The direction across the widest triangle on the longest chord from the first point.
qv_double3 widest_normal(const qv_loop& loop) {
  qv_double3 chord;
  for (const qv_double3& p : loop)
    if ((p - loop[0]).length() > chord.length()) chord = p - loop[0];
  qv_double3 widest;
  for (const qv_double3& p : loop) {
    const qv_double3 across = chord.cross(p - loop[0]);
    if (across.length() > widest.length()) widest = across;
  }
  return widest;
}

qv_double3 centre(const qv_loop& loop) {
  qv_double3 sum;
  for (const qv_double3& p : loop) sum = sum + p;
  return sum * (1.0 / static_cast<double>(loop.size()));
}

// Corners as coordinates in the plane across `normal`.
std::vector<point2> flatten(const qv_loop& loop, const qv_double3& normal) {
  const qv_double3 helper = std::abs(normal.z) < 0.9 ? qv_double3{0, 0, 1} : qv_double3{1, 0, 0};
  const qv_double3 u = unit(helper.cross(normal));
  const qv_double3 v = normal.cross(u);
  std::vector<point2> flat;
  flat.reserve(loop.size());
  for (const qv_double3& p : loop) flat.push_back({(p - loop[0]).dot(u), (p - loop[0]).dot(v)});
  return flat;
}

double turn(const point2& o, const point2& a, const point2& b) {
  return (a.a - o.a) * (b.b - o.b) - (a.b - o.b) * (b.a - o.a);
}

// True when the segments cross at a point inside both; touching and overlapping do not count.
bool cross_properly(const point2& a, const point2& b, const point2& c, const point2& d,
                    double smallest) {
  const double c_side = turn(a, b, c);
  const double d_side = turn(a, b, d);
  const double a_side = turn(c, d, a);
  const double b_side = turn(c, d, b);
  const auto opposite = [smallest](double s, double t) {
    return (s > smallest && t < -smallest) || (s < -smallest && t > smallest);
  };
  return opposite(c_side, d_side) && opposite(a_side, b_side);
}

// True when the contour only turns left, and once around. Edges turn once around when their first
// coordinate changes its sign no more than twice.
bool is_convex(const std::vector<point2>& flat) {
  const std::size_t n = flat.size();
  const auto edge = [&flat, n](std::size_t i) {
    const point2& from = flat[i];
    const point2& to = flat[i + 1 < n ? i + 1 : 0];
    return point2{to.a - from.a, to.b - from.b};
  };
  point2 before = edge(n - 1);
  double first = 0;
  double last = 0;
  int changes = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const point2 e = edge(i);
    const double sine = before.a * e.b - before.b * e.a;
    if (sine < 0 || (sine == 0 && before.a * e.a + before.b * e.b < 0)) return false;
    if (e.a != 0) {
      if (last != 0 && (e.a > 0) != (last > 0)) ++changes;
      if (first == 0) first = e.a;
      last = e.a;
    }
    before = e;
  }
  if ((first > 0) != (last > 0)) ++changes;
  return changes <= 2;
}

bool crosses_itself(const std::vector<point2>& flat, double size) {
  const std::size_t n = flat.size();
  if (n < 4 || is_convex(flat)) return false;
  const double smallest = limits::repeated_point * size;
  std::vector<std::size_t> order(n);
  std::iota(order.begin(), order.end(), std::size_t{0});
  const auto low = [&flat, n](std::size_t i) { return std::min(flat[i].a, flat[(i + 1) % n].a); };
  const auto high = [&flat, n](std::size_t i) { return std::max(flat[i].a, flat[(i + 1) % n].a); };
  std::sort(order.begin(), order.end(),
            [&low](std::size_t i, std::size_t j) { return low(i) < low(j); });
  for (std::size_t i = 0; i < n; ++i) {
    const double reach = high(order[i]);
    for (std::size_t j = i + 1; j < n && low(order[j]) <= reach; ++j) {
      const std::size_t s = order[i];
      const std::size_t t = order[j];
      if (cross_properly(flat[s], flat[(s + 1) % n], flat[t], flat[(t + 1) % n], smallest))
        return true;
    }
  }
  return false;
}

// The regions that the contour encloses by the even-odd rule, in the plane across `normal`.
qv::qv_plane_part resolve_crossings(const qv_loop& loop, const qv_double3& normal, double& area) {
  const qv_double3 origin = loop[0];
  const auto near = [&origin](const qv_double3& p) {
    return qv::qv_3dvector(static_cast<float>(p.x - origin.x), static_cast<float>(p.y - origin.y),
                           static_cast<float>(p.z - origin.z));
  };
  const qv::qv_3dvector plane_normal(static_cast<float>(normal.x), static_cast<float>(normal.y),
                                     static_cast<float>(normal.z));
  qv::qv_list<qv::qv_3dvector> vertices;
  for (const qv_double3& p : loop) vertices.append(near(p));
  qv::qv_polygon crossing({0, 0, 0}, plane_normal);
  crossing.add_contour(vertices);
  area = crossing.get_area();

  qv::qv_polygon regions({0, 0, 0}, plane_normal);
  regions.unites(crossing);
  qv::qv_plane_part part;
  part.normal = normal;
  part.area = regions.get_area();
  for (int i = 0; i < regions.get_contour_count(); ++i) {
    qv_loop contour;
    for (const qv::qv_3dvector& v : regions.get_contour(i))
      contour.push_back(qv_double3{v.x, v.y, v.z} + origin);
    part.contours.push_back(std::move(contour));
  }
  return part;
}

bool contains(const point2& a, const point2& b, const point2& c, const point2& p) {
  return turn(a, b, p) >= 0 && turn(b, c, p) >= 0 && turn(c, a, p) >= 0;
}

// Cuts the loop, which runs counter-clockwise about `normal`, into triangles by removing ears.
std::vector<qv_loop> cut_ears(const qv_loop& loop, const qv_double3& normal) {
  const std::vector<point2> flat = flatten(loop, normal);
  std::vector<std::size_t> rest(loop.size());
  std::iota(rest.begin(), rest.end(), std::size_t{0});
  const auto is_ear = [&flat, &rest](std::size_t k) {
    const std::size_t n = rest.size();
    const point2& a = flat[rest[(k + n - 1) % n]];
    const point2& b = flat[rest[k]];
    const point2& c = flat[rest[(k + 1) % n]];
    if (turn(a, b, c) <= 0) return false;
    for (std::size_t i = 2; i + 1 < n; ++i)
      if (contains(a, b, c, flat[rest[(k + i) % n]])) return false;
    return true;
  };
  std::vector<qv_loop> triangles;
  while (rest.size() > 3) {
    std::size_t ear = 0;
    while (ear + 1 < rest.size() && !is_ear(ear)) ++ear;
    const std::size_t n = rest.size();
    triangles.push_back(
        {loop[rest[(ear + n - 1) % n]], loop[rest[ear]], loop[rest[(ear + 1) % n]]});
    rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(ear));
  }
  triangles.push_back({loop[rest[0]], loop[rest[1]], loop[rest[2]]});
  return triangles;
}

void add_part(qv::qv_source_polygon& result, qv_loop&& contour, const qv_double3& normal,
              double area) {
  qv::qv_plane_part& part = result.parts.emplace_back();
  part.contours.push_back(std::move(contour));
  part.normal = normal;
  part.area = area;
}

void add_triangles(const qv_loop& loop, const qv_double3& normal, qv::qv_source_polygon& result) {
  for (qv_loop& triangle : cut_ears(loop, normal)) {
    const qv_double3 area = qv_vector_area(triangle);
    if (area.length() < limits::least_area) continue;
    result.area += area.length();
    add_part(result, std::move(triangle), unit(area), area.length());
  }
}

}  // namespace

namespace qv {

qv_double3 qv_vector_area(const qv_loop& loop) {
  qv_double3 sum;
  for (std::size_t i = 2; i < loop.size(); ++i)
    sum = sum + (loop[i - 1] - loop[0]).cross(loop[i] - loop[0]);
  return sum * 0.5;
}

double qv_cone_volume(const qv_loop& loop, const qv_double3& apex) {
  return loop.empty() ? 0 : (loop[0] - apex).dot(qv_vector_area(loop)) / 3;
}

qv_source_polygon qv_clean_polygon(qv_loop points) {
  qv_source_polygon result;
  const auto faulty = [&result](const char* fault) {
    result.fault = fault;
    result.parts.clear();
    return result;
  };
  if (!std::all_of(points.begin(), points.end(), is_usable))
    return faulty("a coordinate is not a number within reach");
  if (points.size() > limits::largest_point_count) return faulty("it has more than 10000 points");
  remove_repeats(points, result.repairs);
  if (points.size() < 3) return faulty("it has fewer than three distinct points");

  const double size = extent(points);
  const qv_double3 newell = qv_vector_area(points);
  const bool telling = newell.length() > telling_area * size * size;
  const qv_double3 normal = unit(telling ? newell : widest_normal(points));
  if (normal == qv_double3{}) return faulty("it has no area");

  if (crosses_itself(flatten(points, normal), size)) {
    qv_plane_part part = resolve_crossings(points, normal, result.area);
    if (part.area < limits::least_area) return faulty("it has no area");
    result.repairs.emplace_back("it crossed itself; its regions were taken");
    result.parts.push_back(std::move(part));
    return result;
  }

  result.area = newell.length();
  if (result.area < limits::least_area) return faulty("it has no area");
  if (2 * result.area < limits::least_width * perimeter(points))
    return faulty("it is thinner than a hundredth of a millimetre");

  const qv_double3 across = unit(newell);
  const qv_double3 middle = centre(points);
  double deviation = 0;
  for (const qv_double3& p : points)
    deviation = std::max(deviation, std::abs((p - middle).dot(across)));
  if (deviation > limits::largest_deviation) {
    result.area = 0;
    add_triangles(points, across, result);
    if (result.parts.empty()) return faulty("it has no area");
    result.repairs.push_back("its corners lie up to " + millimetres(deviation) +
                             " off a plane; cut into triangles");
    return result;
  }
  if (deviation > limits::noted_deviation)
    result.repairs.push_back("its corners lay up to " + millimetres(deviation) +
                             " off a plane and were moved onto it");
  if (deviation > limits::repeated_point)
    for (qv_double3& p : points) p = p - across * (p - middle).dot(across);
  add_part(result, std::move(points), across, result.area);
  return result;
}

}  // namespace qv
