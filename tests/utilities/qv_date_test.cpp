#include "utilities/qv_date.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

TEST(qv_date, every_new_date_is_later_than_the_last) {
  const unsigned int first = qv_get_new_date();
  const unsigned int second = qv_get_new_date();
  EXPECT_GT(first, 0u);
  EXPECT_GT(second, first);
}

TEST(qv_date, reading_the_date_does_not_advance_it) {
  const unsigned int latest = qv_get_new_date();
  EXPECT_EQ(qv_get_date(), latest);
  EXPECT_EQ(qv_get_date(), latest);
}

TEST(qv_date, many_threads_never_get_the_same_date) {
  constexpr int threads = 8;
  constexpr int dates_each = 20'000;
  std::vector<std::vector<unsigned int>> dates(threads);
  {
    std::vector<std::jthread> workers;
    workers.reserve(dates.size());
    for (auto& own : dates)
      workers.emplace_back([&own] {
        for (int i = 0; i < dates_each; ++i) own.push_back(qv_get_new_date());
      });
  }
  std::vector<unsigned int> all;
  for (const auto& own : dates) {
    EXPECT_TRUE(std::is_sorted(own.begin(), own.end()));
    all.insert(all.end(), own.begin(), own.end());
  }
  std::sort(all.begin(), all.end());
  EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
  EXPECT_EQ(all.back(), qv_get_date());
}
