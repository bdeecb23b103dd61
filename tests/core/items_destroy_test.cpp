#include <gtest/gtest.h>

#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"
#include "utilities/qv_date.h"

using namespace qv;
using qv_test::notification;
using qv_test::probe_item;
using qv_test::recording_scene;

namespace {

probe_item* add_probe(qv_item* parent) {
  auto* item = new probe_item;
  parent->add_child(item, -1);
  return item;
}

TEST(items_destroy, clears_references_to_the_freed_item_dated_and_announced) {
  recording_scene scene;
  auto* holder = add_probe(&scene);
  auto* kept = add_probe(&scene);
  auto* doomed = add_probe(&scene);
  holder->set_link(doomed);
  holder->set_links({doomed, kept, doomed, nullptr, doomed});
  scene.forget();
  const unsigned int before = qv_get_date();
  qv_item::destroy(doomed);
  EXPECT_EQ(holder->get_link(), nullptr);
  EXPECT_EQ(holder->get_links(), (qv_list<qv_item*>{kept, nullptr}));
  EXPECT_GT(holder->get_link_date(), before);
  EXPECT_GT(holder->get_links_date(), before);
  EXPECT_EQ(scene.count_changes(holder, "link"), 1);
  EXPECT_GE(scene.count_changes(holder, "links"), 1);
  EXPECT_GT(scene.get_last_change("test_probe", "link"), before);
}

// A list that stands beside another one.
class table_item : public qv_item {
  QV_ITEM_CLASS(table_item, qv_item, "test_table")

