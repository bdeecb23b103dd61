#include <gtest/gtest.h>

#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "core/items/qv_scene.h"
#include "tests/bim/qv_random_model.h"
#include "tests/support/qv_test_buildings.h"

using namespace qv;
using qv_test::random_model;

namespace building_pass {

/// A space and a zone that count their precomputations.
class counting_space : public qvi_space {
  QV_ITEM_CLASS(counting_space, qvi_space, "test_counting_space")

  static inline int calls = 0;
  void precompute() override {
    ++calls;
    qvi_space::precompute();
  }
};
QV_ITEM_CLASS_IMPLEMENTATION(counting_space)

class counting_zone : public qvi_zone {
  QV_ITEM_CLASS(counting_zone, qvi_zone, "test_counting_zone")

  static inline int calls = 0;
  void precompute() override {
    ++calls;
    qvi_zone::precompute();
  }
};
QV_ITEM_CLASS_IMPLEMENTATION(counting_zone)

}  // namespace building_pass

using building_pass::counting_space;
using building_pass::counting_zone;

namespace {

// Buildings of two rooms one above the other and one zone each.
void add_towers(qv_scene& scene, int count) {
  for (int i = 0; i < count; ++i) {
    auto* const building = new qvi_building;
    scene.add_child(building, -1);
    auto* const zone = new counting_zone;
    zone->set_building(building);
    scene.add_child(zone, -1);
    for (int k = 0; k < 2; ++k) {
      auto* const space = new counting_space;
      const auto x = static_cast<float>(10 * i);
      const auto z = static_cast<float>(3 * k);
      qv_test::add_face(*space, qv_test::rectangle({x, 0, z}, {x, 1, z}, {x + 1, 0, z}));
      space->set_building(building);
      space->set_zone(zone);
      scene.add_child(space, -1);
    }
  }
}

TEST(qvi_building_pass, buildings_share_their_sweeps_over_spaces_and_zones) {
  for (const int count : {20, 200}) {
    qv_scene scene;
    add_towers(scene, count);
    counting_space::calls = 0;
    counting_zone::calls = 0;
    scene.precompute();
    // In each pass every space is called once by itself and once by its zone, every zone once; the
    // first buildings sweep over both, again after what the first sweeps changed.
    EXPECT_LE(counting_space::calls, 2 * count * (2 * qv_scene::largest_pass_count + 8));
    EXPECT_LE(counting_zone::calls, count * (qv_scene::largest_pass_count + 8));
    EXPECT_GE(counting_zone::calls, count);
  }
}

TEST(qvi_building_pass, settles_with_several_buildings_of_several_storeys) {
  qv_scene scene;
  add_towers(scene, 5);
  scene.precompute();
  const unsigned int date = scene.get_date();
  counting_zone::calls = 0;
  scene.precompute();
  EXPECT_EQ(counting_zone::calls, 0) << "the pass had not come to rest";
  EXPECT_EQ(scene.get_date(), date);
  for (qv_item* item : scene.collect("space")) {
    const auto* const space = static_cast<qvi_space*>(item);
    EXPECT_EQ(space->get_floor(),
              space->get_parent() == &scene && item->get_bounding_box().get_min().z > 1 ? 1 : 0);
  }
}

TEST(qvi_building_pass, an_unchanged_storey_stamps_nothing) {
  qv_scene scene;
  add_towers(scene, 2);
  scene.precompute();
  auto* const space = static_cast<qvi_space*>(scene.get_items("space")[1]);
  const unsigned int date = space->get_floor_date();
  ASSERT_EQ(space->get_floor(), 1);
  qv_test::add_space(scene);
  scene.precompute();
  EXPECT_EQ(space->get_floor_date(), date);
}

TEST(qvi_building_pass, ends_its_storeys_below_bottoms_beyond_every_level) {
  qv_scene scene;
  auto* const building = new qvi_building;
  scene.add_child(building, -1);
  // At this height single precision cannot tell a bottom from one 1.5 m above it.
  const float z = 9.0e6f * 8;
  auto* const space = qv_test::add_space(scene);
  space->set_building(building);
  qv_test::add_face(*space, qv_test::rectangle({0, 0, z}, {0, 1, z}, {1, 0, z}));
  building->precompute();
  EXPECT_EQ(space->get_floor(), -1);
  EXPECT_EQ(building->get_floors().get_count(), 1);
}

// What a building's precompute of every space and every zone comes to: nothing is left to do.
TEST(qvi_building_pass, leaves_spaces_and_zones_precomputed_after_one_new_building) {
  for (unsigned int seed = 1; seed <= 15; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    random_model model(seed);
    model.scene.precompute();
    for (int step = 0; step < 40; ++step) {
      model.edit();
      auto* const building = new qvi_building;
      model.scene.add_child(building, -1);
      building->precompute();
      const std::string found = model.describe_spaces() + model.describe_zones();
      for (qv_item* space : model.scene.collect("space")) space->precompute();
      for (qv_item* zone : model.scene.collect("zone")) zone->precompute();
      ASSERT_EQ(found, model.describe_spaces() + model.describe_zones()) << "step " << step;
      qv_item::destroy(building);
    }
  }
}

void precompute_new_building(qv_scene& scene) {
  auto* const building = new qvi_building;
  scene.add_child(building, -1);
  building->precompute();
}

TEST(qvi_building_pass, a_new_building_prepares_a_mesh_that_was_edited_below_a_space) {
  qv_scene scene;
  qvi_space* const space = qv_test::add_space(scene);
  qvi_polygon* const shell =
      qv_test::add_face(*space, qv_test::rectangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0}));
  scene.precompute();
  precompute_new_building(scene);
  precompute_new_building(scene);
  shell->set_raytracing_layers({"simulation", "bim"});
  precompute_new_building(scene);
  EXPECT_EQ(shell->get_raytracing_layers(), qv_list<std::string>({"bim"}));
}

TEST(qvi_building_pass, a_new_building_sums_up_a_zone_that_came_after_its_spaces) {
  qv_scene scene;
  qvi_space* const space = qv_test::add_space(scene);
  space->set_forced_area(12.0f);
  auto* const zone = new qvi_zone;
  space->set_zone(zone);
  scene.precompute();
  precompute_new_building(scene);
  precompute_new_building(scene);
  scene.add_child(zone, -1);
  precompute_new_building(scene);
  EXPECT_EQ(zone->get_area(), 12.0f);
}

// The slow and obvious way: a model that saw the same edits and was never precomputed before.
TEST(qvi_building_pass, a_model_kept_up_to_date_equals_one_computed_at_once) {
  for (unsigned int seed = 1; seed <= 30; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    random_model kept(seed);
    for (int step = 0; step < 30; ++step) {
      kept.edit();
      if (step % 3 != 1) kept.scene.precompute();
    }
    kept.scene.precompute();
    random_model fresh(seed);
    for (int step = 0; step < 30; ++step) fresh.edit();
    fresh.scene.precompute();
    ASSERT_EQ(kept.describe(), fresh.describe());
  }
}

}  // namespace
