#include "utilities/qv_3dvector.h"

#include <numbers>

namespace qv {

namespace {

// In double precision no finite vector overflows or vanishes.
double exact_length(const qv_3dvector& v) {
  const double x = v.x, y = v.y, z = v.z;
  return std::sqrt(x * x + y * y + z * z);
}

constexpr double degrees_per_radian = 180.0 / std::numbers::pi;

}  // namespace

float qv_3dvector::normalize() {
  const double length = exact_length(*this);
  if (length > 0 && std::isfinite(length)) {
    x = static_cast<float>(x / length);
    y = static_cast<float>(y / length);
    z = static_cast<float>(z / length);
  }
  return static_cast<float>(length);
}

qv_3dvector qv_3dvector::normalized() const {
  qv_3dvector copy = *this;
  copy.normalize();
  return copy;
}

void qv_3dvector::get_angles(float& azimuth, float& tilt) const {
  azimuth = tilt = 0;
  if (!is_finite()) return;
  const double horizontal = std::hypot(static_cast<double>(x), static_cast<double>(y));
  if (horizontal == 0 && z == 0) return;
  tilt = static_cast<float>(std::atan2(horizontal, static_cast<double>(z)) * degrees_per_radian);
  if (horizontal == 0) return;
  azimuth = static_cast<float>(std::atan2(static_cast<double>(y), static_cast<double>(x)) *
                               degrees_per_radian);
  if (azimuth == -180.0f) azimuth = 180.0f;
}

}  // namespace qv
