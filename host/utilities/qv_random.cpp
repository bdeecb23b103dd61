#include "utilities/qv_random.h"

namespace qv {

namespace {

constexpr std::uint64_t multiplier = 6364136223846793005ULL;
constexpr std::uint64_t increment = 1442695040888963407ULL;

// Spreads neighbouring seeds over all 64 bits (finaliser of SplitMix64: G. L. Steele, D. Lea and
// C. H. Flood, Fast Splittable Pseudorandom Number Generators, 2014); without it the first numbers
// of seeds 1, 2, 3, … would be evenly spaced.
std::uint64_t scrambled(std::uint64_t seed) {
  seed += 0x9e3779b97f4a7c15ULL;
  seed = (seed ^ (seed >> 30)) * 0xbf58476d1ce4e5b9ULL;
  seed = (seed ^ (seed >> 27)) * 0x94d049bb133111ebULL;
  return seed ^ (seed >> 31);
}

}  // namespace

qv_random::qv_random(int seed)
    : state_((increment + scrambled(static_cast<std::uint32_t>(seed))) * multiplier + increment) {}

qv_random::~qv_random() = default;

std::uint32_t qv_random::dice() {
  const std::uint64_t old = state_;
  state_ = old * multiplier + increment;
  const auto shifted = static_cast<std::uint32_t>(((old >> 18) ^ old) >> 27);
  const auto turn = static_cast<std::uint32_t>(old >> 59);
  return (shifted >> turn) | (shifted << ((32 - turn) & 31));
}

float qv_random::dice_float() {
  return static_cast<float>(dice() >> 8) * 0x1p-24f;
}

double qv_random::dice_double() {
  const std::uint64_t high = dice() >> 5;
  const std::uint64_t low = dice() >> 6;
  return static_cast<double>((high << 26) | low) * 0x1p-53;
}

// A point in the unit disc stands for one on the sphere (G. Marsaglia, Choosing a Point from the
// Surface of a Sphere, 1972): square roots only, which every machine rounds alike, unlike sines.
qv_3dvector qv_random::dice_vector() {
  while (true) {
    const double a = 2 * dice_double() - 1;
    const double b = 2 * dice_double() - 1;
    const double square = a * a + b * b;
    if (square >= 1) continue;
    const double stretch = 2 * std::sqrt(1 - square);
    return {static_cast<float>(a * stretch), static_cast<float>(b * stretch),
            static_cast<float>(1 - 2 * square)};
  }
}

}  // namespace qv
