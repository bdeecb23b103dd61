#pragma once

#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "tests/support/qv_recorders.h"

namespace qv_test {

/// Walls that leave a junction, each with its contact type and direction. The façades look south.
class meeting {
 public:
  meeting() {
    for (qv::qvi_space*& space : spaces) scene.add_child(space = new qv::qvi_space, -1);
    scene.add_child(connexion = new qv::qvi_connexion, -1);
    connexion->set_point_1({0, 0, 3});
  }

  /// A wall with the wall type and the spaces that its contact type stands for.
  qv::qvi_wall* add(qv::qvi_wall::contact_type of, const qv::qv_3dvector& direction) {
    using contact = qv::qvi_wall::contact_type;
    using kind = qv::qvi_wall::wall_type;
    const bool upright =
        of == contact::outer_wall || of == contact::inner_wall || of == contact::outside_wall;
    const bool between = of == contact::inner_wall || of == contact::intermediate_floor;
    const bool outside = of == contact::outside_wall || of == contact::outside_slab;
    auto* const wall = new qv::qvi_wall;
    wall->set_wall_type(upright ? kind::wall : of == contact::roof ? kind::roof : kind::floor);
    wall->set_space_0(outside ? nullptr : spaces[0]);
    wall->set_space_1(between ? spaces[1] : nullptr);
    wall->set_contact_type(of);
    wall->set_normal({0, -1, 0});
    scene.add_child(wall, -1);
    qv::qv_list<qv::qvi_wall*> walls = connexion->get_walls();
    walls.append(wall);
    connexion->set_walls(walls);
    qv::qv_list<qv::qv_3dvector> directions = connexion->get_wall_directions();
    directions.append(direction);
    connexion->set_wall_directions(directions);
    return wall;
  }

  qv::qvi_connexion::connexion_type get_type() const {
    connexion->precompute();
    return connexion->get_connexion_type();
  }

  recording_scene scene;
  qv::qvi_space* spaces[2] = {};
  qv::qvi_connexion* connexion = nullptr;
};

}  // namespace qv_test
