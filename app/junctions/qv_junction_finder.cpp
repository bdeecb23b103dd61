#include "app/junctions/qv_junction_finder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <tuple>

#include "app/junctions/qv_wall_face.h"
#include "core/shapes/qv_box_tree.h"

// Edges are taken from the longest to the shortest. Each collects what runs along it, edges and
// faces, is cut where one of them begins or ends, and yields the pieces on which walls meet. A
// piece of another edge that took part in one is done with, so that no junction comes twice. That
// order, and none of the walls, decides where a junction lies whose edges differ by millimetres.

namespace qv {

namespace {

/// Sine of the angle from which on lines are not parallel: less than what a gap at one end of an
/// edge of a quarter of a metre makes.
constexpr double parallel_sine = 0.02;
/// Cosine above which two directions are one, and its opposite below which they are opposed.
constexpr double same_direction = 0.99;
/// m; edges that lie closer than this have the same neighbours.
constexpr double same_line = 0.05 * qv_junction_gap;
/// Coordinates of directions are compared in steps of this, so that rounding does not order them.
constexpr double direction_step = 1e-3;
/// m; a corner that is off the straight line between its neighbours by less is none: such a model
/// has a corner there because another wall has one.
constexpr double straight = 1e-4;
/// m; ends of junctions are compared in steps of this.
constexpr double place_step = 1e-4;

struct range {
  double begin = 0;
  double end = 0;
  double size() const { return end - begin; }
};

struct edge {
  qv_double3 from;
  qv_double3 to;
  qv_double3 along;   // unit
  qv_double3 inward;  // into the wall, unit
  double length = 0;
  int wall = 0;
  std::vector<range> done;  // pieces that are part of a junction already

  qv_double3 at(double place) const { return from + along * place; }
  double place_of(const qv_double3& p) const { return dot(p - from, along); }
};

/// What runs along a piece of the edge under work.
struct companion {
  range piece;
  std::uint32_t other = 0;  // edge, or wall of a face
  bool is_face = false;
};

/// A wall at one place of the edge under work.
struct presence {
  int wall = 0;
  bool passes = false;
  qv_double3 direction;
};

std::int64_t steps(double value, double step) {
  return std::llround(value / step);
}

auto place_key(const qv_double3& p) {
  return std::tuple(steps(p.z, place_step), steps(p.x, place_step), steps(p.y, place_step));
}

auto direction_key(const qv_junction_branch& b) {
  return std::tuple(-steps(b.direction.z, direction_step), -steps(b.direction.x, direction_step),
                    -steps(b.direction.y, direction_step), b.wall);
}

bool is_longer(const edge& a, const edge& b) {
  const auto key = [](const edge& e) {
    const auto low = std::tuple(e.from.x, e.from.y, e.from.z);
    const auto high = std::tuple(e.to.x, e.to.y, e.to.z);
    return std::tuple(-e.length, std::min(low, high), std::max(low, high), e.wall);
  };
  return key(a) < key(b);
}

/// Where |start + s × way| stays within the gap for s from 0 to 1.
range within_gap(const qv_double3& start, const qv_double3& way) {
  constexpr double limit = qv_junction_gap * qv_junction_gap;
  const double a = dot(way, way);
  const double b = dot(start, way);
  const double c = dot(start, start) - limit;
  if (c <= 0 && a + 2 * b + c <= 0) return {0, 1};
  const double root = b * b - a * c;
  if (root < 0 || a == 0) return {};
  const double reach = std::sqrt(root);
  const range inside = {std::max(0.0, (-b - reach) / a), std::min(1.0, (-b + reach) / a)};
  return inside.size() > 0 ? inside : range();
}

/// Which of the two directions in which a wall leaves a place of its face is given.
bool is_preferred(const qv_double3& direction, const qv_wall_face& face, const qv_double3& place) {
  if (std::abs(direction.z) >= direction_step) return direction.z > 0;
  const double lean = face.get_lean(place, direction);
  if (std::abs(lean) >= qv_junction_gap) return lean > 0;
  return std::abs(direction.x) >= direction_step ? direction.x > 0 : direction.y > 0;
}

/// The contour without the corners at which it goes straight on.
std::vector<qv_double3> straightened(const std::vector<qv_double3>& contour) {
  std::vector<qv_double3> corners;
  for (std::size_t i = 0; i < contour.size(); ++i) {
    const qv_double3& before = corners.empty() ? contour.back() : corners.back();
    const qv_double3 way = contour[(i + 1) % contour.size()] - before;
    const qv_double3 step = contour[i] - before;
    const double size = length(way);
    const bool on_the_way = size > 0 && dot(step, way) > 0 && dot(step, way) < size * size &&
                            length(cross(way, step)) < straight * size;
    if (!on_the_way) corners.push_back(contour[i]);
  }
  return corners;
}

class junction_finder {
 public:
  explicit junction_finder(const std::vector<qv_wall_outline>& walls);
  std::vector<qv_junction> find();