  QV_PARAM_ITEM_LIST(qv_item, entries, {.keeps_places = true})
  QV_PARAM_ITEM_LIST(qv_item, others)
};
QV_ITEM_CLASS_IMPLEMENTATION(table_item)

TEST(items_destroy, leaves_the_place_of_an_entry_in_a_list_that_keeps_places) {
  recording_scene scene;
  auto* table = new table_item;
  scene.add_child(table, -1);
  auto* kept = add_probe(&scene);
  auto* doomed = add_probe(&scene);
  table->set_entries({doomed, kept, doomed, nullptr});
  table->set_others({doomed, kept, doomed, nullptr});
  scene.forget();
  qv_item::destroy(doomed);
  EXPECT_EQ(table->get_entries(), (qv_list<qv_item*>{nullptr, kept, nullptr, nullptr}));
  EXPECT_EQ(table->get_others(), (qv_list<qv_item*>{kept, nullptr}));
  EXPECT_GE(scene.count_changes(table, "entries"), 1);
  qv_item::destroy(kept);
  EXPECT_EQ(table->get_entries().get_count(), 4);
}

TEST(items_destroy, clears_references_to_everything_under_the_freed_item) {
  recording_scene scene;
  auto* holder = add_probe(&scene);
  auto* doomed = add_probe(&scene);
  auto* under = add_probe(doomed);
  auto* deep = add_probe(under);
  holder->set_link(deep);
  holder->set_links({under, holder, doomed, deep});
  qv_item::destroy(doomed);
  EXPECT_EQ(holder->get_link(), nullptr);
  EXPECT_EQ(holder->get_links(), qv_list<qv_item*>{holder});
}

TEST(items_destroy, leaves_other_references_and_their_dates_alone) {
  recording_scene scene;
  auto* holder = add_probe(&scene);
  auto* kept = add_probe(&scene);
  auto* doomed = add_probe(&scene);
  holder->set_link(kept);
  holder->set_links({kept});
  const unsigned int date = holder->get_link_date();
  scene.forget();
  qv_item::destroy(doomed);
  EXPECT_EQ(holder->get_link(), kept);
  EXPECT_EQ(holder->get_link_date(), date);
  EXPECT_EQ(scene.count_changes(holder), 0);
}

TEST(items_destroy, clears_references_from_items_outside_any_scene) {
  probe_item holder;
  qv_item* doomed = new probe_item;
  holder.set_link(doomed);
  holder.set_links({doomed});
  const unsigned int before = qv_get_date();
  qv_item::destroy(doomed);
  EXPECT_EQ(holder.get_link(), nullptr);
  EXPECT_EQ(holder.get_links().get_count(), 0);
  EXPECT_GT(holder.get_link_date(), before);
}

TEST(items_destroy, an_item_may_refer_to_itself) {
  recording_scene scene;
  auto* item = add_probe(&scene);
  item->set_link(item);
  item->set_links({item, item});
  qv_item::destroy(item);
  EXPECT_EQ(scene.get_children().get_count(), 0);
}

TEST(items_destroy, items_of_one_subtree_may_refer_to_each_other) {
  recording_scene scene;
  auto* a = add_probe(&scene);
  auto* b = add_probe(a);
  auto* c = add_probe(a);
  a->set_link(c);
  b->set_links({a, c});
  c->set_link(b);
  qv_item::destroy(a);
  EXPECT_EQ(scene.get_items("test_probe").get_count(), 0);
}

TEST(items_destroy, tells_the_ancestors_of_the_departure) {
  recording_scene scene;
  auto* a = add_probe(&scene);
  auto* b = add_probe(a);
  scene.forget();
  const unsigned int before = qv_get_date();
  qv_item::destroy(b);
  EXPECT_EQ(scene.removed, std::vector<qv_item*>{b});
  EXPECT_EQ(a->get_children().get_count(), 0);
  EXPECT_GT(a->get_date(), before);
}

TEST(items_destroy, ignores_null) {
  qv_item::destroy(nullptr);
}

TEST(items_destroy, a_source_that_is_freed_is_forgotten) {
  qv_scene scene;
  auto* source = add_probe(&scene);
  auto* derived = add_probe(&scene);
  derived->set_source(source);
  EXPECT_EQ(derived->get_source(), source);
  qv_item::destroy(source);
  EXPECT_EQ(derived->get_source(), nullptr);

  // And the other way round: the source outlives what was made from it.
  auto* other = add_probe(&scene);
  derived->set_source(other);
  qv_item::destroy(derived);
  qv_item::destroy(other);
}

TEST(items_destroy, a_reference_set_elsewhere_is_not_cleared) {
  qv_scene scene;
  auto* holder = add_probe(&scene);
  auto* first = add_probe(&scene);
  auto* second = add_probe(&scene);
  holder->set_link(first);
  holder->set_link(second);
  const unsigned int date = holder->get_link_date();
  qv_item::destroy(first);
  EXPECT_EQ(holder->get_link(), second);
  EXPECT_EQ(holder->get_link_date(), date);
}

TEST(items_destroy, a_referring_item_may_go_first) {
  qv_scene scene;
  auto* holder = add_probe(&scene);
  auto* target = add_probe(&scene);
  holder->set_link(target);
  holder->set_links({target});
  qv_item::destroy(holder);
  qv_item::destroy(target);
  EXPECT_EQ(scene.get_items("test_probe").get_count(), 0);
}

TEST(items_destroy, a_new_item_at_an_old_address_is_not_taken_for_the_old_one) {
  qv_scene scene;
  auto* holder = add_probe(&scene);
  int recycled = 0;
  for (int round = 0; round < 1000; ++round) {
    auto* item = add_probe(&scene);
    holder->set_link(item);
    holder->set_links({item});
    ASSERT_EQ(scene.get_referrers("test_probe", "link", item).get_count(), 1);
    const void* address = item;
    qv_item::destroy(item);
    auto* fresh = add_probe(&scene);
    recycled += fresh == address;
    ASSERT_EQ(holder->get_link(), nullptr);
    ASSERT_EQ(holder->get_links().get_count(), 0);
    ASSERT_EQ(scene.get_referrers("test_probe", "link", fresh).get_count(), 0);
    ASSERT_EQ(scene.get_items("test_probe").get_count(), 2);
    ASSERT_EQ(scene.get_items("test_probe")[1], fresh);
    qv_item::destroy(fresh);
  }
  RecordProperty("recycled_addresses", recycled);
}

TEST(items_destroy, a_scene_frees_whatever_it_holds) {
  auto* scene = new qv_scene;
  auto* a = add_probe(scene);
  auto* b = add_probe(a);
  b->set_link(a);
  a->set_link(scene);
  auto* outside = new probe_item;
  outside->set_link(b);
  delete scene;
  EXPECT_EQ(outside->get_link(), nullptr);
  qv_item::destroy(outside);
}

TEST(items_destroy, an_item_may_be_destroyed_while_a_change_is_told) {
  recording_scene scene;
  auto* a = add_probe(&scene);
  auto* victim = add_probe(&scene);
  auto* holder = add_probe(&scene);
  holder->set_link(victim);
  a->when_changed = [&](qv_item*, const std::string& name) {
    if (name == "number") qv_item::destroy(victim);
  };
  a->set_number(9);
  EXPECT_EQ(holder->get_link(), nullptr);
  EXPECT_EQ(scene.get_items("test_probe").get_count(), 2);
}

}  // namespace
