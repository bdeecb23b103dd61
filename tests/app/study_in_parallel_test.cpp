#include "app/study/qv_in_parallel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

TEST(qv_in_parallel, hands_out_every_number_once) {
  for (unsigned int threads : {0u, 1u, 2u, 7u, 64u}) {
    std::vector<std::atomic<int>> calls(50);
    EXPECT_TRUE(qv::qv_in_parallel(calls.size(), threads, [&](std::size_t i) {
      ++calls[i];
      return true;
    }));
    for (const auto& count : calls) EXPECT_EQ(count, 1);
  }
}

TEST(qv_in_parallel, does_nothing_for_no_number) {
  EXPECT_TRUE(
      qv::qv_in_parallel(0, 4, [](std::size_t) -> bool { throw std::logic_error("called"); }));
}

TEST(qv_in_parallel, works_with_as_many_threads_as_asked_for) {
  // Each waits for the others: with fewer threads it would never end.
  std::barrier together(3);
  EXPECT_TRUE(qv::qv_in_parallel(3, 3, [&](std::size_t) {
    together.arrive_and_wait();
    return true;
  }));
}

TEST(qv_in_parallel, works_on_the_thread_that_called_it_when_it_is_the_only_one) {
  std::set<std::thread::id> seen;
  qv::qv_in_parallel(5, 1, [&](std::size_t) {
    seen.insert(std::this_thread::get_id());
    return true;
  });
  EXPECT_EQ(seen, std::set{std::this_thread::get_id()});
}

TEST(qv_in_parallel, hands_out_no_more_once_told_to_stop) {
  int calls = 0;
  EXPECT_FALSE(qv::qv_in_parallel(100, 1, [&](std::size_t) { return ++calls < 4; }));
  EXPECT_EQ(calls, 4);
}

TEST(qv_in_parallel, throws_what_was_thrown) {
  std::atomic<int> calls{0};
  EXPECT_THROW(qv::qv_in_parallel(1000, 3,
                                  [&](std::size_t i) {
                                    ++calls;
                                    if (i == 2) throw std::out_of_range("two");
                                    return true;
                                  }),
               std::out_of_range);
  EXPECT_GE(calls, 3);
}
