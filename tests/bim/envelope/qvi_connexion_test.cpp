#include "bim/envelope/qvi_connexion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "bim/materials/qvi_limit_condition.h"
#include "tests/bim/envelope/qv_meeting.h"
#include "tests/support/qv_recording_gl.h"
#include "utilities/qv_date.h"

namespace {

using namespace qv;
using type = qvi_connexion::connexion_type;
using contact = qvi_wall::contact_type;

using qv_test::meeting;

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

// --- thresholds and what counts as what ---

// A direction of length 1 whose scalar product with `west` is `cosine`.
qv_3dvector at_cosine_from_west(float cosine) {
  return {-cosine, std::sqrt(1 - cosine * cosine), 0};
}

TEST(qvi_connexion, takes_two_walls_for_straight_only_beyond_a_cosine_of_minus_0_9) {
  meeting bent;
  bent.add(contact::outer_wall, west);
  bent.add(contact::outer_wall, {0.9f, 0.43588990f, 0});  // the product is the float −0.9
  EXPECT_EQ(bent.get_type(), type::facade_angle_outer);
  EXPECT_TRUE(bent.connexion->is_lossy());
  meeting straight;
  straight.add(contact::outer_wall, west);
  straight.add(contact::outer_wall, at_cosine_from_west(-0.91f));
  EXPECT_EQ(straight.get_type(), type::no_loss);
}

TEST(qvi_connexion, counts_directions_and_not_walls_to_find_a_straight_pair) {
  meeting m;
  m.add(contact::outer_wall, east);
  m.add(contact::outer_wall, west);
  m.add(contact::inner_wall, north);
  m.connexion->set_wall_directions({east, west});
  EXPECT_EQ(m.get_type(), type::no_loss);
}

TEST(qvi_connexion, counts_a_missing_direction_as_none) {
  meeting m;
  m.add(contact::outer_wall, east);
  m.add(contact::outer_wall, north);
  m.connexion->set_wall_directions({});
  EXPECT_EQ(m.get_type(), type::facade_angle_outer);  // 0 is neither below −0.9 nor above 0
  m.connexion->set_wall_directions({east, north, up, down});
  m.connexion->set_point_1({0, 0, 2});
  EXPECT_EQ(m.get_type(), type::facade_angle_outer);
}

TEST(qvi_connexion, of_straight_walls_loses_nothing_whatever_they_are) {
  meeting roofs;
  roofs.add(contact::roof, east);
  roofs.add(contact::roof, west);
  EXPECT_EQ(roofs.get_type(), type::no_loss);
  EXPECT_FALSE(roofs.connexion->is_vertical());
  meeting floor_and_roof;
  floor_and_roof.add(contact::lower_floor, north);
  floor_and_roof.add(contact::roof, south);
  EXPECT_EQ(floor_and_roof.get_type(), type::no_loss);
}

TEST(qvi_connexion, loses_heat_where_one_wall_has_exactly_one_space) {
  meeting m;
  qvi_wall* const first = m.add(contact::inner_wall, east);
  m.add(contact::inner_wall, north);
  EXPECT_EQ(m.get_type(), type::no_loss);
  first->set_space_1(nullptr);
  EXPECT_EQ(m.get_type(), type::facade_inner_wall);
  first->set_space_0(nullptr);
  EXPECT_EQ(m.get_type(), type::no_loss);
  first->set_space_1(m.spaces[1]);
  EXPECT_EQ(m.get_type(), type::facade_inner_wall);
  EXPECT_TRUE(m.connexion->is_lossy());
}

TEST(qvi_connexion, is_vertical_by_the_kind_of_its_walls_and_not_by_its_direction) {
  meeting m;
  m.connexion->set_point_1({5, 0, 0});
  qvi_wall* const wall = m.add(contact::outer_wall, up);
  m.get_type();
  EXPECT_TRUE(m.connexion->is_vertical());
  for (const auto kind : {qvi_wall::wall_type::floor, qvi_wall::wall_type::roof}) {
    wall->set_wall_type(kind);
    m.get_type();
    EXPECT_FALSE(m.connexion->is_vertical());
  }
}

TEST(qvi_connexion, turns_the_first_facades_normal_where_its_room_is_the_second_one) {
  meeting m;
  qvi_wall* const first = m.add(contact::outer_wall, east);
  m.add(contact::outer_wall, north);
  first->set_space_0(nullptr);
  first->set_space_1(m.spaces[0]);  // the normal now points into the room
  EXPECT_EQ(m.get_type(), type::facade_angle_inner);
}

TEST(qvi_connexion, with_a_second_facade_along_the_first_ones_plane_is_an_outer_corner) {
  meeting m;
  m.add(contact::outer_wall, east);
  m.add(contact::outer_wall, up);  // at right angles to the normal: not above 0
  EXPECT_EQ(m.get_type(), type::facade_angle_outer);
}

TEST(qvi_connexion, looks_at_the_first_facade_and_the_first_lower_floor_only) {
  meeting terrace;
  terrace.add(contact::roof, south);
  terrace.add(contact::outer_wall, down);
  terrace.add(contact::outer_wall, up);
  EXPECT_EQ(terrace.get_type(), type::roof_facade);

  meeting floors;
  floors.add(contact::lower_floor, north);
  qvi_wall* const second = floors.add(contact::lower_floor, south);
  floors.add(contact::outer_wall, up);
  auto* const soil = new qvi_limit_condition;
  floors.scene.add_child(soil, -1);
  second->set_limit_condition(soil);
  EXPECT_EQ(floors.get_type(), type::lower_floor_air_facade);
}

TEST(qvi_connexion, with_a_roof_and_a_level_facade_is_the_lower_kind) {
  meeting m;
  m.add(contact::roof, south);
  m.add(contact::outer_wall, north);       // z = 0 is not above 0
  EXPECT_EQ(m.get_type(), type::no_loss);  // two opposite walls
  m.add(contact::inner_wall, down);
  EXPECT_EQ(m.get_type(), type::roof_facade);
}

// --- when it is computed ---

TEST(qvi_connexion, measures_its_segment) {
  meeting m;
  m.connexion->set_point_0({1, 2, 3});
  m.connexion->set_point_1({3, 5, 9});
  m.get_type();
  EXPECT_FLOAT_EQ(m.connexion->get_length(), 7);  // √(4 + 9 + 36)
  m.connexion->set_point_1({1, 2, 3});
  m.get_type();
  EXPECT_EQ(m.connexion->get_length(), 0.0f);
}

TEST(qvi_connexion, starts_without_length_and_flags) {
  const qvi_connexion connexion;
  EXPECT_EQ(connexion.get_length(), 0.0f);
  EXPECT_FALSE(connexion.is_vertical());
  EXPECT_FALSE(connexion.is_lossy());
}

TEST(qvi_connexion, without_walls_loses_nothing) {
  meeting m;
  EXPECT_EQ(m.get_type(), type::no_loss);
  EXPECT_TRUE(m.connexion->is_vertical());
  EXPECT_FALSE(m.connexion->is_lossy());
}

TEST(qvi_connexion, is_computed_anew_after_each_change_that_it_reads) {
  meeting m;
  qvi_wall* const wall = m.add(contact::outer_wall, east);
  m.add(contact::inner_wall, north);
  const auto is_recomputed = [&m](const auto& change) {
    m.get_type();
    m.connexion->set_connexion_type(type::roof_roof);  // wrong, until the next computation
    EXPECT_EQ(m.get_type(), type::roof_roof) << "computed without any change";
    change();
    return m.get_type() != type::roof_roof;
  };
  EXPECT_TRUE(is_recomputed([&] { m.connexion->set_point_0({0, 0, 1}); }));
  EXPECT_TRUE(is_recomputed([&] { m.connexion->set_point_1({0, 0, 4}); }));
  EXPECT_TRUE(is_recomputed([&] { m.connexion->set_walls({wall}); }));
  EXPECT_TRUE(is_recomputed([&] { wall->set_contact_type(contact::roof); }));
  EXPECT_TRUE(is_recomputed([&] { wall->set_normal(east); }));
  EXPECT_TRUE(is_recomputed([&] { m.scene.add_child(new qvi_wall, -1); }));
  qvi_limit_condition* condition = nullptr;
  EXPECT_TRUE(is_recomputed([&] { m.scene.add_child(condition = new qvi_limit_condition, -1); }));
  EXPECT_TRUE(is_recomputed([&] { condition->set_temperature(12); }));
  EXPECT_FALSE(is_recomputed([&] { m.connexion->set_psi(0.5f); }));
  EXPECT_FALSE(is_recomputed([&] { m.scene.add_child(new qvi_space, -1); }));
}

TEST(qvi_connexion, does_not_follow_a_change_of_the_directions_alone) {
  meeting m;
  m.add(contact::outer_wall, east);
  m.add(contact::outer_wall, north);
  EXPECT_EQ(m.get_type(), type::facade_angle_outer);
  m.connexion->set_wall_directions({east, south});
  EXPECT_EQ(m.get_type(), type::facade_angle_outer);
  m.connexion->set_point_1({0, 0, 4});
  EXPECT_EQ(m.get_type(), type::facade_angle_inner);
}

TEST(qvi_connexion, announces_its_type_only_when_it_becomes_another_one) {
  meeting m;
  m.add(contact::outer_wall, east);
  m.add(contact::inner_wall, north);
  m.scene.forget();
  m.get_type();
  EXPECT_EQ(m.scene.changed, (std::vector<qv_test::notification>{{m.connexion, "connexion_type"}}));
  m.connexion->set_point_1({0, 0, 4});
  m.scene.forget();
  const unsigned int date = m.connexion->get_connexion_type_date();
  EXPECT_EQ(m.get_type(), type::facade_inner_wall);
  EXPECT_TRUE(m.scene.changed.empty());
  EXPECT_EQ(m.connexion->get_connexion_type_date(), date);
}

TEST(qvi_connexion, shows_itself_as_one_line_to_whoever_asks_for_it) {
  meeting m;
  m.connexion->set_selected(true);
  qv_test::gl_recorder gl;
  m.connexion->render_opengl(true);
  m.connexion->render_opengl(false);
  EXPECT_TRUE(gl.calls.empty());
  m.connexion->render_opengl_raw();
  EXPECT_EQ(gl.calls, std::vector<std::string>{"lines 2"});
  EXPECT_EQ(gl.primitives[0].vertices, (std::vector<qv_3dvector>{{0, 0, 0}, {0, 0, 3}}));
}

TEST(qvi_connexion, shows_nothing_with_an_end_that_is_nowhere) {
  meeting m;
  m.connexion->set_point_1({0, std::numeric_limits<float>::infinity(), 0});
  qv_test::gl_recorder gl;
  m.connexion->render_opengl_raw();
  EXPECT_TRUE(gl.calls.empty());
}

TEST(qvi_connexion, a_copy_constructed_one_shares_its_record) {
  meeting m;
  qvi_connexion copy(*m.connexion);
  m.get_type();
  EXPECT_EQ(copy.get_length(), 3.0f);
  EXPECT_EQ(copy.find_param("contour_vertices"), m.connexion->find_param("contour_vertices"));
}

}  // namespace
