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

// An edge of a face along a line between two corners.
struct edge {
  int face = 0;
  int direction = 0;  // +1 when the face, as its side says, runs from the lower corner's number up
};

// Numbers keys in the order in which they first come.
class key_numbers {
 public:
  explicit key_numbers(std::size_t expected) {
    std::size_t size = 16;
    while (size < 2 * expected) size *= 2;
    table_.assign(size, -1);
    keys_.reserve(expected);
  }

  std::size_t get_number(std::uint64_t key) {
    if (2 * keys_.size() >= table_.size()) grow();
    int& place = find_place(key);
    if (place < 0) {
      place = static_cast<int>(keys_.size());
      keys_.push_back(key);
    }
    return static_cast<std::size_t>(place);
  }

  const std::vector<std::uint64_t>& get_keys() const { return keys_; }

 private:
  // Where the number of `key` stands, or has room to stand.
  int& find_place(std::uint64_t key) {
    const std::size_t mask = table_.size() - 1;
    const std::uint64_t spread = key * 0x9E3779B97F4A7C15U;
    std::size_t place = static_cast<std::size_t>(spread >> 32U) & mask;
    while (table_[place] >= 0 && keys_[static_cast<std::size_t>(table_[place])] != key)
      place = (place + 1) & mask;
    return table_[place];
  }

  void grow() {
    table_.assign(2 * table_.size(), -1);
    for (std::size_t i = 0; i < keys_.size(); ++i) find_place(keys_[i]) = static_cast<int>(i);
  }

  std::vector<std::uint64_t> keys_;
  std::vector<int> table_;  // a power of two, at least half of it free (−1)
};

// The edges of a shell's faces, those along the same line together.
class edge_lines {
 public:
  explicit edge_lines(std::size_t expected) : lines_(expected) {
    first_.reserve(expected);
    entries_.reserve(expected);
  }

  void add(int from, int to, const edge& added) {
    if (from == to) return;
    const auto [low, high] = std::minmax(from, to);
    const std::size_t line = lines_.get_number(static_cast<std::uint64_t>(low) << 32U |
                                               static_cast<std::uint64_t>(high));
    if (line == first_.size()) first_.push_back(-1);
    entries_.push_back(
        {{added.face, from < to ? added.direction : -added.direction}, first_[line]});
    first_[line] = static_cast<int>(entries_.size()) - 1;
  }

  // Brings the edges along each line in the order of their faces, and takes out the seams along
  // which a single face runs to and fro.
  void remove_seams() {
    std::vector<edge> edges;
    for (int& first : first_) {
      if (first < 0 || at(first).next < 0) continue;
      edges.clear();
      for (int i = first; i >= 0; i = at(i).next) edges.push_back(at(i).own);
      std::sort(edges.begin(), edges.end(), [](const edge& a, const edge& b) {
        return a.face != b.face ? a.face < b.face : a.direction < b.direction;
      });
      put_back(without_seams(edges), first);
    }
  }

  std::size_t get_count() const { return first_.size(); }
  int get_low(std::size_t line) const { return static_cast<int>(lines_.get_keys()[line] >> 32U); }
  int get_high(std::size_t line) const {
    return static_cast<int>(lines_.get_keys()[line] & 0xFFFFFFFFU);
  }
  bool is_single(std::size_t line) const { return first_[line] >= 0 && at(first_[line]).next < 0; }
  // Takes the only edge of a line off it.
  edge take_single(std::size_t line) { return at(std::exchange(first_[line], -1)).own; }

  // Calls `visit` with the edges along each line that has any.
  template <class Visitor>
  void for_each_line(Visitor visit) const {
    std::vector<edge> edges;
    for (const int first : first_) {
      edges.clear();
      for (int i = first; i >= 0; i = at(i).next) edges.push_back(at(i).own);
      if (!edges.empty()) visit(std::span<const edge>(edges));
    }
  }

 private:
  struct entry {
    edge own;
    int next = -1;
  };

  entry& at(int i) { return entries_[static_cast<std::size_t>(i)]; }
  const entry& at(int i) const { return entries_[static_cast<std::size_t>(i)]; }

  static std::span<const edge> without_seams(std::vector<edge>& sorted) {
    std::size_t kept = 0;
    for (const edge next : sorted) {
      const bool is_seam = kept > 0 && sorted[kept - 1].face == next.face &&
                           sorted[kept - 1].direction == -next.direction;
      if (is_seam) {
        --kept;
      } else {
        sorted[kept++] = next;
      }
    }
    return std::span<const edge>(sorted).first(kept);
  }

  // Writes the edges into the entries that begin at `first`, which has as many or more.
  void put_back(std::span<const edge> edges, int& first) {
    int* link = &first;
    for (const edge& e : edges) {
      at(*link).own = e;
      link = &at(*link).next;
    }
    *link = -1;
  }

  key_numbers lines_;
  std::vector<int> first_;  // of each line, −1 when it has no edge left
  std::vector<entry> entries_;
};

edge_lines collect_edges(std::span<const qv_shell_face> faces) {
  std::size_t count = 0;
  for (const qv_shell_face& face : faces)
    for (const std::vector<int>& contour : face.polygon->contours) count += contour.size();
  edge_lines lines(count);
  for (std::size_t f = 0; f < faces.size(); ++f)
    for (const std::vector<int>& contour : faces[f].polygon->contours)
      for (std::size_t i = 0, before = contour.size() - 1; i < contour.size(); before = i++)
        lines.add(contour[before], contour[i], {static_cast<int>(f), faces[f].side});
  lines.remove_seams();
  return lines;
}

