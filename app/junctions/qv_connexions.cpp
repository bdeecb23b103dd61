#include "app/junctions/qv_connexions.h"

#include <algorithm>
#include <string>

#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "core/items/qv_scene.h"
#include "core/shapes/qvi_polygon.h"

namespace qv {

namespace {

qv_3dvector to_single(const qv_double3& v) {
  return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

const qvi_polygon* outline_face(const qvi_wall& wall) {
  for (const qvi_polygon* face :
       {wall.get_face(), wall.get_face_0(), wall.get_face_1(), wall.get_pierced_face(),
        wall.get_pierced_face_0(), wall.get_pierced_face_1()}) {
    if (face != nullptr) return face;
  }
  return nullptr;
}

bool bounds_space(const qvi_wall* wall) {
  return wall->get_space_0() != nullptr || wall->get_space_1() != nullptr;
}

qv_item* campus_or_scene(const qvi_wall* wall, qv_scene& scene) {
  for (qv_item* above = wall->get_parent(); above != nullptr; above = above->get_parent()) {
    if (above->has_type("campus")) return above;
  }
  return &scene;
}

}  // namespace

qv_wall_outline qv_outline_of(const qvi_wall& wall) {
  qv_wall_outline outline;
  const qvi_polygon* face = outline_face(wall);
  if (face == nullptr) return outline;
  const qv_list<qv_3dvector>& vertices = face->get_vertices();
  int next = 0;
  for (const unsigned int size : face->get_contour_sizes()) {
    auto& contour = outline.contours.emplace_back();
    for (unsigned int i = 0; i < size && next < vertices.get_count(); ++i)
      contour.emplace_back(vertices[next++]);
  }
  return outline;
}

int qv_add_connexions(qv_scene& scene) {
  std::vector<qvi_wall*> walls;
  std::vector<qv_wall_outline> outlines;
  for (qv_item* item : scene.get_items("wall")) {
    walls.push_back(static_cast<qvi_wall*>(item));
    outlines.push_back(qv_outline_of(*walls.back()));
  }
  std::vector<qv_junction> junctions = qv_find_junctions(outlines);
  int count = 0;
  for (qv_junction& junction : junctions) {
    const auto wall_of = [&](const qv_junction_branch& branch) {
      return walls[static_cast<std::size_t>(branch.wall)];
    };
    std::stable_partition(
        junction.branches.begin(), junction.branches.end(),
        [&](const qv_junction_branch& branch) { return bounds_space(wall_of(branch)); });
    qv_list<qvi_wall*> meeting;
    qv_list<qv_3dvector> directions;
    for (const qv_junction_branch& branch : junction.branches) {
      meeting.append(wall_of(branch));
      directions.append(to_single(branch.direction));
    }
    auto* connexion = new qvi_connexion;
    connexion->set_name("Liaison " + std::to_string(++count));
    connexion->set_point_0(to_single(junction.point_0));
    connexion->set_point_1(to_single(junction.point_1));
    connexion->set_walls(meeting);
    connexion->set_wall_directions(directions);
    campus_or_scene(meeting[0], scene)->add_child(connexion, -1);
  }
  return count;
}

}  // namespace qv
