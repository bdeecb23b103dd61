#include "app/pictures/qv_palette.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace qv {
namespace {

constexpr qv_color from_hex(unsigned int rgb) {
  constexpr float largest = 255.0f;
  return {static_cast<float>(rgb >> 16U & 0xffU) / largest,
          static_cast<float>(rgb >> 8U & 0xffU) / largest,
          static_cast<float>(rgb & 0xffU) / largest, 1.0f};
}

// In an order in which neighbours differ most.
constexpr std::array<unsigned int, qv_category_color_count> muted = {
    0xCC6677, 0x88CCEE, 0xDDCC77, 0x117733, 0x332288, 0xAA4499, 0x44AA99, 0x999933, 0x882255};
constexpr unsigned int pale_grey = 0xDDDDDD;

constexpr std::array<unsigned int, 11> viridis = {0x440154, 0x482576, 0x414487, 0x35608D,
                                                  0x2A788E, 0x21908C, 0x22A884, 0x43BF71,
                                                  0x7AD151, 0xBBDF27, 0xFDE725};

qv_color mix(const qv_color& from, const qv_color& to, float share) {
  return {from.r + (to.r - from.r) * share, from.g + (to.g - from.g) * share,
          from.b + (to.b - from.b) * share, from.a};
}

}  // namespace

qv_color qv_lighter(const qv_color& color, float share) {
  return mix(color, {1, 1, 1, 1}, share);
}

qv_color qv_category_color(std::size_t rank) {
  const qv_color color = from_hex(muted[rank % muted.size()]);
  switch (rank / muted.size() % 3) {
    case 1:
      return qv_lighter(color, 0.45f);
    case 2:
      return mix(color, {0, 0, 0, 1}, 0.4f);
    default:
      return color;
  }
}

qv_color qv_unknown_color() {
  return from_hex(pale_grey);
}

qv_color qv_value_color(double value) {
  const double place =
      (value > 0 ? std::min(value, 1.0) : 0.0) * static_cast<double>(viridis.size() - 1);
  const auto below = std::min(static_cast<std::size_t>(place), viridis.size() - 2);
  return mix(from_hex(viridis[below]), from_hex(viridis[below + 1]),
             static_cast<float>(place - static_cast<double>(below)));
}

qv_color qv_loss_color(double value) {
  return qv_value_color(1 - (value > 0 ? value : 0.0));
}

}  // namespace qv
