#include "app/study/qv_orientation.h"

#include <cmath>
#include <cstddef>

namespace qv {

const char* qv_orientation_name(qv_orientation orientation) {
  constexpr std::array<const char*, 4> names = {"north", "east", "south", "west"};
  return names[static_cast<std::size_t>(orientation)];
}

std::optional<qv_orientation> qv_orientation_of(std::optional<double> azimuth) {
  if (!azimuth || !std::isfinite(*azimuth)) return std::nullopt;
  constexpr double quarter = 90.0;
  double turned = std::fmod(*azimuth + quarter / 2, 4 * quarter);
  if (turned < 0) turned += 4 * quarter;
  // A hair under a whole turn rounds up to one.
  return static_cast<qv_orientation>(static_cast<int>(turned / quarter) % 4);
}

}  // namespace qv
