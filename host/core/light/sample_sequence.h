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

/// Uniform in [0, 1), a multiple of 2⁻²⁴.
constexpr float to_unit(std::uint32_t bits) {
  return static_cast<float>(bits >> 8) * 0x1p-24f;
}

/// Point `index` of a low-discrepancy sequence in four dimensions: Sobol's, with Owen's nested
/// uniform scrambling. Sequences of different seeds are independent, each point by itself is
/// uniform over the unit cube, and the first 2^k points of a sequence fill it evenly.
///
/// Sobol' directions: S. Joe, F. Y. Kuo, Constructing Sobol sequences with better two-dimensional
/// projections, 2008, first four dimensions. Scrambling by a hash: S. Laine, T. Karras, Stratified
/// sampling for stochastic transparency, 2011; B. Burley, Practical hash-based Owen scrambling,
/// 2020.
std::array<float, 4> get_sequence_point(std::uint32_t index, std::uint32_t seed);

/// The same with the points in an order of the seed's own, so that the coordinates of several
/// sequences may be put side by side to make points of more dimensions.
std::array<float, 4> get_shuffled_sequence_point(std::uint32_t index, std::uint32_t seed);

}  // namespace qv::light
