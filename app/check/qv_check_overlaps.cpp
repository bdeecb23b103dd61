#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "app/check/qv_check_scope.h"
#include "core/shapes/qvi_polygon.h"

namespace qv {
namespace {

constexpr float parallel_cosine = 0.999f;     // 2.6°
constexpr float coincident = 0.005f;          // m between planes that count as one
constexpr float thickest_partition = 0.25f;   // m between the faces of walls back to back
constexpr float least_overlap = 0.01f;        // m²
constexpr float least_overlap_share = 0.02f;  // of the smaller face; less is a common edge

struct candidate {
  const qvi_wall* wall = nullptr;
  qvi_polygon* face = nullptr;
  qv_box box;
  std::size_t rank = 0;  // in the order of the model
};

// The faces that bound a space, by the low end of their boxes along x.
std::vector<candidate> sort_faces(const qv_check_scope& scope) {
  std::vector<candidate> faces;
  for (const qvi_wall* wall : scope.get_walls()) {
    qvi_polygon* const face = scope.get_face(wall);
    if (face == nullptr || wall->get_space_0() == nullptr) continue;
    faces.push_back({wall, face, face->get_local_bounding_box(), faces.size()});
  }
  std::stable_sort(faces.begin(), faces.end(), [](const candidate& a, const candidate& b) {
    return a.box.get_min().x < b.box.get_min().x;
  });
  return faces;
}

bool are_near(const qv_box& a, const qv_box& b) {
  const auto apart = [](float low_a, float high_a, float low_b, float high_b) {
    return low_a > high_b + thickest_partition || low_b > high_a + thickest_partition;
  };
  return !apart(a.get_min().y, a.get_max().y, b.get_min().y, b.get_max().y) &&
         !apart(a.get_min().z, a.get_max().z, b.get_min().z, b.get_max().z);
}

struct overlap {
  float area = 0;
  qv_3dvector place;
};

overlap find_overlap(const candidate& a, const candidate& b) {
  qv_polygon common;
  a.face->fill_polygon(&common);
  qv_polygon other;
  b.face->fill_polygon(&other);
  const float smaller = std::min(common.get_area(), other.get_area());
  common.intersects(other);
  overlap found;
  found.area = common.get_area();
  if (found.area < std::max(least_overlap, least_overlap_share * smaller)) return {};
  qv_box box;
  for (const qv_3dvector& vertex : common.get_contour_vertices()) box.enlarge(vertex);
  found.place = box.get_center();
  return found;
}

void compare(qv_check_scope& scope, const candidate& a, const candidate& b) {
  const qv_3dvector normal = a.wall->get_normal();
  const float cosine = normal.dot(b.wall->get_normal());
  if (std::abs(cosine) < parallel_cosine) return;
  if (a.face->get_vertices().is_empty() || b.face->get_vertices().is_empty()) return;
  // How far b lies beyond a's outside.
  const float gap = (b.face->get_vertices()[0] - a.face->get_vertices()[0]).dot(normal);
  const bool same_plane = std::abs(gap) <= coincident;
  const bool lone = a.wall->get_space_1() == nullptr && b.wall->get_space_1() == nullptr;
  const bool back_to_back = lone && cosine < 0 && gap > -coincident && gap <= thickest_partition &&
                            a.wall->get_space_0() != b.wall->get_space_0();
  if (!same_plane && !back_to_back) return;
  const overlap found = find_overlap(a, b);
  if (!(found.area > 0)) return;
  // Told of the one that comes second in the model.
  const candidate& later = a.rank < b.rank ? b : a;
  const candidate& earlier = &later == &a ? b : a;
  const std::string other = "Surface \"" + qv_check_scope::id_of(earlier.wall) + "\"";
  if (back_to_back) {
    scope.add("unshared-wall", "Surface", qv_check_scope::id_of(later.wall),
              fmt::format("{:.2f} m² of it stand back to back with {}, {:.0f} mm apart: {} and {} "
                          "have no wall in common there",
                          found.area, other, 1000 * std::abs(gap),
                          qv_check_scope::quoted(earlier.wall->get_space_0()),
                          qv_check_scope::quoted(later.wall->get_space_0())),
              found.place);
  } else {
    scope.add("overlapping-walls", "Surface", qv_check_scope::id_of(later.wall),
              fmt::format("{:.2f} m² of it lie on {}", found.area, other), found.place);
  }
}

}  // namespace

void qv_check_overlaps(qv_check_scope& scope) {
  const std::vector<candidate> faces = sort_faces(scope);
  for (std::size_t i = 0; i < faces.size(); ++i) {
    const float end = faces[i].box.get_max().x + thickest_partition;
    for (std::size_t k = i + 1; k < faces.size() && faces[k].box.get_min().x <= end; ++k)
      if (are_near(faces[i].box, faces[k].box)) compare(scope, faces[i], faces[k]);
  }
}

}  // namespace qv
