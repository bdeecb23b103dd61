#include <gtest/gtest.h>

#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"

using namespace qv;
using qv_test::derived_probe_item;
using qv_test::probe_item;

namespace {

probe_item* add_probe(qv_item* parent) {
  auto* item = new probe_item;
  parent->add_child(item, -1);
  return item;
}

TEST(items_precompute, reaches_every_item_parents_first) {
  qv_scene scene;
  std::vector<qv_item*> order;
  auto* a = add_probe(&scene);
  auto* b = add_probe(a);
  auto* c = add_probe(&scene);
  for (probe_item* item : {a, b, c})
    item->when_precomputed = [&order, item] { order.push_back(item); };
  scene.precompute();
  ASSERT_GE(order.size(), 3u);
  EXPECT_EQ(order[0], a);
  EXPECT_EQ(order[1], b);
  EXPECT_EQ(order[2], c);
}

TEST(items_precompute, runs_again_until_nothing_changes) {
  qv_scene scene;
  auto* first = add_probe(&scene);
  auto* second = add_probe(&scene);
  auto* third = add_probe(&scene);
  // Each value follows from the one behind it, so that one pass cannot settle them.
  first->when_precomputed = [&] { first->set_number(second->get_number() + 1); };
  second->when_precomputed = [&] { second->set_number(third->get_number() + 1); };
  third->set_number(40);
  scene.precompute();
  EXPECT_EQ(second->get_number(), 41.0f);
  EXPECT_EQ(first->get_number(), 42.0f);
}

TEST(items_precompute, ends_when_an_item_changes_for_ever) {
  qv_scene scene;
  auto* item = add_probe(&scene);
  item->when_precomputed = [&] { item->set_count(item->get_count() + 1); };
  scene.precompute();
  EXPECT_GE(item->precompute_count, 2);
  EXPECT_LE(item->precompute_count, qv_scene::largest_pass_count);
}

TEST(items_precompute, an_unchanged_scene_is_passed_at_most_once_more) {
  qv_scene scene;
  auto* item = add_probe(&scene);
  scene.precompute();
  item->precompute_count = 0;
  scene.precompute();
  EXPECT_LE(item->precompute_count, 1);
  item->precompute_count = 0;
  item->set_number(9);
  scene.precompute();
  EXPECT_GE(item->precompute_count, 1);
}

TEST(items_precompute, reaches_items_that_arrive_meanwhile) {
  qv_scene scene;
  auto* maker = add_probe(&scene);
  probe_item* made = nullptr;
  maker->when_precomputed = [&] {
    if (made == nullptr) made = add_probe(maker);
  };
  scene.precompute();
  ASSERT_NE(made, nullptr);
  EXPECT_GE(made->precompute_count, 1);
}

TEST(items_precompute, survives_items_that_are_destroyed_meanwhile) {
  qv_scene scene;
  auto* killer = add_probe(&scene);
  probe_item* victims[3];
  for (auto& victim : victims) victim = add_probe(add_probe(&scene));
  auto* last = add_probe(&scene);
  killer->when_precomputed = [&] {
    for (auto& victim : victims) {
      qv_item::destroy(victim);
      victim = nullptr;
    }
  };
  scene.precompute();
  EXPECT_GE(last->precompute_count, 1);
  EXPECT_EQ(scene.get_items("test_probe").get_count(), 5);
}

TEST(items_precompute, survives_items_that_are_taken_out_and_put_back_meanwhile) {
  qv_scene scene;
  auto* mover = add_probe(&scene);
  auto* moved = add_probe(&scene);
  auto* target = add_probe(&scene);
  bool done = false;
  mover->when_precomputed = [&] {
    if (done) return;
    done = true;
    moved->remove();
    target->add_child(moved, -1);
  };
  scene.precompute();
  EXPECT_EQ(moved->get_parent(), target);
  EXPECT_GE(moved->precompute_count, 1);
}

TEST(items_precompute, may_be_asked_for_within_a_pass) {
  qv_scene scene;
  auto* caller = add_probe(&scene);
  auto* other = add_probe(&scene);
  int depth = 0;
  caller->when_precomputed = [&] {
    if (depth > 0) return;
    ++depth;
    scene.precompute();
    --depth;
  };
  scene.precompute();
  EXPECT_GE(other->precompute_count, 1);
}

// --- the records of item classes ---

TEST(items_types, a_class_has_one_record_and_one_sample) {
  auto* item = new derived_probe_item;
  qv_item_type* type = item->get_item_type();
  ASSERT_NE(type, nullptr);
  qv_item* sample = type->get_sample();
  ASSERT_NE(sample, nullptr);
  EXPECT_NE(sample, item);
  EXPECT_EQ(sample->get_item_type(), type);
  const int count = qv_item_type::get_types().get_count();
  auto* second = new derived_probe_item;
  EXPECT_EQ(second->get_item_type(), type);
  EXPECT_EQ(type->get_sample(), sample);
  EXPECT_EQ(qv_item_type::get_types().get_count(), count);
  qv_item::destroy(item);
  qv_item::destroy(second);
}

TEST(items_types, a_record_knows_the_types_above_it) {
  derived_probe_item item;
  const qv_item_type* type = item.get_item_type();
  EXPECT_EQ(type->get_name(), "test_derived_probe");
  ASSERT_NE(type->get_parent(), nullptr);
  EXPECT_EQ(type->get_parent()->get_name(), "test_probe");
  ASSERT_NE(type->get_parent()->get_parent(), nullptr);
  EXPECT_EQ(type->get_parent()->get_parent()->get_name(), "item");
  EXPECT_EQ(type->get_parent()->get_parent()->get_parent(), nullptr);
  EXPECT_TRUE(type->derives_from("test_probe"));
  EXPECT_TRUE(type->derives_from(type));
  EXPECT_FALSE(type->get_parent()->derives_from(type));
  EXPECT_LT(type->get_parent()->get_index(), type->get_index());
  EXPECT_EQ(qv_item_type::get_types()[type->get_index()], type);
}

TEST(items_types, are_found_by_name_before_and_after_indexing) {
  derived_probe_item item;
  EXPECT_EQ(qv_item_type::find("test_derived_probe"), item.get_item_type());
  qv_item_type::optimize_search();
  EXPECT_EQ(qv_item_type::find("test_derived_probe"), item.get_item_type());
  EXPECT_EQ(qv_item_type::find("no such type"), nullptr);
  auto* late = new qv_item_type("test_late", item.get_item_type());
  EXPECT_EQ(qv_item_type::find("test_late"), late);
  EXPECT_EQ(late->create_item(), nullptr);  // it has no sample
}

TEST(items_types, make_new_items_with_defaults) {
  derived_probe_item item;
  item.set_number(3);
  qv_item* made = item.get_item_type()->create_item();
  ASSERT_NE(made, nullptr);
  EXPECT_TRUE(made->has_exact_type("test_derived_probe"));
  EXPECT_EQ(static_cast<derived_probe_item*>(made)->get_number(), 1.5f);
  EXPECT_NE(made, item.get_item_type()->get_sample());
  qv_item::destroy(made);
}

}  // namespace
