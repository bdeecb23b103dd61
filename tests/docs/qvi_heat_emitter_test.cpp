#include "docs/examples/qvi_heat_emitter.h"

#include <gtest/gtest.h>

#include "bim/hierarchy/qvi_space.h"
#include "core/items/qv_scene.h"
#include "core/light/qvi_schedule.h"
#include "utilities/qv_date.h"

namespace {

using namespace qv;

template <class T>
T* add(qv_scene& scene) {
  auto* item = new T;
  scene.add_child(item, -1);
  return item;
}

TEST(qvi_heat_emitter, gives_its_nominal_power_to_water_of_70_degrees) {
  qv_scene scene;
  auto* emitter = add<qvi_heat_emitter>(scene);
  auto* water = add<qvi_schedule>(scene);
  water->set_values({70.0f, 70.0f, 20.0f, 10.0f});  // two hours on, two hours off
  emitter->set_water_temperature(water);
  emitter->set_nominal_power(1200.0f);
  scene.precompute();
  EXPECT_FLOAT_EQ(emitter->get_mean_power(), 600.0f);
}

TEST(qvi_heat_emitter, follows_its_schedule_and_rests_when_nothing_changed) {
  qv_scene scene;
  auto* emitter = add<qvi_heat_emitter>(scene);
  auto* water = add<qvi_schedule>(scene);
  emitter->set_water_temperature(water);
  scene.precompute();
  EXPECT_EQ(emitter->get_mean_power(), 0.0f);

  water->set_values({45.0f});
  scene.precompute();
  EXPECT_NEAR(emitter->get_mean_power(), 406.1f, 0.1f);  // 1000 · 0.5^1.3

  const unsigned int date = qv_get_date();
  scene.precompute();
  EXPECT_EQ(qv_get_date(), date);
}

TEST(qvi_heat_emitter, is_found_by_the_room_that_it_heats) {
  qv_scene scene;
  auto* room = add<qvi_space>(scene);
  auto* first = add<qvi_heat_emitter>(scene);
  add<qvi_heat_emitter>(scene);
  auto* third = add<qvi_heat_emitter>(scene);
  third->set_space(room);
  first->set_space(room);
  EXPECT_EQ(qvi_heat_emitter::find_emitters(room), (qv_list<qvi_heat_emitter*>{first, third}));
}

TEST(qvi_heat_emitter, has_a_type_that_makes_more_of_it) {
  qv_item* const sample = new qvi_heat_emitter;
  EXPECT_EQ(sample->get_item_type()->get_parent()->get_name(), "item");
  qv_item* const made = qv_item_type::find("heat_emitter")->create_item();
  EXPECT_TRUE(made->has_exact_type("heat_emitter"));
  qv_item::destroy(made);
  qv_item::destroy(sample);
}

}  // namespace
