#include <gtest/gtest.h>

#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"
#include "utilities/qv_date.h"

using namespace qv;
using qv_test::derived_probe_item;
using qv_test::notification;
using qv_test::probe_item;
using qv_test::recording_scene;

namespace {

// scene > top > middle > leaf, with a sibling of middle.
class items_dates : public ::testing::Test {
 protected:
  items_dates() {
    scene_.add_child(top_, -1);
    top_->add_child(middle_, -1);
    top_->add_child(sibling_, -1);
    middle_->add_child(leaf_, -1);
    scene_.forget();
  }
  recording_scene scene_;
  probe_item* top_ = new probe_item;
  probe_item* middle_ = new probe_item;
  probe_item* sibling_ = new probe_item;
  probe_item* leaf_ = new derived_probe_item;
};

TEST_F(items_dates, a_fresh_date_is_later_than_all_before) {
  const unsigned int first = qv_get_new_date();
  EXPECT_EQ(qv_get_date(), first);
  EXPECT_EQ(qv_get_date(), first);
  EXPECT_GT(qv_get_new_date(), first);
}

TEST_F(items_dates, a_new_item_bears_the_date_of_its_construction) {
  const unsigned int before = qv_get_date();
  probe_item item;
  EXPECT_GT(item.get_date(), 0u);
  EXPECT_GE(item.get_date(), before);
  EXPECT_LE(item.get_date(), qv_get_date());
}

TEST_F(items_dates, a_change_stamps_the_item_and_its_ancestors) {
  const unsigned int sibling = sibling_->get_date();
  const unsigned int before = qv_get_date();
  middle_->set_number(8);
  const unsigned int date = middle_->get_number_date();
  EXPECT_GT(date, before);
  EXPECT_EQ(middle_->get_date(), date);
  EXPECT_EQ(top_->get_date(), date);
  EXPECT_EQ(scene_.get_date(), date);
  EXPECT_LE(leaf_->get_date(), before);
  EXPECT_EQ(sibling_->get_date(), sibling);
}

TEST_F(items_dates, the_local_date_knows_nothing_of_the_children) {
  const unsigned int local = middle_->get_local_date();
  leaf_->set_number(8);
  EXPECT_EQ(middle_->get_local_date(), local);
  EXPECT_GT(middle_->get_date(), local);
  EXPECT_EQ(leaf_->get_local_date(), leaf_->get_number_date());
}

TEST_F(items_dates, arrivals_and_departures_stamp_the_ancestors) {
  unsigned int before = qv_get_date();
  leaf_->remove();
  EXPECT_GT(middle_->get_date(), before);
  EXPECT_GT(scene_.get_date(), before);
  before = qv_get_date();
  sibling_->add_child(leaf_, -1);
  EXPECT_GT(sibling_->get_date(), before);
  EXPECT_GT(top_->get_date(), before);
  EXPECT_GT(scene_.get_date(), before);
}

TEST_F(items_dates, a_change_bubbles_from_the_item_up_to_the_scene) {
  std::vector<std::pair<qv_item*, notification>> heard;
  for (probe_item* item : {top_, middle_, sibling_, leaf_})
    item->when_changed = [&heard, item](qv_item* changed, const std::string& name) {
      heard.push_back({item, {changed, name}});
    };
  leaf_->set_count(12);
  ASSERT_EQ(heard.size(), 3u);
  const probe_item* order[] = {leaf_, middle_, top_};
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(heard[i].first, order[i]);
    EXPECT_EQ(heard[i].second, (notification{leaf_, "count"}));
  }
  EXPECT_EQ(scene_.changed, (std::vector<notification>{{leaf_, "count"}}));
}

TEST_F(items_dates, arrivals_and_departures_bubble_up_to_the_scene) {
  std::vector<qv_item*> added;
  std::vector<qv_item*> removed;
  middle_->when_added = [&](qv_item* item) { added.push_back(item); };
  middle_->when_removed = [&](qv_item* item) { removed.push_back(item); };
  auto* item = new probe_item;
  leaf_->add_child(item, -1);
  EXPECT_EQ(added, std::vector<qv_item*>{item});
  EXPECT_EQ(scene_.added, std::vector<qv_item*>{item});
  item->remove();
  EXPECT_EQ(removed, std::vector<qv_item*>{item});
  EXPECT_EQ(scene_.removed, std::vector<qv_item*>{item});
  qv_item::destroy(item);
}

