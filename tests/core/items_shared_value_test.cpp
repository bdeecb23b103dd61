#include <gtest/gtest.h>

#include <random>

#include "tests/support/qv_probe_item.h"

using namespace qv;
using qv_test::probe_item;

namespace {

using texts = qv_list<std::string>;

TEST(items_shared_value, a_copied_list_is_changed_alone) {
  probe_item source;
  source.set_texts({"a", "b"});
  source.set_numbers({1, 2});
  source.set_points({{1, 2, 3}});
  source.set_text("text");
  probe_item copy;
  copy.copy_params(&source);
  copy.set_texts({"c"});
  copy.set_numbers({3});
  copy.set_points({});
  copy.set_text("");
  EXPECT_EQ(source.get_texts(), texts({"a", "b"}));
  EXPECT_EQ(source.get_numbers(), qv_list<float>({1, 2}));
  EXPECT_EQ(source.get_points().get_count(), 1);
  EXPECT_EQ(source.get_text(), "text");
  EXPECT_EQ(copy.get_texts(), texts({"c"}));
  EXPECT_EQ(copy.get_numbers(), qv_list<float>({3}));
  EXPECT_EQ(copy.get_points().get_count(), 0);
  EXPECT_EQ(copy.get_text(), "");
}

TEST(items_shared_value, equal_lists_that_were_set_apart_are_changed_alone) {
  probe_item a;
  probe_item b;
  a.set_texts({"simulation", "bim"});
  b.set_texts({"simulation", "bim"});
  a.set_texts({"bim"});
  EXPECT_EQ(b.get_texts(), texts({"simulation", "bim"}));
  EXPECT_EQ(a.get_texts(), texts({"bim"}));
}

TEST(items_shared_value, outlives_the_item_that_it_was_copied_from) {
  probe_item copy;
  {
    probe_item source;
    source.set_texts({"one", "two"});
    source.set_numbers({4, 5});
    copy.copy_params(&source);
  }
  EXPECT_EQ(copy.get_texts(), texts({"one", "two"}));
  EXPECT_EQ(copy.get_numbers(), qv_list<float>({4, 5}));
}

TEST(items_shared_value, setting_a_list_to_itself_keeps_it) {
  probe_item item;
  item.set_texts({"a", "b"});
  item.param("texts")->store_string_list(item.get_texts());
  EXPECT_EQ(item.get_texts(), texts({"a", "b"}));
  probe_item copy;
  copy.copy_params(&item);
  copy.param("texts")->store_value_of(*copy.param("texts"));
  EXPECT_EQ(copy.get_texts(), texts({"a", "b"}));
}

// Against plain values, over more different lists than are remembered.
TEST(items_shared_value, agrees_with_plain_values_under_random_stores) {
  std::mt19937 random(7);
  std::vector<probe_item> items(12);
  std::vector<texts> expected_texts(items.size());
  std::vector<qv_list<float>> expected_numbers(items.size());
  for (int step = 0; step < 5000; ++step) {
    const std::size_t i = random() % items.size();
    const std::size_t k = random() % items.size();
    switch (random() % 3) {
      case 0: {
        texts list;
        for (unsigned int n = random() % 12; n > 0; --n) list.append(std::to_string(random() % 3));
        items[i].set_texts(list);
        expected_texts[i] = list;
        break;
      }
      case 1: {
        qv_list<float> list;
        for (unsigned int n = random() % 3; n > 0; --n)
          list.append(static_cast<float>(random() % 3));
        items[i].set_numbers(list);
        expected_numbers[i] = list;
        break;
      }
      default:
        items[i].copy_params(&items[k]);
        expected_texts[i] = texts(expected_texts[k]);
        expected_numbers[i] = qv_list<float>(expected_numbers[k]);
        break;
    }
    for (std::size_t n = 0; n < items.size(); ++n) {
      ASSERT_EQ(items[n].get_texts(), expected_texts[n]) << "step " << step;
      ASSERT_EQ(items[n].get_numbers(), expected_numbers[n]) << "step " << step;
    }
  }
}

}  // namespace
