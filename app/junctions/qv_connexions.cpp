#include "app/junctions/qv_connexions.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/imported/qvi_bim_object.h"
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

qv_item* campus_or_scene(const qv_item* item, qv_scene& scene) {
  for (qv_item* above = item->get_parent(); above != nullptr; above = above->get_parent()) {
    if (above->has_type("campus")) return above;
  }
  return &scene;
}

qv_wall_outline outline_of(const qvi_polygon& face) {
  qv_wall_outline outline;
  const qv_list<qv_3dvector>& vertices = face.get_vertices();
  int next = 0;
  for (const unsigned int size : face.get_contour_sizes()) {
    auto& contour = outline.contours.emplace_back();
    for (unsigned int i = 0; i < size && next < vertices.get_count(); ++i)
      contour.emplace_back(vertices[next++]);
  }
  return outline;
}

// A flat face of an object, and the object.
struct object_face {
  const qvi_bim_object* object;
  qvi_polygon* face;
};

// Faces of objects that no wall shows yet.
std::vector<object_face> list_object_faces(qv_scene& scene) {
  std::vector<object_face> faces;
  for (qv_item* item : scene.get_items("bim_object"))
    for (qvi_polygon* face : qv_collect<qvi_polygon>(item, "polygon"))
      if (!face->get_raytracing_layers().contains("footprint") &&
          scene.get_referrers("wall", "", face).is_empty())
        faces.push_back({static_cast<const qvi_bim_object*>(item), face});
  return faces;
}

// Vertical component of a unit normal from which on a face lies rather than stands (45°).
constexpr float half_level = 0.7071f;

qvi_wall* add_wall_of(const object_face& from, qv_scene& scene) {
  auto* wall = new qvi_wall;
  wall->set_name(from.object->get_name());
  if (!from.object->get_source_id().empty()) wall->set_source_ids({from.object->get_source_id()});
  wall->set_wall_type(std::fabs(from.face->get_normal().z) > half_level
                          ? qvi_wall::wall_type::floor
                          : qvi_wall::wall_type::wall);
  wall->set_normal(from.face->get_normal());
  wall->set_face_0(from.face);
  wall->set_face_1(from.face);
  campus_or_scene(from.object, scene)->add_child(wall, -1);
  return wall;
}

// Appends to `walls` one for each of the faces that follow them in the indices of the junctions:
// a new wall where it meets the envelope, since without one a balcony's edge would pass for that of
// a plain floor, and null elsewhere.
void add_walls_of_objects(const std::vector<object_face>& faces,
                          const std::vector<qv_junction>& junctions, qv_scene& scene,
                          std::vector<qvi_wall*>& walls) {
  const std::size_t wall_count = walls.size();
  walls.resize(wall_count + faces.size(), nullptr);
  std::vector<bool> meets(walls.size(), false);
  for (const qv_junction& junction : junctions) {
    const bool of_envelope =
        std::any_of(junction.branches.begin(), junction.branches.end(), [&](const auto& branch) {
          const qvi_wall* wall = walls[static_cast<std::size_t>(branch.wall)];
          return wall != nullptr && bounds_space(wall);
        });
    if (!of_envelope) continue;
    for (const qv_junction_branch& branch : junction.branches)
      meets[static_cast<std::size_t>(branch.wall)] = true;
  }
  for (std::size_t i = 0; i < faces.size(); ++i)
    if (meets[wall_count + i]) walls[wall_count + i] = add_wall_of(faces[i], scene);
}

}  // namespace

qv_wall_outline qv_outline_of(const qvi_wall& wall) {
  const qvi_polygon* face = outline_face(wall);
  return face == nullptr ? qv_wall_outline() : outline_of(*face);
}

int qv_add_connexions(qv_scene& scene) {
  std::vector<qvi_wall*> walls;
  std::vector<qv_wall_outline> outlines;
  for (qv_item* item : scene.get_items("wall")) {
    walls.push_back(static_cast<qvi_wall*>(item));
    outlines.push_back(qv_outline_of(*walls.back()));
  }
  const std::vector<object_face> faces = list_object_faces(scene);
  for (const object_face& from : faces) outlines.push_back(outline_of(*from.face));
  std::vector<qv_junction> junctions = qv_find_junctions(outlines);
  add_walls_of_objects(faces, junctions, scene, walls);
  int count = 0;
  for (qv_junction& junction : junctions) {
    const auto wall_of = [&](const qv_junction_branch& branch) {
      return walls[static_cast<std::size_t>(branch.wall)];
    };
    std::erase_if(junction.branches,
                  [&](const qv_junction_branch& branch) { return wall_of(branch) == nullptr; });
    if (junction.branches.size() < 2) continue;
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
