#pragma once

#include <string>
#include <vector>

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "core/shapes/qvi_polygon.h"

namespace qv_test {

/// A rectangle by three corners: from `a` towards `b`, then `d`; counter-clockwise about (b − a) ×
/// (d − a).
qv::qv_list<qv::qv_3dvector> rectangle(const qv::qv_3dvector& a, const qv::qv_3dvector& b,
                                       const qv::qv_3dvector& d);

/// A plane face under `parent`, with the layers that importers give: ray-tracing layers
/// "simulation", "picking" and "bim", rendering layer "main". Its normal is the one about which the
/// contour runs counter-clockwise.
qv::qvi_polygon* add_face(qv::qv_item& parent, const qv::qv_list<qv::qv_3dvector>& contour);

/// A wall under `parent` whose normal is that of `contour`, the outline of its face on the side of
/// `space_0`. The other face lies `thickness` metres further along the normal; without thickness
/// both are one polygon. The faces are children of the wall.
qv::qvi_wall* add_wall(qv::qv_item& parent, qv::qvi_wall::wall_type type, qv::qvi_space* space_0,
                       qv::qvi_space* space_1, const qv::qv_list<qv::qv_3dvector>& contour,
                       float thickness = 0.2f);

/// A space under `parent`.
qv::qvi_space* add_space(qv::qv_item& parent, const std::string& name = "");

/// One room with its six walls, all of them towards the outside.
struct box_room {
  qv::qvi_space* space = nullptr;
  qv::qvi_wall* floor = nullptr;  // normal down
  /// Towards −y, +x, +y, −x.
  qv::qvi_wall* sides[4] = {};
  qv::qvi_wall* roof = nullptr;  // normal up
};

/// A room whose inner clearance is `size`, its lowest inner corner at `origin`.
box_room add_box_room(qv::qv_item& parent, const qv::qv_3dvector& origin,
                      const qv::qv_3dvector& size, float thickness = 0.2f);

/// Rooms side by side and one above the other, with inner walls and intermediate floors between.
struct block {
  int count_x = 0;
  int count_y = 0;
  int count_z = 0;
  /// x fastest, then y, then z.
  std::vector<qv::qvi_space*> spaces;
  std::vector<qv::qvi_wall*> walls;

  qv::qvi_space* at(int x, int y, int z) const {
    const int index = (z * count_y + y) * count_x + x;
    return spaces[static_cast<std::size_t>(index)];
  }
};

/// `count_x` × `count_y` × `count_z` rooms of inner clearance `room`, `thickness` metres of wall
/// between them, the lowest inner corner at `origin`. Outer walls point outwards; walls between two
/// rooms point from the lower index to the higher one, which is their space 1.
block add_block(qv::qv_item& parent, const qv::qv_3dvector& origin, int count_x, int count_y,
                int count_z, const qv::qv_3dvector& room = {4, 5, 2.5f}, float thickness = 0.2f);

/// Detached two-storey houses in a row along x, each of 2 × 1 × 2 rooms.
std::vector<block> add_street(qv::qv_item& parent, int house_count);

}  // namespace qv_test
