#pragma once

#include <memory>

#include "bim/envelope/qv_solar_income.h"
#include "core/items/qv_accessors.h"
#include "utilities/qv_polygon.h"

namespace qv {

class qvi_opening_composition;
class qvi_wall;

/// A window, a door, a curtain wall or a roof light in a wall. Item type "opening". Its geometry
/// lies in the meshes below it, whose front shaders tell panes, panels and frames apart.
class qvi_opening : public qv_item, public qv_solar_income {
  QV_ITEM_CLASS(qvi_opening, qv_item, "opening")

  enum class opening_type : int { window, door, curtain_wall, skylight };
  QV_ENUM_LIST(opening_type, "window", "door", "curtain_wall", "skylight")

  /// Identifiers of the imported elements that the opening was built from.
  QV_PARAM_LIST(std::string, source_ids)
  QV_PARAM_ENUM(opening_type, opening_type, opening_type::window)
  /// The wall that holds the opening.
  QV_PARAM_ITEM(qvi_wall, wall)
  /// The catalogue entry of the opening.
  QV_PARAM_ITEM(qvi_opening_composition, composition)
  /// Outward normal, of length 1.
  QV_PARAM(qv_3dvector, normal, qv_3dvector(0.0f, 0.0f, 1.0f))

  // Imposed by the user; negative when the computed value counts.
  /// W/(m²·K).
  QV_PARAM(float, forced_U, -1.0f)
  /// 0 … 1.
  QV_PARAM(float, forced_solar_factor, -1.0f)
  /// 0 … 1.
  QV_PARAM(float, forced_visible_transmittance, -1.0f)

  // The opening in the plane of its outermost points, part by part, as found by the last
  // `precompute`; empty and 0 before. What lies behind a frame or a panel counts once.

  /// m².
  float get_glazing_area() const { return record_->glazing_area; }
  float get_opaque_area() const { return record_->opaque_area; }
  float get_frame_area() const { return record_->frame_area; }
  float get_full_area() const { return record_->full_area; }
  const qv_polygon& get_glazing_face() const { return record_->glazing_face; }
  const qv_polygon& get_opaque_face() const { return record_->opaque_face; }
  const qv_polygon& get_frame_face() const { return record_->frame_face; }
  const qv_polygon& get_full_face() const { return record_->full_face; }

 private:
  // A copy-constructed opening shares its source's record.
  struct record {
    float glazing_area = 0;
    float opaque_area = 0;
    float frame_area = 0;
    float full_area = 0;
    qv_polygon glazing_face;
    qv_polygon opaque_face;
    qv_polygon frame_face;
    qv_polygon full_face;
  };
  std::shared_ptr<record> record_ = std::make_shared<record>();
};

}  // namespace qv
