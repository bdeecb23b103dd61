#include "app/pictures/qv_canvas.h"

#include <cairo.h>
#include <pango/pangocairo.h>

#include <cstring>
#include <new>

#include "app/report/qv_utf8.h"

namespace qv {
namespace {

// Columns after which no text is of interest; far more than fit into a picture.
constexpr std::size_t longest_text = 300;
constexpr double ink = 0.13;         // grey of text
constexpr double seam_width = 0.22;  // of the text's size
constexpr double seam_opacity = 0.85;

template <class T, void (*release)(T*)>
struct releaser {
  void operator()(T* object) const { release(object); }
};
using surface_handle =
    std::unique_ptr<cairo_surface_t, releaser<cairo_surface_t, cairo_surface_destroy>>;
using context_handle = std::unique_ptr<cairo_t, releaser<cairo_t, cairo_destroy>>;
using font_handle = std::unique_ptr<PangoFontDescription,
                                    releaser<PangoFontDescription, pango_font_description_free>>;

struct object_releaser {
  void operator()(void* object) const { g_object_unref(object); }
};
using layout_handle = std::unique_ptr<PangoLayout, object_releaser>;

surface_handle make_surface(const qv_pixels& picture) {
  surface_handle surface(
      cairo_image_surface_create(CAIRO_FORMAT_RGB24, picture.width, picture.height));
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) throw std::bad_alloc();
  cairo_surface_flush(surface.get());
  unsigned char* const data = cairo_image_surface_get_data(surface.get());
  const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface.get()));
  const auto width = static_cast<std::size_t>(picture.width);
  for (std::size_t row = 0; row < static_cast<std::size_t>(picture.height); ++row)
    std::memcpy(data + row * stride, picture.rows.data() + row * width,
                width * sizeof(std::uint32_t));
  cairo_surface_mark_dirty(surface.get());
  return surface;
}

void set_color(cairo_t* context, const qv_color& color) {
  cairo_set_source_rgba(context, color.r, color.g, color.b, color.a);
}

void trace(cairo_t* context, std::span<const qv_pixel_point> points) {
  cairo_new_path(context);
  for (const qv_pixel_point& point : points) cairo_line_to(context, point.x, point.y);
}

}  // namespace

struct qv_canvas::drawing {
  surface_handle surface;
  context_handle context;
  layout_handle layout;

  explicit drawing(const qv_pixels& picture)
      : surface(make_surface(picture)),
        context(cairo_create(surface.get())),
        layout(pango_cairo_create_layout(context.get())) {
    pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
    pango_layout_set_auto_dir(layout.get(), TRUE);
  }

