#include "app/pictures/qv_picture_notes.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "app/pictures/qv_palette.h"

namespace qv {
namespace {

constexpr qv_color dark(0.13f, 0.13f, 0.13f, 1.0f);
constexpr qv_color frame_color(0.45f, 0.45f, 0.45f, 1.0f);

// Height of text as a share of the picture's smaller side, and its limits, px.
constexpr double text_share = 1.0 / 46;
constexpr double smallest_text = 7;
constexpr double largest_text = 64;
// Of the picture, in text heights or shares of its width.
constexpr double line_height = 1.65;
constexpr double key_share = 1.0 / 3;
constexpr double swatch_width = 1.5;
constexpr double swatch_height = 1.0;
constexpr double bar_width = 1.5;
constexpr double bar_height = 16;
constexpr double compass_size = 5.5;
constexpr double compass_radius = 0.33;  // of the compass's box, which has room for the letter
// Length of the axes of space in an isometric view: the square root of two thirds.
constexpr double isometric_shortening = 0.81650;
// Lowest share of the vertical in the view's direction with which a compass is an area.
constexpr double flattest_compass = 0.1;

std::vector<qv_pixel_point> corners_of(const qv_pixel_box& box) {
  return {{box.left, box.top},
          {box.left + box.width, box.top},
          {box.left + box.width, box.top + box.height},
          {box.left, box.top + box.height}};
}

std::string figure_text(double value, double step) {
  const int decimals = std::max(0, static_cast<int>(std::ceil(-std::log10(step) - 1e-9)));
  // 0.25 needs one more than 0.2.
  const double scaled = step * std::pow(10.0, decimals);
  const int more = std::abs(scaled - std::round(scaled)) > 1e-6 ? 1 : 0;
  return fmt::format("{:.{}f}", value, decimals + more);
}

std::vector<double> figures_of(const qv_picture_key::scale& scale) {
  std::vector<double> figures;
  const auto count = static_cast<int>(std::lround((scale.high - scale.low) / scale.step));
  for (int i = 0; i <= count; ++i) figures.push_back(scale.low + i * scale.step);
  return figures;
}

std::string label_of(const qv_picture_key::entry& entry) {
  return entry.label.empty() ? "–" : entry.label;
}

// Label and amount of the key's entries, in columns.
struct key_columns {
  double label = 0;
  double amount = 0;
};

key_columns measure_columns(const qv_canvas& canvas, const qv_picture_key& key, double size) {
  key_columns columns;
  for (const qv_picture_key::entry& entry : key.entries) {
    columns.label = std::max(columns.label, canvas.measure(label_of(entry), {size}).width);
    columns.amount = std::max(columns.amount, canvas.measure(entry.amount, {size}).width);
  }
  return columns;
}

double bar_figure_width(const qv_canvas& canvas, const qv_picture_key::scale& scale, double size) {
  double widest = 0;
  for (const double figure : figures_of(scale))
    widest = std::max(widest, canvas.measure("≥ " + figure_text(figure, scale.step), {size}).width);
  return widest;
}

// Draws the colour bar below `top` and returns where it ends.
double draw_bar(qv_canvas& canvas, const qv_picture_layout& layout, double top,
                const qv_picture_key::scale& scale) {
  const double size = layout.text_size;
  const double space = layout.key.top + layout.key.height - top;
  const qv_pixel_box bar{layout.key.left, top + size / 2, size * bar_width,
                         std::clamp(space - 4 * size, size, size * bar_height)};
  constexpr std::size_t color_count = 65;
  std::vector<qv_color> colors;
  for (std::size_t i = 0; i < color_count; ++i)
    colors.push_back(qv_loss_color(static_cast<double>(i) / (color_count - 1)));
  canvas.fill_gradient(bar, colors);
  canvas.stroke(corners_of(bar), true, 1, frame_color);

  double last_top = bar.top + bar.height + 2 * size;
  for (const double figure : figures_of(scale)) {
    const double share = (figure - scale.low) / (scale.high - scale.low);
    const double y = bar.top + bar.height * (1 - share);
    const double right = bar.left + bar.width;
    if (last_top - y < size) continue;  // too close to the one below
    last_top = y;
    canvas.stroke(std::array{qv_pixel_point{right, y}, qv_pixel_point{right + size * 0.3, y}},
                  false, 1, frame_color);
    const bool beyond = scale.exceeded && share > 1 - 1e-9;
    const std::string text = (beyond ? "≥ " : "") + figure_text(figure, scale.step);
    const double height = canvas.measure(text, {size}).height;
    canvas.write(text, {right + size * 0.5, y - height / 2}, {size});
  }
  return bar.top + bar.height + size;
}

void draw_entry(qv_canvas& canvas, const qv_picture_layout& layout, double top,
                const qv_picture_key::entry& entry, double amount_width) {
  const double size = layout.text_size;
  const double row = size * line_height;
  const double thickness = entry.line ? size * 0.3 : size * swatch_height;
  const qv_pixel_box swatch{layout.key.left, top + (row - thickness) / 2, size * swatch_width,
                            thickness};
  canvas.fill(corners_of(swatch), entry.color);
  if (!entry.line) canvas.stroke(corners_of(swatch), true, 1, frame_color);

  const double left = swatch.left + swatch.width + size * 0.6;
  const double right = layout.key.left + layout.key.width;
  const double gap = size * 0.8;
  const qv_text_style style{size, false, std::max(size, right - amount_width - gap - left)};
  const double height = canvas.measure(label_of(entry), style).height;
  canvas.write(label_of(entry), {left, top + (row - height) / 2}, style);
  const double width = canvas.measure(entry.amount, {size}).width;
  canvas.write(entry.amount, {right - width, top + (row - height) / 2}, {size});
}

// --- labels ---

struct span {
  double left = 0;
  double right = 0;
};

using pixel_contours = std::vector<std::vector<qv_pixel_point>>;

// The parts of the horizontal at `y` that lie within the contours (even-odd), from the left.
std::vector<span> spans_at(const pixel_contours& contours, double y) {
  std::vector<double> crossings;
  for (const auto& contour : contours) {
    for (std::size_t i = 0; i < contour.size(); ++i) {
      const qv_pixel_point& from = contour[i];
      const qv_pixel_point& to = contour[(i + 1) % contour.size()];
      if ((from.y > y) == (to.y > y)) continue;
      crossings.push_back(from.x + (to.x - from.x) * (y - from.y) / (to.y - from.y));
    }
  }
  std::sort(crossings.begin(), crossings.end());
  std::vector<span> spans;
  for (std::size_t i = 0; i + 1 < crossings.size(); i += 2)
    spans.push_back({crossings[i], crossings[i + 1]});
  return spans;
}

// What two lists of spans have in common.
std::vector<span> common(const std::vector<span>& a, const std::vector<span>& b) {
  std::vector<span> both;
  for (const span& one : a)
    for (const span& other : b)
      if (std::min(one.right, other.right) > std::max(one.left, other.left))
        both.push_back({std::max(one.left, other.left), std::min(one.right, other.right)});
  return both;
}

// The widest box of the given height within the contours, the middlemost of several.
qv_pixel_box widest_box(const pixel_contours& contours, double height) {
  double top = std::numeric_limits<double>::infinity();
  double bottom = -top;
  for (const auto& contour : contours) {
    for (const qv_pixel_point& point : contour) {
      top = std::min(top, point.y);
      bottom = std::max(bottom, point.y);
    }
  }
  const double free = bottom - top - height;
  if (!(free > 0)) return {};
  constexpr int row_count = 33;  // odd, so that the middle is among them
  qv_pixel_box best;
  double best_offset = 0;
  for (int row = 0; row < row_count; ++row) {
    const double share = (row + 0.5) / row_count;
    const double upper = top + free * share;
    std::vector<span> spans = spans_at(contours, upper);
    for (const double y : {upper + height / 2, upper + height})
      spans = common(spans, spans_at(contours, y));
    const double offset = std::abs(share - 0.5);
    for (const span& found : spans) {
      const double width = found.right - found.left;
      const bool wider = width > best.width * 1.001;
      const bool as_wide = width > best.width * 0.999;
      if (!wider && !(as_wide && offset < best_offset)) continue;
      best = {found.left, upper, width, height};
      best_offset = offset;
    }
  }
  return best;
}

bool overlap(const qv_pixel_box& a, const qv_pixel_box& b) {
  return a.left < b.left + b.width && b.left < a.left + a.width && a.top < b.top + b.height &&
         b.top < a.top + a.height;
}

// Writes a room's name and figure into the widest place of its floor, smaller where it is narrow.
// Returns what it covers; nothing where it does not fit.
qv_pixel_box write_label(qv_canvas& canvas, const qv_picture_label& label,
                         const pixel_contours& contours, double text_size,
                         const std::vector<qv_pixel_box>& taken) {
  constexpr double fewest_letters = 4;  // in heights of the text, some seven letters
  qv_pixel_box place;
  double size = text_size;
  double line = 0;
  for (const double share : {1.0, 0.8, 0.65}) {
    size = std::max(smallest_text, text_size * share);
    line = canvas.measure("Äg", {size}).height;
    place = widest_box(contours, 2 * line);
    place.left += size / 2;
    place.width -= size;
    const double needed = std::max(canvas.measure(label.name, {size, true}).width,
                                   canvas.measure(label.figure, {size}).width);
    if (place.width >= needed) break;
  }
  if (place.width < fewest_letters * size) return {};
  const qv_text_style style{size, true, place.width};
  const double name_width = std::min(canvas.measure(label.name, style).width, place.width);
  const double figure_width = canvas.measure(label.figure, {size}).width;
  const bool with_figure = figure_width <= place.width;
  const double widest = std::max(name_width, with_figure ? figure_width : 0.0);
  const double middle = place.left + place.width / 2;
  const qv_pixel_box covered{middle - widest / 2, place.top, widest, place.height};
  for (const qv_pixel_box& other : taken)
    if (overlap(covered, other)) return {};
  const double top = place.top + (with_figure ? 0 : line / 2);
  canvas.write(label.name, {middle - name_width / 2, top}, style, true);
  if (with_figure)
    canvas.write(label.figure, {middle - figure_width / 2, top + line}, {size}, true);
  return covered;
}

// Under the key; without one in the upper right corner, the model keeping clear of it.
void place_compass(qv_picture_layout& layout, int width, int height) {
  const double side = std::min({compass_size * layout.text_size, width / 4.0, height / 4.0});
  layout.compass = {width - layout.margin - side, layout.margin, side, side};
  if (layout.key.width > 0) {
    layout.compass.left = layout.key.left + (layout.key.width - side) / 2;
    layout.compass.top = height - layout.margin - side;
    layout.key.height -= side + layout.margin;
  } else {
    layout.model.width = std::max(1.0, layout.model.width - side);
  }
}

}  // namespace

qv_picture_layout qv_lay_out_picture(qv_canvas& canvas, int width, int height,
                                     const qv_picture_key* key, const qv_camera& camera) {
  qv_picture_layout layout;
  layout.text_size = std::clamp(std::min(width, height) * text_share, smallest_text, largest_text);
  const double size = layout.text_size;
  layout.margin = size;
  double key_width = 0;
  if (key != nullptr) {
    const key_columns columns = measure_columns(canvas, *key, size);
    key_width = canvas.measure(key->title, {size, true}).width;
    if (!key->entries.empty())
      key_width = std::max(key_width, size * (swatch_width + 1.4) + columns.label + columns.amount);
    if (key->values)
      key_width = std::max(key_width,
                           size * (bar_width + 0.5) + bar_figure_width(canvas, *key->values, size));
    key_width = std::min(std::ceil(key_width), width * key_share);
    layout.key = {width - layout.margin - key_width, layout.margin, key_width,
                  height - 2 * layout.margin};
    key_width += layout.margin;
  }
  // Below the title, above the scale.
  const double left = 1.5 * layout.margin;
  const double top = layout.margin + size * line_height;
  const double bottom = layout.margin + 2 * size;
  layout.model = {left, top, std::max(1.0, width - 2 * left - key_width),
                  std::max(1.0, height - top - bottom)};
  if (std::abs(camera.get_toward().z) >= flattest_compass) place_compass(layout, width, height);
  return layout;
}

void qv_write_key(qv_canvas& canvas, const qv_picture_layout& layout, const qv_picture_key& key) {
  const double size = layout.text_size;
  const double row = size * line_height;
  double top = layout.key.top;
  canvas.write(key.title, {layout.key.left, top}, {size, true, layout.key.width});
  top += row * 1.15;
  if (key.values) top = draw_bar(canvas, layout, top, *key.values);

  const double space = layout.key.top + layout.key.height - top;
  const auto room = static_cast<std::size_t>(std::max(0.0, std::floor(space / row)));
  const bool all = key.entries.size() <= room;
  const std::size_t shown = all ? key.entries.size() : (room > 0 ? room - 1 : 0);
  const double amount_width = measure_columns(canvas, key, size).amount;
  for (std::size_t i = 0; i < shown; ++i, top += row)
    draw_entry(canvas, layout, top, key.entries[i], amount_width);
  if (!all && room > 0)
    canvas.write(fmt::format("… and {} more", key.entries.size() - shown), {layout.key.left, top},
                 {size, false, layout.key.width});
}

void qv_write_title(qv_canvas& canvas, const qv_picture_layout& layout, const std::string& title) {
  const qv_text_style style{layout.text_size, true, layout.model.width};
  canvas.write(title, {layout.margin, layout.margin}, style, true);
}

void qv_draw_scale(qv_canvas& canvas, const qv_picture_layout& layout, const qv_camera& camera) {
  if (camera.is_perspective()) return;
  // Pixels to a metre; in the isometric view along the three axes, which it shortens alike.
  const bool slanted = camera.get_view() == qv_picture_view::iso;
  const double scale = camera.get_scale() * (slanted ? isometric_shortening : 1.0);
  // The longest round length that takes up to a quarter of the model's room.
  const double longest = layout.model.width / 4 / scale;
  const double power = std::pow(10.0, std::floor(std::log10(longest)));
  double metres = power;
  for (const double digit : {2.0, 5.0})
    if (digit * power <= longest) metres = digit * power;
  const std::string text =
      (metres >= 1000 ? fmt::format("{} km", metres / 1000) : fmt::format("{} m", metres)) +
      (slanted ? " along the axes" : "");

  const double size = layout.text_size;
  const double width = metres * scale;
  const double y = layout.model.top + layout.model.height + 2.1 * size;
  const double left = layout.margin;
  const double tick = size * 0.35;
  const std::array<qv_pixel_point, 4> bar = {
      qv_pixel_point{left, y - tick}, qv_pixel_point{left, y}, qv_pixel_point{left + width, y},
      qv_pixel_point{left + width, y - tick}};
  canvas.stroke(bar, false, std::max(1.0, size / 8), dark);
  const double height = canvas.measure(text, {size}).height;
  canvas.write(text, {left + width + size * 0.5, y - height * 0.75}, {size}, true);
}

void qv_draw_north(qv_canvas& canvas, const qv_picture_layout& layout, const qv_camera& camera) {
  if (layout.compass.width <= 0) return;
  const double radius = layout.compass.width * compass_radius;
  const qv_pixel_point middle{layout.compass.left + layout.compass.width / 2,
                              layout.compass.top + layout.compass.height / 2};
  // A point of the ground `distance` radii away at an azimuth, in parallel projection.
  const auto at = [&](double azimuth, double distance) {
    const double angle = azimuth * std::numbers::pi / 180;
    const qv_double3 direction(std::sin(angle), std::cos(angle), 0);
    return qv_pixel_point{middle.x + radius * distance * camera.get_right().dot(direction),
                          middle.y - radius * distance * camera.get_up().dot(direction)};
  };
  std::vector<qv_pixel_point> circle;
  for (int angle = 0; angle < 360; angle += 5) circle.push_back(at(angle, 1));
  canvas.stroke(circle, true, std::max(1.0, radius / 18), frame_color);
  const std::array<qv_pixel_point, 3> right_half = {at(0, 1), at(150, 0.85), at(180, 0.45)};
  const std::array<qv_pixel_point, 3> left_half = {at(0, 1), at(210, 0.85), at(180, 0.45)};
  canvas.fill(left_half, dark);
  canvas.stroke(right_half, true, std::max(1.0, radius / 24), dark);

  const qv_text_style style{layout.text_size, true, 0};
  const qv_text_size size = canvas.measure("N", style);
  const qv_pixel_point tip = at(0, 1);
  // Beyond the tip, by half the letter's size in the arrow's own direction.
  const double away_x = tip.x - middle.x;
  const double away_y = tip.y - middle.y;
  const double away = std::max(1e-6, std::hypot(away_x, away_y));
  const qv_pixel_point letter{tip.x + away_x / away * size.height * 0.6,
                              tip.y + away_y / away * size.height * 0.6};
  canvas.write("N", {letter.x - size.width / 2, letter.y - size.height / 2}, style, true);
}

void qv_write_labels(qv_canvas& canvas, const qv_picture_layout& layout,
                     const std::vector<qv_picture_label>& labels, const qv_camera& camera) {
  std::vector<qv_pixel_box> taken;
  for (const qv_picture_label& label : labels) {
    pixel_contours contours;
    for (const auto& contour : label.contours) {
      std::vector<qv_pixel_point>& projected = contours.emplace_back();
      for (const qv_double3& point : contour) projected.push_back(camera.project(point));
    }
    const qv_pixel_box covered = write_label(canvas, label, contours, layout.text_size, taken);
    if (covered.width > 0) taken.push_back(covered);
  }
}

}  // namespace qv
