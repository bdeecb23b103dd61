#include "utilities/qv_uuid.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <random>

namespace {

std::mt19937_64 seeded_generator() {
  std::array<std::uint32_t, 16> entropy;
  try {
    std::random_device device;
    std::generate(entropy.begin(), entropy.end(), std::ref(device));
  } catch (const std::exception&) {
    // Without a source of randomness: the time and an address, which differ between processes.
    const auto now = static_cast<std::uint64_t>(
        std::chrono::high_resolution_clock::now().time_since_epoch().count());
    const auto place = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&entropy));
    entropy.fill(0);
    entropy[0] = static_cast<std::uint32_t>(now);
    entropy[1] = static_cast<std::uint32_t>(now >> 32);
    entropy[2] = static_cast<std::uint32_t>(place);
    entropy[3] = static_cast<std::uint32_t>(place >> 32);
  }
  std::seed_seq seed(entropy.begin(), entropy.end());
  return std::mt19937_64(seed);
}

std::array<std::uint64_t, 2> random_128_bits() {
  static std::mutex mutex;
  static std::mt19937_64 generator = seeded_generator();
  const std::lock_guard lock(mutex);
  const std::uint64_t high = generator();
  return {high, generator()};
}

}  // namespace

std::string qv_uuid() {
  auto [high, low] = random_128_bits();
  high = (high & ~0xf000ULL) | 0x4000ULL;                       // version 4
  low = (low & 0x3fffffffffffffffULL) | 0x8000000000000000ULL;  // variant of RFC 4122

  constexpr char digits[] = "0123456789abcdef";
  std::string text;
  text.reserve(36);
  for (int digit = 0; digit < 32; ++digit) {
    if (digit == 8 || digit == 12 || digit == 16 || digit == 20) text += '-';
    const std::uint64_t half = digit < 16 ? high : low;
    text += digits[(half >> (60 - 4 * (digit % 16))) & 0xf];
  }
  return text;
}
