#pragma once

#include <memory>
#include <span>
#include <string>

#include "app/pictures/qv_camera.h"
#include "app/pictures/qv_pixels.h"
#include "utilities/qv_color.h"

namespace qv {

/// How text is written.
struct qv_text_style {
  double size = 12;  // height of a line of capitals and descenders, px
  bool bold = false;
  /// px; longer text ends in "…". 0: as wide as it is.
  double widest = 0;
};

struct qv_text_size {
  double width = 0;
  double height = 0;
};

/// A picture on which lines, areas and text are drawn with smooth edges, in pixels from its upper
/// left corner.
///
/// Any text will do: bytes that are no UTF-8 become "�", control codes spaces, scripts that run
/// from right to left do so; it stays on one line.
class qv_canvas {
 public:
  explicit qv_canvas(const qv_pixels& picture);
  qv_canvas(const qv_canvas&) = delete;
  qv_canvas& operator=(const qv_canvas&) = delete;
  ~qv_canvas();

  void fill(std::span<const qv_pixel_point> polygon, const qv_color& color);
  /// A line of `width` px through the points, closed when asked for.
  void stroke(std::span<const qv_pixel_point> points, bool closed, double width,
              const qv_color& color);
  /// A bar whose colour runs upwards through the colours given, evenly spaced.
  void fill_gradient(const qv_pixel_box& box, std::span<const qv_color> upwards);

  qv_text_size measure(const std::string& text, const qv_text_style& style) const;
  /// Writes with the upper left corner of the text at `corner`, over a pale seam that sets it off
  /// from what lies below when `seam`.
  void write(const std::string& text, const qv_pixel_point& corner, const qv_text_style& style,
             bool seam = false);

  qv_pixels get_pixels() const;

 private:
  struct drawing;
  std::unique_ptr<drawing> drawing_;
};

/// The picture as a PNG file.
std::string qv_encode_png(const qv_pixels& picture);

}  // namespace qv
