#include "bim/hierarchy/qvi_campus.h"

#include <unordered_set>

#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_building.h"
#include "core/shapes/qvi_mesh_instance.h"
#include "core/shapes/qvi_polygon.h"
#include "utilities/qv_date.h"

namespace qv {

namespace {

constexpr int vertical_axis = 2;

/// Walls and openings look where their faces look after these have moved.
void follow_moved_faces(const qvi_campus* campus) {
  for (qvi_wall* wall : qv_collect<qvi_wall>(campus, "wall")) {
    for (const qvi_polygon* face : {wall->get_face_0(), wall->get_face_1(),
                                    wall->get_pierced_face_0(), wall->get_pierced_face_1()}) {
      if (face == nullptr) continue;
      wall->set_normal(face->get_normal());
      break;
    }
  }
  for (qvi_opening* opening : qv_collect<qvi_opening>(campus, "opening")) {
    if (const qvi_wall* wall = opening->get_wall()) opening->set_normal(wall->get_normal());
  }
}

}  // namespace

QV_ITEM_CLASS_IMPLEMENTATION(qvi_campus)

void qvi_campus::precompute() {
  qv_item::precompute();
  if (record_->date >= get_date()) return;
  record_->buildings = qv_collect<qvi_building>(this, "building");
  record_->date = qv_get_date();
}

void qvi_campus::transform(const qv_3dvector& translation, float rotation_z) {
  const qv_3dvector old_translation = get_translation();
  if (translation == old_translation && rotation_z == get_rotation_z()) return;
  const qv_matrix change = qv_matrix::translation(translation) *
                           qv_matrix::rotation(vertical_axis, rotation_z - get_rotation_z()) *
                           qv_matrix::translation(-old_translation);
  transform_meshes(change);
  follow_moved_faces(this);
  transform_connexions(change);
  set_translation(translation);
  set_rotation_z(rotation_z);
  precompute();
}

void qvi_campus::transform_meshes(const qv_matrix& change) {
  const qv_list<qvi_mesh*> meshes = qv_collect<qvi_mesh>(this, "mesh");
  std::unordered_set<const qvi_mesh*> instantiated;
  for (const qvi_mesh* mesh : meshes) {
    if (mesh->has_type("mesh_instance")) {
      instantiated.insert(static_cast<const qvi_mesh_instance*>(mesh)->get_mesh());
    }
  }
  for (qvi_mesh* mesh : meshes) {
    if (!instantiated.contains(mesh)) mesh->matrix_transform(change, true);
  }
}

void qvi_campus::transform_connexions(const qv_matrix& change) {
  for (qvi_connexion* connexion : qv_collect<qvi_connexion>(this, "connexion")) {
    if (connexion->get_walls().is_empty()) continue;
    const qv_3dvector old_point_0 = connexion->get_point_0();
    connexion->set_point_0(change.transform_point(old_point_0));
    connexion->set_point_1(change.transform_point(connexion->get_point_1()));
    qv_list<qv_3dvector> directions = connexion->get_wall_directions();
    for (qv_3dvector& direction : directions) {
      direction = change.transform_point(old_point_0 + direction) - connexion->get_point_0();
      direction.normalize();
    }
    connexion->set_wall_directions(directions);
  }
}

}  // namespace qv
