#include "app/readers/qv_shell_rays.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace {

using qv::qv_double3;
using qv::qv_loop;
using qv::qv_plane_part;

// The rays lean away from the normal so that they pass beside the edges of a rectangular room.
constexpr qv_double3 lean = {0.0217, 0.0131, 0.0173};
// m along the ray; nearer than this is the face itself or one that lies on it.
constexpr double nearest_hit = 1e-4;
constexpr double parallel = 1e-9;

// A plane part seen along the axis that its normal is nearest to.
class flat_view {
 public:
  explicit flat_view(const qv_plane_part& part) : part_(part) {
    const qv_double3& n = part.normal;
    if (std::abs(n.x) >= std::abs(n.y) && std::abs(n.x) >= std::abs(n.z)) {
      axis_ = 0;
    } else {
      axis_ = std::abs(n.y) >= std::abs(n.z) ? 1 : 2;
    }
    for (const qv_loop& contour : part_.contours)
      for (const qv_double3& p : contour) {
        const auto [u, v] = flatten(p);
        low_ = {std::min(low_.first, u), std::min(low_.second, v)};
        high_ = {std::max(high_.first, u), std::max(high_.second, v)};
      }
  }

  // Even-odd rule over all contours.
  bool contains(const qv_double3& p) const {
    const auto [u, v] = flatten(p);
    if (u < low_.first || u > high_.first || v < low_.second || v > high_.second) return false;
    bool inside = false;
    for (const qv_loop& contour : part_.contours)
      for (std::size_t i = 0, j = contour.size() - 1; i < contour.size(); j = i++) {
        const auto [ui, vi] = flatten(contour[i]);
        const auto [uj, vj] = flatten(contour[j]);
        if ((vi > v) != (vj > v) && u < (uj - ui) * (v - vi) / (vj - vi) + ui) inside = !inside;
      }
    return inside;
  }

 private:
  std::pair<double, double> flatten(const qv_double3& p) const {
    if (axis_ == 0) return {p.y, p.z};
    if (axis_ == 1) return {p.z, p.x};
    return {p.x, p.y};
  }

  static constexpr double infinity = std::numeric_limits<double>::infinity();

  const qv_plane_part& part_;
  int axis_ = 2;
  // The rectangle around the part.
  std::pair<double, double> low_ = {infinity, infinity};
  std::pair<double, double> high_ = {-infinity, -infinity};
};

// A point inside the part: its middle, or the middle of one of its corners' triangles.
std::optional<qv_double3> inner_point(const qv_plane_part& part) {
  if (part.contours.empty()) return std::nullopt;
  const flat_view view(part);
  const qv_loop& contour = part.contours[0];
  const std::size_t n = contour.size();
  qv_double3 middle;
  for (const qv_double3& p : contour) middle = middle + p * (1.0 / static_cast<double>(n));
  if (view.contains(middle)) return middle;
  for (std::size_t i = 0; i < n; ++i) {
    const qv_double3 candidate =
        (contour[i] + contour[(i + 1) % n] + contour[(i + 2) % n]) * (1.0 / 3);
    if (view.contains(candidate)) return candidate;
  }
  return std::nullopt;
}

bool is_hit(const qv_plane_part& part, const flat_view& view, const qv_double3& origin,
            const qv_double3& direction) {
  const double slope = direction.dot(part.normal);
  if (std::abs(slope) < parallel || part.contours.empty()) return false;
  const double t = (part.contours[0][0] - origin).dot(part.normal) / slope;
  return t > nearest_hit && view.contains(origin + direction * t);
}

}  // namespace

namespace qv {

void qv_ask_rays(std::span<const qv_shell_face> faces, std::vector<qv_face_verdict>& verdicts) {
  std::vector<flat_view> views;
  views.reserve(faces.size());
  for (const qv_shell_face& face : faces) views.emplace_back(*face.polygon->part);

  for (std::size_t f = 0; f < faces.size(); ++f) {
    if (verdicts[f].evidence == qv_shell_evidence::closed) continue;
    const auto origin = inner_point(*faces[f].polygon->part);
    if (!origin) continue;
    const qv_double3 outwards = faces[f].polygon->part->normal * faces[f].side;
    const auto is_inside = [&](const qv_double3& direction) {
      bool odd = false;
      for (std::size_t g = 0; g < faces.size(); ++g)
        if (g != f && is_hit(*faces[g].polygon->part, views[g], *origin, direction)) odd = !odd;
      return odd;
    };
    const bool inside_ahead = is_inside(outwards + lean);
    const bool inside_behind = is_inside(lean - outwards);
    if (inside_ahead == inside_behind) continue;
    verdicts[f] = {qv_shell_evidence::rays, inside_behind};
  }
}

bool qv_is_face_enclosed(std::span<const qv_shell_face> faces, std::size_t face,
                         const std::vector<bool>& others) {
  const auto origin = inner_point(*faces[face].polygon->part);
  if (!origin) return false;
  const qv_double3 direction = faces[face].polygon->part->normal + lean;
  bool odd = false;
  for (std::size_t g = 0; g < faces.size(); ++g) {
    if (g == face || !others[g]) continue;
    const qv_plane_part& part = *faces[g].polygon->part;
    if (is_hit(part, flat_view(part), *origin, direction)) odd = !odd;
  }
  return odd;
}

}  // namespace qv
