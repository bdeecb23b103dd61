#include "app/pictures/qv_picture_geometry.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <set>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "app/export/qv_export_groups.h"
#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "core/shapes/contours.h"
#include "core/shapes/qvi_polygon.h"
#include "core/shapes/surface_topology.h"

namespace qv {
namespace {

// Cosine of the angle by which a surface folds to show an edge: 20°.
constexpr double fold_cosine = 0.93969;

// Height above the floor of a room at which a plan cuts its walls, m, and the same as a share of a
// low room's height.
constexpr double cut_height = 1.2;
constexpr double cut_share = 0.5;

bool is_glazed(const qv_export_group& group) {
  if (!group.item->has_type("opening")) return false;
  const auto& opening = static_cast<const qvi_opening&>(*group.item);
  return opening.get_glazing_area() > opening.get_opaque_area();
}

bool is_on_storey(const qvi_space* space, int storey) {
  return space != nullptr && space->get_floor() == storey;
}

std::vector<qvi_space*> spaces_of(qv_scene& scene, int storey) {
  std::vector<qvi_space*> spaces;
  for (qv_item* item : scene.get_items("space")) {
    auto* const space = static_cast<qvi_space*>(item);
    if (is_on_storey(space, storey)) spaces.push_back(space);
  }
  return spaces;
}

// Walls that bound a room of the storey, but for those over such rooms and under none.
std::unordered_set<const qv_item*> walls_of(qv_scene& scene, int storey) {
  std::unordered_set<const qv_item*> walls;
  std::unordered_set<const qv_item*> floors;
  const std::vector<qvi_space*> spaces = spaces_of(scene, storey);
  for (const qvi_space* space : spaces) {
    for (const qvi_wall* wall : space->get_walls()) walls.insert(wall);
    for (const qvi_wall* wall : space->get_floors()) floors.insert(wall);
  }
  for (const qvi_space* space : spaces)
    for (const qvi_wall* wall : space->get_ceilings())
      if (floors.count(wall) == 0) walls.erase(wall);
  return walls;
}

// The middle of what is finite in the groups.
qv_double3 middle_of(const std::vector<qv_export_group>& groups) {
  constexpr double far = std::numeric_limits<double>::infinity();
  qv_double3 low(far, far, far);
  qv_double3 high(-far, -far, -far);
  for (const qv_export_group& group : groups) {
    for (const qv_3dvector& vertex : group.triangles.vertices) {
      if (!vertex.is_finite()) continue;
      low = min(low, qv_double3(vertex));
      high = max(high, qv_double3(vertex));
    }
  }
  return low.x <= high.x ? (low + high) * 0.5 : qv_double3();
}

qv_3dvector rounded(const qv_double3& v) {
  return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

using triangle = std::array<qv_3dvector, 3>;
using edge = std::array<qv_3dvector, 2>;

// By x, then y, then z.
bool comes_before(const qv_3dvector& a, const qv_3dvector& b) {
  return std::tie(a.x, a.y, a.z) < std::tie(b.x, b.y, b.z);
}

// Calls `take` with the corners of each triangle of a group.
template <class Take>
void for_each_corners(const qv_export_group& group, Take take) {
  const qv_list<int>& indices = group.triangles.triangles;
  const qv_list<qv_3dvector>& vertices = group.triangles.vertices;
  for (int i = 0; i + 2 < indices.get_count(); i += 3)
    take(triangle{vertices[indices[i]], vertices[indices[i + 1]], vertices[indices[i + 2]]});
}

class geometry_maker {
 public:
  explicit geometry_maker(const std::vector<qv_export_group>& groups) : groups_(groups) {
    made_.origin = middle_of(groups_);
  }

  const std::vector<qv_export_group>& get_groups() const { return groups_; }

  /// The group of an item, or null.
  const qv_export_group* find_group(const qv_item* item) {
    if (by_item_.empty())
      for (const qv_export_group& group : groups_) by_item_.try_emplace(group.item, &group);
    const auto found = by_item_.find(item);
    return found == by_item_.end() ? nullptr : found->second;
  }

  void add_surface(const qv_export_group& group, const qvi_space* space) {
    qv_picture_part& part = begin_part(group.item, group.kind);
    part.space = space;
    part.glazed = is_glazed(group);
    add_triangles(group);
    add_edges(group);
    end_part();
  }

  void add_floor(const qv_export_group& group, const qvi_space& space) {
    qv_picture_part& part = begin_part(group.item, group.kind);
    part.space = &space;
    part.is_plan_floor = true;
    add_triangles(group);
    end_part();
  }

  /// Where a surface crosses a level, as lines; nothing when it does not.
  void add_cut(const qv_export_group& group, const qvi_space& space, double level) {
    qv_picture_part& part = begin_part(group.item, group.kind);
    part.space = &space;
    part.glazed = is_glazed(group);
    for_each_corners(group, [&](const triangle& corners) { cut(corners, level); });
    if (made_.line_ends.size() == part.lines.first) {
      made_.parts.pop_back();
    } else {
      end_part();
    }
  }

  void add_line(qv_item* item, const std::string& kind, const qv_3dvector& from,
                const qv_3dvector& to) {
    if (!from.is_finite() || !to.is_finite()) {
      ++made_.lost;
      return;
    }
    begin_part(item, kind);
    made_.line_ends.push_back(placed(from));
    made_.line_ends.push_back(placed(to));
    end_part();
  }

  void add_label(const qvi_space& space, const qv_polygon& floor) {
    qv_picture_label label;
    label.name = space.get_name();
    label.figure = fmt::format("{:.1f} m²", space.get_area());
    for (int i = 0; i < floor.get_contour_count(); ++i) {
      std::vector<qv_double3>& contour = label.contours.emplace_back();
      for (const qv_3dvector& vertex : floor.get_contour(i))
        contour.push_back(qv_double3(vertex) - made_.origin);
    }
    made_.labels.push_back(std::move(label));
  }

  qv_picture_geometry take() {
    // Neighbours have the same edges: drawn twice they would be darker, and take twice the time.
    std::sort(edges_.begin(), edges_.end(), [](const edge& a, const edge& b) {
      return a[0] == b[0] ? comes_before(a[1], b[1]) : comes_before(a[0], b[0]);
    });
    edges_.erase(std::unique(edges_.begin(), edges_.end()), edges_.end());
    made_.edge_ends.reserve(2 * edges_.size());
    for (const edge& one : edges_)
      made_.edge_ends.insert(made_.edge_ends.end(), one.begin(), one.end());
    return std::move(made_);
  }

 private:
  qv_picture_part& begin_part(qv_item* item, const std::string& kind) {
    qv_picture_part& part = made_.parts.emplace_back();
    part.item = item;
    part.kind = kind;
    part.triangles.first = made_.corners.size();
    part.lines.first = made_.line_ends.size();
    return part;
  }

  void end_part() {
    qv_picture_part& part = made_.parts.back();
    part.triangles.count = made_.corners.size() - part.triangles.first;
    part.lines.count = made_.line_ends.size() - part.lines.first;
  }

  qv_3dvector placed(const qv_3dvector& vertex) const {
    return rounded(qv_double3(vertex) - made_.origin);
  }

  void add_triangles(const qv_export_group& group) {
    for_each_corners(group, [&](const triangle& corners) {
      if (!std::all_of(corners.begin(), corners.end(), [](auto& c) { return c.is_finite(); })) {
        ++made_.lost;
        return;
      }
      for (const qv_3dvector& corner : corners) made_.corners.push_back(placed(corner));
    });
  }

  void add_edge(const qv_3dvector& from, const qv_3dvector& to) {
    if (!from.is_finite() || !to.is_finite()) return;
    edge found{placed(from), placed(to)};
    if (comes_before(found[1], found[0])) std::swap(found[0], found[1]);
    edges_.push_back(found);
  }

  // Of a polygon its contours, though it be bent; of other meshes where they end or fold.
  void add_edges(const qv_export_group& group) {
    for (qvi_mesh* mesh : group.meshes) {
      if (mesh->has_type("polygon")) {
        const qv_list<qv_3dvector>& vertices = mesh->get_vertices();
        for_each_contour(vertices, static_cast<qvi_polygon*>(mesh)->get_contour_sizes(),
                         [&](int first, int count) {
                           for (int i = 0; i < count; ++i)
                             add_edge(vertices[first + i], vertices[first + (i + 1) % count]);
                         });
      } else {
        const surface_topology surface(mesh->get_triangle_vertices(), mesh->get_triangle_indices());
        for (const auto& [from, to] : surface.find_contour_edges(fold_cosine))
          add_edge(surface.get_vertex(from), surface.get_vertex(to));
      }
    }
  }

  void cut(const triangle& corners, double level) {
    std::vector<qv_double3> ends;
    for (std::size_t side = 0; side < 3; ++side) {
      const qv_double3 from(corners[side]);
      const qv_double3 to(corners[(side + 1) % 3]);
      // A corner on the level counts as above it, so that each crossing is met once.
      if ((from.z >= level) == (to.z >= level)) continue;
      ends.push_back(from + (to - from) * ((level - from.z) / (to.z - from.z)));
    }
    if (ends.size() != 2) return;
    for (const qv_double3& end : ends) made_.line_ends.push_back(rounded(end - made_.origin));
  }

  const std::vector<qv_export_group>& groups_;
  std::unordered_map<const qv_item*, const qv_export_group*> by_item_;
  std::vector<edge> edges_;
  qv_picture_geometry made_;
};

// The wall that an item is or stands in, or null.
const qvi_wall* wall_of(const qv_item* item) {
  if (item->has_type("wall")) return static_cast<const qvi_wall*>(item);
  if (item->has_type("opening")) return static_cast<const qvi_opening*>(item)->get_wall();
  return nullptr;
}

const qvi_space* space_of(const qvi_wall* wall, std::optional<int> storey) {
  if (wall == nullptr) return nullptr;
  const qvi_space* const first = wall->get_space_0();
  const qvi_space* const second = wall->get_space_1();
  if (first == nullptr || (storey && !is_on_storey(first, *storey) && second != nullptr))
    return second;
  return first;
}

// Adds the surfaces of a model, or of a storey; returns the walls of that storey.
std::unordered_set<const qv_item*> add_surfaces(geometry_maker& maker, qv_scene& scene,
                                                std::optional<int> storey) {
  std::unordered_set<const qv_item*> walls;
  if (storey) walls = walls_of(scene, *storey);
  for (const qv_export_group& group : maker.get_groups()) {
    const qvi_wall* wall = wall_of(group.item);
    if (!storey || walls.count(wall) != 0) maker.add_surface(group, space_of(wall, storey));
  }
  return walls;
}

struct level_range {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  // Takes in what of a surface is finite.
  void add(const qv_export_group& group) {
    for (const qv_3dvector& vertex : group.triangles.vertices) {
      if (!vertex.is_finite()) continue;
      low = std::min<double>(low, vertex.z);
      high = std::max<double>(high, vertex.z);
    }
  }
};

// The level at which a plan cuts a room; none for a room without height.
std::optional<double> cut_level_of(geometry_maker& maker, const qvi_space& space) {
  level_range range;
  for (const qvi_wall* wall : space.get_walls())
    if (const qv_export_group* group = maker.find_group(wall)) range.add(*group);
  if (!(range.low < range.high)) return std::nullopt;
  return range.low + std::min(cut_height, (range.high - range.low) * cut_share);
}

qvi_polygon* any_face(const qvi_wall& wall) {
  for (qvi_polygon* face : {wall.get_face(), wall.get_face_0(), wall.get_face_1()})
    if (face != nullptr) return face;
  return nullptr;
}

// The floors below the cut: a model that lists the ceiling of a room among its floors, or a
// gallery, does not hide them.
void add_floors(geometry_maker& maker, const qvi_space& space) {
  const std::optional<double> level = cut_level_of(maker, space);
  qv_polygon whole({0, 0, 0}, {0, 0, 1});
  for (const qvi_wall* wall : space.get_floors()) {
    const qv_export_group* group = maker.find_group(wall);
    if (group == nullptr) continue;
    level_range range;
    range.add(*group);
    if (level && range.low > *level) continue;
    maker.add_floor(*group, space);
    if (qvi_polygon* face = any_face(*wall)) {
      qv_polygon floor;
      face->fill_polygon(&floor);
      whole.unites(floor);
    }
  }
  if (!whole.is_empty()) maker.add_label(space, whole);
}

void add_cuts(geometry_maker& maker, const qvi_space& space) {
  const std::optional<double> level = cut_level_of(maker, space);
  if (!level) return;
  const auto add = [&](const qv_item* item) {
    if (const qv_export_group* group = maker.find_group(item)) maker.add_cut(*group, space, *level);
  };
  for (const qvi_wall* wall : space.get_walls()) {
    add(wall);
    for (const qvi_opening* opening : wall->get_openings()) add(opening);
  }
}

}  // namespace

std::vector<qv_double3> qv_picture_geometry::get_points() const {
  std::vector<qv_double3> points;
  points.reserve(corners.size() + line_ends.size());
  for (const auto* list : {&corners, &line_ends})
    for (const qv_3dvector& point : *list) points.emplace_back(point);
  return points;
}

qv_picture_geometry qv_collect_surfaces(qv_scene& scene, const std::vector<qv_export_group>& groups,
                                        std::optional<int> storey) {
  geometry_maker maker(groups);
  add_surfaces(maker, scene, storey);
  return maker.take();
}

qv_picture_geometry qv_collect_bridges(qv_scene& scene, const std::vector<qv_export_group>& groups,
                                       std::optional<int> storey) {
  geometry_maker maker(groups);
  const std::unordered_set<const qv_item*> walls = add_surfaces(maker, scene, storey);
  for (qv_item* item : scene.get_items("connexion")) {
    auto& connexion = static_cast<qvi_connexion&>(*item);
    if (!connexion.is_lossy()) continue;
    const qv_list<qvi_wall*>& met = connexion.get_walls();
    const bool shown = !storey || std::any_of(met.begin(), met.end(), [&](const qvi_wall* wall) {
      return walls.count(wall) != 0;
    });
    if (shown) maker.add_line(item, "connexion", connexion.get_point_0(), connexion.get_point_1());
  }
  return maker.take();
}

qv_picture_geometry qv_collect_plan(qv_scene& scene, const std::vector<qv_export_group>& groups,
                                    int storey) {
  geometry_maker maker(groups);
  const std::vector<qvi_space*> spaces = spaces_of(scene, storey);
  for (const qvi_space* space : spaces) add_floors(maker, *space);
  for (const qvi_space* space : spaces) add_cuts(maker, *space);
  return maker.take();
}

std::vector<int> qv_list_storeys(qv_scene& scene) {
  std::set<int> storeys;
  for (const qv_item* item : scene.get_items("space")) {
    const int storey = static_cast<const qvi_space*>(item)->get_floor();
    if (storey >= 0) storeys.insert(storey);
  }
  return {storeys.begin(), storeys.end()};
}

}  // namespace qv
