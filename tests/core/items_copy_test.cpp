#include <gtest/gtest.h>

#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"
#include "utilities/qv_date.h"

using namespace qv;
using qv_test::derived_probe_item;
using qv_test::notification;
using qv_test::probe_item;

namespace {

void fill(probe_item& item, qv_item* target) {
  item.set_number(2.5f);
  item.set_count(3);
  item.set_flag(false);
  item.set_phase(probe_item::phase::vapour);
  item.set_text("text");
  item.set_point({4, 5, 6});
  item.set_color({1, 1, 0, 1});
  item.set_matrix(qv_matrix::rotation(2, 30));
  item.set_link(target);
  item.set_links({target, nullptr});
  item.set_numbers({1, 2});
  item.set_counts({-1});
  item.set_sizes({4u});
  item.set_phases({probe_item::phase::solid});
  item.set_texts({"x", "y"});
  item.set_points({{1, 1, 1}});
}

TEST(items_copy, a_virtual_copy_has_the_defaults_and_the_class) {
  derived_probe_item item;
  fill(item, nullptr);
  item.set_name("name");
  auto* copy = dynamic_cast<derived_probe_item*>(item.copy());
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->get_number(), 1.5f);
  EXPECT_EQ(copy->get_text(), "abc");
  EXPECT_EQ(copy->get_numbers().get_count(), 0);
  EXPECT_NE(copy->find_param("number"), item.find_param("number"));
  EXPECT_TRUE(copy->has_exact_type("test_derived_probe"));
  qv_item::destroy(copy);
}

TEST(items_copy, takes_every_value_of_another_item) {
  probe_item source;
  auto* target = new probe_item;
  fill(source, target);
  probe_item item;
  std::vector<notification> heard;
  item.when_changed = [&](qv_item* i, const std::string& name) { heard.push_back({i, name}); };
  EXPECT_EQ(item.copy_params(&source), source.get_param_count());
  for (int i = 0; i < item.get_param_count(); ++i)
    EXPECT_TRUE(item.get_param(i)->has_same_value(*source.get_param(i)))
        << item.get_param(i)->get_name();
  // "roughly" and "ignored" are equal already: 16 of the 18 differ.
  EXPECT_EQ(heard.size(), 16u);
  heard.clear();
  const unsigned int date = qv_get_date();
  EXPECT_EQ(item.copy_params(&source), source.get_param_count());
  EXPECT_TRUE(heard.empty());
  EXPECT_EQ(qv_get_date(), date);
  qv_item::destroy(target);
}

TEST(items_copy, takes_only_what_both_have_under_name_and_kind) {
  probe_item source;
  source.set_number(9);
  source.set_count(9);
  derived_probe_item item;
  EXPECT_EQ(item.copy_params(&source), source.get_param_count());
  EXPECT_EQ(item.get_extra(), 2.0f);
  EXPECT_EQ(source.copy_params(&item), source.get_param_count());

  auto* other = new qv_item;
  other->add_param_string("number", "seven");
  other->add_param_int("count", 4);
  EXPECT_EQ(other->copy_params(&source), 1);
  EXPECT_EQ(other->find_param("number")->get_string(), "seven");
  EXPECT_EQ(other->find_param("count")->get_int(), 9);
  qv_item::destroy(other);
}

