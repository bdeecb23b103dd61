#include "core/light/surface_sampler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "utilities/qv_polygon.h"
#include "utilities/qv_triangulation.h"

namespace qv::light {

namespace {

/// Halving a triangle more often leaves nothing that single precision tells apart.
constexpr int most_halvings = 40;
/// Pieces are halved beforehand until none has more than 1 / 2^this of the row, so that most points
/// are found at the first look at the table of parts below.
constexpr int piece_coarseness = 6;
/// Pieces of more complex regions than this are left as they are.
constexpr std::size_t most_pieces = 4096;
/// Parts of the row for each piece, so that few parts hold more than one piece's beginning.
constexpr std::size_t parts_per_piece = 4;

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

/// A point of a triangle, in units of the sides `from` and `to` from its apex.
struct side_units {
  float from, to;
};

/// Where a part of a triangle lies in it.
struct triangle_part {
  side_units apex, from, to;

  constexpr side_units get_point_of_whole(const side_units& p) const {
    return {apex.from + from.from * p.from + to.from * p.to,
            apex.to + from.to * p.from + to.to * p.to};
  }
};

/// The part is halved between its apex and the middle of the longest side, which is the apex of
/// both halves.
constexpr triangle_part halve(const triangle_part& whole, bool second) {
  const side_units middle = {(whole.from.from + whole.to.from) / 2,
                             (whole.from.to + whole.to.to) / 2};
  const side_units back = {-middle.from, -middle.to};
  const side_units apex = {whole.apex.from + middle.from, whole.apex.to + middle.to};
  if (second) return {apex, back, {whole.to.from - middle.from, whole.to.to - middle.to}};
  return {apex, {whole.from.from - middle.from, whole.from.to - middle.to}, back};
}

/// All parts after 0, 1, 2 … halvings, one after the other along the row: those after n halvings
/// begin at number 2^n − 1. Their numbers are multiples of powers of 1/2, and exact.
constexpr int table_halvings = 7;
using part_table = std::array<triangle_part, (2u << table_halvings) - 1>;

constexpr part_table make_parts() {
  part_table parts{};
  parts[0] = {{0, 0}, {1, 0}, {0, 1}};
  for (std::size_t i = 0; 2 * i + 2 < parts.size(); ++i) {
    parts[2 * i + 1] = halve(parts[i], false);
    parts[2 * i + 2] = halve(parts[i], true);
  }
  return parts;
}

constexpr part_table parts_of_triangle = make_parts();

/// The point at `position` (0 … 1) of the row through a triangle that is halved `halvings` times.
side_units get_point_of_triangle(double position, float across, int halvings) {
  constexpr double before_end = 1 - 0x1p-53;
  const int step = std::min(halvings, table_halvings);
  const double scaled = std::min(position, before_end) * (1 << step);
  const int part = static_cast<int>(scaled);
  const double rest = scaled - part;
  side_units point{};
  if (step == halvings) {
    // From the square onto the triangle, area for area: E. Heitz, A low-distortion map between
    // triangle and square, 2019.
    const auto along = static_cast<float>(rest);
    const float half = std::min(along, across) / 2;
    point = {along - half, across - half};
  } else {
    // The row through a part is a whole one again.
    point = get_point_of_triangle(rest, across, halvings - step);
  }
  const std::size_t first = (std::size_t{1} << step) - 1;
  return parts_of_triangle[first + static_cast<std::size_t>(part)].get_point_of_whole(point);
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

void surface_sampler::refine() {
  bool changed = true;
  while (changed && 2 * pieces_.size() <= most_pieces) {
    changed = false;
    std::vector<piece> finer;
    finer.reserve(2 * pieces_.size());
    for (const piece& p : pieces_) {
      if (p.coarseness >= piece_coarseness) {
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

qv_3dvector surface_sampler::get_point(double position, float across, int fineness) const {
  const piece& p = pieces_[find_piece(position)];
  const int halvings = std::clamp(fineness + 1 - p.coarseness, 0, most_halvings);
  const side_units at = get_point_of_triangle((position - p.begin) * p.inverse, across, halvings);
  return {p.apex.x + p.from.x * at.from + p.to.x * at.to,
          p.apex.y + p.from.y * at.from + p.to.y * at.to,
          p.apex.z + p.from.z * at.from + p.to.z * at.to};
}

}  // namespace qv::light
