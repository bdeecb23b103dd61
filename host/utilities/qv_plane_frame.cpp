#include "utilities/qv_plane_frame.h"

#include <cmath>

namespace qv {

namespace {

// A plane that leans by less (sine of its tilt) counts as horizontal: its u axis follows x instead
// of a direction that rounding decides.
constexpr double horizontal_plane = 1e-4;

void normalise(double (&v)[3]) {
  const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
  for (double& component : v) component /= length;
}

}  // namespace

qv_plane_frame::qv_plane_frame(const qv_3dvector& point, const qv_3dvector& normal)
    : origin_{point.x, point.y, point.z},
      u_{1, 0, 0},
      v_{0, 1, 0},
      n_{normal.x, normal.y, normal.z} {
  valid_ =
      point.is_finite() && normal.is_finite() && (normal.x != 0 || normal.y != 0 || normal.z != 0);
  if (!valid_) return;
  normalise(n_);
  if (std::hypot(n_[0], n_[1]) < horizontal_plane) {
    u_[0] = 1 - n_[0] * n_[0];
    u_[1] = -n_[0] * n_[1];
    u_[2] = -n_[0] * n_[2];
  } else {
    u_[0] = -n_[1];
    u_[1] = n_[0];
    u_[2] = 0;
  }
  normalise(u_);
  v_[0] = n_[1] * u_[2] - n_[2] * u_[1];
  v_[1] = n_[2] * u_[0] - n_[0] * u_[2];
  v_[2] = n_[0] * u_[1] - n_[1] * u_[0];
}

void qv_plane_frame::to_plane(const qv_3dvector& p, double& a, double& b) const {
  const double x = p.x - origin_[0], y = p.y - origin_[1], z = p.z - origin_[2];
  a = x * u_[0] + y * u_[1] + z * u_[2];
  b = x * v_[0] + y * v_[1] + z * v_[2];
}

double qv_plane_frame::get_height(const qv_3dvector& p) const {
  const double x = p.x - origin_[0], y = p.y - origin_[1], z = p.z - origin_[2];
  return x * n_[0] + y * n_[1] + z * n_[2];
}

qv_3dvector qv_plane_frame::to_space(double a, double b) const {
  return {static_cast<float>(origin_[0] + a * u_[0] + b * v_[0]),
          static_cast<float>(origin_[1] + a * u_[1] + b * v_[1]),
          static_cast<float>(origin_[2] + a * u_[2] + b * v_[2])};
}

}  // namespace qv