TEST(items_copy, a_full_copy_has_name_values_and_children) {
  qv_scene scene;
  auto* source = new derived_probe_item;
  auto* child = new probe_item;
  auto* grandchild = new probe_item;
  auto* stranger = new probe_item;
  scene.add_child(source, -1);
  scene.add_child(stranger, -1);
  source->add_child(child, -1);
  child->add_child(grandchild, -1);
  source->set_name("source");
  child->set_name("child");
  fill(*source, child);
  child->set_link(stranger);
  grandchild->set_links({source, stranger, child});

  auto* copy = static_cast<derived_probe_item*>(source->full_copy());
  EXPECT_TRUE(copy->has_exact_type("test_derived_probe"));
  EXPECT_EQ(copy->get_name(), "source");
  EXPECT_EQ(copy->get_source(), source);
  EXPECT_EQ(copy->get_parent(), nullptr);
  EXPECT_NE(copy->get_unique_id(), source->get_unique_id());
  EXPECT_EQ(copy->get_number(), 2.5f);
  EXPECT_EQ(copy->get_texts(), (qv_list<std::string>{"x", "y"}));
  ASSERT_EQ(copy->get_children().get_count(), 1);
  auto* child_copy = static_cast<probe_item*>(copy->get_children()[0]);
  ASSERT_EQ(child_copy->get_children().get_count(), 1);
  auto* grandchild_copy = static_cast<probe_item*>(child_copy->get_children()[0]);
  EXPECT_EQ(child_copy->get_name(), "child");
  // References within the copied subtree point into the copy, others to where they pointed.
  EXPECT_EQ(copy->get_link(), child_copy);
  EXPECT_EQ(child_copy->get_link(), stranger);
  EXPECT_EQ(grandchild_copy->get_links(), (qv_list<qv_item*>{copy, stranger, child_copy}));
  EXPECT_EQ(grandchild->get_links(), (qv_list<qv_item*>{source, stranger, child}));

  copy->set_number(77);
  EXPECT_EQ(source->get_number(), 2.5f);
  qv_item::destroy(copy);
}

// The copy constructor shares the source's parameters: the very same values from then on.
class items_copy_constructor : public ::testing::TestWithParam<bool> {
 protected:
  // Destroys source and copy in the order that is tested.
  static void destroy_both(qv_item* source, qv_item* copy) {
    qv_item::destroy(GetParam() ? source : copy);
    qv_item::destroy(GetParam() ? copy : source);
  }
};

TEST_P(items_copy_constructor, shares_the_parameter_handles) {
  auto* source = new derived_probe_item;
  auto* target = new probe_item;
  fill(*source, target);
  auto* copy = new derived_probe_item(*source);
  for (int i = 0; i < source->get_param_count(); ++i)
    EXPECT_EQ(copy->get_param(i), source->get_param(i));
  copy->set_number(12);
  EXPECT_EQ(source->get_number(), 12.0f);
  EXPECT_EQ(copy->get_item_type(), source->get_item_type());
  destroy_both(source, copy);
  qv_item::destroy(target);
}

TEST_P(items_copy_constructor, the_survivor_keeps_sound_values) {
  auto* source = new derived_probe_item;
  auto* target = new probe_item;
  fill(*source, target);
  auto* copy = new derived_probe_item(*source);
  auto* first = GetParam() ? source : copy;
  auto* survivor = GetParam() ? copy : source;
  qv_item::destroy(first);
  EXPECT_EQ(survivor->get_text(), "text");
  EXPECT_EQ(survivor->get_link(), target);
  survivor->set_text("after");
  survivor->set_links({target, target, target});
  EXPECT_EQ(survivor->get_text(), "after");
  qv_item::destroy(target);
  EXPECT_EQ(survivor->get_link(), nullptr);
  EXPECT_EQ(survivor->get_links().get_count(), 0);
  qv_item::destroy(survivor);
}

TEST_P(items_copy_constructor, stands_alone_in_the_tree) {
  qv_scene scene;
  auto* source = new derived_probe_item;
  scene.add_child(source, -1);
  source->add_child(new probe_item, -1);
  source->set_name("source");
  auto* copy = new derived_probe_item(*source);
  EXPECT_EQ(copy->get_parent(), nullptr);
  EXPECT_EQ(copy->get_scene(), nullptr);
  EXPECT_EQ(copy->get_children().get_count(), 0);
  EXPECT_EQ(source->get_children().get_count(), 1);
  destroy_both(source, copy);
  EXPECT_EQ(scene.get_items("item").get_count(), 0);
}

TEST_P(items_copy_constructor, assignment_lets_go_of_the_own_parameters) {
  auto* source = new derived_probe_item;
  fill(*source, nullptr);
  auto* copy = new derived_probe_item;
  *copy = *source;
  EXPECT_EQ(copy->find_param("number"), source->find_param("number"));
  EXPECT_EQ(copy->get_number(), 2.5f);
  const auto& same = *copy;
  *copy = same;
  EXPECT_EQ(copy->get_number(), 2.5f);
  destroy_both(source, copy);
}

