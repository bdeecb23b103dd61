#include "app/export/qv_export_groups.h"

#include <algorithm>
#include <unordered_set>

#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/imported/qvi_bim_object.h"
#include "core/shapes/qvi_polygon.h"
#include "core/shapes/triangles.h"

namespace qv {
namespace {

void append(qv_export_group& group, qvi_mesh& mesh) {
  group.meshes.push_back(&mesh);
  const qv_triangulation part = mesh.copy_triangles();
  append_triangles(group.triangles, part.vertices, part.triangles);
}

bool is_face(const qvi_wall& wall, const qv_item* mesh) {
  const std::initializer_list<const qv_item*> faces = {
      wall.get_face(),   wall.get_pierced_face(),   wall.get_face_0(),
      wall.get_face_1(), wall.get_pierced_face_0(), wall.get_pierced_face_1()};
  return std::find(faces.begin(), faces.end(), mesh) != faces.end();
}

// The item that a mesh is a part of: the wall, opening, object or room above it, or itself.
qv_item* find_whole(qv_item* mesh) {
  for (qv_item* above = mesh->get_parent(); above != nullptr; above = above->get_parent())
    for (const char* type : {"wall", "opening", "bim_object", "space"})
      if (above->has_type(type)) return above;
  return mesh;
}

class collector {
 public:
  explicit collector(qv_scene& scene) : scene_(scene) {}

  std::vector<qv_export_group> run() {
    for (qv_item* item : qv_list<qv_item*>(scene_.get_items("item"))) {
      if (item->has_type("wall")) {
        add_wall(static_cast<qvi_wall&>(*item));
      } else if (item->has_type("opening")) {
        const auto& opening = static_cast<qvi_opening&>(*item);
        add_whole(item, label(qvi_opening::get_opening_type_list(),
                              static_cast<int>(opening.get_opening_type())));
      } else if (item->has_type("bim_object")) {
        add_whole(item, "object");
      } else if (item->has_type("mesh") && find_whole(item) == item && !is_wall_face(item)) {
        add_whole(item, "surface");
      }
    }
    return std::move(groups_);
  }

 private:
  static std::string label(const qv_list<std::string>& labels, int index) {
    return index >= 0 && index < labels.get_count() ? labels[index] : std::string();
  }

  // Faces may stand anywhere in the scene, not only below their wall.
  bool is_wall_face(const qv_item* mesh) const {
    const qv_list<qv_item*> walls = scene_.get_referrers("wall", "", mesh);
    return std::any_of(walls.begin(), walls.end(), [mesh](const qv_item* wall) {
      return is_face(static_cast<const qvi_wall&>(*wall), mesh);
    });
  }

  void add_wall(qvi_wall& wall) {
    qv_export_group group;
    group.kind =
        label(qvi_wall::get_contact_type_list(), static_cast<int>(wall.get_contact_type()));
    std::unordered_set<const qv_item*> seen;
    for (qvi_polygon* face :
         {wall.get_pierced_face(), wall.get_pierced_face_0(), wall.get_pierced_face_1()})
      if (face != nullptr && qvi_bim_object::root_ascendant(face) == nullptr &&
          seen.insert(face).second)
        append(group, *face);
    if (seen.empty() && wall.get_face() != nullptr &&
        qvi_bim_object::root_ascendant(wall.get_face()) == nullptr)
      append(group, *wall.get_face());
    finish(std::move(group), &wall);
  }

  void add_whole(qv_item* item, const std::string& kind) {
    qv_export_group group;
    group.kind = kind;
    for (qvi_mesh* mesh : qv_collect<qvi_mesh>(item, "mesh"))
      if (mesh->get_rendering_visibility()) append(group, *mesh);
    finish(std::move(group), item);
  }

  void finish(qv_export_group group, qv_item* item) {
    if (group.triangles.triangles.is_empty()) return;
    group.item = item;
    group.name = item->get_name().empty() ? item->get_unique_id() : item->get_name();
    groups_.push_back(std::move(group));
  }

  qv_scene& scene_;
  std::vector<qv_export_group> groups_;
};

}  // namespace

std::vector<qv_export_group> qv_collect_export_groups(qv_scene& scene) {
  return collector(scene).run();
}

}  // namespace qv
