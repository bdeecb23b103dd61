#include "core/shapes/qv_shell_sides.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "core/shapes/qv_double3.h"

namespace qv {

namespace {

/// A shell encloses a volume when its faces see, on the mean over its area, at least half of what
/// those of a closed one see: a winding number of 1/4.
constexpr double enclosing_winding = 0.25;
/// Places on a shell at which the winding number is taken, at most.
constexpr int sample_count = 64;

/// Sets of faces that hang together, each face with its side relative to the set's first one.
class face_sets {
 public:
  explicit face_sets(int count)
      : parent_(static_cast<std::size_t>(count)), turned_(parent_.size()), rank_(parent_.size()) {
    for (std::size_t i = 0; i < parent_.size(); ++i) parent_[i] = i;
  }

  struct place {
    std::size_t root;
    bool turned;
  };

  place find(std::size_t face) {
    bool turned = false;
    std::size_t root = face;
    while (parent_[root] != root) {
      turned = turned != turned_[root];
      root = parent_[root];
    }
    // Shorten the way for the next time.
    bool rest = turned;
    while (parent_[face] != root && face != root) {
      const std::size_t up = parent_[face];
      const bool step = turned_[face];
      parent_[face] = root;
      turned_[face] = rest;
      rest = rest != step;
      face = up;
    }
    return {root, turned};
  }

  /// Joins the sets of two faces so that they agree; nothing when they are in one set already.
  void join(std::size_t a, std::size_t b, bool disagree) {
    const place pa = find(a), pb = find(b);
    if (pa.root == pb.root) return;
    const bool turned = (pa.turned != pb.turned) != disagree;
    const bool a_below = rank_[pa.root] < rank_[pb.root];
    const std::size_t child = a_below ? pa.root : pb.root;
    const std::size_t top = a_below ? pb.root : pa.root;
    parent_[child] = top;
    turned_[child] = turned;
    if (rank_[child] == rank_[top]) ++rank_[top];
  }

 private:
  std::vector<std::size_t> parent_;
  std::vector<bool> turned_;
  std::vector<int> rank_;
};

/// A triangle of a shell in double precision, its corners in the order of the shell's common side.
struct shell_triangle {
  qv_double3 corners[3];
  double area;
  int face;
  bool turned;
};

/// Signed solid angle of a triangle seen from `p`, positive from behind (A. Van Oosterom, J.
/// Strackee, The Solid Angle of a Plane Triangle, 1983). A triangle whose plane holds `p` within
/// `rounding` counts as seen edge on.
double solid_angle(const shell_triangle& t, const qv_double3& p, double rounding) {
  const qv_double3 a = t.corners[0] - p, b = t.corners[1] - p, c = t.corners[2] - p;
  const double volume = dot(a, cross(b, c));
  if (std::fabs(volume) <= rounding * 2 * t.area) return 0;
  const double la = length(a), lb = length(b), lc = length(c);
  const double denominator = la * lb * lc + dot(a, b) * lc + dot(b, c) * la + dot(c, a) * lb;
  return 2 * std::atan2(volume, denominator);
}

/// Places that suffice when all of them see what a closed shell shows, and how exactly they must.
constexpr int agreeing_count = 4;
constexpr double closed_precision = 1e-3;

/// Mean winding number over the surface, taken at places spread evenly over its area.
double mean_winding(const std::vector<shell_triangle>& shell, double rounding) {
  double area = 0;
  for (const shell_triangle& t : shell) area += t.area;
  std::vector<std::pair<const shell_triangle*, double>> places;
  if (shell.size() <= std::size_t{sample_count}) {
    for (const shell_triangle& t : shell) places.emplace_back(&t, t.area / area);
  } else {
    double passed = 0, drawn = 0;
    for (const shell_triangle& t : shell) {
      passed += t.area / area * sample_count;
      const double weight = std::floor(passed - drawn + 0.5);
      if (weight > 0) places.emplace_back(&t, weight);
      drawn += weight;
    }
  }
  // Taken in a mixed order, so that the first few are not neighbours.
  const std::size_t stride = places.size() % 7 != 0 ? 7 : 11;
  double sum = 0, weights = 0;
  bool looks_closed = true;
  for (std::size_t i = 0; i < places.size(); ++i) {
    const auto& [t, weight] = places[i * stride % places.size()];
    const qv_double3 p = (t->corners[0] + t->corners[1] + t->corners[2]) * (1.0 / 3);
    double angle = 0;
    for (const shell_triangle& other : shell)
      if (&other != t) angle += solid_angle(other, p, rounding);
    const double winding = angle / (4 * std::numbers::pi);
    sum += weight * winding;
    weights += weight;
    looks_closed =
        looks_closed && std::fabs(std::fabs(winding) - 0.5) < closed_precision && winding * sum > 0;
    if (looks_closed && i + 1 == agreeing_count) break;
  }
  return weights > 0 ? sum / weights : 0;
}

/// True when the shell's common side must be the other one.
bool must_be_inverted(const std::vector<shell_triangle>& shell, double rounding) {
  const double winding = mean_winding(shell, rounding);
  if (winding >= enclosing_winding) return false;
  if (winding <= -enclosing_winding) return true;
  double kept = 0, turned = 0;
  for (const shell_triangle& t : shell) (t.turned ? turned : kept) += t.area;
  if (std::fabs(kept - turned) <= rounding * (kept + turned)) return shell.front().turned;
  return turned > kept;
}

}  // namespace

std::vector<bool> qv_find_faces_to_turn(const std::vector<qv_face_triangle>& triangles,
                                        int face_count, const std::vector<qv_face_link>& links) {
  std::vector<bool> turn(static_cast<std::size_t>(face_count));
  face_sets sets(face_count);
  for (const qv_face_link& l : links)
    sets.join(static_cast<std::size_t>(l.a), static_cast<std::size_t>(l.b), l.disagree);

  // The shells in the order of their first triangles.
  std::vector<std::vector<shell_triangle>> shells;
  std::vector<int> shell_of_root(static_cast<std::size_t>(face_count), -1);
  double largest = 0;
  qv_double3 origin;
  for (const qv_face_triangle& t : triangles) {
    if (!qv_has_area(t)) continue;
    if (largest == 0) origin = qv_double3(t.corners[0]);
    shell_triangle made;
    const face_sets::place at = sets.find(static_cast<std::size_t>(t.face));
    for (std::size_t k = 0; k < 3; ++k) {
      const qv_3dvector& p = t.corners[at.turned ? 2 - k : k];
      made.corners[k] = qv_double3(p) - origin;
      largest = std::max(
          {largest, std::fabs(double(p.x)), std::fabs(double(p.y)), std::fabs(double(p.z))});
    }
    made.area =
        length(cross(made.corners[1] - made.corners[0], made.corners[2] - made.corners[0])) / 2;
    made.face = t.face;
    made.turned = at.turned;
    int& shell = shell_of_root[at.root];
    if (shell < 0) {
      shell = static_cast<int>(shells.size());
      shells.emplace_back();
    }
    shells[static_cast<std::size_t>(shell)].push_back(made);
  }

  const double rounding = largest * std::numeric_limits<float>::epsilon();
  for (const std::vector<shell_triangle>& shell : shells) {
    const bool inverted = must_be_inverted(shell, rounding);
    for (const shell_triangle& t : shell)
      turn[static_cast<std::size_t>(t.face)] = t.turned != inverted;
  }
  return turn;
}

}  // namespace qv