 private:
  void collect_edges(int wall, const qv_wall_outline& outline);
  void work_on(std::uint32_t index);
  void collect_companions(std::uint32_t index);
  bool is_news(std::uint32_t index, const range& piece);
  void collect_faces(const edge& e, const companion& source);
  range run_along(const edge& e, const edge& other) const;
  std::vector<range> free_pieces(const edge& e) const;
  std::vector<double> cuts_of(const edge& e, const std::vector<range>& free) const;
  std::vector<presence> presences(const edge& e, const std::vector<std::uint32_t>& active) const;
  std::vector<qv_junction_branch> branches_of(const std::vector<presence>& present,
                                              const qv_double3& place) const;
  void emit(const edge& e, const range& piece, std::vector<qv_junction_branch> branches);
  void mark_done(const edge& e, const range& piece, const std::vector<std::uint32_t>& active);

  std::vector<qv_wall_face> faces_;  // one for each wall
  std::vector<edge> edges_;          // longest first
  qv_box_tree edge_tree_{{}};
  qv_box_tree face_tree_{{}};
  std::vector<qv_junction> junctions_;
  // Of the edge under work; kept to spare allocations.
  std::vector<companion> companions_;
  std::vector<std::uint32_t> near_;
  std::vector<double> crossings_;
  std::vector<std::uint32_t> seen_;  // by edge, the round in which it was found last
  std::vector<range> known_;         // by edge, along which piece it was found in that round
  std::uint32_t round_ = 0;
};

junction_finder::junction_finder(const std::vector<qv_wall_outline>& walls) {
  faces_.reserve(walls.size());
  std::vector<qv_double_box> boxes;
  for (std::size_t i = 0; i < walls.size(); ++i) {
    faces_.emplace_back(walls[i]);
    boxes.push_back(faces_.back().get_box());
    if (faces_.back().has_area()) collect_edges(static_cast<int>(i), walls[i]);
  }
  face_tree_ = qv_box_tree(std::move(boxes));
  std::sort(edges_.begin(), edges_.end(), is_longer);
  boxes.clear();
  for (const edge& e : edges_) boxes.push_back(qv_double_box::around(e.from, e.to));
  edge_tree_ = qv_box_tree(std::move(boxes));
  seen_.assign(edges_.size(), 0);
  known_.resize(edges_.size());
}

void junction_finder::collect_edges(int wall, const qv_wall_outline& outline) {
  const qv_double3 normal = faces_[static_cast<std::size_t>(wall)].get_normal();
  for (const auto& whole : outline.contours) {
    const std::vector<qv_double3> contour = straightened(whole);
    for (std::size_t i = 0; i < contour.size(); ++i) {
      edge e;
      e.from = contour[i];
      e.to = contour[(i + 1) % contour.size()];
      e.length = length(e.to - e.from);
      if (e.length < qv_junction_gap) continue;
      e.along = (e.to - e.from) * (1 / e.length);
      e.inward = normalized(cross(normal, e.along));
      e.wall = wall;
      edges_.push_back(std::move(e));
    }
  }
}

std::vector<qv_junction> junction_finder::find() {
  for (std::uint32_t i = 0; i < edges_.size(); ++i) work_on(i);
  std::sort(junctions_.begin(), junctions_.end(), [](const qv_junction& a, const qv_junction& b) {
    return std::tuple(place_key(a.point_0), place_key(a.point_1)) <
           std::tuple(place_key(b.point_0), place_key(b.point_1));
  });
  return std::move(junctions_);
}

/// The pieces of `e` that no junction has yet.
std::vector<range> junction_finder::free_pieces(const edge& e) const {
  std::vector<range> done = e.done;
  std::sort(done.begin(), done.end(),
            [](const range& a, const range& b) { return a.begin < b.begin; });
  std::vector<range> free;
  double from = 0;
  for (const range& piece : done) {
    if (piece.begin - from >= qv_junction_gap) free.push_back({from, piece.begin});
    from = std::max(from, piece.end);
  }
  if (e.length - from >= qv_junction_gap) free.push_back({from, e.length});
  return free;
}

/// The piece of `e` beside which `other` runs; empty when it does not.
range junction_finder::run_along(const edge& e, const edge& other) const {
  const double first = e.place_of(other.from);
  const double last = e.place_of(other.to);
  const qv_double3 start = other.from - e.at(first);
  const qv_double3 way = other.to - e.at(last) - start;
  if (length(way) > parallel_sine * other.length) return {};
  const range share = within_gap(start, way);
  const double a = first + share.begin * (last - first);
  const double b = first + share.end * (last - first);
  return {std::max(0.0, std::min(a, b)), std::min(e.length, std::max(a, b))};
}

/// How far `other` lies from `e` along a piece of it.
double offset_of(const edge& e, const range& piece, const edge& other) {
  const auto at = [&](double place) {
    const qv_double3 p = e.at(place);
    return length(p - other.at(other.place_of(p)));
  };
  return std::max(at(piece.begin), at(piece.end));
}

/// The piece of `e` beside a piece of `other`, within `limit`.
range carry_over(const edge& e, const range& limit, const edge& other, const range& piece) {
  const double a = e.place_of(other.at(piece.begin));
  const double b = e.place_of(other.at(piece.end));
  return {std::max(limit.begin, std::min(a, b)), std::min(limit.end, std::max(a, b))};
}

/// What runs along the edge, and along what runs along it: of edges that lie side by side, each
/// within the gap of the next, the outer ones belong together as well.
void junction_finder::collect_companions(std::uint32_t index) {
  companions_.clear();
  ++round_;
  const edge& e = edges_[index];
  is_news(index, {0, e.length});
  std::vector<companion> sources = {{{0, e.length}, index, false}};
  for (std::size_t s = 0; s < sources.size(); ++s) {
    const companion source = sources[s];
    const edge& beside = edges_[source.other];
    edge_tree_.find_along(beside.from, beside.to, qv_junction_gap, near_);
    for (const std::uint32_t other : near_) {
      const range shared = run_along(beside, edges_[other]);
      if (shared.size() < qv_junction_gap) continue;
      const range piece = carry_over(e, source.piece, beside, shared);
      if (piece.size() < qv_junction_gap || !is_news(other, piece)) continue;
      companions_.push_back({piece, other, false});
      if (offset_of(e, piece, edges_[other]) > same_line) sources.push_back(companions_.back());
    }
    collect_faces(e, source);
  }
}

/// False when the edge was found in this round already, along as much as this.
bool junction_finder::is_news(std::uint32_t index, const range& piece) {
  range& known = known_[index];
  if (seen_[index] != round_) {
    seen_[index] = round_;
    known = piece;
    return true;
  }
  if (known.begin - piece.begin < qv_junction_gap && piece.end - known.end < qv_junction_gap)
    return false;
  known = {std::min(known.begin, piece.begin), std::max(known.end, piece.end)};
  return true;
}

void junction_finder::collect_faces(const edge& e, const companion& source) {
  const edge& beside = edges_[source.other];
  face_tree_.find_along(beside.from, beside.to, qv_junction_gap, near_);
  for (const std::uint32_t wall : near_) {
    if (static_cast<int>(wall) == beside.wall || !faces_[wall].has_area()) continue;
    faces_[wall].find_crossings(beside.from, beside.to, qv_junction_gap, parallel_sine, crossings_);
    for (std::size_t i = 0; i + 1 < crossings_.size(); i += 2) {
      const range piece =
          carry_over(e, source.piece, beside,
                     {crossings_[i] * beside.length, crossings_[i + 1] * beside.length});
      if (piece.size() >= qv_junction_gap) companions_.push_back({piece, wall, true});
    }
  }
}

/// Places, ascending, at which the walls along `e` may change; of places nearer to each other than
/// the gap one, the end of the edge before any other.
std::vector<double> junction_finder::cuts_of(const edge& e, const std::vector<range>& free) const {
  std::vector<double> places;
  for (const range& piece : free) places.insert(places.end(), {piece.begin, piece.end});
  for (const companion& c : companions_) places.insert(places.end(), {c.piece.begin, c.piece.end});
  std::sort(places.begin(), places.end());
  std::vector<double> cuts;
  for (std::size_t i = 0; i < places.size();) {
    std::size_t end = i;
    while (end < places.size() && places[end] - places[i] < qv_junction_gap) ++end;
    const double middle = places[i + (end - i) / 2];
    const bool at_start = places[i] <= 0;
    const bool at_end = places[end - 1] >= e.length;
    cuts.push_back(at_start ? 0 : at_end ? e.length : middle);
    i = end;
  }
  return cuts;
}

/// The walls at a place of `e` where `active` run along, in the order of their indices.
std::vector<presence> junction_finder::presences(const edge& e,
                                                 const std::vector<std::uint32_t>& active) const {
  std::vector<presence> present = {{e.wall, false, e.inward}};
  for (const std::uint32_t index : active) {
    const companion& c = companions_[index];
    if (c.is_face) {
      const auto wall = static_cast<int>(c.other);
      present.push_back({wall, true, cross(faces_[c.other].get_normal(), e.along)});
    } else {
      present.push_back({edges_[c.other].wall, false, edges_[c.other].inward});
    }
  }
  // An edge tells more than the face that it bounds.
  std::stable_sort(present.begin(), present.end(), [](const presence& a, const presence& b) {
    return std::tuple(a.wall, a.passes) < std::tuple(b.wall, b.passes);
  });
  std::vector<presence> merged;
  for (presence& p : present) {
    if (!merged.empty() && merged.back().wall == p.wall) {
      presence& known = merged.back();
      const bool opposed = dot(known.direction, p.direction) < -same_direction;
      if (!p.passes && opposed) known.passes = true;
      continue;
    }
    p.direction = normalized(p.direction - e.along * dot(p.direction, e.along));
    merged.push_back(p);
  }
  return merged;
}

std::vector<qv_junction_branch> junction_finder::branches_of(const std::vector<presence>& present,
                                                             const qv_double3& place) const {
  std::vector<qv_junction_branch> branches;
  for (const presence& p : present) {
    qv_double3 direction = p.direction;
    if (p.passes && !is_preferred(direction, faces_[static_cast<std::size_t>(p.wall)], place)) {
      direction = direction * -1;
    }
    branches.push_back({p.wall, direction});
  }
  std::sort(branches.begin(), branches.end(),
            [](const qv_junction_branch& a, const qv_junction_branch& b) {
              return direction_key(a) < direction_key(b);
            });
  return branches;
}

void junction_finder::mark_done(const edge& e, const range& piece,
                                const std::vector<std::uint32_t>& active) {
  for (const std::uint32_t index : active) {
    const companion& c = companions_[index];
    if (c.is_face) continue;
    edge& other = edges_[c.other];
    const double a = other.place_of(e.at(piece.begin));
    const double b = other.place_of(e.at(piece.end));
    other.done.push_back({std::min(a, b), std::max(a, b)});
  }
}

void junction_finder::emit(const edge& e, const range& piece,
                           std::vector<qv_junction_branch> branches) {
  if (piece.size() < qv_junction_gap) return;
  qv_junction junction = {e.at(piece.begin), e.at(piece.end), std::move(branches)};
  if (piece.begin == 0) junction.point_0 = e.from;
  if (piece.end == e.length) junction.point_1 = e.to;
  if (place_key(junction.point_1) < place_key(junction.point_0)) {
    std::swap(junction.point_0, junction.point_1);
  }
  junctions_.push_back(std::move(junction));
}

void junction_finder::work_on(std::uint32_t index) {
  const edge& e = edges_[index];
  const std::vector<range> free = free_pieces(e);
  if (free.empty()) return;
  collect_companions(index);
  if (companions_.empty()) return;
  const std::vector<double> cuts = cuts_of(e, free);
  std::sort(companions_.begin(), companions_.end(),
            [](const companion& a, const companion& b) { return a.piece.begin < b.piece.begin; });

  std::vector<std::uint32_t> active;
  std::uint32_t next = 0;
  std::size_t next_free = 0;
  range joined;  // the piece under way, whose walls are `last`
  std::vector<presence> last;
  const auto finish = [&] {
    if (last.size() >= 2) emit(e, joined, branches_of(last, e.at(joined.begin)));
    last.clear();
  };
  for (std::size_t i = 0; i + 1 < cuts.size(); ++i) {
    const range piece = {cuts[i], cuts[i + 1]};
    const double middle = (piece.begin + piece.end) / 2;
    while (next < companions_.size() && companions_[next].piece.begin < middle)
      active.push_back(next++);
    std::erase_if(active, [&](std::uint32_t c) { return companions_[c].piece.end < middle; });
    while (next_free < free.size() && free[next_free].end < middle) ++next_free;
    if (next_free == free.size() || middle < free[next_free].begin) {
      finish();
      continue;
    }
    std::vector<presence> present = presences(e, active);
    mark_done(e, piece, active);
    const bool same =
        std::equal(present.begin(), present.end(), last.begin(), last.end(),
                   [](const presence& a, const presence& b) {
                     return a.wall == b.wall && a.passes == b.passes &&
                            (a.passes || dot(a.direction, b.direction) > same_direction);
                   });
    if (same) {
      joined.end = piece.end;
      continue;
    }
    finish();
    joined = piece;
    last = std::move(present);
  }
  finish();
}

}  // namespace

std::vector<qv_junction> qv_find_junctions(const std::vector<qv_wall_outline>& walls) {
  return junction_finder(walls).find();
}

}  // namespace qv
