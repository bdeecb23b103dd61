#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"
#include "utilities/qv_date.h"

using namespace qv;
using qv_test::notification;
using qv_test::probe_item;

namespace {

const float not_a_number = std::numeric_limits<float>::quiet_NaN();

// A probe that counts the notifications of itself.
class items_setter : public ::testing::Test {
 protected:
  items_setter() {
    item_->when_changed = [this](qv_item* item, const std::string& name) {
      heard_.push_back({item, name});
    };
  }
  ~items_setter() override { qv_item::destroy(item_); }

  // Runs `set` and expects one change of `name`: a fresh date, one notification of the item itself.
  template <class F>
  void expect_change(const char* name, F set) {
    const unsigned int before = qv_get_date();
    heard_.clear();
    set();
    EXPECT_GT(item_->param(name)->get_date(), before) << name;
    EXPECT_EQ(heard_, (std::vector<notification>{{item_, name}}));
  }
  // Runs `set` and expects that nothing at all happens to `name`.
  template <class F>
  void expect_silence(const char* name, F set) {
    const unsigned int date = item_->param(name)->get_date();
    const unsigned int counter = qv_get_date();
    heard_.clear();
    set();
    EXPECT_EQ(item_->param(name)->get_date(), date) << name;
    EXPECT_EQ(qv_get_date(), counter) << name << " advanced the date counter";
    EXPECT_TRUE(heard_.empty()) << name;
  }

