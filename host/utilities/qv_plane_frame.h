#pragma once

#include "utilities/qv_3dvector.h"

namespace qv {

/// A right-handed orthonormal frame (u, v, normal) of a plane, in double precision.
///
/// Its axes depend on the normal alone. In a wall or a roof u is horizontal and v points up the
/// slope; in a horizontal plane (tilt below 1e-4 rad) u lies along x.
class qv_plane_frame {
 public:
  /// A zero or non-finite normal, or a non-finite point, makes an invalid frame: its coordinates
  /// mean nothing.
  qv_plane_frame(const qv_3dvector& point, const qv_3dvector& normal);

  bool is_valid() const { return valid_; }
  /// Coordinates of the projection of `p` onto the plane, relative to the frame's point.
  void to_plane(const qv_3dvector& p, double& a, double& b) const;
  /// Signed distance of `p` from the plane, m.
  double get_height(const qv_3dvector& p) const;
  /// The point of the plane with coordinates (a, b), rounded to single precision.
  qv_3dvector to_space(double a, double b) const;

 private:
  bool valid_ = false;
  double origin_[3];
  double u_[3];
  double v_[3];
  double n_[3];
};

}  // namespace qv
