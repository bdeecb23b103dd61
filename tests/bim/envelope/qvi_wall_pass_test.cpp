#include <gtest/gtest.h>

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "core/items/qv_scene.h"
#include "tests/bim/qv_random_model.h"
#include "tests/support/qv_test_buildings.h"

using namespace qv;
using qv_test::random_model;

namespace wall_pass {

/// A wall that counts its precomputations.
class counting_wall : public qvi_wall {
  QV_ITEM_CLASS(counting_wall, qvi_wall, "test_counting_wall")

  static inline int calls = 0;
  void precompute() override {
    ++calls;
    qvi_wall::precompute();
  }
};
QV_ITEM_CLASS_IMPLEMENTATION(counting_wall)

}  // namespace wall_pass

using wall_pass::counting_wall;

namespace {

// `count` rooms in a row, before the walls between them in the order of the scene.
void add_row_of_rooms(qv_scene& scene, int count) {
  std::vector<qvi_space*> spaces;
  spaces.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) spaces.push_back(qv_test::add_space(scene));
  for (int i = 0; i < count; ++i) {
    auto* const wall = new counting_wall;
    const auto x = static_cast<float>(i);
    wall->set_face_0(qv_test::add_face(*wall, qv_test::rectangle({x, 0, 0}, {x, 0, 1}, {x, 1, 0})));
    wall->set_wall_type(qvi_wall::wall_type::wall);
    wall->set_space_0(spaces[static_cast<std::size_t>(i)]);
    if (i + 1 < count) wall->set_space_1(spaces[static_cast<std::size_t>(i) + 1]);
    scene.add_child(wall, -1);
  }
}

TEST(qvi_wall_pass, rooms_share_their_sweeps_over_the_walls) {
  for (const int count : {20, 200}) {
    qv_scene scene;
    add_row_of_rooms(scene, count);
    counting_wall::calls = 0;
    scene.precompute();
    // Every pass calls each wall once, and the first rooms sweep over them: no room by room.
    EXPECT_LE(counting_wall::calls, (qv_scene::largest_pass_count + 4) * count);
    EXPECT_GE(counting_wall::calls, count);
  }
}

TEST(qvi_wall_pass, settles_in_a_few_passes) {
  qv_scene scene;
  add_row_of_rooms(scene, 10);
  scene.precompute();
  const unsigned int date = scene.get_date();
  counting_wall::calls = 0;
  scene.precompute();
  EXPECT_EQ(counting_wall::calls, 0);
  EXPECT_EQ(scene.get_date(), date);
}

// After the precompute of a new room there is nothing left to do in any wall, whatever was edited
// before. This is what a room's precompute of every wall comes to.
TEST(qvi_wall_pass, leaves_every_wall_precomputed_after_the_precompute_of_one_new_room) {
  for (unsigned int seed = 1; seed <= 25; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    random_model model(seed);
    model.scene.precompute();
    for (int step = 0; step < 60; ++step) {
      model.edit();
      qv_test::add_space(model.scene)->precompute();
      const std::string found = model.describe_walls();
      for (qv_item* wall : model.scene.collect("wall")) wall->precompute();
      ASSERT_EQ(found, model.describe_walls()) << "step " << step;
    }
  }
}

TEST(qvi_wall_pass, follows_a_face_that_is_edited_by_itself) {
  qv_scene scene;
  const qv_test::box_room room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  scene.precompute();
  qv_test::add_space(scene)->precompute();  // follows up what the first sweep changed
  ASSERT_FLOAT_EQ(room.roof->get_loss_area(), 20.0f);
  qv_polygon smaller({0, 0, 2.5f}, {0, 0, 1});
  smaller.add_contour(qv_test::rectangle({0, 0, 2.5f}, {2, 0, 2.5f}, {0, 5, 2.5f}));
  room.roof->get_face_0()->load_from_polygon(&smaller);
  qv_test::add_space(scene)->precompute();
  EXPECT_FLOAT_EQ(room.roof->get_loss_area(), 10.0f);
}

TEST(qvi_wall_pass, follows_a_face_that_is_replaced_by_an_older_one) {
  qv_scene scene;
  const qv_test::box_room room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  qvi_polygon* const older =
      qv_test::add_face(scene, qv_test::rectangle({0, 0, 3}, {1, 0, 3}, {0, 1, 3}));
  scene.precompute();
  ASSERT_FLOAT_EQ(room.roof->get_loss_area(), 20.0f);
  room.roof->set_pierced_face(older);
  scene.precompute();
  EXPECT_FLOAT_EQ(room.roof->get_loss_area(), 1.0f);
}

TEST(qvi_wall_pass, loses_nothing_any_more_once_its_faces_are_gone) {
  qv_scene scene;
  const qv_test::box_room room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f});
  scene.precompute();
  for (qv_item* face : room.roof->collect("polygon")) qv_item::destroy(face);
  scene.precompute();
  EXPECT_EQ(room.roof->get_loss_area(), 0.0f);
}

}  // namespace
