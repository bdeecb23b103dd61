#include "app/readers/qv_space_shell.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <utility>

#include "app/readers/qv_shell_rays.h"
#include "app/readers/qv_vertex_welder.h"

namespace {

using qv::qv_double3;
using qv::qv_shell_evidence;
using qv::qv_shell_face;

// Pairs of an open edge and a corner that are looked at, at most: beyond it the shell stays open.
constexpr std::size_t largest_splitting_effort = 50'000'000;
// Of the sum of areas; an open patch whose vector areas add up to less encloses most of a volume.
constexpr double largest_opening = 0.5;

struct edge {
  int low = 0;
  int high = 0;
  int face = 0;
  int direction = 0;  // +1 when the face, as its side says, runs from low to high
};

bool same_line(const edge& a, const edge& b) {
  return a.low == b.low && a.high == b.high;
}

void add_edge(std::vector<edge>& edges, int from, int to, int face, int side) {
  if (from == to) return;
  edges.push_back({std::min(from, to), std::max(from, to), face, from < to ? side : -side});
}

std::vector<edge> collect_edges(std::span<const qv_shell_face> faces) {
  std::size_t count = 0;
  for (const qv_shell_face& face : faces)
    for (const std::vector<int>& contour : face.polygon->contours) count += contour.size();
  std::vector<edge> edges;
  edges.reserve(count);
  for (std::size_t f = 0; f < faces.size(); ++f)
    for (const std::vector<int>& contour : faces[f].polygon->contours)
      for (std::size_t i = 0, before = contour.size() - 1; i < contour.size(); before = i++)
        add_edge(edges, contour[before], contour[i], static_cast<int>(f), faces[f].side);
  return edges;
}

void sort_edges(std::vector<edge>& edges) {
  const auto line = [](const edge& e) {
    return static_cast<std::uint64_t>(e.low) << 32U | static_cast<std::uint64_t>(e.high);
  };
  std::sort(edges.begin(), edges.end(), [&line](const edge& a, const edge& b) {
    const std::uint64_t line_a = line(a);
    const std::uint64_t line_b = line(b);
    if (line_a != line_b) return line_a < line_b;
    return a.face != b.face ? a.face < b.face : a.direction < b.direction;
  });
}

// Calls `visit` with each run of edges along the same line; the edges are sorted.
template <class Visitor>
void for_each_line(std::vector<edge>& edges, Visitor visit) {
  for (std::size_t first = 0; first < edges.size();) {
    std::size_t last = first + 1;
    while (last < edges.size() && same_line(edges[first], edges[last])) ++last;
    visit(std::span<edge>(edges).subspan(first, last - first));
    first = last;
  }
}

// Takes out the seams along which a single face runs to and fro.
void remove_seams(std::vector<edge>& edges) {
  std::size_t kept = 0;
  for (const edge next : edges) {
    if (kept > 0 && same_line(edges[kept - 1], next) && edges[kept - 1].face == next.face &&
        edges[kept - 1].direction == -next.direction) {
      --kept;
    } else {
      edges[kept++] = next;
    }
  }
  edges.resize(kept);
}

// The corners of a shell in the order of one coordinate.
class sorted_corners {
 public:
  sorted_corners(const std::vector<int>& corners, const std::vector<qv_double3>& points,
                 double qv_double3::*axis)
      : axis_(axis) {
    corners_.reserve(corners.size());
    for (const int corner : corners)
      corners_.push_back({points[static_cast<std::size_t>(corner)], corner});
    std::sort(corners_.begin(), corners_.end(),
              [axis](const corner_point& a, const corner_point& b) {
                return a.point.*axis < b.point.*axis;
              });
  }

  double get_width(const qv_double3& a, const qv_double3& b) const {
    return std::abs(a.*axis_ - b.*axis_);
  }

  // Adds to `found` the corners on the inside of the segment, each with its place along it.
  void find_on(const qv_double3& start, const qv_double3& end,
               std::vector<std::pair<double, int>>& found) const {
    constexpr double reach = qv::qv_vertex_welder::distance;
    const double low = std::min(start.*axis_, end.*axis_) - reach;
    const double high = std::max(start.*axis_, end.*axis_) + reach;
    const qv_double3 along = end - start;
    const double square = along.dot(along);
    auto next = std::lower_bound(
        corners_.begin(), corners_.end(), low,
        [this](const corner_point& c, double value) { return c.point.*axis_ < value; });
    for (; next != corners_.end() && next->point.*axis_ <= high; ++next) {
      const qv_double3 to = next->point - start;
      const double t = to.dot(along);
      if (t <= 0 || t >= square) continue;
      const qv_double3 aside = to.cross(along);
      if (aside.dot(aside) <= reach * reach * square) found.emplace_back(t, next->number);
    }
  }

