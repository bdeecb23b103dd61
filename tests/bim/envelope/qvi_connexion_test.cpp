#include "bim/envelope/qvi_connexion.h"

#include <gtest/gtest.h>

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/materials/qvi_limit_condition.h"
#include "core/items/qv_scene.h"

namespace {

using namespace qv;
using type = qvi_connexion::connexion_type;
using contact = qvi_wall::contact_type;

/// Walls that leave a junction, each with its contact type and direction.
class meeting {
 public:
  meeting() {
    for (qvi_space*& space : spaces) scene.add_child(space = new qvi_space, -1);
    scene.add_child(connexion = new qvi_connexion, -1);
    connexion->set_point_1(qv_3dvector(0, 0, 3));
  }

  qvi_wall* add(contact of, const qv_3dvector& direction) {
    auto* const wall = new qvi_wall;
    const bool upright =
        of == contact::outer_wall || of == contact::inner_wall || of == contact::outside_wall;
    const bool between = of == contact::inner_wall || of == contact::intermediate_floor;
    const bool outside = of == contact::outside_wall || of == contact::outside_slab;
    wall->set_wall_type(upright               ? qvi_wall::wall_type::wall
                        : of == contact::roof ? qvi_wall::wall_type::roof
                                              : qvi_wall::wall_type::floor);
    wall->set_space_0(outside ? nullptr : spaces[0]);
    wall->set_space_1(between ? spaces[1] : nullptr);
    wall->set_contact_type(of);
    wall->set_normal(qv_3dvector(0, -1, 0));
    scene.add_child(wall, -1);
    qv_list<qvi_wall*> walls = connexion->get_walls();
    walls.append(wall);
    connexion->set_walls(walls);
    qv_list<qv_3dvector> directions = connexion->get_wall_directions();
    directions.append(direction);
    connexion->set_wall_directions(directions);
    return wall;
  }

  type get_type() {
    connexion->precompute();
    return connexion->get_connexion_type();
  }

  qv_scene scene;
  qvi_space* spaces[2];
  qvi_connexion* connexion;
};

const qv_3dvector east(1, 0, 0);
const qv_3dvector west(-1, 0, 0);
const qv_3dvector north(0, 1, 0);
const qv_3dvector south(0, -1, 0);
const qv_3dvector up(0, 0, 1);
const qv_3dvector down(0, 0, -1);

TEST(qvi_connexion, of_facades_that_continue_each_other_loses_nothing) {
  meeting m;
  m.add(contact::outer_wall, east);
  m.add(contact::outer_wall, west);
  EXPECT_EQ(m.get_type(), type::no_loss);
  EXPECT_FALSE(m.connexion->is_lossy());
  EXPECT_TRUE(m.connexion->is_vertical());
  EXPECT_EQ(m.connexion->get_length(), 3.0f);
}

TEST(qvi_connexion, of_inner_walls_alone_loses_nothing) {
  meeting m;
  m.add(contact::inner_wall, east);
  m.add(contact::inner_wall, north);
  EXPECT_EQ(m.get_type(), type::no_loss);
}

TEST(qvi_connexion, tells_outer_from_inner_corners_by_the_first_facades_normal) {
  meeting outer;  // the first façade looks south, the second goes north, behind it
  outer.add(contact::outer_wall, east);
  outer.add(contact::outer_wall, north);
  EXPECT_EQ(outer.get_type(), type::facade_angle_outer);
  meeting inner;  // the second façade comes out to the south, before the first
  inner.add(contact::outer_wall, east);
  inner.add(contact::outer_wall, south);
  EXPECT_EQ(inner.get_type(), type::facade_angle_inner);
}

TEST(qvi_connexion, of_straight_facades_and_an_inner_wall_stays_unknown_deliberately) {
  meeting m;
  m.add(contact::outer_wall, east);
  m.add(contact::outer_wall, west);
  m.add(contact::inner_wall, north);
  EXPECT_EQ(m.get_type(), type::unknown);
}

TEST(qvi_connexion, of_one_facade_and_an_inner_wall_is_named_after_both) {
  meeting m;
  m.add(contact::outer_wall, east);
  m.add(contact::inner_wall, north);
  EXPECT_EQ(m.get_type(), type::facade_inner_wall);
}

TEST(qvi_connexion, of_roofs_follows_what_else_meets_there) {
  meeting alone;
  alone.add(contact::roof, east);
  EXPECT_EQ(alone.get_type(), type::unknown);

  meeting ridge;
  ridge.add(contact::roof, east);
  ridge.add(contact::roof, north);
  EXPECT_EQ(ridge.get_type(), type::roof_roof);
  ridge.add(contact::inner_wall, down);
  EXPECT_EQ(ridge.get_type(), type::roof_roof_inner_wall);

  meeting eaves;
  eaves.add(contact::roof, north);
  eaves.add(contact::outer_wall, down);
  EXPECT_EQ(eaves.get_type(), type::roof_facade);
  eaves.add(contact::intermediate_floor, north);
  EXPECT_EQ(eaves.get_type(), type::roof_facade_intermediate);

  meeting terrace;
  terrace.add(contact::roof, south);
  terrace.add(contact::outer_wall, up);
  EXPECT_EQ(terrace.get_type(), type::roof_upper_facade);
}

TEST(qvi_connexion, of_lower_floors_follows_what_lies_below) {
  struct below {
    bool given;
    qvi_limit_condition::limit_condition_typology typology;
    type with_facade;
    type with_inner_wall;
  };
  using typology = qvi_limit_condition::limit_condition_typology;
  const below cases[] = {
      {false, typology::soil, type::lower_floor_air_facade, type::lower_floor_air_inner_wall},
      {true, typology::soil, type::lower_floor_soil_facade, type::lower_floor_soil_inner_wall},
      {true, typology::crawlspace, type::lower_floor_crawlspace_facade,
       type::lower_floor_crawlspace_inner_wall},
      {true, typology::adiabatic, type::unknown, type::unknown},
      {true, typology::regulated, type::unknown, type::unknown}};
  for (const below& c : cases) {
    for (const contact other : {contact::outer_wall, contact::inner_wall}) {
      meeting m;
      qvi_wall* const floor = m.add(contact::lower_floor, north);
      m.add(other, up);
      if (c.given) {
        auto* const condition = new qvi_limit_condition;
        condition->set_typology(c.typology);
        m.scene.add_child(condition, -1);
        floor->set_limit_condition(condition);
      }
      EXPECT_EQ(m.get_type(), other == contact::outer_wall ? c.with_facade : c.with_inner_wall);
    }
  }
}

TEST(qvi_connexion, of_an_intermediate_floor_needs_two_facades) {
  meeting m;
  m.add(contact::intermediate_floor, north);
  m.add(contact::outer_wall, up);
  EXPECT_EQ(m.get_type(), type::unknown);
  m.add(contact::outer_wall, down);
  EXPECT_EQ(m.get_type(), type::facade_intermediate);
  m.add(contact::outside_slab, south);
  EXPECT_EQ(m.get_type(), type::facade_balcony_intermediate);
}

TEST(qvi_connexion, outside_a_scene_is_left_alone) {
  qvi_connexion connexion;
  connexion.set_point_1(qv_3dvector(1, 0, 0));
  connexion.precompute();
  EXPECT_EQ(connexion.get_length(), 0.0f);
  EXPECT_EQ(connexion.get_connexion_type(), type::unknown);
}

}  // namespace
