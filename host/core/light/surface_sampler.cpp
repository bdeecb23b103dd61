#include "core/light/surface_sampler.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "utilities/qv_polygon.h"
#include "utilities/qv_triangulation.h"

namespace qv::light {

namespace {

/// Halving a triangle more often leaves nothing that single precision tells apart.
constexpr int most_halvings = 40;
/// Strata of 1 / 2^this and larger need no halving of their own.
constexpr int table_fineness = 5;
/// Parts of the row for each piece, so that few parts hold more than one piece's beginning.
constexpr std::size_t parts_per_piece = 4;
/// Pieces of more complex regions than this are left as they are.
constexpr std::size_t most_pieces = 4096;

struct triangle {
  qv_3dvector apex, from, to;
  double area;
};

/// The triangle with its longest side opposite the apex.
triangle make_triangle(const qv_3dvector& a, const qv_3dvector& b, const qv_3dvector& c) {
  const float bc = (c - b).length(), ca = (a - c).length(), ab = (b - a).length();
  const double ux = double(b.x) - a.x, uy = double(b.y) - a.y, uz = double(b.z) - a.z;
  const double vx = double(c.x) - a.x, vy = double(c.y) - a.y, vz = double(c.z) - a.z;
  const double x = uy * vz - uz * vy, y = uz * vx - ux * vz, z = ux * vy - uy * vx;
  const double area = std::sqrt(x * x + y * y + z * z) / 2;
  if (bc >= ca && bc >= ab) return {a, b, c, area};
  if (ca >= ab) return {b, c, a, area};
  return {c, a, b, area};
}

}  // namespace

surface_sampler::surface_sampler(const qv_polygon& polygon, const qv_3dvector& lift) {
  const qv_triangulation surface = qv_triangulate(polygon);
  std::vector<triangle> triangles;
  const auto corner = [&](int index) { return surface.vertices[surface.triangles[index]] + lift; };
  for (int i = 0; i + 2 < surface.triangles.get_count(); i += 3) {
    const triangle t = make_triangle(corner(i), corner(i + 1), corner(i + 2));
    if (!(t.area > 0) || !std::isfinite(t.area)) continue;
    triangles.push_back(t);
    area_ += t.area;
  }
  double begin = 0;
  for (const triangle& t : triangles) {
    const double share = t.area / area_;
    pieces_.push_back(make_piece(t.apex, t.from - t.apex, t.to - t.apex, begin, share));
    begin += share;
  }
  refine();
  index_pieces();
}

surface_sampler::piece surface_sampler::make_piece(const qv_3dvector& apex, const qv_3dvector& from,
                                                   const qv_3dvector& to, double begin,
                                                   double share) {
  return {apex,
          from,
          to,
          begin,
          share,
          1 / share,
          std::max(0, static_cast<int>(std::floor(-std::log2(share))))};
}

/// Halves pieces until none is larger than half a stratum of the table's fineness.
void surface_sampler::refine() {
  bool changed = true;
  while (changed && 2 * pieces_.size() <= most_pieces) {
    changed = false;
    std::vector<piece> finer;
    for (const piece& p : pieces_) {
      if (p.coarseness > table_fineness) {
        finer.push_back(p);
        continue;
      }
      changed = true;
      const qv_3dvector middle = (p.from + p.to) * 0.5f;
      const qv_3dvector apex = p.apex + middle;
      finer.push_back(make_piece(apex, p.from - middle, -middle, p.begin, p.share / 2));
      finer.push_back(make_piece(apex, -middle, p.to - middle, p.begin + p.share / 2, p.share / 2));
    }
    pieces_.swap(finer);
  }
}

void surface_sampler::index_pieces() {
  int next = 0;
  const int last = std::max(0, static_cast<int>(pieces_.size()) - 1);
  first_.resize(parts_per_piece * pieces_.size());
  parts_ = static_cast<double>(first_.size());
  for (std::size_t i = 0; i < first_.size(); ++i) {
    const double position = static_cast<double>(i) / parts_;
    while (next < last && pieces_[static_cast<std::size_t>(next) + 1].begin <= position) ++next;
    first_[i] = next;
  }
  // Position 1, and the end of the last piece.
  first_.push_back(last);
  pieces_.push_back(make_piece({}, {}, {}, std::numeric_limits<double>::infinity(), 1));
}

qv_3dvector surface_sampler::get_lowest(const qv_3dvector& direction) const {
  qv_3dvector lowest = pieces_.front().apex;
  for (std::size_t i = 0; i + 1 < pieces_.size(); ++i) {
    const piece& p = pieces_[i];
    for (const qv_3dvector& corner : {p.apex, p.apex + p.from, p.apex + p.to})
      if (corner.dot(direction) < lowest.dot(direction)) lowest = corner;
  }
  return lowest;
}

qv_3dvector surface_sampler::get_halved_point(const piece& p, double along, float across,
                                              int fineness) {
  double rest = std::clamp(along, 0.0, 1.0);
  qv_3dvector apex = p.apex, from = p.from, to = p.to;
  const int halvings = std::min(fineness + 1 - p.coarseness, most_halvings);
  for (int i = 0; i < halvings; ++i) {
    const qv_3dvector middle = (from + to) * 0.5f;
    rest *= 2;
    // The first half keeps `from` and the second `to`, without a branch on what is random.
    const float second = rest < 1 ? 0.0f : 1.0f;
    from = from * (1 - second) - middle;
    to = to * second - middle;
    rest -= second;
    apex += middle;
  }
  return get_point_of(apex, from, to, rest, across);
}

}  // namespace qv::light