TEST_F(items_dates, what_was_taken_out_is_heard_no_more) {
  middle_->remove();
  scene_.forget();
  const unsigned int date = scene_.get_date();
  leaf_->set_count(12);
  EXPECT_TRUE(scene_.changed.empty());
  EXPECT_EQ(scene_.get_date(), date);
  EXPECT_EQ(middle_->get_date(), leaf_->get_date());
  qv_item::destroy(middle_);
}

TEST_F(items_dates, a_new_name_is_a_change_of_the_item) {
  leaf_->set_name("leaf");
  EXPECT_EQ(scene_.changed, (std::vector<notification>{{leaf_, "name"}}));
  const unsigned int date = scene_.get_date();
  leaf_->set_name("leaf");
  EXPECT_EQ(scene_.changed.size(), 1u);
  EXPECT_EQ(scene_.get_date(), date);
}

TEST_F(items_dates, the_scene_remembers_the_last_change_of_a_type_and_parameter) {
  middle_->set_number(8);
  const unsigned int date = middle_->get_number_date();
  EXPECT_EQ(scene_.get_last_change("test_probe", "number"), date);
  EXPECT_EQ(scene_.get_last_change("test_probe", ""), date);
  EXPECT_LT(scene_.get_last_change("test_probe", "count"), date);
  EXPECT_LT(scene_.get_last_change("test_derived_probe", "number"), date);
}

TEST_F(items_dates, a_change_counts_for_the_types_above_as_well) {
  leaf_->set_number(8);
  const unsigned int date = leaf_->get_number_date();
  EXPECT_EQ(scene_.get_last_change("test_derived_probe", "number"), date);
  EXPECT_EQ(scene_.get_last_change("test_probe", "number"), date);
  EXPECT_EQ(scene_.get_last_change("item", "number"), date);
}

TEST_F(items_dates, arrival_and_departure_count_as_changes_of_every_parameter) {
  unsigned int before = qv_get_date();
  auto* item = new derived_probe_item;
  EXPECT_LE(scene_.get_last_change("test_derived_probe", "number"), before);
  sibling_->add_child(item, -1);
  for (const char* type : {"test_derived_probe", "test_probe"})
    for (const char* param : {"", "number", "text"})
      EXPECT_GT(scene_.get_last_change(type, param), before) << type << ' ' << param;

  before = qv_get_date();
  sibling_->remove();  // the item leaves with the one above it
  for (const char* type : {"test_derived_probe", "test_probe"})
    for (const char* param : {"", "number", "text"})
      EXPECT_GT(scene_.get_last_change(type, param), before) << type << ' ' << param;
  qv_item::destroy(sibling_);
}

TEST_F(items_dates, what_never_happened_has_the_date_never) {
  qv_scene empty;
  EXPECT_EQ(empty.get_last_change("test_probe", ""), 0u);
  EXPECT_EQ(empty.get_last_change("test_probe", "number"), 0u);
  EXPECT_EQ(empty.get_last_change("no such type", ""), 0u);
}

TEST_F(items_dates, scenes_do_not_mix_their_changes) {
  qv_scene other;
  auto* item = new probe_item;
  other.add_child(item, -1);
  const unsigned int before = scene_.get_last_change("test_probe", "number");
  item->set_number(77);
  EXPECT_EQ(scene_.get_last_change("test_probe", "number"), before);
  EXPECT_EQ(other.get_last_change("test_probe", "number"), item->get_number_date());
}

TEST_F(items_dates, the_item_selected_last_is_the_scenes_selected_item) {
  EXPECT_EQ(scene_.get_selected_item(), nullptr);
  leaf_->set_selected(true);
  EXPECT_TRUE(leaf_->is_selected());
  EXPECT_EQ(scene_.get_selected_item(), leaf_);
  sibling_->set_selected(true);
  EXPECT_EQ(scene_.get_selected_item(), sibling_);
  leaf_->set_selected(false);
  EXPECT_EQ(scene_.get_selected_item(), sibling_);
  sibling_->set_selected(false);
  EXPECT_EQ(scene_.get_selected_item(), nullptr);
}

TEST_F(items_dates, a_selected_item_that_leaves_is_the_scenes_selected_item_no_more) {
  leaf_->set_selected(true);
  middle_->remove();
  EXPECT_EQ(scene_.get_selected_item(), nullptr);
  qv_item::destroy(middle_);
  sibling_->set_selected(true);
  qv_item::destroy(sibling_);
  EXPECT_EQ(scene_.get_selected_item(), nullptr);
}

}  // namespace
