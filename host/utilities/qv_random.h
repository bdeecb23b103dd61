#pragma once

#include <cstdint>

#include "utilities/qv_3dvector.h"

namespace qv {

/// Pseudo-random numbers, the same on every machine for the same seed.
///
/// Generator and mappings are written out here and do not depend on the standard library's
/// distributions, which differ between implementations: PCG-XSH-RR with 64 bits of state (M. E.
/// O'Neill, PCG: A Family of Simple Fast Space-Efficient Statistically Good Algorithms for Random
/// Number Generation, 2014), seeded by the whole of `seed`, so that neighbouring seeds give
/// unrelated numbers.
class qv_random {
 public:
  explicit qv_random(int seed);
  virtual ~qv_random();

  /// Uniform over all 32-bit values.
  std::uint32_t dice();
  /// Uniform in [0, 1), a multiple of 2⁻²⁴.
  float dice_float();
  /// Uniform in [0, 1), with 53 random bits.
  double dice_double();
  /// A direction of unit length, uniform over the sphere.
  qv_3dvector dice_vector();

 private:
  std::uint64_t state_;
};

}  // namespace qv
