#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "app/export/qv_export_groups.h"
#include "core/items/qv_scene.h"
#include "core/shapes/qv_double3.h"

namespace qv {

class qvi_space;

/// A run of elements in one of the lists of a geometry.
struct qv_picture_run {
  std::size_t first = 0;
  std::size_t count = 0;
};

/// What of one item is drawn.
struct qv_picture_part {
  qv_item* item = nullptr;
  /// The room that it bounds: on the storey shown, else its first one; null without any.
  const qvi_space* space = nullptr;
  /// As `qv_export_group` has it: "outer_wall", "window", "object", …; "connexion" for lines.
  std::string kind;
  /// One sees through it.
  bool glazed = false;
  /// In a plan the floor of a room, on which its walls stand: it tells of the room, not of itself.
  bool is_plan_floor = false;
  qv_picture_run triangles;  // in `corners`, a multiple of three
  qv_picture_run lines;      // in `line_ends`, even: drawn thick
};

/// A room's name in a plan.
struct qv_picture_label {
  std::string name;
  std::string figure;  // "12.0 m²"
  /// The floor on which it stands: its contours, one after the other.
  std::vector<std::vector<qv_double3>> contours;
};

/// Triangles and lines to draw, in metres from `origin`, which lies in the model's middle so that
/// single precision suffices wherever the model stands.
struct qv_picture_geometry {
  qv_double3 origin;  // in the scene's frame
  std::vector<qv_3dvector> corners;
  /// Of all parts, those that several share once.
  std::vector<qv_3dvector> edge_ends;
  std::vector<qv_3dvector> line_ends;
  std::vector<qv_picture_part> parts;
  std::vector<qv_picture_label> labels;
  /// Triangles and lines left out since a coordinate is no number.
  std::size_t lost = 0;

  bool is_empty() const { return corners.empty() && line_ends.empty(); }
  /// Every corner and end of a line.
  std::vector<qv_double3> get_points() const;
};

// `groups` is what `qv_collect_export_groups` says of the scene.

/// The surfaces of a model, or only those of one storey's rooms, without what lies over them.
qv_picture_geometry qv_collect_surfaces(qv_scene& scene, const std::vector<qv_export_group>& groups,
                                        std::optional<int> storey);

/// The same surfaces, and each thermal bridge that loses heat as a line.
qv_picture_geometry qv_collect_bridges(qv_scene& scene, const std::vector<qv_export_group>& groups,
                                       std::optional<int> storey);

/// One storey from above: floors with their rooms' names, and where walls and openings are cut
/// 1.2 m above the floor of each room (half way up in one lower than 2.4 m) as lines.
qv_picture_geometry qv_collect_plan(qv_scene& scene, const std::vector<qv_export_group>& groups,
                                    int storey);

/// The storeys that the model's rooms have, in ascending order.
std::vector<int> qv_list_storeys(qv_scene& scene);

}  // namespace qv
