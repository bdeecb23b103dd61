#include <gtest/gtest.h>

#include <random>

#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"
#include "utilities/qv_date.h"

using namespace qv;
using qv_test::derived_probe_item;
using qv_test::probe_item;
using qv_test::recording_scene;
using qv_test::to_vector;

namespace {

using items = std::vector<qv_item*>;

// The slow and obvious versions of what the scene answers from its indexes.
void walk(const qv_item* item, const std::string& type, items& found) {
  for (qv_item* child : item->get_children()) {
    if (child->has_type(type)) found.push_back(child);
    walk(child, type, found);
  }
}
items items_by_walking(const qv_scene& scene, const std::string& type) {
  items found;
  walk(&scene, type, found);
  return found;
}
items referrers_by_scanning(const qv_scene& scene, const std::string& type,
                            const std::string& param_name, const qv_item* target) {
  items found;
  for (qv_item* item : items_by_walking(scene, type)) {
    bool refers = false;
    for (int i = 0; i < item->get_param_count(); ++i) {
      const qv_param* param = item->get_param(i);
      if (!param_name.empty() && param->get_name() != param_name) continue;
      refers = refers || param->get_item() == target ||
               param->get_item_list().contains(const_cast<qv_item*>(target));
    }
    if (refers) found.push_back(item);
  }
  return found;
}

// Holds a scene of probes to the obvious versions while it is edited at random.
class random_edits {
 public:
  explicit random_edits(unsigned int seed) : random_(seed) {}
  ~random_edits() {
    for (qv_item* item : outside_) qv_item::destroy(item);
  }

  void edit() {
    switch (dice(9)) {
      case 0:
      case 1:
        return add();
      case 2:
        return move();
      case 3:
        return take_out();
      case 4:
        return put_back();
      case 5:
        if (dice(4) == 0) destroy();
        return;
      case 6:
        return any()->set_link(any_or_null());
      case 7: {
        qv_list<qv_item*> links;
        for (int i = dice(4); i > 0; --i) links.append(any_or_null());
        return any()->set_links(links);
      }
      default:
        return any()->set_number(static_cast<float>(dice(3)));
    }
  }
  void check() {
    for (const char* type : {"test_probe", "test_derived_probe", "item"}) {
      ASSERT_EQ(to_vector(scene_.get_items(type)), items_by_walking(scene_, type)) << type;
      for (const qv_item* target : all_)
        for (const char* param : {"link", "links", ""})
          ASSERT_EQ(to_vector(scene_.get_referrers(type, param, target)),
                    referrers_by_scanning(scene_, type, param, target))
              << type << '.' << param;
    }
  }

 private:
  int dice(int faces) { return static_cast<int>(random_() % static_cast<unsigned>(faces)); }
  probe_item* any() {
    if (all_.empty()) add();
    return all_[static_cast<std::size_t>(dice(static_cast<int>(all_.size())))];
  }
  probe_item* any_or_null() { return dice(5) == 0 ? nullptr : any(); }
  qv_item* any_parent() {
    return dice(3) == 0 || all_.empty() ? static_cast<qv_item*>(&scene_) : any();
  }
  void add() {
    probe_item* item = dice(3) == 0 ? new derived_probe_item : new probe_item;
    any_parent()->add_child(item, dice(4) - 1);
    if (item->get_parent() == nullptr) outside_.push_back(item);
    all_.push_back(item);
  }
  void move() {
    probe_item* item = any();
    any_parent()->add_child(item, dice(4) - 1);
    if (item->get_parent() != nullptr) std::erase(outside_, item);
  }
  void take_out() {
    probe_item* item = any();
    if (item->get_parent() == nullptr) return;
    item->remove();
    outside_.push_back(item);
  }
  void put_back() {
    if (outside_.empty()) return;
    qv_item* item = outside_.back();
    scene_.add_child(item, -1);
    outside_.pop_back();
  }
  void destroy() {
    probe_item* item = any();
    for (qv_item* gone : item->collect("item")) {
      std::erase(all_, gone);
      std::erase(outside_, gone);
    }
    qv_item::destroy(item);
  }

