#include "core/shapes/qv_face_links.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <numbers>
#include <tuple>
#include <unordered_map>

#include "core/shapes/qv_box_tree.h"
#include "core/shapes/qv_double3.h"
#include "utilities/qv_tolerances.h"

// First the edges that coincide to the last bit, which are nearly all of them in a sound model:
// sorted by their two end points, they need no tolerance. Only what is left over is compared by
// distance, through a tree of boxes.

namespace qv {

namespace {

/// Share of an edge's length that a gap beside it may have at most.
constexpr double gap_share = 0.1;
/// Share of the model's extent that a gap may have at most.
constexpr double gap_extent_share = 0.002;
/// rad; faces that stand closer than this around an edge coincide.
constexpr double same_angle = 0.01;
/// Share of a face's area that its normals may cancel for it to count as plane.
constexpr double plane_share = 1e-3;
/// Faces considered at one place of a crowded edge, and edges considered along one edge: bounds for
/// senseless models in which everything lies on one line.
constexpr std::size_t largest_crowd = 16;
constexpr std::size_t largest_neighbourhood = 1024;

/// One side of a triangle that bounds its face, in the direction of the face's contour.
struct half_edge {
  qv_double3 from;
  qv_double3 to;
  qv_double3 inward;  // into the face, in its plane
  std::uint32_t from_point;
  std::uint32_t to_point;
  int face;
  int owner;

  /// The end points in an order that does not depend on which way the face is turned.
  const qv_double3& low() const { return is_before(from, to) ? from : to; }
  const qv_double3& high() const { return is_before(from, to) ? to : from; }
  static bool is_before(const qv_double3& a, const qv_double3& b) {
    return std::tuple(a.x, a.y, a.z) < std::tuple(b.x, b.y, b.z);
  }
};

struct exact_point_hash {
  std::size_t operator()(const std::array<std::uint32_t, 3>& p) const {
    std::uint64_t h = 0x9E3779B97F4A7C15u;
    for (std::uint32_t part : p) {
      h ^= part;
      h *= 0xFF51AFD7ED558CCDu;
      h ^= h >> 32;
    }
    return static_cast<std::size_t>(h);
  }
};

/// Numbers points that are equal to the last bit (both zeros being one).
class point_numbers {
 public:
  std::uint32_t get(const qv_3dvector& p) {
    const float parts[3] = {p.x + 0.0f, p.y + 0.0f, p.z + 0.0f};
    std::array<std::uint32_t, 3> key;
    std::memcpy(key.data(), parts, sizeof parts);
    return numbers_.emplace(key, static_cast<std::uint32_t>(numbers_.size())).first->second;
  }

 private:
  std::unordered_map<std::array<std::uint32_t, 3>, std::uint32_t, exact_point_hash> numbers_;
};

bool is_finite(const qv_3dvector& p) {
  constexpr auto limit = static_cast<float>(tolerance::largest_coordinate);
  return std::fabs(p.x) <= limit && std::fabs(p.y) <= limit && std::fabs(p.z) <= limit;
}

class link_builder {
 public:
  explicit link_builder(const std::vector<qv_face_triangle>& triangles) : triangles_(triangles) {}
  std::vector<qv_face_link> build();

 private:
  void choose_scale();
  void collect_half_edges();
  void link_same_edges();
  void link_along_edges();
  void link_places_along(std::uint32_t host, const std::vector<std::uint32_t>& near);
  void link(const half_edge& a, const half_edge& b, qv_face_link::kind kind, double length);
  static std::vector<std::vector<const half_edge*>> sort_into_fans(
      const std::vector<const half_edge*>& crowd, const half_edge& reference);
  void link_crowd(const std::vector<const half_edge*>& crowd, const half_edge* host, double length);
  void merge_and_sort();
  double gap_between(const half_edge& a, const half_edge& b) const;
  qv_double3 local(const qv_3dvector& p) const { return qv_double3(p) - origin_; }

