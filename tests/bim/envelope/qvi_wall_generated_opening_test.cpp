#include <gtest/gtest.h>

#include <limits>

#include "bim/envelope/qvi_opening.h"
#include "bim/materials/qvi_glazing.h"
#include "core/items/qv_scene.h"
#include "tests/support/qv_test_buildings.h"
#include "tests/support/qv_test_openings.h"

namespace {

using namespace qv;

class generated_opening : public testing::TestWithParam<float> {
 protected:
  generated_opening() {
    wall = qv_test::add_wall(scene, qvi_wall::wall_type::wall, nullptr, nullptr,
                             qv_test::rectangle({0, 0, 0}, {4, 0, 0}, {0, 0, 2.5f}), GetParam());
    wall->set_name("Nord");
    scene.precompute();
  }
  qvi_opening* get_opening() {
    const qv_list<qv_item*>& openings = scene.get_items("opening");
    return openings.is_empty() ? nullptr : static_cast<qvi_opening*>(openings[0]);
  }

  qv_scene scene;
  qvi_wall* wall = nullptr;
};

constexpr float face_area = 10.0f;

TEST_P(generated_opening, covers_its_share_of_the_face) {
  ASSERT_TRUE(wall->create_opening(0.3f, true));
  scene.precompute();
  ASSERT_NE(get_opening(), nullptr);
  EXPECT_EQ(get_opening()->get_name(), "Baie générée sur Nord");
  EXPECT_NEAR(get_opening()->get_glazing_area(), 0.3f * face_area, 0.001f * face_area);
  EXPECT_NEAR(wall->get_loss_area(), 0.7f * face_area, 0.001f * face_area);
  EXPECT_FALSE(wall->get_face_0()->get_rendering_visibility());
  EXPECT_TRUE(wall->get_face_0()->get_raytracing_layers().is_empty());
  EXPECT_TRUE(wall->get_pierced_face_0()->get_raytracing_layers().contains("simulation"));
}

TEST_P(generated_opening, replaces_the_one_before_it) {
  ASSERT_TRUE(wall->create_opening(0.5f, true));
  ASSERT_TRUE(wall->create_opening(0.3f, true));
  scene.precompute();
  EXPECT_EQ(scene.get_items("opening").get_count(), 1);
  EXPECT_NEAR(get_opening()->get_glazing_area(), 0.3f * face_area, 0.001f * face_area);
}

TEST_P(generated_opening, leaves_the_scene_as_after_one_call_after_a_thousand) {
  ASSERT_TRUE(wall->create_opening(0.3f, false));
  const int item_count = scene.get_items("item").get_count();
  for (int i = 0; i < 1000; ++i)
    wall->create_opening(0.01f + 0.9f * float(i % 97) / 97, i % 2 == 0);
  ASSERT_TRUE(wall->create_opening(0.3f, false));
  EXPECT_EQ(scene.get_items("item").get_count(), item_count);
}

TEST_P(generated_opening, goes_away_with_a_ratio_next_to_nothing) {
  const int item_count = scene.get_items("item").get_count();
  ASSERT_TRUE(wall->create_opening(0.3f, true));
  ASSERT_TRUE(wall->create_opening(0.0005f, true));
  EXPECT_EQ(scene.get_items("item").get_count(), item_count);
  EXPECT_EQ(wall->get_pierced_face_0(), wall->get_face_0());
  EXPECT_EQ(wall->get_pierced_face_1(), wall->get_face_1());
  EXPECT_TRUE(wall->get_face_0()->get_rendering_visibility());
  EXPECT_NEAR(wall->get_loss_area(), face_area, 1e-4f);
}

TEST_P(generated_opening, is_refused_above_0_99_and_for_no_number) {
  EXPECT_FALSE(wall->create_opening(0.991f, true));
  EXPECT_FALSE(wall->create_opening(std::numeric_limits<float>::quiet_NaN(), true));
  EXPECT_TRUE(wall->create_opening(0.99f, true));
}

TEST_P(generated_opening, never_takes_the_place_of_a_real_one) {
  auto* const real = new qvi_opening;
  real->set_wall(wall);
  scene.add_child(real, -1);
  scene.precompute();
  EXPECT_FALSE(wall->create_opening(0.3f, true));
  auto* const pierced =
      qv_test::add_face(*wall, qv_test::rectangle({0, 0, 0}, {2, 0, 0}, {0, 0, 2.5f}));
  wall->set_pierced_face_0(pierced);
  wall->set_pierced_face_1(pierced);
  EXPECT_FALSE(wall->create_opening(0.3f, true));
  EXPECT_EQ(get_opening(), real);
}

TEST_P(generated_opening, is_refused_on_a_face_with_a_hole) {
  qv_polygon holed;
  wall->get_face_0()->fill_polygon(&holed);
  holed.add_contour(qv_test::rectangle({1, 0, 1}, {2, 0, 1}, {1, 0, 2}));
  wall->get_face_0()->load_from_polygon(&holed);
  EXPECT_FALSE(wall->create_opening(0.3f, true));
}

INSTANTIATE_TEST_SUITE_P(walls, generated_opening, testing::Values(0.0f, 0.2f),
                         [](const testing::TestParamInfo<float>& wall) {
                           return wall.param == 0.0f ? "thin" : "thick";
                         });

// --- in which order the scene is told ---

/// Writes down what came and went, and which parameters changed, in one sequence.
class sequence_scene : public qv_scene {
 public:
  std::vector<std::string> events;