  std::mt19937 random_;
  qv_scene scene_;
  std::vector<probe_item*> all_;
  items outside_;  // roots that are in no scene
};

TEST(items_scene_index, agrees_with_a_scan_under_random_edits) {
  for (unsigned int seed = 1; seed <= 40; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    random_edits edits(seed);
    for (int step = 0; step < 150; ++step) {
      edits.edit();
      if (step % 3 == 0) edits.check();
      if (::testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST(items_scene_index, stays_right_when_it_is_asked_seldom) {
  for (unsigned int seed = 101; seed <= 120; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    random_edits edits(seed);
    for (int step = 0; step < 600; ++step) {
      edits.edit();
      if (step % 97 == 0) edits.check();
      if (::testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST(items_scene_index, counts_a_referrer_once) {
  qv_scene scene;
  auto* target = new probe_item;
  auto* holder = new probe_item;
  scene.add_child(holder, -1);
  scene.add_child(target, -1);
  holder->set_links({target, target, target});
  EXPECT_EQ(to_vector(scene.get_referrers("test_probe", "links", target)), items{holder});
  EXPECT_EQ(scene.get_referrers("test_probe", "link", target).get_count(), 0);
}

TEST(items_scene_index, finds_referrers_through_any_parameter_when_none_is_named) {
  qv_scene scene;
  auto* target = new probe_item;
  auto* by_list = new probe_item;
  auto* by_both = new probe_item;
  for (probe_item* item : {target, by_list, by_both}) scene.add_child(item, -1);
  by_both->set_link(target);
  by_both->set_links({target});
  by_list->set_links({target});
  EXPECT_EQ(to_vector(scene.get_referrers("test_probe", "", target)), (items{by_list, by_both}));
}

TEST(items_scene_index, does_not_count_referrers_outside_the_scene) {
  qv_scene scene;
  auto* target = new probe_item;
  scene.add_child(target, -1);
  probe_item outside;
  outside.set_link(target);
  EXPECT_EQ(scene.get_referrers("test_probe", "link", target).get_count(), 0);
  outside.set_link(nullptr);
}

TEST(items_scene_index, finds_referrers_to_an_item_outside_the_scene) {
  qv_scene scene;
  auto* holder = new probe_item;
  scene.add_child(holder, -1);
  probe_item target;
  holder->set_link(&target);
  EXPECT_EQ(to_vector(scene.get_referrers("test_probe", "link", &target)), items{holder});
  holder->set_link(nullptr);
}

TEST(items_scene_index, knows_no_items_of_an_unknown_type) {
  qv_scene scene;
  EXPECT_EQ(scene.get_items("no such type").get_count(), 0);
  EXPECT_EQ(scene.get_items("item").get_count(), 0);  // the scene itself is not among its items
  EXPECT_EQ(scene.get_referrers("test_probe", "link", nullptr).get_count(), 0);
}

TEST(items_scene_index, last_changes_follow_every_kind_of_edit) {
  std::mt19937 random(20261121);
  recording_scene scene;
  std::vector<probe_item*> probes;
  for (int i = 0; i < 12; ++i) {
    probes.push_back(i % 3 == 0 ? new derived_probe_item : new probe_item);
    scene.add_child(probes.back(), -1);
  }
  for (int step = 0; step < 500; ++step) {
    probe_item* item = probes[random() % probes.size()];
    const bool derived = item->has_type("test_derived_probe");
    const unsigned int before = qv_get_date();
    const int edit = static_cast<int>(random() % 3);
    if (edit == 0) item->set_number(static_cast<float>(step + 2));
    if (edit == 1) item->set_count(step + 100);
    if (edit == 2) item->set_name("n" + std::to_string(step));
    auto changed = [&](const char* type, const char* param) {
      return scene.get_last_change(type, param) > before;
    };
    ASSERT_EQ(changed("test_probe", "number"), edit == 0);
    ASSERT_EQ(changed("test_probe", "count"), edit == 1);
    ASSERT_EQ(changed("test_probe", "name"), edit == 2);
    ASSERT_TRUE(changed("test_probe", ""));
    ASSERT_EQ(changed("test_derived_probe", ""), derived);
    ASSERT_EQ(changed("test_derived_probe", "number"), derived && edit == 0);
  }
}

}  // namespace