TEST_P(items_copy_constructor, many_copies_of_copies_share_one_store) {
  auto* source = new derived_probe_item;
  auto* copy = new derived_probe_item(*source);
  auto* copy_of_copy = new derived_probe_item(*copy);
  copy_of_copy->set_text("shared by all three");
  EXPECT_EQ(source->get_text(), "shared by all three");
  destroy_both(source, copy);
  EXPECT_EQ(copy_of_copy->get_text(), "shared by all three");
  qv_item::destroy(copy_of_copy);
}

TEST_P(items_copy_constructor, refers_to_what_its_source_refers_to) {
  qv_scene scene;
  auto* source = new derived_probe_item;
  auto* target = new probe_item;
  scene.add_child(source, -1);
  scene.add_child(target, -1);
  source->set_link(target);
  source->set_links({target, nullptr});
  auto* copy = new derived_probe_item(*source);
  const auto get_referrers = [&](const char* param) {
    return qv_test::to_vector(scene.get_referrers("test_probe", param, target));
  };
  EXPECT_EQ(get_referrers("link"), std::vector<qv_item*>{source}) << "the copy is in no scene";
  scene.add_child(copy, 0);
  for (const char* param : {"link", "links", ""})
    EXPECT_EQ(get_referrers(param), (std::vector<qv_item*>{copy, source})) << param;
  EXPECT_TRUE(scene.get_referrers("test_probe", "number", target).is_empty());
  EXPECT_TRUE(scene.get_referrers("mesh", "", target).is_empty());

  qv_item::destroy(GetParam() ? source : copy);
  derived_probe_item* const survivor = GetParam() ? copy : source;
  EXPECT_EQ(get_referrers("link"), std::vector<qv_item*>{survivor});
  survivor->set_link(nullptr);
  EXPECT_TRUE(get_referrers("link").empty());
  EXPECT_EQ(get_referrers("links"), std::vector<qv_item*>{survivor});
  qv_item::destroy(survivor);
  EXPECT_TRUE(get_referrers("").empty());
}

TEST_P(items_copy_constructor, refers_by_assignment_too) {
  qv_scene scene;
  auto* source = new derived_probe_item;
  auto* assigned = new derived_probe_item;
  auto* target = new probe_item;
  for (qv_item* item : std::initializer_list<qv_item*>{source, assigned, target})
    scene.add_child(item, -1);
  source->set_link(target);
  *assigned = *source;
  *assigned = *source;
  const auto get_referrers = [&] {
    return qv_test::to_vector(scene.get_referrers("test_probe", "link", target));
  };
  EXPECT_EQ(get_referrers(), (std::vector<qv_item*>{source, assigned}));
  destroy_both(source, assigned);
  EXPECT_TRUE(get_referrers().empty());
}

TEST_P(items_copy_constructor, bears_the_date_of_each_change_of_a_shared_value) {
  qv_scene scene;
  auto* source = new derived_probe_item;
  auto* copy = new derived_probe_item(*source);
  auto* changed = GetParam() ? source : copy;
  auto* other = GetParam() ? copy : source;
  scene.add_child(other, -1);
  std::vector<notification> heard;
  other->when_changed = [&](qv_item* i, const std::string& name) { heard.push_back({i, name}); };
  changed->set_number(33);
  EXPECT_EQ(other->get_number(), 33.0f);
  const unsigned int date = other->get_number_date();
  EXPECT_EQ(date, qv_get_date());
  EXPECT_EQ(other->get_local_date(), date);
  EXPECT_EQ(other->get_date(), date);
  EXPECT_EQ(scene.get_date(), date);
  EXPECT_EQ(scene.get_last_change("test_probe", "number"), date);
  EXPECT_TRUE(heard.empty()) << "it was set through the other one";
  changed->set_name("its own");
  EXPECT_EQ(other->get_date(), date) << "names are not shared";
  destroy_both(source, copy);
}

INSTANTIATE_TEST_SUITE_P(in_either_order, items_copy_constructor, ::testing::Bool(),
                         [](const auto& order) {
                           return order.param ? "source_first" : "copy_first";
                         });

}  // namespace
