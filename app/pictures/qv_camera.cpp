#include "app/pictures/qv_camera.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace qv {
namespace {

constexpr double degree = std::numbers::pi / 180;

// Of the slanted views: from the south-west, as high as makes the three axes equally long.
constexpr double slanted_azimuth = 225;
const double isometric_height = std::atan(std::numbers::sqrt2 / 2) / degree;  // 35.26°
// Lower, since perspective makes heights shrink towards the top.
constexpr double perspective_height = 28;
// Tangent of half the opening angle across the room's shorter side.
const double perspective_tangent = std::tan(17.5 * degree);

// Seen across when the model is a point, m.
constexpr double least_extent = 1;
// Part of the depth range that is added at either end, so that nothing lies on its border.
constexpr double depth_margin = 0.02;

struct viewpoint {
  double azimuth;  // of the viewer, degrees clockwise from the model's +Y
  double height;   // degrees above the horizon
};

viewpoint viewpoint_of(qv_picture_view view) {
  switch (view) {
    case qv_picture_view::iso:
      return {slanted_azimuth, isometric_height};
    case qv_picture_view::perspective:
      return {slanted_azimuth, perspective_height};
    case qv_picture_view::north:
      return {0, 0};
    case qv_picture_view::east:
      return {90, 0};
    case qv_picture_view::south:
      return {180, 0};
    case qv_picture_view::west:
      return {270, 0};
    case qv_picture_view::plan:
      return {180, 90};
  }
  return {0, 0};
}

// Lowest and highest value, of finite points in the picture's axes.
struct extent {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void add(double value) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
  double size() const { return high - low; }
  double middle() const { return low + size() / 2; }
};

bool is_finite(const qv_double3& point) {
  return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

// Angles of the four quarters are exact, so that level and upright faces stay so.
double exact_sine(double degrees) {
  const double quarters = degrees / 90;
  if (quarters == std::floor(quarters)) {
    constexpr double sines[] = {0, 1, 0, -1};
    return sines[static_cast<std::size_t>(std::fmod(std::fmod(quarters, 4) + 4, 4))];
  }
  return std::sin(degrees * degree);
}

double exact_cosine(double degrees) {
  return exact_sine(degrees + 90);
}

}  // namespace

qv_camera::qv_camera(qv_picture_view view, double azimuth) : view_(view) {
  const viewpoint from = viewpoint_of(view);
  const double around = from.azimuth + azimuth;
  const qv_double3 horizontal(exact_sine(around), exact_cosine(around), 0);
  const double level = exact_cosine(from.height);
  const double rise = exact_sine(from.height);
  toward_ = horizontal * level + qv_double3(0, 0, rise);
  right_ = {-horizontal.y, horizontal.x, 0};
  up_ = horizontal * -rise + qv_double3(0, 0, level);
}

void qv_camera::fit(std::span<const qv_double3> points, int width, int height,
                    const qv_pixel_box& room) {
  width_ = width;
  height_ = height;
  middle_ = {room.left + room.width / 2, room.top + room.height / 2};
  extent across;
  extent upwards;
  extent depth;
  for (const qv_double3& point : points) {
    if (!is_finite(point)) continue;
    across.add(right_.dot(point));
    upwards.add(up_.dot(point));
    depth.add(toward_.dot(point));
  }
  if (!(across.size() >= 0)) {
    for (extent* one : {&across, &upwards, &depth}) one->add(0);
  }
  target_ = right_ * across.middle() + up_ * upwards.middle() + toward_ * depth.middle();

  const double thickness = std::max(depth.size(), least_extent);
  nearest_ = thickness * (0.5 + depth_margin);
  farthest_ = -nearest_;
  double extent_across = across.size();
  double extent_upwards = upwards.size();
  if (extent_across <= 0 && extent_upwards <= 0) extent_across = extent_upwards = least_extent;
  scale_ = std::min(extent_across > 0 ? room.width / extent_across : room.height / extent_upwards,
                    extent_upwards > 0 ? room.height / extent_upwards : room.width / extent_across);
  if (!is_perspective()) return;

  // Nearer points spread wider, so that the middle of the model is not that of its picture: some
  // rounds of stepping aside and away settle both.
  const double shorter = std::min(room.width, room.height);
  const qv_pixel_point tangents{perspective_tangent * room.width / shorter,
                                perspective_tangent * room.height / shorter};
  double least_distance = thickness / 2 * (1 + 4 * depth_margin);
  if (std::max(across.size(), upwards.size()) <= 0)
    least_distance = std::max(least_distance, least_extent / perspective_tangent);
  constexpr int round_count = 6;
  for (int round = 0; round < round_count; ++round) {
    step_away(points, tangents, least_distance);
    if (round + 1 < round_count) step_aside(points);
  }
  scale_ = shorter / 2 / (perspective_tangent * distance_);
}

// Far enough that no point lies outside of the opening with these tangents.
void qv_camera::step_away(std::span<const qv_double3> points, const qv_pixel_point& tangents,
                          double least_distance) {
  distance_ = least_distance;
  for (const qv_double3& point : points) {
    if (!is_finite(point)) continue;
    const qv_double3 from_target = point - target_;
    const double nearness = toward_.dot(from_target);
    distance_ = std::max({distance_, nearness + std::abs(right_.dot(from_target)) / tangents.x,
                          nearness + std::abs(up_.dot(from_target)) / tangents.y});
  }
}

// Brings the target to the middle of what is seen.
void qv_camera::step_aside(std::span<const qv_double3> points) {
  extent across;
  extent upwards;
  for (const qv_double3& point : points) {
    if (!is_finite(point)) continue;
    const qv_double3 from_target = point - target_;
    const double shrinking = distance_ / (distance_ - toward_.dot(from_target));
    across.add(right_.dot(from_target) * shrinking);
    upwards.add(up_.dot(from_target) * shrinking);
  }
  if (!(across.size() >= 0) || !std::isfinite(across.size() + upwards.size())) return;
  target_ = target_ + right_ * across.middle() + up_ * upwards.middle();
}

qv_pixel_point qv_camera::project(const qv_double3& point) const {
  const qv_double3 from_target = point - target_;
  double scale = scale_;
  if (is_perspective()) scale *= distance_ / (distance_ - toward_.dot(from_target));
  return {middle_.x + scale * right_.dot(from_target), middle_.y - scale * up_.dot(from_target)};
}

qv_camera::matrix qv_camera::get_projection() const {
  // Pixels of the room's middle to OpenGL's −1 … 1 across the picture.
  const double shift_x = 2 * middle_.x / width_ - 1;
  const double shift_y = 1 - 2 * middle_.y / height_;
  const double scale_x = 2 * scale_ / width_;
  const double scale_y = 2 * scale_ / height_;
  const double range = nearest_ - farthest_;
  if (!is_perspective()) {
    return {scale_x, 0, 0, 0, 0, scale_y, 0, 0, 0, 0, -2 / range, 0, shift_x, shift_y, 0, 1};
  }
  const double near = std::max(distance_ - nearest_, distance_ * 0.01);
  const double far = distance_ - farthest_;
  const double d = distance_;
  return {scale_x * d,
          0,
          0,
          0,
          0,
          scale_y * d,
          0,
          0,
          -shift_x,
          -shift_y,
          -(far + near) / (far - near),
          -1,
          0,
          0,
          -2 * far * near / (far - near),
          0};
}

qv_camera::matrix qv_camera::get_placing() const {
  const double back = is_perspective() ? distance_ : 0;
  return {right_.x,
          up_.x,
          toward_.x,
          0,
          right_.y,
          up_.y,
          toward_.y,
          0,
          right_.z,
          up_.z,
          toward_.z,
          0,
          -right_.dot(target_),
          -up_.dot(target_),
          -toward_.dot(target_) - back,
          1};
}

}  // namespace qv
