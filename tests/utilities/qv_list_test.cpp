#include "utilities/qv_list.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>

#include "utilities/qv_3dvector.h"

using qv::qv_3dvector;
using qv::qv_list;

TEST(qv_list, has_the_fixed_layout_behind_its_virtual_table) {
  static_assert(std::has_virtual_destructor_v<qv_list<int>>);
  static_assert(sizeof(qv_list<int>) == sizeof(void*) + 2 * sizeof(std::int32_t) + sizeof(void*));
  qv_list<int> list{7, 8, 9};
  list.reserve(10);
  const char* const bytes = reinterpret_cast<const char*>(&list);
  std::int32_t count = 0, capacity = 0;
  const int* elements = nullptr;
  std::memcpy(&count, bytes + sizeof(void*), sizeof count);
  std::memcpy(&capacity, bytes + sizeof(void*) + sizeof count, sizeof capacity);
  std::memcpy(&elements, bytes + sizeof(void*) + 2 * sizeof count, sizeof elements);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(capacity, 10);
  EXPECT_EQ(elements, list.data());
  EXPECT_EQ(elements[2], 9);
}

TEST(qv_list, appends_in_order) {
  qv_list<int> list;
  EXPECT_TRUE(list.is_empty());
  for (int i = 0; i < 1000; ++i) list.append(i * i);
  ASSERT_EQ(list.get_count(), 1000);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(list[i], i * i);
}

TEST(qv_list, appends_its_own_element_while_it_grows) {
  qv_list<std::string> list{"a text too long to be stored in place"};
  for (int i = 0; i < 100; ++i) list.append(list[0]);
  for (const std::string& text : list) EXPECT_EQ(text, "a text too long to be stored in place");
}

TEST(qv_list, a_copy_has_a_buffer_of_its_own) {
  qv_list<std::string> list{"a", "b"};
  qv_list<std::string> copy(list);
  copy[0] = "changed";
  EXPECT_EQ(list[0], "a");
  qv_list<std::string> target{"x", "y", "z"};
  target = list;
  EXPECT_EQ(target, list);
  EXPECT_NE(target.data(), list.data());
}

TEST(qv_list, assigning_a_list_to_itself_leaves_it_unchanged) {
  qv_list<std::string> list{"a", "b"};
  const qv_list<std::string>& same = list;
  const std::string* const buffer = list.data();
  list = same;
  EXPECT_EQ(list, (qv_list<std::string>{"a", "b"}));
  EXPECT_EQ(list.data(), buffer);
  qv_list<std::string>& alias = list;
  list = std::move(alias);
  EXPECT_EQ(list, (qv_list<std::string>{"a", "b"}));
}

TEST(qv_list, moving_hands_the_buffer_over_and_leaves_an_empty_list) {
  qv_list<std::string> list{"a", "b"};
  const std::string* const buffer = list.data();
  qv_list<std::string> moved(std::move(list));
  EXPECT_EQ(moved.data(), buffer);
  EXPECT_TRUE(list.is_empty());  // NOLINT(bugprone-use-after-move): it says what is left
  list.append("again");
  EXPECT_EQ(list.get_count(), 1);
  list = std::move(moved);
  EXPECT_EQ(list.data(), buffer);
  EXPECT_TRUE(moved.is_empty());  // NOLINT(bugprone-use-after-move)
}

TEST(qv_list, equality_compares_counts_and_elements_in_order) {
  EXPECT_EQ((qv_list<int>{1, 2}), (qv_list<int>{1, 2}));
  EXPECT_FALSE((qv_list<int>{1, 2}) == (qv_list<int>{2, 1}));
  EXPECT_FALSE((qv_list<int>{1, 2}) == (qv_list<int>{1, 2, 3}));
  EXPECT_EQ(qv_list<int>(), qv_list<int>());
  qv_list<float> unknown{std::numeric_limits<float>::quiet_NaN()};
  EXPECT_FALSE(unknown == unknown);
}

TEST(qv_list, capacity_does_not_count_in_an_equality) {
  qv_list<int> roomy{1};
  roomy.reserve(100);
  EXPECT_EQ(roomy, qv_list<int>{1});
}

TEST(qv_list, resize_cuts_or_fills_up_with_default_elements) {
  qv_list<int> list{1, 2, 3};
  list.resize(1);
  list.resize(3);
  EXPECT_EQ(list, (qv_list<int>{1, 0, 0}));
  list.resize(-5);
  EXPECT_TRUE(list.is_empty());
}

TEST(qv_list, clear_frees_the_buffer) {
  qv_list<int> list{1, 2, 3};
  list.clear();
  EXPECT_EQ(list.get_count(), 0);
  EXPECT_EQ(list.get_capacity(), 0);
  EXPECT_EQ(list.data(), nullptr);
  list.append(4);
  EXPECT_EQ(list[0], 4);
}

TEST(qv_list, finds_the_first_equal_element) {
  const qv_list<qv_3dvector> list{{1, 0, 0}, {0, 1, 0}, {1, 0, 0}};
  EXPECT_EQ(list.find({1, 0, 0}), 0);
  EXPECT_EQ(list.find({0, 1, 0}), 1);
  EXPECT_EQ(list.find({0, 0, 1}), -1);
  EXPECT_TRUE(list.contains({0, 1, 0}));
}

TEST(qv_list, nests) {
  qv_list<qv_list<qv_3dvector>> lists;
  lists.append({{1, 2, 3}});
  lists.append({});
  qv_list<qv_list<qv_3dvector>> copy = lists;
  copy[0].append({4, 5, 6});
  EXPECT_EQ(lists[0].get_count(), 1);
  EXPECT_EQ(copy[0].get_count(), 2);
}

#ifndef NDEBUG
TEST(qv_list_death_test, asserts_an_index_out_of_range) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  qv_list<int> list{1, 2};
  EXPECT_DEATH(static_cast<void>(list[2]), "index");
  EXPECT_DEATH(static_cast<void>(list[-1]), "index");
  const qv_list<int> empty;
  EXPECT_DEATH(static_cast<void>(empty[0]), "index");
}
#endif
