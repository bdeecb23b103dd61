#pragma once

#include <memory>

#include "core/items/qv_accessors.h"

namespace qv {

class qvi_building;

/// The site that holds the buildings, and its placement. Item type "campus".
class qvi_campus : public qv_item {
  QV_ITEM_CLASS(qvi_campus, qv_item, "campus")

  /// Position of the site, m.
  QV_PARAM(qv_3dvector, translation, qv_3dvector(0.0f, 0.0f, 0.0f))
  /// Rotation about the vertical, degrees.
  QV_PARAM(float, rotation_z, 0.0f)

  /// The buildings below the campus, depth first, as found by the last `precompute`; empty before.
  const qv_list<qvi_building*>& get_buildings() const { return record_->buildings; }

  /// Gathers the buildings.
  void precompute() override;

  /// Moves the site, and all geometry below it, from its present placement to another one: turned
  /// by the difference of the angles (degrees) about the vertical through the present translation,
  /// then moved to the new one. A mesh that instances refer to moves once, through its instances.
  /// Normals of walls and openings, and the end points and directions of connexions, follow. The
  /// present placement does nothing.
  void transform(const qv_3dvector& translation, float rotation_z);

 private:
  void transform_meshes(const qv_matrix& change);
  void transform_connexions(const qv_matrix& change);

  // A copy-constructed campus shares its source's record.
  struct record {
    unsigned int date = 0;  // of the last computation; 0 never
    qv_list<qvi_building*> buildings;
  };
  std::shared_ptr<record> record_ = std::make_shared<record>();
};

}  // namespace qv
