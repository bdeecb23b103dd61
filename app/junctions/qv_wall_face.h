#pragma once

#include <vector>

#include "app/junctions/qv_junction_finder.h"
#include "core/shapes/qv_box_tree.h"

namespace qv {

/// The plane region that a wall's outline encloses, for finding what lies in it.
class qv_wall_face {
 public:
  explicit qv_wall_face(const qv_wall_outline& outline);

  /// False for an outline that encloses nothing or has coordinates that are not finite.
  bool has_area() const { return has_area_; }
  /// Unit normal about which the outer contours run counter-clockwise; zero without area.
  const qv_double3& get_normal() const { return normal_; }
  /// Around all corners; without area the origin alone.
  const qv_double_box& get_box() const { return box_; }

  /// Shares of the segment, from 0 at `from` to 1 at `to`, at which it enters and leaves the region
  /// by turns, ascending: an even number of them. The segment counts where it runs within `gap` of
  /// the plane; one whose angle with the plane has a sine above `largest_sine` only pierces it and
  /// yields none.
  void find_crossings(const qv_double3& from, const qv_double3& to, double gap, double largest_sine,
                      std::vector<double>& crossings) const;

  /// How far the middle of the corners lies from `place` in `direction`, m; the sign tells on which
  /// side more of the wall is.
  double get_lean(const qv_double3& place, const qv_double3& direction) const;

 private:
  struct flat_point {
    double u, v;
  };

  flat_point flatten(const qv_double3& p) const;

  bool has_area_ = false;
  qv_double3 normal_;
  qv_double3 point_;
  qv_double3 axis_u_;
  qv_double3 axis_v_;
  qv_double3 middle_;
  qv_double_box box_;
  std::vector<std::vector<flat_point>> contours_;
};

}  // namespace qv
