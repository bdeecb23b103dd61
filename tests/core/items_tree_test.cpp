#include <gtest/gtest.h>

#include <new>

#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"

using namespace qv;
using qv_test::derived_probe_item;
using qv_test::probe_item;
using qv_test::recording_scene;
using qv_test::to_vector;

namespace {

using items = std::vector<qv_item*>;

probe_item* add_probe(qv_item* parent, int index = -1) {
  auto* item = new probe_item;
  parent->add_child(item, index);
  return item;
}

TEST(items_tree, puts_a_child_before_the_given_position) {
  qv_scene scene;
  auto* b = add_probe(&scene);
  auto* d = add_probe(&scene);
  auto* a = add_probe(&scene, 0);
  auto* c = add_probe(&scene, 2);
  auto* e = add_probe(&scene, 100);
  auto* f = add_probe(&scene, -7);
  EXPECT_EQ(to_vector(scene.get_children()), (items{a, b, c, d, e, f}));
  for (qv_item* item : scene.get_children()) EXPECT_EQ(item->get_parent(), &scene);
}

TEST(items_tree, moves_a_child_from_its_former_parent) {
  recording_scene scene;
  auto* a = add_probe(&scene);
  auto* b = add_probe(&scene);
  auto* child = add_probe(a);
  scene.forget();
  b->add_child(child, -1);
  EXPECT_EQ(a->get_children().get_count(), 0);
  EXPECT_EQ(to_vector(b->get_children()), items{child});
  EXPECT_EQ(child->get_parent(), b);
  EXPECT_EQ(child->get_scene(), &scene);
  EXPECT_EQ(scene.removed, items{child});
  EXPECT_EQ(scene.added, items{child});
}

TEST(items_tree, moves_a_child_within_its_parent) {
  qv_scene scene;
  auto* a = add_probe(&scene);
  auto* b = add_probe(&scene);
  auto* c = add_probe(&scene);
  scene.add_child(a, -1);
  EXPECT_EQ(to_vector(scene.get_children()), (items{b, c, a}));
  scene.add_child(a, 0);
  EXPECT_EQ(to_vector(scene.get_children()), (items{a, b, c}));
}

TEST(items_tree, refuses_null_itself_and_its_ancestors) {
  recording_scene scene;
  auto* a = add_probe(&scene);
  auto* b = add_probe(a);
  auto* c = add_probe(b);
  scene.forget();
  const unsigned int date = scene.get_date();
  c->add_child(nullptr, -1);
  c->add_child(c, -1);
  c->add_child(b, -1);
  c->add_child(a, -1);
  c->add_child(&scene, -1);
  EXPECT_EQ(to_vector(scene.get_items("test_probe")), (items{a, b, c}));
  EXPECT_EQ(c->get_children().get_count(), 0);
  EXPECT_EQ(scene.get_date(), date);
  EXPECT_TRUE(scene.added.empty());
  EXPECT_TRUE(scene.removed.empty());
}

TEST(items_tree, an_item_taken_out_stays_alive_with_its_subtree) {
  recording_scene scene;
  auto* a = add_probe(&scene);
  auto* b = add_probe(a);
  scene.forget();
  a->remove();
  EXPECT_EQ(scene.removed, items{a});
  EXPECT_EQ(scene.get_children().get_count(), 0);
  EXPECT_EQ(a->get_parent(), nullptr);
  EXPECT_EQ(a->get_scene(), nullptr);
  EXPECT_EQ(b->get_scene(), nullptr);
  EXPECT_EQ(to_vector(a->get_children()), items{b});
  a->remove();  // nothing to be taken out of any more
  scene.add_child(a, -1);
  EXPECT_EQ(b->get_scene(), &scene);
  EXPECT_EQ(to_vector(scene.get_items("test_probe")), (items{a, b}));
}

TEST(items_tree, a_subtree_without_a_scene_gets_it_as_a_whole) {
  recording_scene scene;
  auto* a = new probe_item;
  auto* b = add_probe(a);
  auto* c = add_probe(b);
  EXPECT_EQ(c->get_scene(), nullptr);
  scene.add_child(a, -1);
  EXPECT_EQ(c->get_scene(), &scene);
  EXPECT_EQ(b->get_scene(), &scene);
}

TEST(items_tree, the_scene_is_an_item_and_its_own_root) {
  qv_scene scene;
  EXPECT_EQ(scene.get_parent(), nullptr);
  EXPECT_TRUE(scene.has_type("scene"));
  EXPECT_TRUE(scene.has_type("item"));
}

TEST(items_tree, collects_depth_first_with_parents_before_children) {
  qv_scene scene;
  auto* a = add_probe(&scene);
  auto* a1 = new derived_probe_item;
  a->add_child(a1, -1);
  auto* a2 = add_probe(a);
  auto* a11 = add_probe(a1);
  auto* b = new derived_probe_item;
  scene.add_child(b, -1);
  EXPECT_EQ(to_vector(a->collect("test_probe")), (items{a, a1, a11, a2}));
  EXPECT_EQ(to_vector(scene.collect("test_derived_probe")), (items{a1, b}));
  EXPECT_EQ(to_vector(a->collect("item")), (items{a, a1, a11, a2}));
  EXPECT_EQ(a->collect("no such type").get_count(), 0);
  EXPECT_EQ(qv_collect<derived_probe_item>(&scene, "test_derived_probe")[1], b);
}

TEST(items_tree, makes_an_item_for_those_who_ask_for_null_when_memory_is_short) {
  static_assert(noexcept(qv_item::operator new(1, std::nothrow)));
  qv_scene scene;
  auto* const item = new (std::nothrow) probe_item;
  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->get_param_count(), probe_item().get_param_count());
  EXPECT_EQ(item->get_text(), "abc");
  scene.add_child(item, -1);
  qv_item::destroy(item);
  EXPECT_EQ(scene.get_items("test_probe").get_count(), 0);
}