  const std::vector<qv_face_triangle>& triangles_;
  qv_double3 origin_;
  double rounding_ = 0;
  double gap_ = qv_shell_gap;
  std::vector<half_edge> edges_;
  std::vector<half_edge> lone_;
  std::vector<qv_face_link> links_;
};

std::vector<qv_face_link> link_builder::build() {
  choose_scale();
  collect_half_edges();
  link_same_edges();
  link_along_edges();
  merge_and_sort();
  return std::move(links_);
}

void link_builder::choose_scale() {
  qv_double3 low, high;
  bool first = true;
  double largest = 0;
  for (const qv_face_triangle& t : triangles_) {
    if (!qv_has_area(t)) continue;
    for (const qv_3dvector& p : t.corners) {
      const qv_double3 d(p);
      low = first ? d : min(low, d);
      high = first ? d : max(high, d);
      first = false;
      largest = std::max({largest, std::fabs(d.x), std::fabs(d.y), std::fabs(d.z)});
    }
  }
  origin_ = (low + high) * 0.5;
  rounding_ = 2 * largest * std::numeric_limits<float>::epsilon();
  gap_ = std::max(rounding_, std::min(qv_shell_gap, gap_extent_share * length(high - low)));
}

void link_builder::collect_half_edges() {
  int face_count = 0;
  for (const qv_face_triangle& t : triangles_) face_count = std::max(face_count, t.face + 1);
  std::vector<qv_double3> face_normal(static_cast<std::size_t>(face_count));
  std::vector<double> face_area(static_cast<std::size_t>(face_count));

  const auto area_vector = [this](const qv_face_triangle& t) {
    const qv_double3 a = local(t.corners[0]);
    return cross(local(t.corners[1]) - a, local(t.corners[2]) - a);
  };
  for (const qv_face_triangle& t : triangles_) {
    if (!qv_has_area(t)) continue;
    const qv_double3 n = area_vector(t);
    const auto face = static_cast<std::size_t>(t.face);
    face_normal[face] = face_normal[face] + n;
    face_area[face] += length(n);
  }

  point_numbers numbers;
  for (const qv_face_triangle& t : triangles_) {
    if (!qv_has_area(t)) continue;
    const auto face = static_cast<std::size_t>(t.face);
    const bool plane = length(face_normal[face]) >= (1 - plane_share) * face_area[face];
    const qv_double3 normal = normalized(plane ? face_normal[face] : area_vector(t));
    for (std::size_t k = 0; k < 3; ++k) {
      half_edge e;
      e.from = local(t.corners[k]);
      e.to = local(t.corners[(k + 1) % 3]);
      e.inward = cross(normal, normalized(e.to - e.from));
      e.from_point = numbers.get(t.corners[k]);
      e.to_point = numbers.get(t.corners[(k + 1) % 3]);
      e.face = t.face;
      e.owner = t.owner;
      edges_.push_back(e);
    }
  }
}

void link_builder::link_same_edges() {
  const auto key = [](const half_edge& e) {
    return std::tuple(std::min(e.from_point, e.to_point), std::max(e.from_point, e.to_point));
  };
  std::vector<std::uint32_t> order(edges_.size());
  for (std::uint32_t i = 0; i < order.size(); ++i) order[i] = i;
  std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
    return std::tuple(key(edges_[a]), edges_[a].face, a) <
           std::tuple(key(edges_[b]), edges_[b].face, b);
  });

