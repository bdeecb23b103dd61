#include <gtest/gtest.h>

#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"

using namespace qv;
using qv_test::derived_probe_item;
using qv_test::probe_item;
using qv_test::recording_scene;

namespace {

using items = std::vector<qv_item*>;

bool similar(qv_item& a, qv_item& b, bool compare_names = false) {
  const bool result = a.is_similar_to(&b, compare_names);
  EXPECT_EQ(b.is_similar_to(&a, compare_names), result) << "not symmetric";
  return result;
}

TEST(items_similarity, equal_values_of_one_type_are_similar) {
  probe_item a;
  probe_item b;
  EXPECT_TRUE(similar(a, b));
  EXPECT_TRUE(similar(a, a));
  EXPECT_FALSE(a.is_similar_to(nullptr, false));
}

TEST(items_similarity, a_derived_type_is_another_type) {
  probe_item a;
  derived_probe_item b;
  EXPECT_FALSE(similar(a, b));
}

TEST(items_similarity, names_count_when_asked) {
  probe_item a;
  probe_item b;
  a.set_name("a");
  EXPECT_TRUE(similar(a, b, false));
  EXPECT_FALSE(similar(a, b, true));
  b.set_name("a");
  EXPECT_TRUE(similar(a, b, true));
}

TEST(items_similarity, each_parameter_counts) {
  const std::vector<void (*)(probe_item&)> changes = {
      [](probe_item& i) { i.set_number(1.50001f); },
      [](probe_item& i) { i.set_count(8); },
      [](probe_item& i) { i.set_flag(false); },
      [](probe_item& i) { i.set_phase(probe_item::phase::solid); },
      [](probe_item& i) { i.set_text("ab"); },
      [](probe_item& i) {
        i.set_point({1, 2, 3.5f});
      },
      [](probe_item& i) {
        i.set_color({0, 0, 0, 0});
      },
      [](probe_item& i) {
        i.set_matrix(qv_matrix::scaling({2, 1, 1}));
      },
      [](probe_item& i) { i.set_link(&i); },
      [](probe_item& i) { i.set_links({&i}); },
      [](probe_item& i) { i.set_numbers({1}); },
      [](probe_item& i) { i.set_counts({1}); },
      [](probe_item& i) { i.set_sizes({1u}); },
      [](probe_item& i) { i.set_phases({probe_item::phase::solid}); },
      [](probe_item& i) { i.set_texts({""}); },
      [](probe_item& i) {
        i.set_points({{0, 0, 0}});
      },
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    probe_item a;
    probe_item b;
    changes[i](b);
    EXPECT_FALSE(similar(a, b)) << "change " << i;
  }
}

TEST(items_similarity, a_declared_tolerance_is_included) {
  probe_item a;
  probe_item b;
  b.set_roughly(0.5f);
  EXPECT_TRUE(similar(a, b));
  b.set_roughly(0.5000001f);
  EXPECT_FALSE(similar(a, b));
  a.set_roughly(1.0f);
  EXPECT_TRUE(similar(a, b));
}

TEST(items_similarity, a_parameter_left_out_does_not_count) {
  probe_item a;
  probe_item b;
  b.set_ignored(1000);
  EXPECT_TRUE(similar(a, b));
}

// --- insertion without duplication ---

TEST(items_insertion, returns_the_similar_item_that_the_scene_holds) {
  recording_scene scene;
  auto* present = new probe_item;
  scene.add_child(present, -1);
  auto* candidate = new probe_item;
  scene.forget();
  EXPECT_EQ(scene.insert_without_duplication(candidate, false, false), present);
  EXPECT_EQ(candidate->get_parent(), nullptr);
  EXPECT_TRUE(scene.added.empty());
  qv_item::destroy(candidate);
}

TEST(items_insertion, inserts_an_item_that_has_no_like) {
  recording_scene scene;
  auto* present = new probe_item;
  auto* parent = new probe_item;
  scene.add_child(present, -1);
  auto* candidate = new derived_probe_item;
  parent->add_child(candidate, -1);
  EXPECT_EQ(scene.insert_without_duplication(candidate, false, false), candidate);
  EXPECT_EQ(candidate->get_parent(), &scene);
  EXPECT_EQ(parent->get_children().get_count(), 0);
  EXPECT_EQ(qv_test::to_vector(scene.get_children()), (items{present, candidate}));
  qv_item::destroy(parent);
}

TEST(items_insertion, compares_names_when_asked) {
  recording_scene scene;
  auto* present = new probe_item;
  present->set_name("present");
  scene.add_child(present, -1);
  auto* candidate = new probe_item;
  candidate->set_name("candidate");
  EXPECT_EQ(scene.insert_without_duplication(candidate, false, false), present);
  EXPECT_EQ(scene.insert_without_duplication(candidate, true, false), candidate);
  EXPECT_EQ(candidate->get_scene(), &scene);
}

TEST(items_insertion, an_item_of_the_scene_is_found_again) {
  recording_scene scene;
  auto* present = new probe_item;
  scene.add_child(present, -1);
  scene.forget();
  EXPECT_EQ(scene.insert_without_duplication(present, true, true), present);
  EXPECT_EQ(scene.get_children().get_count(), 1);
  EXPECT_TRUE(scene.changed.empty());
}

TEST(items_insertion, finds_a_like_at_any_depth) {
  recording_scene scene;
  auto* folder = new derived_probe_item;
  auto* present = new probe_item;
  folder->add_child(present, -1);
  scene.add_child(folder, -1);
  auto* candidate = new probe_item;
  EXPECT_EQ(scene.insert_without_duplication(candidate, false, false), present);
  qv_item::destroy(candidate);
}

TEST(items_insertion, brings_what_the_item_refers_to) {
  recording_scene scene;
  auto* candidate = new probe_item;
  auto* linked = new probe_item;
  linked->set_number(5);
  candidate->set_link(linked);
  EXPECT_EQ(scene.insert_without_duplication(candidate, true, false), candidate);
  EXPECT_EQ(linked->get_scene(), &scene);
  EXPECT_EQ(candidate->get_link(), linked);
}

TEST(items_insertion, references_follow_to_what_the_scene_holds_already) {
  recording_scene scene;
  auto* held = new probe_item;
  held->set_number(5);
  scene.add_child(held, -1);
  auto* candidate = new probe_item;
  auto* like_held = new probe_item;
  auto* unlike = new probe_item;
  like_held->set_number(5);
  unlike->set_number(6);
  candidate->set_link(like_held);
  candidate->set_links({unlike, like_held});
  scene.forget();
  EXPECT_EQ(scene.insert_without_duplication(candidate, false, false), candidate);
  EXPECT_EQ(candidate->get_link(), held);
  EXPECT_EQ(candidate->get_links(), (qv_list<qv_item*>{unlike, held}));
  EXPECT_EQ(unlike->get_scene(), &scene);
  EXPECT_EQ(like_held->get_scene(), nullptr);
  EXPECT_TRUE(scene.announced.empty());
  qv_item::destroy(like_held);
}

TEST(items_insertion, announces_changes_of_references_when_asked) {
  recording_scene scene;
  auto* held = new probe_item;
  held->set_number(5);
  scene.add_child(held, -1);
  auto* candidate = new probe_item;
  auto* like_held = new probe_item;
  like_held->set_number(5);
  candidate->set_link(like_held);
  scene.insert_without_duplication(candidate, false, true);
  EXPECT_EQ(scene.announced, (std::vector<qv_test::notification>{{candidate, "link"}}));
  qv_item::destroy(like_held);
}

TEST(items_insertion, survives_items_that_refer_to_each_other) {
  recording_scene scene;
  auto* a = new probe_item;
  auto* b = new probe_item;
  a->set_link(b);
  b->set_link(a);
  b->set_number(3);
  EXPECT_EQ(scene.insert_without_duplication(a, true, false), a);
  EXPECT_EQ(b->get_scene(), &scene);
  EXPECT_EQ(a->get_link(), b);
  EXPECT_EQ(b->get_link(), a);
}

}  // namespace
