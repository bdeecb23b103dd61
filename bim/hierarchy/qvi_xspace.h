#pragma once

#include "core/items/qv_accessors.h"

namespace qv {

/// A volume of the model, and by itself an outer one that is drawn but not measured. Item type
/// "xspace". Rooms are the `qvi_space`s that derive from it.
class qvi_xspace : public qv_item {
  QV_ITEM_CLASS(qvi_xspace, qv_item, "xspace")

  /// Kind of the imported element that the space came from.
  QV_PARAM(std::string, source_type, "")
  /// The space is an exterior volume.
  QV_PARAM(bool, outside, true)
  /// Identifiers of the imported elements that the space came from.
  QV_PARAM_LIST(std::string, source_ids)

  /// When `draw` is true and the mouse is over the volume or it is selected, its meshes, seen
  /// through everything.
  void render_opengl(bool draw) override;
};

}  // namespace qv