  std::vector<const half_edge*> group;
  for (std::size_t first = 0; first < order.size();) {
    std::size_t last = first;
    group.clear();
    while (last < order.size() && key(edges_[order[last]]) == key(edges_[order[first]])) {
      // Two sides of one face that run against each other lie inside it.
      const half_edge& e = edges_[order[last++]];
      bool inside = false;
      for (std::size_t i = group.size(); i-- > 0 && group[i]->face == e.face && !inside;) {
        if (group[i]->from_point != e.to_point) continue;
        group.erase(group.begin() + static_cast<std::ptrdiff_t>(i));
        inside = true;
      }
      if (!inside) group.push_back(&e);
    }
    if (group.size() == 1) {
      lone_.push_back(*group[0]);
    } else if (group.size() == 2) {
      link(*group[0], *group[1], qv_face_link::kind::same_edge,
           length(group[0]->to - group[0]->from));
    } else if (!group.empty()) {
      link_crowd(group, nullptr, length(group[0]->to - group[0]->from));
    }
    first = last;
  }
}

void link_builder::link(const half_edge& a, const half_edge& b, qv_face_link::kind kind,
                        double shared_length) {
  if (a.face == b.face) return;
  qv_face_link made;
  made.a = std::min(a.face, b.face);
  made.b = std::max(a.face, b.face);
  made.sureness = kind;
  made.disagree = dot(a.to - a.from, b.to - b.from) > 0;
  made.same_owner = a.owner == b.owner;
  made.length = shared_length;
  links_.push_back(made);
}

/// The faces of a crowd by the angle at which they stand around its line; those at one angle, which
/// coincide, in one fan.
std::vector<std::vector<const half_edge*>> link_builder::sort_into_fans(
    const std::vector<const half_edge*>& crowd, const half_edge& reference) {
  const qv_double3 axis = normalized(reference.high() - reference.low());
  const qv_double3 side = cross(axis, reference.inward);
  struct standing {
    double angle;
    const half_edge* edge;
  };
  std::vector<standing> around;
  for (const half_edge* e : crowd) {
    double angle = std::atan2(dot(e->inward, side), dot(e->inward, reference.inward));
    if (angle < -same_angle / 2) angle += 2 * std::numbers::pi;
    around.push_back({angle, e});
  }
  std::sort(around.begin(), around.end(), [](const standing& a, const standing& b) {
    return std::tuple(a.angle, a.edge->face) < std::tuple(b.angle, b.edge->face);
  });
  std::vector<std::vector<const half_edge*>> fans;
  for (std::size_t i = 0; i < around.size(); ++i) {
    if (i == 0 || around[i].angle - around[i - 1].angle > same_angle) fans.emplace_back();
    fans.back().push_back(around[i].edge);
  }
  if (fans.size() > 1 && around.back().angle > 2 * std::numbers::pi - same_angle) {
    fans.front().insert(fans.front().end(), fans.back().begin(), fans.back().end());
    fans.pop_back();
  }
  for (auto& fan : fans) {
    std::sort(fan.begin(), fan.end(),
              [](const half_edge* a, const half_edge* b) { return a->face < b->face; });
  }
  return fans;
}