TEST(items_tree, knows_its_type_and_the_types_above_it) {
  derived_probe_item item;
  EXPECT_TRUE(item.has_type("test_derived_probe"));
  EXPECT_TRUE(item.has_type("test_probe"));
  EXPECT_TRUE(item.has_type("item"));
  EXPECT_FALSE(item.has_type("scene"));
  EXPECT_TRUE(item.has_exact_type("test_derived_probe"));
  EXPECT_FALSE(item.has_exact_type("test_probe"));
  EXPECT_EQ(item.get_item_type()->get_parent(), probe_item().get_item_type());
}

TEST(items_tree, keeps_its_identifier_unlike_any_other) {
  probe_item a;
  probe_item b;
  EXPECT_FALSE(a.has_unique_id());
  const std::string id = a.get_unique_id();
  EXPECT_TRUE(a.has_unique_id());
  EXPECT_FALSE(id.empty());
  EXPECT_EQ(a.get_unique_id(), id);
  EXPECT_NE(b.get_unique_id(), id);
  a.set_unique_id("given");
  EXPECT_EQ(a.get_unique_id(), "given");
}

// A chain of probes, made from the bottom: its top item.
qv_item* make_chain(int depth) {
  qv_item* top = new probe_item;
  for (int i = 1; i < depth; ++i) {
    auto* above = new probe_item;
    above->add_child(top, -1);
    top = above;
  }
  return top;
}

TEST(items_tree, nests_ten_thousand_deep) {
  constexpr int depth = 10000;
  qv_scene scene;
  qv_item* top = make_chain(depth);
  scene.add_child(top, -1);
  EXPECT_EQ(scene.get_items("test_probe").get_count(), depth);
  EXPECT_EQ(scene.collect("test_probe").get_count(), depth);
  EXPECT_TRUE(scene.get_bounding_box().is_empty());
  scene.precompute();
  qv_item* deepest = scene.get_items("test_probe")[depth - 1];
  deepest->set_name("deep");
  EXPECT_EQ(scene.get_date(), deepest->get_date());

  qv_item* copy = top->full_copy();
  EXPECT_EQ(copy->collect("test_probe").get_count(), depth);
  scene.add_child(copy, -1);
  EXPECT_EQ(scene.get_items("test_probe").get_count(), 2 * depth);
  top->remove();
  EXPECT_EQ(scene.get_items("test_probe").get_count(), depth);
  qv_item::destroy(top);
  qv_item::destroy(copy);
  EXPECT_EQ(scene.get_items("test_probe").get_count(), 0);
  scene.add_child(make_chain(depth), -1);
}  // the scene frees what it owns

TEST(items_tree, grows_downwards_as_well) {
  constexpr int depth = 2000;
  qv_scene scene;
  qv_item* deepest = &scene;
  for (int i = 0; i < depth; ++i) deepest = add_probe(deepest);
  EXPECT_EQ(scene.get_items("test_probe").get_count(), depth);
  EXPECT_EQ(scene.get_items("test_probe")[depth - 1], deepest);
}

TEST(items_tree, enlarges_its_box_by_what_lies_under_it) {
  class boxed_item : public probe_item {
   public:
    qv_box get_local_bounding_box() override { return box; }
    qv_box box;
  };
  qv_scene scene;
  auto* parent = new boxed_item;
  parent->box = qv_box({0, 0, 0}, {1, 1, 1});
  scene.add_child(parent, -1);
  EXPECT_EQ(parent->get_bounding_box(), qv_box({0, 0, 0}, {1, 1, 1}));
  auto* child = new boxed_item;
  child->box = qv_box({2, -1, 0}, {3, 0, 5});
  parent->add_child(child, -1);
  EXPECT_EQ(parent->get_bounding_box(), qv_box({0, -1, 0}, {3, 1, 5}));
  EXPECT_EQ(scene.get_bounding_box(), qv_box({0, -1, 0}, {3, 1, 5}));
  child->box = qv_box({0, 0, 0}, {9, 1, 1});
  child->set_count(99);  // a change under it makes the kept box stale
  EXPECT_EQ(scene.get_bounding_box(), qv_box({0, 0, 0}, {9, 1, 1}));
  child->remove();
  EXPECT_EQ(scene.get_bounding_box(), qv_box({0, 0, 0}, {1, 1, 1}));
  qv_item::destroy(child);
}

TEST(items_tree, escapes_its_name_in_its_link) {
  probe_item item;
  item.set_unique_id("id-7");
  item.set_name("Mur");
  EXPECT_EQ(item.get_html_link(), "<a href=\"item:id-7\">Mur</a>");
  item.set_name("a<b> & c");
  EXPECT_EQ(item.get_html_link(), "<a href=\"item:id-7\">a&lt;b&gt; &amp; c</a>");
  item.set_name("");
  EXPECT_EQ(item.get_html_link(), "<a href=\"item:id-7\"></a>");
}

TEST(items_tree, keeps_a_stray_quote_from_ending_the_links_address) {
  probe_item item;
  item.set_unique_id("x\"><script>");
  item.set_name("n");
  const std::string link = item.get_html_link();
  EXPECT_EQ(link.find("<script"), std::string::npos) << link;
  EXPECT_EQ(std::count(link.begin(), link.end(), '"'), 2) << link;
}

}  // namespace
