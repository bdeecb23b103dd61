#pragma once

#include "utilities/qv_list.h"
#include "utilities/qv_polygon.h"

namespace qv {

class qvi_mesh;
class qvi_opening_shader;

/// All pieces of an opening that have the same front shader: its panes, its panels or its frame.
struct qvi_opening_part {
  /// What the part is, by the kind of its shader: a glazing, an opaque panel, anything else.
  enum class kind : int { glazing, opaque, frame };

  kind part_kind = kind::frame;
  qvi_opening_shader* shader = nullptr;
  /// Borrowed, in scene order.
  qv_list<qvi_mesh*> meshes;
  /// The union of the pieces, in the plane of the opening.
  qv_polygon polygon;
  /// The part of it that nothing hides, m²: its share of the visible area of its kind.
  float area = 0;
};

}  // namespace qv