 private:
  struct corner_point {
    qv_double3 point;
    int number;
  };

  double qv_double3::*axis_;
  std::vector<corner_point> corners_;
};

std::vector<int> list_corners(const std::vector<edge>& edges) {
  std::vector<int> corners;
  corners.reserve(2 * edges.size());
  for (const edge& e : edges) {
    corners.push_back(e.low);
    corners.push_back(e.high);
  }
  std::sort(corners.begin(), corners.end());
  corners.erase(std::unique(corners.begin(), corners.end()), corners.end());
  return corners;
}

// Splits edges that a single face has at the corners of other faces that lie on them.
void split_open_edges(std::vector<edge>& edges, const std::vector<qv_double3>& points) {
  std::size_t open_count = 0;
  for_each_line(edges, [&](std::span<edge> line) { open_count += line.size() == 1 ? 1 : 0; });
  if (open_count == 0) return;
  std::vector<edge> matched;
  std::vector<edge> open;
  matched.reserve(edges.size() + open_count);
  open.reserve(open_count);
  for_each_line(edges, [&](std::span<edge> line) {
    auto& target = line.size() == 1 ? open : matched;
    target.insert(target.end(), line.begin(), line.end());
  });
  const std::vector<int> corners = list_corners(edges);
  if (open.size() > largest_splitting_effort / corners.size()) return;
  // Walls stand upright and most run along an axis: one of the two orders leaves few candidates.
  const sorted_corners by_x(corners, points, &qv_double3::x);
  const sorted_corners by_y(corners, points, &qv_double3::y);
  std::vector<std::pair<double, int>> found;
  for (const edge& whole : open) {
    const qv_double3& start = points[static_cast<std::size_t>(whole.low)];
    const qv_double3& end = points[static_cast<std::size_t>(whole.high)];
    found.clear();
    (by_x.get_width(start, end) < by_y.get_width(start, end) ? by_x : by_y)
        .find_on(start, end, found);
    std::sort(found.begin(), found.end());
    int from = whole.low;
    for (const auto& [t, corner] : found) {
      if (corner == whole.low || corner == whole.high) continue;
      add_edge(matched, from, corner, whole.face, whole.direction);
      from = corner;
    }
    add_edge(matched, from, whole.high, whole.face, whole.direction);
  }
  edges = std::move(matched);
  sort_edges(edges);
  remove_seams(edges);
}

std::vector<edge> prepare_edges(std::span<const qv_shell_face> faces,
                                const std::vector<qv_double3>& points) {
  std::vector<edge> edges = collect_edges(faces);
  sort_edges(edges);
  remove_seams(edges);
  split_open_edges(edges, points);
  return edges;
}

// Faces linked by edges, each with whether it must be turned to agree with the component's root.
class components {
 public:
  explicit components(std::size_t count) : parent_(count), turned_(count, 0) {
    std::iota(parent_.begin(), parent_.end(), std::size_t{0});
  }

  std::size_t find(std::size_t face, int& turned) {
    std::size_t root = face;
    int total = 0;
    while (parent_[root] != root) {
      total ^= turned_[root];
      root = parent_[root];
    }
    turned = total;
    while (parent_[face] != root && face != root) {
      const std::size_t up = parent_[face];
      const int step = turned_[face];
      parent_[face] = root;
      turned_[face] = total;
      total ^= step;
      face = up;
    }
    return root;
  }

  void link(std::size_t a, std::size_t b, int differs) {
    int turned_a = 0;
    int turned_b = 0;
    const std::size_t root_a = find(a, turned_a);
    const std::size_t root_b = find(b, turned_b);
    if (root_a == root_b) return;
    parent_[root_b] = root_a;
    turned_[root_b] = turned_a ^ turned_b ^ differs;
  }