/// Links faces that stand around one line with their neighbours; with a host only the links of that
/// one are made. Inside and outside take turns around the line, so neighbours run against each
/// other. Two coincident faces between other ones are the common face of two shells: they face each
/// other, what stands on either side of them goes on as if they were not there, and which of them
/// belongs to which side is decided last.
void link_builder::link_crowd(const std::vector<const half_edge*>& crowd, const half_edge* host,
                              double shared_length) {
  const auto fans = sort_into_fans(crowd, host != nullptr ? *host : *crowd[0]);
  const auto is_even = [](const auto& fan) { return fan.size() % 2 == 0; };
  const auto odd_count = std::count_if(fans.begin(), fans.end(), std::not_fn(is_even));
  const auto join = [&](const half_edge* a, const half_edge* b, qv_face_link::kind kind) {
    if (host == nullptr || a == host || b == host) link(*a, *b, kind, shared_length);
  };
  const auto join_nearest = [&](const auto& here, const auto& next, qv_face_link::kind kind) {
    constexpr auto reach = static_cast<std::ptrdiff_t>(largest_crowd / 2);
    for (const half_edge* e : here) {
      // Those of the next fan that are nearest in the order of the faces.
      const auto nearest = std::lower_bound(
          next.begin(), next.end(), e,
          [](const half_edge* a, const half_edge* b) { return a->face < b->face; });
      const std::ptrdiff_t middle = nearest - next.begin();
      const auto count = static_cast<std::ptrdiff_t>(next.size());
      for (std::ptrdiff_t k = std::max<std::ptrdiff_t>(0, middle - reach);
           k < std::min(count, middle + reach); ++k)
        join(e, next[static_cast<std::size_t>(k)], kind);
    }
  };

  if (fans.size() > 1 && odd_count < 2) {
    // Doubled faces and nothing else to tell sides by: each copy follows its neighbours.
    for (std::size_t f = 0; f < fans.size(); ++f)
      join_nearest(fans[f], fans[(f + 1) % fans.size()], qv_face_link::kind::crowded);
    return;
  }
  const half_edge* first = nullptr;
  const half_edge* previous = nullptr;
  for (std::size_t f = 0; f < fans.size(); ++f) {
    for (std::size_t i = 1; i < fans[f].size(); ++i)
      join(fans[f][i - 1], fans[f][i], qv_face_link::kind::crowded);
    if (is_even(fans[f]) && fans.size() > 1) {
      join_nearest(fans[f], fans[(f + 1) % fans.size()], qv_face_link::kind::ambiguous);
      join_nearest(fans[f], fans[(f + fans.size() - 1) % fans.size()],
                   qv_face_link::kind::ambiguous);
      continue;
    }
    if (previous != nullptr) join(previous, fans[f][0], qv_face_link::kind::crowded);
    if (first == nullptr) first = fans[f][0];
    previous = fans[f][0];
  }
  if (odd_count > 2) join(previous, first, qv_face_link::kind::crowded);
}

double link_builder::gap_between(const half_edge& a, const half_edge& b) const {
  const double shorter = std::min(length(a.to - a.from), length(b.to - b.from));
  return std::max(rounding_, std::min(gap_, gap_share * shorter));
}

void link_builder::link_along_edges() {
  const auto place = [](const half_edge& e) {
    const qv_double3 &a = e.low(), &b = e.high();
    return std::tuple(e.face, a.x, a.y, a.z, b.x, b.y, b.z);
  };
  std::sort(lone_.begin(), lone_.end(),
            [&](const half_edge& a, const half_edge& b) { return place(a) < place(b); });
  std::vector<qv_double_box> boxes;
  boxes.reserve(lone_.size());
  for (const half_edge& e : lone_) boxes.push_back(qv_double_box::around(e.from, e.to));
  const qv_box_tree tree(boxes);
  std::vector<std::uint32_t> near;
  for (std::uint32_t i = 0; i < lone_.size(); ++i) {
    if (length(lone_[i].to - lone_[i].from) <= rounding_) continue;
    tree.find(boxes[i].grown(gap_), near, largest_neighbourhood);
    near.erase(std::remove(near.begin(), near.end(), i), near.end());
    link_places_along(i, near);
  }
}

