#include "core/shapes/qv_manifold.h"

#include <vector>

#include "core/shapes/qv_face_links.h"
#include "core/shapes/qv_shell_sides.h"
#include "core/shapes/qvi_mesh.h"
#include "core/shapes/qvi_solid.h"

namespace qv {

namespace {

/// Whether face `index` must be turned.
bool is_turned(const std::vector<bool>& turn, int index) {
  return turn[static_cast<std::size_t>(index)];
}

/// The faces that one item contributes: a polygon or solid as a whole, each triangle of a mesh by
/// itself.
struct shell_part {
  qvi_mesh* mesh;
  int first_face;
  int face_count;
  bool by_triangle;
};

int collect_part(qvi_mesh* mesh, int first_face, int owner, std::vector<shell_part>& parts,
                 std::vector<qv_face_triangle>& triangles) {
  shell_part part{mesh, first_face, 0, !mesh->has_type("polygon") && !mesh->has_type("solid")};
  // Shells are many and seldom drawn or traced: their triangles are not worth keeping.
  const qv_triangulation surface = mesh->copy_triangles();
  const qv_list<qv_3dvector>& points = surface.vertices;
  const qv_list<int>& indices = surface.triangles;
  const auto is_point = [&](int i) { return i >= 0 && i < points.get_count(); };
  for (int i = 0; i + 2 < indices.get_count(); i += 3) {
    const int a = indices[i], b = indices[i + 1], c = indices[i + 2];
    const int face = part.by_triangle ? first_face + i / 3 : first_face;
    if (is_point(a) && is_point(b) && is_point(c))
      triangles.push_back({{points[a], points[b], points[c]}, face, owner});
  }
  part.face_count = part.by_triangle ? indices.get_count() / 3 : 1;
  parts.push_back(part);
  return first_face + part.face_count;
}

int turn_whole(qvi_mesh* mesh, int face_count) {
  mesh->reverse();
  return mesh->has_type("solid") ? static_cast<qvi_solid*>(mesh)->get_face_sizes().get_count()
                                 : face_count;
}

int turn_triangles(const shell_part& part, const std::vector<bool>& turn, int count) {
  qv_list<int> indices = part.mesh->get_triangles();
  for (int i = 0; i < part.face_count; ++i)
    if (is_turned(turn, part.first_face + i)) std::swap(indices[3 * i + 1], indices[3 * i + 2]);
  part.mesh->set_triangles(indices);
  return count;
}

}  // namespace

}  // namespace qv

int qv_check_mesh_manifold_orientation(qv::qv_item* item) {
  using namespace qv;
  if (item == nullptr) return 0;
  std::vector<shell_part> parts;
  std::vector<qv_face_triangle> triangles;
  std::vector<const qv_item*> parents;
  int face_count = 0;
  for (qvi_mesh* mesh : qv_collect<qvi_mesh>(item, "mesh")) {
    // An instance has no faces of its own to turn.
    if (mesh->has_type("mesh_instance")) continue;
    if (parents.empty() || parents.back() != mesh->get_parent())
      parents.push_back(mesh->get_parent());
    face_count = collect_part(mesh, face_count, static_cast<int>(parents.size()), parts, triangles);
  }
  const std::vector<bool> turn =
      qv_find_faces_to_turn(triangles, face_count, qv_link_faces(triangles));

  int turned_count = 0;
  for (const shell_part& part : parts) {
    int count = 0;
    for (int i = 0; i < part.face_count; ++i)
      if (is_turned(turn, part.first_face + i)) ++count;
    if (count == 0) continue;
    turned_count +=
        count == part.face_count ? turn_whole(part.mesh, count) : turn_triangles(part, turn, count);
  }
  return turned_count;
}
