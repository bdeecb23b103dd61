#pragma once

#include <string>
#include <vector>

#include "core/items/qv_scene.h"
#include "utilities/qv_triangulation.h"

namespace qv {

class qvi_mesh;

/// What of one item is seen: its triangles, under its name and kind.
struct qv_export_group {
  /// The item's name, or its id where it has none.
  std::string name;
  /// For a wall its contact type ("outer_wall", …), for an opening its type ("window", …), for an
  /// imported object "object", for any other surface "surface".
  std::string kind;
  qv_item* item = nullptr;
  qv_triangulation triangles;
  /// Whose triangles these are.
  std::vector<qvi_mesh*> meshes;
};

/// The walls, openings, imported objects and loose surfaces of a precomputed scene, each with its
/// triangles, in scene order. Of a wall its faces with the openings cut out, a face that stands for
/// both sides once, and none that is an object's; the rooms' own shells are left out, since they
/// repeat the walls. Items without any triangle are left out.
std::vector<qv_export_group> qv_collect_export_groups(qv_scene& scene);

}  // namespace qv