/// Where along `host` which other edges run beside it, place by place.
void link_builder::link_places_along(std::uint32_t host, const std::vector<std::uint32_t>& near) {
  const half_edge& h = lone_[host];
  const qv_double3 start = h.low();
  const double host_length = length(h.high() - start);
  const qv_double3 along = (h.high() - start) * (1 / host_length);
  struct companion {
    double begin, end;
    const half_edge* edge;
  };
  std::vector<companion> companions;
  std::vector<double> cuts;
  for (std::uint32_t i : near) {
    const half_edge& e = lone_[i];
    if (e.face == h.face) continue;
    const double gap = gap_between(h, e);
    double t[2] = {dot(e.low() - start, along), dot(e.high() - start, along)};
    qv_double3 off[2] = {e.low() - start - along * t[0], e.high() - start - along * t[1]};
    if (t[0] > t[1]) {
      std::swap(t[0], t[1]);
      std::swap(off[0], off[1]);
    }
    const double begin = std::max(0.0, t[0]), end = std::min(host_length, t[1]);
    if (end - begin <= gap) continue;
    const qv_double3 slant = (off[1] - off[0]) * (1 / (t[1] - t[0]));
    if (length(off[0] + slant * (begin - t[0])) > gap) continue;
    if (length(off[0] + slant * (end - t[0])) > gap) continue;
    companions.push_back({begin, end, &e});
    cuts.push_back(begin);
    cuts.push_back(end);
  }
  if (companions.empty()) return;
  // Ends that lie closer together than a gap are one place.
  const double step = std::max(rounding_, std::min(gap_, gap_share * host_length));
  std::sort(cuts.begin(), cuts.end());
  std::size_t kept = 1;
  for (std::size_t i = 1; i < cuts.size(); ++i)
    if (cuts[i] - cuts[kept - 1] > step) cuts[kept++] = cuts[i];
  cuts.resize(kept);
  std::sort(companions.begin(), companions.end(), [](const companion& a, const companion& b) {
    return std::tuple(a.begin, a.edge->face) < std::tuple(b.begin, b.edge->face);
  });

  std::vector<const half_edge*> crowd;
  std::vector<const companion*> active;
  std::size_t next = 0;
  for (std::size_t c = 0; c + 1 < cuts.size(); ++c) {
    const double begin = cuts[c], end = cuts[c + 1], middle = (begin + end) / 2;
    for (; next < companions.size() && companions[next].begin < middle; ++next)
      active.push_back(&companions[next]);
    std::erase_if(active, [&](const companion* a) { return a->end < middle; });
    if (active.empty()) continue;
    if (active.size() == 1) {
      link(h, *active[0]->edge, qv_face_link::kind::along, end - begin);
    } else {
      crowd.assign(1, &h);
      for (std::size_t i = 0; i < std::min(active.size(), largest_crowd); ++i)
        crowd.push_back(active[i]->edge);
      link_crowd(crowd, &h, end - begin);
    }
  }
}

void link_builder::merge_and_sort() {
  const auto same = [](const qv_face_link& l) {
    return std::tuple(l.a, l.b, l.sureness, l.disagree);
  };
  std::sort(links_.begin(), links_.end(), [&](const qv_face_link& x, const qv_face_link& y) {
    return std::tuple(same(x), x.length) < std::tuple(same(y), y.length);
  });
  std::vector<qv_face_link> merged;
  for (const qv_face_link& l : links_) {
    if (!merged.empty() && same(merged.back()) == same(l)) {
      merged.back().length += l.length;
    } else {
      merged.push_back(l);
    }
  }
  links_ = std::move(merged);

  // Lengths in whole gaps, so that rounding does not decide between equal ones.
  const auto rank = [this](const qv_face_link& l) {
    const double gaps = gap_ > 0 ? -std::round(l.length / gap_) : 0;
    const bool crowded = l.sureness >= qv_face_link::kind::crowded;
    return std::tuple(l.sureness, crowded && !l.same_owner, crowded ? l.b - l.a : 0, gaps, l.a,
                      l.b);
  };
  std::stable_sort(links_.begin(), links_.end(),
                   [&](const qv_face_link& x, const qv_face_link& y) { return rank(x) < rank(y); });
}

}  // namespace

bool qv_has_area(const qv_face_triangle& t) {
  for (const qv_3dvector& p : t.corners)
    if (!is_finite(p)) return false;
  const qv_double3 a(t.corners[0]);
  return length(cross(qv_double3(t.corners[1]) - a, qv_double3(t.corners[2]) - a)) > 0;
}

std::vector<qv_face_link> qv_link_faces(const std::vector<qv_face_triangle>& triangles) {
  return link_builder(triangles).build();
}

}  // namespace qv