 private:
  std::vector<std::size_t> parent_;
  std::vector<int> turned_;
};

struct component_sum {
  double volume = 0;
  double area = 0;
  qv_double3 vector_area;
  bool closed = true;
  bool outwards = true;  // the root's direction points out of the space
};

qv_double3 first_corner(std::span<const qv_shell_face> faces) {
  for (const qv_shell_face& face : faces)
    for (const qv::qv_loop& contour : face.polygon->part->contours)
      if (!contour.empty()) return contour[0];
  return {};
}

double face_volume(const qv_shell_face& face, const qv_double3& apex) {
  double volume = 0;
  for (const qv::qv_loop& contour : face.polygon->part->contours)
    volume += qv_cone_volume(contour, apex);
  return volume * face.side;
}

qv_double3 mean_corner(std::span<const qv_shell_face> faces) {
  const qv_double3 base = first_corner(faces);
  qv_double3 sum;
  double count = 0;
  for (const qv_shell_face& face : faces)
    for (const qv::qv_loop& contour : face.polygon->part->contours)
      for (const qv_double3& p : contour) {
        sum = sum + (p - base);
        ++count;
      }
  return count == 0 ? base : base + sum * (1 / count);
}

// A component points outwards when it encloses a positive volume, but for a cavity: a component
// that lies inside the others.
void set_outwards(std::span<const qv_shell_face> faces, const std::vector<std::size_t>& root,
                  std::vector<component_sum>& sums) {
  std::size_t largest = root[0];
  for (const std::size_t r : root)
    if (std::abs(sums[r].volume) > std::abs(sums[largest].volume)) largest = r;
  std::vector<bool> others(faces.size());
  for (std::size_t f = 0; f < faces.size(); ++f) {
    if (root[f] != f) continue;
    component_sum& sum = sums[f];
    sum.outwards = sum.volume >= 0;
    if (f == largest || faces.size() > qv::largest_open_shell) continue;
    for (std::size_t g = 0; g < faces.size(); ++g) others[g] = root[g] == largest;
    if (qv_is_face_enclosed(faces, f, others)) sum.outwards = !sum.outwards;
  }
}

}  // namespace

namespace qv {

double qv_shell_volume(std::span<const qv_shell_face> faces) {
  const qv_double3 apex = first_corner(faces);
  double volume = 0;
  for (const qv_shell_face& face : faces) volume += face_volume(face, apex);
  return volume;
}

bool qv_is_shell_closed(std::span<const qv_shell_face> faces,
                        const std::vector<qv_double3>& points) {
  if (faces.empty()) return false;
  std::vector<edge> edges = prepare_edges(faces, points);
  bool closed = true;
  for_each_line(edges, [&closed](std::span<edge> line) {
    int sum = 0;
    for (const edge& e : line) sum += e.direction;
    if (sum != 0) closed = false;
  });
  return closed;
}

qv_shell_verdict qv_orient_shell(std::span<const qv_shell_face> faces,
                                 const std::vector<qv_double3>& points) {
  qv_shell_verdict verdict;
  verdict.faces.resize(faces.size());
  if (faces.empty()) return verdict;
  std::vector<edge> edges = prepare_edges(faces, points);

  components links(faces.size());
  for_each_line(edges, [&links](std::span<edge> line) {
    if (line.size() == 2 && line[0].face != line[1].face)
      links.link(static_cast<std::size_t>(line[0].face), static_cast<std::size_t>(line[1].face),
                 line[0].direction == line[1].direction ? 1 : 0);
  });

  const qv_double3 middle = mean_corner(faces);
  std::vector<int> turned(faces.size());
  std::vector<std::size_t> root(faces.size());
  std::vector<component_sum> sums(faces.size());
  for (std::size_t f = 0; f < faces.size(); ++f) {
    root[f] = links.find(f, turned[f]);
    component_sum& sum = sums[root[f]];
    const int sign = turned[f] != 0 ? -1 : 1;
    sum.volume += sign * face_volume(faces[f], middle);
    sum.area += faces[f].polygon->part->area;
    for (const qv_loop& contour : faces[f].polygon->part->contours)
      sum.vector_area = sum.vector_area + qv_vector_area(contour) * (sign * faces[f].side);
  }
  set_outwards(faces, root, sums);
  // An edge is open when the faces along it, agreeing within their components, do not cancel out.
  for_each_line(edges, [&](std::span<edge> line) {
    int total = 0;
    for (const edge& e : line) {
      const auto f = static_cast<std::size_t>(e.face);
      total += (turned[f] != 0 ? -1 : 1) * (sums[root[f]].outwards ? 1 : -1) * e.direction;
    }
    if (total == 0) return;
    for (const edge& e : line) sums[root[static_cast<std::size_t>(e.face)]].closed = false;
  });

  verdict.closed = true;
  for (std::size_t f = 0; f < faces.size(); ++f) {
    const component_sum& sum = sums[root[f]];
    verdict.closed = verdict.closed && sum.closed;
    verdict.faces[f].right = (turned[f] == 0) == sum.outwards;
    if (sum.closed) {
      verdict.faces[f].evidence = qv_shell_evidence::closed;
    } else if (sum.vector_area.length() < largest_opening * sum.area) {
      verdict.faces[f].evidence = qv_shell_evidence::patch;
    }
  }
  if (!verdict.closed && faces.size() <= largest_open_shell) qv_ask_rays(faces, verdict.faces);
  return verdict;
}

}  // namespace qv
