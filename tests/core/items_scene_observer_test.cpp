#include <gtest/gtest.h>

#include "core/items/qv_scene_observer.h"
#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"

using namespace qv;
using qv_test::notification;
using qv_test::probe_item;

namespace {

using items = std::vector<qv_item*>;

class recording_observer : public qv_scene_observer {
 public:
  items arrived;
  items left;
  std::vector<notification> changed;
  void item_arrived(qv_item* item) override { arrived.push_back(item); }
  void item_left(qv_item* item) override {
    // The item is still whole when it is told.
    EXPECT_NE(item->get_item_type(), nullptr);
    left.push_back(item);
  }
  void item_changed(qv_item* item, const std::string& name) override {
    changed.push_back({item, name});
  }
};

probe_item* add_probe(qv_item* parent) {
  auto* item = new probe_item;
  parent->add_child(item, -1);
  return item;
}

TEST(items_scene_observer, learns_of_what_is_already_there) {
  qv_scene scene;
  auto* a = add_probe(&scene);
  auto* b = add_probe(a);
  auto* c = add_probe(&scene);
  auto* observer = scene.get_observer<recording_observer>();
  EXPECT_EQ(observer->arrived, (items{a, b, c}));
  EXPECT_EQ(scene.get_observer<recording_observer>(), observer);
  EXPECT_EQ(observer->arrived.size(), 3u);
}

TEST(items_scene_observer, learns_of_each_item_of_a_subtree_parents_first) {
  qv_scene scene;
  auto* observer = scene.get_observer<recording_observer>();
  auto* a = new probe_item;
  auto* b = add_probe(a);
  auto* c = add_probe(b);
  EXPECT_TRUE(observer->arrived.empty());
  scene.add_child(a, -1);
  EXPECT_EQ(observer->arrived, (items{a, b, c}));
  a->remove();
  EXPECT_EQ(observer->left.size(), 3u);
  for (qv_item* item : items{a, b, c})
    EXPECT_EQ(std::count(observer->left.begin(), observer->left.end(), item), 1);
  qv_item::destroy(a);
  EXPECT_EQ(observer->left.size(), 3u);
}

TEST(items_scene_observer, learns_of_destroyed_items_and_of_the_references_they_leave) {
  qv_scene scene;
  auto* holder = add_probe(&scene);
  auto* target = add_probe(&scene);
  holder->set_link(target);
  auto* observer = scene.get_observer<recording_observer>();
  qv_item::destroy(target);
  EXPECT_EQ(observer->left, items{target});
  EXPECT_EQ(observer->changed, (std::vector<notification>{{holder, "link"}}));
}

TEST(items_scene_observer, learns_of_changes_in_the_scene_only) {
  qv_scene scene;
  auto* observer = scene.get_observer<recording_observer>();
  auto* a = add_probe(&scene);
  probe_item outside;
  a->set_number(4);
  outside.set_number(4);
  EXPECT_EQ(observer->changed, (std::vector<notification>{{a, "number"}}));
}

}  // namespace
