#pragma once

#include <array>
#include <optional>
#include <span>

#include "core/shapes/qv_double3.h"

namespace qv {

/// Whence a model is seen. The quarters are those of the model's own axes: `north` shows its north
/// façades square on.
enum class qv_picture_view : int { iso, perspective, north, east, south, west, plan };

/// A rectangle of a picture, in pixels from its upper left corner.
struct qv_pixel_box {
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;
};

struct qv_pixel_point {
  double x = 0;  // to the right
  double y = 0;  // downwards
};

/// A view of a model: directions, scale and place in the picture.
///
/// Everything but `perspective` is a parallel projection. Points are in metres in the frame of the
/// geometry that is drawn.
class qv_camera {
 public:
  /// Looks along `view`; `azimuth` is that of the model's own +Y axis, in degrees clockwise from
  /// the frame's +Y.
  explicit qv_camera(qv_picture_view view, double azimuth = 0);

  /// Places the camera so that every point lies in `room`, as large as that allows, its middle in
  /// the middle (for `perspective` roughly). A picture of `width` × `height` pixels. Points that
  /// are not finite do not count; without any, or when all are one point, a metre around the point
  /// is seen.
  void fit(std::span<const qv_double3> points, int width, int height, const qv_pixel_box& room);

  bool is_perspective() const { return view_ == qv_picture_view::perspective; }
  qv_picture_view get_view() const { return view_; }
  // Unit vectors of the picture in the frame of the points.
  const qv_double3& get_right() const { return right_; }
  const qv_double3& get_up() const { return up_; }
  /// From what is seen towards the viewer.
  const qv_double3& get_toward() const { return toward_; }

  /// Pixels to a metre, at the target for `perspective`.
  double get_scale() const { return scale_; }
  /// Where a point appears.
  qv_pixel_point project(const qv_double3& point) const;
  /// How near a point is to the viewer, m along `get_toward`.
  double get_nearness(const qv_double3& point) const { return toward_.dot(point - target_); }

  using matrix = std::array<double, 16>;
  /// As OpenGL takes them, column by column.
  matrix get_projection() const;
  matrix get_placing() const;

 private:
  void step_away(std::span<const qv_double3> points, const qv_pixel_point& tangents,
                 double least_distance);
  void step_aside(std::span<const qv_double3> points);

  qv_picture_view view_;
  qv_double3 right_;
  qv_double3 up_;
  qv_double3 toward_;

  qv_double3 target_;  // seen in the middle of the room
  double scale_ = 1;
  double distance_ = 1;  // of the eye from the target, for `perspective`
  double nearest_ = 1;   // depth range along `toward_`, from the target
  double farthest_ = -1;
  int width_ = 1;
  int height_ = 1;
  qv_pixel_point middle_;  // of the room
};

}  // namespace qv