  void set_text(const std::string& text, const qv_text_style& style) const {
    const font_handle font(pango_font_description_new());
    pango_font_description_set_family_static(font.get(), "DejaVu Sans");
    pango_font_description_set_absolute_size(font.get(), style.size * PANGO_SCALE);
    pango_font_description_set_weight(font.get(),
                                      style.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_layout_set_font_description(layout.get(), font.get());
    // A right-to-left text in a box is written at its right end, so the box is as narrow as it is.
    pango_layout_set_width(layout.get(), -1);
    pango_layout_set_ellipsize(layout.get(), PANGO_ELLIPSIZE_NONE);
    const std::string shown = qv_fit_to_width(qv_valid_utf8(text), longest_text);
    pango_layout_set_text(layout.get(), shown.data(), static_cast<int>(shown.size()));
    if (style.widest <= 0 || get_size().width <= style.widest) return;
    pango_layout_set_ellipsize(layout.get(), PANGO_ELLIPSIZE_END);
    pango_layout_set_width(layout.get(), static_cast<int>(style.widest * PANGO_SCALE));
  }

  qv_text_size get_size() const {
    int width = 0;
    int height = 0;
    pango_layout_get_size(layout.get(), &width, &height);
    return {static_cast<double>(width) / PANGO_SCALE, static_cast<double>(height) / PANGO_SCALE};
  }
};

qv_canvas::qv_canvas(const qv_pixels& picture) : drawing_(std::make_unique<drawing>(picture)) {}

qv_canvas::~qv_canvas() = default;

void qv_canvas::fill(std::span<const qv_pixel_point> polygon, const qv_color& color) {
  cairo_t* const context = drawing_->context.get();
  trace(context, polygon);
  cairo_close_path(context);
  set_color(context, color);
  cairo_fill(context);
}

void qv_canvas::stroke(std::span<const qv_pixel_point> points, bool closed, double width,
                       const qv_color& color) {
  cairo_t* const context = drawing_->context.get();
  trace(context, points);
  if (closed) cairo_close_path(context);
  set_color(context, color);
  cairo_set_line_width(context, width);
  cairo_stroke(context);
}

void qv_canvas::fill_gradient(const qv_pixel_box& box, std::span<const qv_color> upwards) {
  cairo_t* const context = drawing_->context.get();
  const std::unique_ptr<cairo_pattern_t, releaser<cairo_pattern_t, cairo_pattern_destroy>> colors(
      cairo_pattern_create_linear(0, box.top + box.height, 0, box.top));
  for (std::size_t i = 0; i < upwards.size(); ++i)
    cairo_pattern_add_color_stop_rgb(
        colors.get(), static_cast<double>(i) / static_cast<double>(upwards.size() - 1),
        upwards[i].r, upwards[i].g, upwards[i].b);
  cairo_rectangle(context, box.left, box.top, box.width, box.height);
  cairo_set_source(context, colors.get());
  cairo_fill(context);
}

qv_text_size qv_canvas::measure(const std::string& text, const qv_text_style& style) const {
  drawing_->set_text(text, style);
  return drawing_->get_size();
}

void qv_canvas::write(const std::string& text, const qv_pixel_point& corner,
                      const qv_text_style& style, bool seam) {
  cairo_t* const context = drawing_->context.get();
  drawing_->set_text(text, style);
  cairo_move_to(context, corner.x, corner.y);
  if (seam) {
    pango_cairo_layout_path(context, drawing_->layout.get());
    cairo_set_source_rgba(context, 1, 1, 1, seam_opacity);
    cairo_set_line_width(context, style.size * seam_width);
    cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(context);
    cairo_move_to(context, corner.x, corner.y);
  }
  cairo_set_source_rgb(context, ink, ink, ink);
  pango_cairo_show_layout(context, drawing_->layout.get());
}

qv_pixels qv_canvas::get_pixels() const {
  cairo_surface_t* const surface = drawing_->surface.get();
  cairo_surface_flush(surface);
  const unsigned char* const data = cairo_image_surface_get_data(surface);
  const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface));
  qv_pixels result{
      cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface), {}};
  const auto width = static_cast<std::size_t>(result.width);
  result.rows.resize(width * static_cast<std::size_t>(result.height));
  for (std::size_t row = 0; row < static_cast<std::size_t>(result.height); ++row)
    std::memcpy(result.rows.data() + row * width, data + row * stride,
                width * sizeof(std::uint32_t));
  // The fourth byte means nothing in this format.
  for (std::uint32_t& pixel : result.rows) pixel &= 0x00ffffffU;
  return result;
}

std::string qv_encode_png(const qv_pixels& picture) {
  const surface_handle surface = make_surface(picture);
  std::string bytes;
  const auto append = [](void* target, const unsigned char* data, unsigned int count) {
    static_cast<std::string*>(target)->append(reinterpret_cast<const char*>(data), count);
    return CAIRO_STATUS_SUCCESS;
  };
  if (cairo_surface_write_to_png_stream(surface.get(), append, &bytes) != CAIRO_STATUS_SUCCESS)
    throw std::bad_alloc();
  return bytes;
}

}  // namespace qv
