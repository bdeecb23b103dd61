#pragma once

#include <memory>

#include "bim/hierarchy/qvi_xspace.h"

namespace qv {

class qvi_building;
class qvi_polygon;
class qvi_usage_internal_gains;
class qvi_usage_lighting;
class qvi_wall;
class qvi_zone;

/// A room. Item type "space", a kind of "xspace". A new one is inside ("outside" is false).
///
/// Walls name the two spaces that they separate; a space does not list its walls but finds them.
class qvi_space : public qvi_xspace {
  QV_ITEM_CLASS(qvi_space, qvi_xspace, "space")

  QV_PARAM_ITEM(qvi_building, building)
  QV_PARAM_ITEM(qvi_zone, zone)
  /// Storey, counted from 0 at the bottom; −1 when not assigned.
  QV_PARAM(int, floor, -1)
  /// Floor area imposed by the user, m²; negative when the measured one counts.
  QV_PARAM(float, forced_area, -1.0f)
  /// Volume imposed by the user, m³; negative when the measured one counts.
  QV_PARAM(float, forced_volume, -1.0f)
  QV_PARAM_ITEM(qvi_usage_lighting, usage_lighting)
  QV_PARAM_ITEM(qvi_usage_internal_gains, usage_internal_gains)

  // Walls found by the last `precompute`, in scene order; empty before.

  /// Every wall that bounds the space.
  const qv_list<qvi_wall*>& get_walls() const { return record_->walls; }
  /// Vertical walls with a space on both sides.
  const qv_list<qvi_wall*>& get_inner_walls() const { return record_->inner_walls; }
  /// Vertical walls with a space on one side only.
  const qv_list<qvi_wall*>& get_outer_walls() const { return record_->outer_walls; }
  /// Horizontal walls under the space.
  const qv_list<qvi_wall*>& get_floors() const { return record_->floors; }
  /// Horizontal walls and roofs over the space.
  const qv_list<qvi_wall*>& get_ceilings() const { return record_->ceilings; }

 private:
  // A copy-constructed space shares its source's record.
  struct record {
    unsigned int date = 0;           // of the last computation; 0 never
    unsigned int geometry_date = 0;  // of the last preparation of the meshes; 0 never
    float area = 0;
    float volume = 0;
    qv_box bounding_box;
    unsigned int bounding_box_date = 0;  // 0 never
    qv_list<qvi_wall*> walls;
    qv_list<qvi_wall*> inner_walls;
    qv_list<qvi_wall*> outer_walls;
    qv_list<qvi_wall*> floors;
    qv_list<qvi_wall*> ceilings;
    qv_list<qvi_polygon*> shell_polygons;  // children of the space
  };
  std::shared_ptr<record> record_ = std::make_shared<record>();
};

}  // namespace qv