// The corners of a shell, so that those on a segment are found.
class shell_corners {
 public:
  shell_corners(const edge_lines& lines, const std::vector<qv_double3>& points) {
    key_numbers numbers(2 * lines.get_count());
    for (std::size_t line = 0; line < lines.get_count(); ++line) {
      numbers.get_number(static_cast<std::uint64_t>(lines.get_low(line)));
      numbers.get_number(static_cast<std::uint64_t>(lines.get_high(line)));
    }
    by_x_.reserve(numbers.get_keys().size());
    for (const std::uint64_t number : numbers.get_keys())
      by_x_.push_back({points[static_cast<std::size_t>(number)], static_cast<int>(number)});
    if (by_x_.size() <= few) return;
    by_y_ = by_x_;
    sort(by_x_, &qv_double3::x);
    sort(by_y_, &qv_double3::y);
  }

  std::size_t get_count() const { return by_x_.size(); }

  // Adds to `found` the corners on the inside of the segment, each with its place along it.
  void find_on(const qv_double3& start, const qv_double3& end,
               std::vector<std::pair<double, int>>& found) const {
    if (by_x_.size() <= few) {
      find_among(by_x_, start, end, found);
    } else if (std::abs(start.x - end.x) < std::abs(start.y - end.y)) {
      find_among(get_band(by_x_, &qv_double3::x, start, end), start, end, found);
    } else {
      find_among(get_band(by_y_, &qv_double3::y, start, end), start, end, found);
    }
  }

 private:
  static constexpr double reach = qv::qv_vertex_welder::distance;
  // So few are looked at one by one. Of more, walls stand upright and most run along an axis: one
  // of the two orders leaves few candidates.
  static constexpr std::size_t few = 48;

  struct corner_point {
    qv_double3 point;
    int number;
  };

  static void sort(std::vector<corner_point>& corners, double qv_double3::*axis) {
    std::sort(corners.begin(), corners.end(), [axis](const corner_point& a, const corner_point& b) {
      return a.point.*axis < b.point.*axis;
    });
  }

  static std::span<const corner_point> get_band(const std::vector<corner_point>& corners,
                                                double qv_double3::*axis, const qv_double3& start,
                                                const qv_double3& end) {
    const double low = std::min(start.*axis, end.*axis) - reach;
    const double high = std::max(start.*axis, end.*axis) + reach;
    const auto first =
        std::partition_point(corners.begin(), corners.end(),
                             [axis, low](const corner_point& c) { return c.point.*axis < low; });
    const auto last =
        std::partition_point(first, corners.end(),
                             [axis, high](const corner_point& c) { return c.point.*axis <= high; });
    return {first, last};
  }

  static void find_among(std::span<const corner_point> corners, const qv_double3& start,
                         const qv_double3& end, std::vector<std::pair<double, int>>& found) {
    const qv_double3 along = end - start;
    const double square = along.dot(along);
    for (const corner_point& corner : corners) {
      const qv_double3 to = corner.point - start;
      const double t = to.dot(along);
      if (t <= 0 || t >= square) continue;
      const qv_double3 aside = to.cross(along);
      if (aside.dot(aside) <= reach * reach * square) found.emplace_back(t, corner.number);
    }
  }

  std::vector<corner_point> by_x_;  // in any order when they are few
  std::vector<corner_point> by_y_;
};

// Splits edges that a single face has at the corners of other faces that lie on them.
void split_open_edges(edge_lines& lines, const std::vector<qv_double3>& points) {
  std::vector<std::size_t> open;
  for (std::size_t line = 0; line < lines.get_count(); ++line)
    if (lines.is_single(line)) open.push_back(line);
  if (open.empty()) return;
  const shell_corners corners(lines, points);
  if (open.size() > largest_splitting_effort / corners.get_count()) return;
  // All are taken off before pieces are added, which may lie along them.
  std::vector<edge> whole;
  whole.reserve(open.size());
  for (const std::size_t line : open) whole.push_back(lines.take_single(line));
  std::vector<std::pair<double, int>> found;
  for (std::size_t i = 0; i < open.size(); ++i) {
    const int low = lines.get_low(open[i]);
    const int high = lines.get_high(open[i]);
    found.clear();
    corners.find_on(points[static_cast<std::size_t>(low)], points[static_cast<std::size_t>(high)],
                    found);
    std::sort(found.begin(), found.end());
    int from = low;
    for (const auto& [t, corner] : found) {
      if (corner == low || corner == high) continue;
      lines.add(from, corner, whole[i]);
      from = corner;
    }
    lines.add(from, high, whole[i]);
  }
  lines.remove_seams();
}

edge_lines prepare_edges(std::span<const qv_shell_face> faces,
                         const std::vector<qv_double3>& points) {
  edge_lines lines = collect_edges(faces);
  split_open_edges(lines, points);
  return lines;
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
  bool closed = true;
  prepare_edges(faces, points).for_each_line([&closed](std::span<const edge> line) {
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
  const edge_lines lines = prepare_edges(faces, points);

  components links(faces.size());
  lines.for_each_line([&links](std::span<const edge> line) {
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
  lines.for_each_line([&](std::span<const edge> line) {
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
