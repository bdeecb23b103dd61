#pragma once

#include <array>
#include <cstdint>

namespace qv::light {

/// Well-mixed bits of `x`.
constexpr std::uint32_t mix_bits(std::uint32_t x) {
  x ^= x >> 16;
  x *= 0x7feb352du;
  x ^= x >> 15;
  x *= 0x846ca68bu;
  x ^= x >> 16;
  return x;
}

/// A seed that depends on both numbers and their order.
constexpr std::uint32_t combine_seeds(std::uint32_t seed, std::uint32_t number) {
  return mix_bits(seed ^ (mix_bits(number) + 0x9e3779b9u + (seed << 6) + (seed >> 2)));
}

/// The last bit first.
constexpr std::uint32_t reverse_bits(std::uint32_t x) {
  x = ((x >> 1) & 0x55555555u) | ((x & 0x55555555u) << 1);
  x = ((x >> 2) & 0x33333333u) | ((x & 0x33333333u) << 2);
  x = ((x >> 4) & 0x0f0f0f0fu) | ((x & 0x0f0f0f0fu) << 4);
  x = ((x >> 8) & 0x00ff00ffu) | ((x & 0x00ff00ffu) << 8);
  return (x >> 16) | (x << 16);
}

/// Uniform in [0, 1), a multiple of 2⁻²⁴.
constexpr float to_unit(std::uint32_t bits) {
  return static_cast<float>(static_cast<std::int32_t>(bits >> 8)) * 0x1p-24f;
}

/// What makes a sequence of points one's own: found once, used for every point.
struct scrambling {
  explicit constexpr scrambling(std::uint32_t seed)
      : dimensions{combine_seeds(seed, 0), combine_seeds(seed, 1), combine_seeds(seed, 2),
                   combine_seeds(seed, 3)},
        order(mix_bits(seed)) {}

  std::array<std::uint32_t, 4> dimensions;
  std::uint32_t order;
};

/// Point `index` of a low-discrepancy sequence in four dimensions: Sobol's, with Owen's nested
/// uniform scrambling. Sequences of different seeds are independent, each point by itself is
/// uniform over the unit cube, and the first 2^k points of a sequence fill it evenly.
///
/// Sobol' directions: S. Joe, F. Y. Kuo, Constructing Sobol sequences with better two-dimensional
/// projections, 2008, first four dimensions. Scrambling by a hash: S. Laine, T. Karras, Stratified
/// sampling for stochastic transparency, 2011; B. Burley, Practical hash-based Owen scrambling,
/// 2020.
std::array<float, 4> get_sequence_point(std::uint32_t index, const scrambling& by);

/// The same with the points in an order of the seed's own, so that the coordinates of several
/// sequences may be put side by side to make points of more dimensions.
std::array<float, 4> get_shuffled_sequence_point(std::uint32_t index, const scrambling& by);

/// Eight points, coordinate by coordinate.
struct sequence_points {
  static constexpr int size = 8;
  alignas(32) float coordinates[4][size];
};

/// The points that the functions above give for eight indices, in a third of the time.
void get_sequence_points(const std::uint32_t* indices, const scrambling& by,
                         sequence_points& points);
void get_shuffled_sequence_points(const std::uint32_t* indices, const scrambling& by,
                                  sequence_points& points);

}  // namespace qv::light