  probe_item* item_ = new probe_item;
  std::vector<notification> heard_;
};

TEST_F(items_setter, starts_from_the_declared_defaults) {
  EXPECT_EQ(item_->get_number(), 1.5f);
  EXPECT_EQ(item_->get_count(), 7);
  EXPECT_TRUE(item_->get_flag());
  EXPECT_EQ(item_->get_phase(), probe_item::phase::liquid);
  EXPECT_EQ(item_->get_text(), "abc");
  EXPECT_EQ(item_->get_point(), qv_3dvector(1, 2, 3));
  EXPECT_EQ(item_->get_color(), qv_color(0.1f, 0.2f, 0.3f, 0.4f));
  EXPECT_EQ(item_->get_matrix(), qv_matrix());
  EXPECT_EQ(item_->get_link(), nullptr);
  EXPECT_EQ(item_->get_links().get_count(), 0);
  EXPECT_EQ(item_->get_numbers().get_count(), 0);
  EXPECT_EQ(item_->get_counts().get_count(), 0);
  EXPECT_EQ(item_->get_sizes().get_count(), 0);
  EXPECT_EQ(item_->get_phases().get_count(), 0);
  EXPECT_EQ(item_->get_texts().get_count(), 0);
  EXPECT_EQ(item_->get_points().get_count(), 0);
}

TEST_F(items_setter, declares_in_the_order_of_the_lines) {
  const std::vector<std::string> names = {
      "number", "count",   "flag",   "phase", "text",   "point", "color",  "matrix",  "link",
      "links",  "numbers", "counts", "sizes", "phases", "texts", "points", "roughly", "ignored"};
  ASSERT_EQ(item_->get_param_count(), static_cast<int>(names.size()));
  for (std::size_t i = 0; i < names.size(); ++i)
    EXPECT_EQ(item_->get_param(static_cast<int>(i))->get_name(), names[i]);
  EXPECT_EQ(item_->find_param("nowhere"), nullptr);
}

TEST_F(items_setter, stores_stamps_and_announces_a_new_value_of_every_kind) {
  qv_item* other = new probe_item;
  expect_change("number", [&] { item_->set_number(2.5f); });
  expect_change("count", [&] { item_->set_count(-8); });
  expect_change("flag", [&] { item_->set_flag(false); });
  expect_change("phase", [&] { item_->set_phase(probe_item::phase::vapour); });
  expect_change("text", [&] { item_->set_text("abd"); });
  expect_change("point", [&] { item_->set_point({1, 2, 4}); });
  expect_change("color", [&] { item_->set_color({0.1f, 0.2f, 0.3f, 0.5f}); });
  expect_change("matrix", [&] { item_->set_matrix(qv_matrix::translation({1, 0, 0})); });
  expect_change("link", [&] { item_->set_link(other); });
  expect_change("links", [&] { item_->set_links({other, nullptr}); });
  expect_change("numbers", [&] { item_->set_numbers({1, 2}); });
  expect_change("counts", [&] { item_->set_counts({1, -2}); });
  expect_change("sizes", [&] { item_->set_sizes({4u, 4000000000u}); });
  expect_change("phases", [&] { item_->set_phases({probe_item::phase::vapour}); });
  expect_change("texts", [&] { item_->set_texts({"a", ""}); });
  expect_change("points", [&] { item_->set_points({{1, 2, 3}}); });

  EXPECT_EQ(item_->get_number(), 2.5f);
  EXPECT_EQ(item_->get_count(), -8);
  EXPECT_FALSE(item_->get_flag());
  EXPECT_EQ(item_->get_phase(), probe_item::phase::vapour);
  EXPECT_EQ(item_->get_text(), "abd");
  EXPECT_EQ(item_->get_point(), qv_3dvector(1, 2, 4));
  EXPECT_EQ(item_->get_color(), qv_color(0.1f, 0.2f, 0.3f, 0.5f));
  EXPECT_EQ(item_->get_matrix(), qv_matrix::translation({1, 0, 0}));
  EXPECT_EQ(item_->get_link(), other);
  EXPECT_EQ(item_->get_links(), (qv_list<qv_item*>{other, nullptr}));
  EXPECT_EQ(item_->get_numbers(), (qv_list<float>{1, 2}));
  EXPECT_EQ(item_->get_counts(), (qv_list<int>{1, -2}));
  EXPECT_EQ(item_->get_sizes(), (qv_list<unsigned int>{4u, 4000000000u}));
  EXPECT_EQ(item_->get_phases(), (qv_list<probe_item::phase>{probe_item::phase::vapour}));
  EXPECT_EQ(item_->get_texts(), (qv_list<std::string>{"a", ""}));
  EXPECT_EQ(item_->get_points(), (qv_list<qv_3dvector>{{1, 2, 3}}));
  qv_item::destroy(other);
}

TEST_F(items_setter, does_nothing_for_an_equal_value_of_any_kind) {
  item_->set_numbers({1, 2});
  item_->set_counts({1, 2});
  item_->set_sizes({1u, 2u});
  item_->set_phases({probe_item::phase::solid, probe_item::phase::vapour});
  item_->set_texts({"a", "b"});
  item_->set_points({{1, 2, 3}, {4, 5, 6}});
  item_->set_links({item_, nullptr});
  item_->set_link(item_);
  expect_silence("number", [&] { item_->set_number(1.5f); });
  expect_silence("count", [&] { item_->set_count(7); });
  expect_silence("flag", [&] { item_->set_flag(true); });
  expect_silence("phase", [&] { item_->set_phase(probe_item::phase::liquid); });
  expect_silence("text", [&] { item_->set_text("abc"); });
  expect_silence("point", [&] { item_->set_point({1, 2, 3}); });
  expect_silence("color", [&] { item_->set_color({0.1f, 0.2f, 0.3f, 0.4f}); });
  expect_silence("matrix", [&] { item_->set_matrix(qv_matrix()); });
  expect_silence("link", [&] { item_->set_link(item_); });
  expect_silence("links", [&] { item_->set_links({item_, nullptr}); });
  expect_silence("numbers", [&] { item_->set_numbers({1, 2}); });
  expect_silence("counts", [&] { item_->set_counts({1, 2}); });
  expect_silence("sizes", [&] { item_->set_sizes({1u, 2u}); });
  expect_silence("phases", [&] {
    item_->set_phases({probe_item::phase::solid, probe_item::phase::vapour});
  });
  expect_silence("texts", [&] { item_->set_texts({"a", "b"}); });
  expect_silence("points", [&] { item_->set_points({{1, 2, 3}, {4, 5, 6}}); });
}

TEST_F(items_setter, takes_two_empty_lists_as_equal) {
  expect_silence("numbers", [&] { item_->set_numbers({}); });
  expect_silence("counts", [&] { item_->set_counts({}); });
  expect_silence("phases", [&] { item_->set_phases({}); });
  expect_silence("texts", [&] { item_->set_texts({}); });
  expect_silence("points", [&] { item_->set_points({}); });
  expect_silence("links", [&] { item_->set_links({}); });
}

TEST_F(items_setter, sees_a_list_that_differs_only_at_its_end) {
  item_->set_numbers({1, 2, 3});
  item_->set_texts({"a", "b", "c"});
  item_->set_points({{1, 2, 3}, {4, 5, 6}});
  item_->set_links({item_, item_});
  item_->set_phases({probe_item::phase::solid, probe_item::phase::solid});
  expect_change("numbers", [&] { item_->set_numbers({1, 2, 4}); });
  expect_change("numbers", [&] { item_->set_numbers({1, 2}); });
  expect_change("texts", [&] { item_->set_texts({"a", "b", "cc"}); });
  expect_change("points", [&] { item_->set_points({{1, 2, 3}, {4, 5, 7}}); });
  expect_change("links", [&] { item_->set_links({item_, nullptr}); });
  expect_change("phases", [&] {
    item_->set_phases({probe_item::phase::solid, probe_item::phase::vapour});
  });
}

TEST_F(items_setter, takes_a_nan_as_a_change_every_time) {
  for (int run = 0; run < 2; ++run) {
    expect_change("number", [&] { item_->set_number(not_a_number); });
    expect_change("point", [&] { item_->set_point({1, not_a_number, 3}); });
    expect_change("color", [&] { item_->set_color({0, 0, 0, not_a_number}); });
    expect_change("numbers", [&] { item_->set_numbers({1, not_a_number}); });
    expect_change("points", [&] { item_->set_points({{0, 0, not_a_number}}); });
  }
  // The stored NaN differs from a number as well.
  expect_change("number", [&] { item_->set_number(1.5f); });
}

TEST_F(items_setter, takes_the_two_zeros_as_equal) {
  item_->set_number(0.0f);
  expect_silence("number", [&] { item_->set_number(-0.0f); });
  item_->set_point({0, 0, 0});
  expect_silence("point", [&] { item_->set_point({-0.0f, 0, -0.0f}); });
  EXPECT_FALSE(std::signbit(item_->get_number()));
}

TEST_F(items_setter, compares_each_component_of_vectors_and_colours) {
  expect_change("point", [&] { item_->set_point({0, 2, 3}); });
  expect_change("point", [&] { item_->set_point({0, 0, 3}); });
  expect_change("point", [&] { item_->set_point({0, 0, 0}); });
  expect_change("color", [&] { item_->set_color({0, 0.2f, 0.3f, 0.4f}); });
  expect_change("color", [&] { item_->set_color({0, 0, 0.3f, 0.4f}); });
  expect_change("color", [&] { item_->set_color({0, 0, 0, 0.4f}); });
  expect_change("color", [&] { item_->set_color({0, 0, 0, 0}); });
}

TEST_F(items_setter, compares_strings_by_length_and_bytes) {
  item_->set_text(std::string("a\0b", 3));
  expect_silence("text", [&] { item_->set_text(std::string("a\0b", 3)); });
  expect_change("text", [&] { item_->set_text(std::string("a\0c", 3)); });
  expect_change("text", [&] { item_->set_text("a"); });
  EXPECT_EQ(item_->get_text().size(), 1u);
}

TEST_F(items_setter, accepts_the_very_object_that_the_parameter_holds) {
  item_->set_numbers({1, 2, 3});
  expect_silence("numbers", [&] { item_->set_numbers(item_->get_numbers()); });
  item_->set_text("a text that is too long to lie in place");
  expect_silence("text", [&] { item_->set_text(item_->get_text()); });

  // With a NaN inside, the held list differs from itself: stamped and announced, contents kept.
  item_->set_numbers({1, not_a_number, 3});
  expect_change("numbers", [&] { item_->set_numbers(item_->get_numbers()); });
  ASSERT_EQ(item_->get_numbers().get_count(), 3);
  EXPECT_EQ(item_->get_numbers()[0], 1.0f);
  EXPECT_TRUE(std::isnan(item_->get_numbers()[1]));
  EXPECT_EQ(item_->get_numbers()[2], 3.0f);
  item_->set_points({{not_a_number, 5, 6}});
  expect_change("points", [&] { item_->set_points(item_->get_points()); });
  EXPECT_EQ(item_->get_points()[0].y, 5.0f);
}

TEST_F(items_setter, gives_lists_a_buffer_of_their_own) {
  qv_list<float> numbers{1, 2};
  item_->set_numbers(numbers);
  numbers[0] = 9;
  EXPECT_EQ(item_->get_numbers()[0], 1.0f);
}

TEST_F(items_setter, announces_after_date_and_value_are_in_place) {
  const unsigned int before = qv_get_date();
  unsigned int date_seen = 0;
  float value_seen = 0;
  item_->when_changed = [&](qv_item*, const std::string&) {
    date_seen = item_->get_number_date();
    value_seen = item_->get_number();
  };
  item_->set_number(3.5f);
  EXPECT_GT(date_seen, before);
  EXPECT_EQ(value_seen, 3.5f);
}

TEST_F(items_setter, stores_a_reference_without_owning_or_checking_it) {
  probe_item* other = new probe_item;
  item_->set_link(other);
  EXPECT_EQ(other->get_parent(), nullptr);
  EXPECT_EQ(item_->get_children().get_count(), 0);
  item_->set_links({other, other});
  EXPECT_EQ(item_->get_links().get_count(), 2);
  qv_item::destroy(other);
}

}  // namespace
