#include "bim/envelope/qvi_covering.h"

#include <gtest/gtest.h>

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "tests/support/qv_recorders.h"
#include "utilities/qv_date.h"

using namespace qv;

namespace {

TEST(qvi_covering, is_a_wall_side_of_nothing_and_precomputing_leaves_it_so) {
  qv_test::recording_scene scene;
  auto* covering = new qvi_covering;
  scene.add_child(covering, -1);
  scene.forget();
  const unsigned int date = qv_get_date();
  covering->precompute();
  EXPECT_EQ(covering->get_covering_type(), qvi_covering::covering_type::wall);
  EXPECT_TRUE(covering->get_walls().is_empty());
  EXPECT_EQ(covering->get_space(), nullptr);
  EXPECT_EQ(covering->get_face(), nullptr);
  EXPECT_EQ(covering->get_pierced_face(), nullptr);
  EXPECT_EQ(qv_get_date(), date);
  EXPECT_TRUE(scene.changed.empty());
}

TEST(qvi_covering, names_its_kinds) {
  EXPECT_EQ(
      qv_test::to_vector(qvi_covering::get_covering_type_list()),
      (std::vector<std::string>{"wall", "floor", "roof", "ceiling", "outside_wall", "unknown"}));
  EXPECT_EQ(&qvi_covering::get_covering_type_list(), &qvi_covering::get_covering_type_list());
}

TEST(qvi_covering, forgets_walls_and_spaces_that_are_gone) {
  qv_test::recording_scene scene;
  auto* covering = new qvi_covering;
  auto* wall = new qvi_wall;
  auto* space = new qvi_space;
  for (qv_item* item : std::initializer_list<qv_item*>{covering, wall, space})
    scene.add_child(item, -1);
  covering->set_walls({wall});
  covering->set_space(space);
  qv_item::destroy(wall);
  qv_item::destroy(space);
  EXPECT_TRUE(covering->get_walls().is_empty());
  EXPECT_EQ(covering->get_space(), nullptr);
}

}  // namespace
