#include "app/study/qv_in_parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace qv {

bool qv_in_parallel(std::size_t count, unsigned int threads,
                    const std::function<bool(std::size_t)>& work) {
  std::atomic<std::size_t> next{0};
  std::atomic<bool> stopped{false};
  std::exception_ptr thrown;
  std::mutex mutex;
  const auto take_turns = [&] {
    while (!stopped) {
      const std::size_t number = next++;
      if (number >= count) return;
      try {
        if (!work(number)) stopped = true;
      } catch (...) {
        const std::lock_guard guard(mutex);
        if (thrown == nullptr) thrown = std::current_exception();
        stopped = true;
      }
    }
  };

  const std::size_t wanted =
      std::min<std::size_t>(count, threads > 0 ? threads : std::thread::hardware_concurrency());
  {
    std::vector<std::jthread> helpers;
    try {
      helpers.reserve(wanted);
      while (helpers.size() + 1 < wanted) helpers.emplace_back(take_turns);
    } catch (const std::system_error&) {
      // Without a further thread the work takes longer.
    }
    take_turns();
  }
  if (thrown != nullptr) std::rethrow_exception(thrown);
  return !stopped;
}

}  // namespace qv