 protected:
  void item_added(qv_item* item) override {
    events.push_back("+ " + item->get_name());
    qv_scene::item_added(item);
  }
  void item_changed(qv_item* item, const std::string& name) override {
    events.push_back(item->get_name() + "." + name);
    qv_scene::item_changed(item, name);
  }
  void item_removed(qv_item* item) override {
    events.push_back("- " + item->get_name());
    qv_scene::item_removed(item);
  }
};

class notified_order : public testing::Test {
 protected:
  notified_order() {
    qv_test::add_new<qvi_glazing>(scene);
    scene.precompute();
  }
  // The wall with a window, its faces and pierced faces named "face 0" to "pierced 1".
  void add_window() {
    ASSERT_TRUE(wall->create_opening(0.3f, true));
    wall->set_name("wall");
    scene.get_items("opening")[0]->set_name("window");
    wall->get_face_1()->set_name("face 1");
    wall->get_face_0()->set_name("face 0");
    wall->get_pierced_face_1()->set_name("pierced 1");
    wall->get_pierced_face_0()->set_name("pierced 0");
    scene.precompute();
    scene.events.clear();
  }

  sequence_scene scene;
  qvi_wall* wall = qv_test::add_wall(scene, qvi_wall::wall_type::wall, nullptr, nullptr,
                                     qv_test::rectangle({0, 0, 0}, {4, 0, 0}, {0, 0, 2.5f}));
};

TEST_F(notified_order, of_a_removal_goes_side_by_side) {
  add_window();
  ASSERT_TRUE(wall->create_opening(0.0f, true));
  ASSERT_GE(scene.events.size(), 11u);
  scene.events.resize(11);  // the wall's own computation follows
  EXPECT_EQ(scene.events,
            (std::vector<std::string>{"- window", "wall.pierced_face_0", "face 0.raytracing_layers",
                                      "face 0.rendering_layers", "face 0.rendering_visibility",
                                      "- pierced 0", "wall.pierced_face_1",
                                      "face 1.raytracing_layers", "face 1.rendering_layers",
                                      "face 1.rendering_visibility", "- pierced 1"}));
}

TEST_F(notified_order,
       of_a_removal_from_a_thin_wall_takes_out_the_one_polygon_with_the_first_side) {
  wall->set_face_1(wall->get_face_0());
  wall->set_pierced_face_1(wall->get_face_0());
  add_window();
  ASSERT_EQ(wall->get_pierced_face_0(), wall->get_pierced_face_1());
  ASSERT_TRUE(wall->create_opening(0.0f, true));
  ASSERT_GE(scene.events.size(), 7u);
  scene.events.resize(7);
  EXPECT_EQ(scene.events,
            (std::vector<std::string>{"- window", "wall.pierced_face_0", "face 0.raytracing_layers",
                                      "face 0.rendering_layers", "face 0.rendering_visibility",
                                      "- pierced 0", "wall.pierced_face_1"}));
}

TEST_F(notified_order, of_a_replacement_takes_the_old_faces_out_before_the_new_ones_come) {
  add_window();
  ASSERT_TRUE(wall->create_opening(0.4f, true));
  EXPECT_EQ(scene.events, (std::vector<std::string>{
                              "- window", "+ Baie générée sur wall", "- pierced 0", "- pierced 1",
                              "wall.pierced_face_0", "wall.pierced_face_1", "+ ", "+ "}));
}

}  // namespace
