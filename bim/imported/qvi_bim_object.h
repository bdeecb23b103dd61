#pragma once

#include <memory>

#include "core/items/qv_accessors.h"

namespace qv {

class qvi_bim_property;
class qvi_mesh;
class qvi_polygon;
class qv_polygon;

/// One element of an imported building model: a wall, a slab, a roof, an opening, a curtain wall or
/// another thing. Item type "bim_object". Its geometry lies in the meshes below it.
class qvi_bim_object : public qv_item {
  QV_ITEM_CLASS(qvi_bim_object, qv_item, "bim_object")

  enum class bim_type : int { unknown, wall, slab, roof, opening, curtain_wall, other };
  QV_ENUM_LIST(bim_type, "unknown", "wall", "slab", "roof", "opening", "curtain_wall", "other")

  /// Kind of element, as the model uses it and as its source gave it.
  QV_PARAM_ENUM(bim_type, bim_type, bim_type::unknown)
  QV_PARAM_ENUM(bim_type, original_bim_type, bim_type::unknown)
  /// Kind and identifier of the element in the source's own terms.
  QV_PARAM(std::string, source_type, "")
  QV_PARAM(std::string, source_id, "")
  /// Placement of the element.
  QV_PARAM(qv_matrix, matrix, qv_matrix())
  /// False hides the element.
  QV_PARAM(bool, visibility, true)
  /// Properties read from the source.
  QV_PARAM_ITEM_LIST(qvi_bim_property, bim_properties)

  /// Makes the meshes below pickable or not, after "visibility": ray-tracing layer "picking" is
  /// theirs while the object is visible. Meshes of layer "unpierced" are left alone.
  void precompute() override;
  /// As any item, while the object is visible.
  void render_opengl(bool selection) override;

  /// Flat, invisible polygons of ray-tracing layer "footprint" that stand for the object's volume:
  /// the faces of a prism about it along its main normal, then slices every 0.1 m or less through
  /// its height. They are built once, as children of the object, and found again later. Empty for
  /// an object that covers less than 0.1 m² across its main normal.
  qv_list<qvi_polygon*> get_footprints();
  /// The direction that most of the object's surface faces, opposite faces taken together. The zero
  /// vector without surface.
  qv_3dvector find_main_normal();
  /// The meshes below the object of a ray-tracing layer, depth first.
  qv_list<qvi_mesh*> get_layer_meshes(const std::string& layer);

  /// The topmost object at or above `item`; null when there is none or `item` is null.
  static qvi_bim_object* root_ascendant(qv_item* item);
  /// Whether the mesh's topmost object is a wall, a slab, a roof or a curtain wall.
  static bool is_in_envelop(qvi_mesh* mesh);

 private:
  qv_list<qvi_polygon*> build_footprints(const qv_list<qvi_mesh*>& meshes);

  // A copy-constructed object shares its source's record.
  struct record {
    unsigned int date = 0;  // of the last precompute; 0 never
    qv_3dvector main_normal;
    unsigned int main_normal_date = 0;  // 0 never
  };
  std::shared_ptr<record> record_ = std::make_shared<record>();
};

}  // namespace qv
