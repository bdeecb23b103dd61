#include "utilities/qv_uuid.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

TEST(qv_uuid, has_the_form_of_version_4) {
  const char* const form = "[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}";
  for (int i = 0; i < 100; ++i) EXPECT_THAT(qv_uuid(), testing::MatchesRegex(form));
}

TEST(qv_uuid, is_never_given_twice_whatever_threads_ask) {
  std::set<std::string> ids;
  std::mutex mutex;
  {
    std::vector<std::jthread> workers;
    workers.reserve(8);
    for (int t = 0; t < 8; ++t)
      workers.emplace_back([&] {
        std::vector<std::string> own;
        own.reserve(2000);
        for (int i = 0; i < 2000; ++i) own.push_back(qv_uuid());
        const std::lock_guard lock(mutex);
        ids.insert(own.begin(), own.end());
      });
  }
  EXPECT_EQ(ids.size(), 8u * 2000u);
}

TEST(qv_uuid, spreads_its_digits_evenly) {
  std::array<int, 16> counts{};
  constexpr int ids = 2000;
  for (int i = 0; i < ids; ++i) {
    const std::string id = qv_uuid();
    for (const int position : {0, 7, 9, 24, 35}) {
      const char c = id[static_cast<std::size_t>(position)];
      ++counts[static_cast<std::size_t>(c <= '9' ? c - '0' : c - 'a' + 10)];
    }
  }
  // 625 of each are expected with a standard deviation of 24; six of them are never reached.
  for (const int count : counts) EXPECT_NEAR(count, ids * 5 / 16.0, 6 * 24.2);
}
