#include "core/light/sample_sequence.h"

#include "core/light/wide.h"

namespace qv::light {

namespace {

constexpr int bit_count = 32;
constexpr int dimension_count = 4;

using direction_table = std::array<std::array<std::uint32_t, bit_count>, dimension_count>;

/// Sobol' direction numbers. A dimension after the first is given by the degree and the inner
/// coefficients of its primitive polynomial and by its first direction integers.
constexpr direction_table make_directions() {
  struct dimension {
    int degree;
    std::uint32_t coefficients;
    std::array<std::uint32_t, 3> first;
  };
  constexpr dimension dimensions[dimension_count - 1] = {
      {1, 0, {1, 0, 0}}, {2, 1, {1, 3, 0}}, {3, 1, {1, 3, 1}}};

  direction_table table{};
  for (int i = 0; i < bit_count; ++i) table[0][i] = 1u << (bit_count - 1 - i);
  for (int d = 1; d < dimension_count; ++d) {
    const dimension& from = dimensions[d - 1];
    auto& v = table[d];
    for (int i = 0; i < bit_count; ++i) {
      if (i < from.degree) {
        v[i] = from.first[static_cast<std::size_t>(i)] << (bit_count - 1 - i);
        continue;
      }
      v[i] = v[i - from.degree] ^ (v[i - from.degree] >> from.degree);
      for (int k = 1; k < from.degree; ++k)
        if (((from.coefficients >> (from.degree - 1 - k)) & 1u) != 0) v[i] ^= v[i - k];
    }
  }
  return table;
}

/// The four coordinates, their bits in reverse order, for each value of each byte of an index.
struct byte_table {
  std::uint32_t bits[4][256][dimension_count] = {};
};

constexpr byte_table make_byte_table() {
  const direction_table directions = make_directions();
  byte_table table;
  for (int byte = 0; byte < 4; ++byte) {
    for (int value = 1; value < 256; ++value) {
      // One more bit than a smaller value.
      int lowest = 0;
      while (((value >> lowest) & 1) == 0) ++lowest;
      const int rest = value & (value - 1);
      for (int d = 0; d < dimension_count; ++d) {
        table.bits[byte][value][d] =
            table.bits[byte][rest][d] ^
            reverse_bits(directions[static_cast<std::size_t>(
                d)][8 * static_cast<std::size_t>(byte) + static_cast<std::size_t>(lowest)]);
      }
    }
  }
  return table;
}

constexpr byte_table bytes = make_byte_table();

/// Each bit is turned over or not by a hash of the bits above it, which here come before it.
constexpr std::uint32_t scramble_reversed(std::uint32_t x, std::uint32_t seed) {
  x ^= x * 0x3d20adeau;
  x += seed;
  x *= (seed >> 16) | 1u;
  x ^= x * 0x05526c56u;
  x ^= x * 0x53a22864u;
  return reverse_bits(x);
}

inline void find_points(const std::uint32_t* indices, const scrambling& by,
                        sequence_points& points) {
  alignas(32) std::uint32_t bits[sequence_points::size][dimension_count];
  for (int i = 0; i < sequence_points::size; ++i) {
    const std::uint32_t index = indices[i];
    const auto& lowest = bytes.bits[0][index & 255u];
    const auto& low = bytes.bits[1][(index >> 8) & 255u];
    const auto& high = bytes.bits[2][(index >> 16) & 255u];
    const auto& highest = bytes.bits[3][index >> 24];
    for (int d = 0; d < dimension_count; ++d)
      bits[i][d] = lowest[d] ^ low[d] ^ high[d] ^ highest[d];
  }
  for (std::size_t d = 0; d < dimension_count; ++d)
    for (int i = 0; i < sequence_points::size; ++i)
      points.coordinates[d][i] = to_unit(scramble_reversed(bits[i][d], by.dimensions[d]));
}

}  // namespace

std::array<float, 4> get_sequence_point(std::uint32_t index, const scrambling& by) {
  std::array<float, 4> point{};
  for (std::uint32_t d = 0; d < dimension_count; ++d) {
    const std::uint32_t bits =
        bytes.bits[0][index & 255u][d] ^ bytes.bits[1][(index >> 8) & 255u][d] ^
        bytes.bits[2][(index >> 16) & 255u][d] ^ bytes.bits[3][index >> 24][d];
    point[d] = to_unit(scramble_reversed(bits, by.dimensions[d]));
  }
  return point;
}

std::array<float, 4> get_shuffled_sequence_point(std::uint32_t index, const scrambling& by) {
  return get_sequence_point(scramble_reversed(reverse_bits(index), by.order), by);
}

QV_WIDE void get_sequence_points(const std::uint32_t* indices, const scrambling& by,
                                 sequence_points& points) {
  find_points(indices, by, points);
}

QV_WIDE void get_shuffled_sequence_points(const std::uint32_t* indices, const scrambling& by,
                                          sequence_points& points) {
  alignas(32) std::uint32_t shuffled[sequence_points::size];
  for (int i = 0; i < sequence_points::size; ++i)
    shuffled[i] = scramble_reversed(reverse_bits(indices[i]), by.order);
  find_points(shuffled, by, points);
}

}  // namespace qv::light
