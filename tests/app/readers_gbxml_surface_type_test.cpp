#include "app/readers/qv_gbxml_surface_type.h"

#include <gtest/gtest.h>

namespace {

using qv::qv_find_surface_type;
using qv::qv_surface_type;
using wall_type = qv::qvi_wall::wall_type;

qv_surface_type exact(const char* text) {
  bool guessed = true;
  const qv_surface_type type = qv_find_surface_type(text, guessed);
  EXPECT_FALSE(guessed) << text;
  return type;
}

wall_type choose(qv_surface_type type, int spaces, double up) {
  return qv_choose_wall_type(type, spaces, up).type;
}

}  // namespace

TEST(qv_find_surface_type, knows_every_word_of_gbxml) {
  for (int i = 0; i < static_cast<int>(qv_surface_type::unknown); ++i) {
    const auto type = static_cast<qv_surface_type>(i);
    EXPECT_EQ(exact(qv_get_surface_type_name(type)), type);
  }
  EXPECT_EQ(exact("slabongrade"), qv_surface_type::slab_on_grade);
  EXPECT_EQ(exact("AIR"), qv_surface_type::air);
}

TEST(qv_find_surface_type, takes_a_misspelt_word_for_the_one_it_is_nearest_to) {
  bool guessed = false;
  EXPECT_EQ(qv_find_surface_type("Shad", guessed), qv_surface_type::shade);
  EXPECT_TRUE(guessed);
  EXPECT_EQ(qv_find_surface_type("ExteriorWal", guessed), qv_surface_type::exterior_wall);
  EXPECT_TRUE(guessed);
  EXPECT_EQ(qv_find_surface_type("InteriorWalls", guessed), qv_surface_type::interior_wall);
}

TEST(qv_find_surface_type, takes_no_other_word_for_a_type) {
  EXPECT_EQ(exact("InsideFloor"), qv_surface_type::unknown);
  EXPECT_EQ(exact("FixedWindow"), qv_surface_type::unknown);
  EXPECT_EQ(exact(""), qv_surface_type::unknown);
  EXPECT_EQ(exact("Door"), qv_surface_type::unknown);
  EXPECT_EQ(exact("xyz"), qv_surface_type::unknown);
}

TEST(qv_choose_wall_type, what_lies_between_spaces_is_a_floor_whatever_it_is_called) {
  for (const double up : {1.0, -1.0}) {
    EXPECT_EQ(choose(qv_surface_type::interior_floor, 2, up), wall_type::floor);
    EXPECT_EQ(choose(qv_surface_type::ceiling, 2, up), wall_type::floor);
    EXPECT_EQ(choose(qv_surface_type::roof, 2, up), wall_type::floor);
    EXPECT_EQ(choose(qv_surface_type::air, 2, up), wall_type::floor);
    EXPECT_EQ(choose(qv_surface_type::unknown, 2, up), wall_type::floor);
    EXPECT_EQ(choose(qv_surface_type::interior_wall, 2, up), wall_type::floor);
  }
}

TEST(qv_choose_wall_type, what_stands_between_spaces_is_a_wall_whatever_it_is_called) {
  for (const qv_surface_type type :
       {qv_surface_type::interior_floor, qv_surface_type::ceiling, qv_surface_type::air,
        qv_surface_type::unknown, qv_surface_type::interior_wall, qv_surface_type::exterior_wall})
    EXPECT_EQ(choose(type, 2, 0), wall_type::wall);
}

TEST(qv_choose_wall_type, with_one_space_its_side_tells_floor_from_roof) {
  EXPECT_EQ(choose(qv_surface_type::slab_on_grade, 1, -1), wall_type::floor);
  EXPECT_EQ(choose(qv_surface_type::slab_on_grade, 1, 1), wall_type::roof);
  EXPECT_EQ(choose(qv_surface_type::interior_floor, 1, -1), wall_type::floor);
  EXPECT_EQ(choose(qv_surface_type::interior_floor, 1, 1), wall_type::roof);
  EXPECT_EQ(choose(qv_surface_type::ceiling, 1, 1), wall_type::roof);
  EXPECT_EQ(choose(qv_surface_type::roof, 1, 0.3), wall_type::roof);
  EXPECT_EQ(choose(qv_surface_type::roof, 1, -1), wall_type::floor);
  EXPECT_EQ(choose(qv_surface_type::exterior_wall, 1, 0.5), wall_type::wall);
  EXPECT_EQ(choose(qv_surface_type::exterior_wall, 1, 1), wall_type::roof);
  EXPECT_EQ(choose(qv_surface_type::exterior_wall, 1, -1), wall_type::floor);
  EXPECT_EQ(choose(qv_surface_type::raised_floor, 1, 0.1), wall_type::wall);
}

TEST(qv_choose_wall_type, gives_a_reason_exactly_when_it_departs_from_the_word) {
  EXPECT_EQ(qv_choose_wall_type(qv_surface_type::ceiling, 2, 1).reason, "");
  EXPECT_EQ(qv_choose_wall_type(qv_surface_type::roof, 1, 0.7).reason, "");
  EXPECT_EQ(qv_choose_wall_type(qv_surface_type::shade, 0, 1).reason, "");
  EXPECT_EQ(qv_choose_wall_type(qv_surface_type::slab_on_grade, 1, 1).reason,
            "said SlabOnGrade but lies over its space: a roof");
  EXPECT_EQ(qv_choose_wall_type(qv_surface_type::interior_wall, 2, 1).reason,
            "said InteriorWall but lies level: a floor");
}
