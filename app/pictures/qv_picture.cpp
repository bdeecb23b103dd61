#include "app/pictures/qv_picture.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "app/pictures/qv_canvas.h"
#include "app/pictures/qv_painter.h"
#include "app/pictures/qv_palette.h"
#include "app/pictures/qv_picture_notes.h"
#include "app/readers/qv_input_error.h"

namespace qv {
namespace {

// Width of lines as shares of the height of text.
constexpr double bridge_width = 0.34;
constexpr double cut_width = 0.40;
constexpr double edge_width = 1.0 / 13;
constexpr double pale_edge_opacity = 0.35;
constexpr double faint_shadow_share = 0.9;
// Floors of a plan are lighter, so that names can be read on them.
constexpr float floor_lightening = 0.3f;

bool is_cut(const qv_picture_options& options) {
  return options.view == qv_picture_view::plan && options.storey.has_value();
}

bool shows_bridges(const qv_picture_options& options) {
  return options.color == qv_picture_color::thermal_bridges;
}

bool colors_rooms(const qv_picture_options& options) {
  return options.color == qv_picture_color::zone || options.color == qv_picture_color::storey;
}

[[noreturn]] void refuse(const std::string& model_name, const std::string& problem,
                         const std::string& advice) {
  throw qv_input_error(qv_input_error::kind::bad_input, {model_name, 0, {}, {}}, problem, advice);
}

void check_storey(const qv_picture_subject& subject, int storey, const std::string& model_name) {
  const std::vector<int> storeys = qv_list_storeys(*subject.scene);
  if (std::find(storeys.begin(), storeys.end(), storey) != storeys.end()) return;
  const std::string problem = fmt::format("there is no storey {}", storey);
  if (storeys.empty()) refuse(model_name, problem, "the model has no rooms on storeys");
  const std::string advice = storeys.size() == 1
                                 ? fmt::format("the only one is {}", storeys.front())
                                 : fmt::format("choose one of {}", fmt::join(storeys, ", "));
  refuse(model_name, problem, advice);
}

qv_picture_geometry collect(const qv_picture_subject& subject, const qv_picture_options& options) {
  qv_scene& scene = *subject.scene;
  std::vector<qv_export_group> found;
  if (subject.groups.empty()) found = qv_collect_export_groups(scene);
  const std::vector<qv_export_group>& groups = subject.groups.empty() ? found : subject.groups;
  if (shows_bridges(options)) return qv_collect_bridges(scene, groups, options.storey);
  if (is_cut(options)) return qv_collect_plan(scene, groups, *options.storey);
  return qv_collect_surfaces(scene, groups, options.storey);
}

// A plan tells by its floors what is told of rooms, and by its walls what is told of walls. Its
// lines are opaque, and so is the key to them.
void adapt_to_plan(const qv_picture_geometry& geometry, const qv_picture_options& options,
                   qv_coloring& coloring) {
  std::vector<qv_color>& colors = coloring.colors;
  constexpr qv_color wall_color(0.2f, 0.2f, 0.2f, 1.0f);
  constexpr qv_color glass_color(0.30f, 0.60f, 0.95f, 1.0f);
  constexpr qv_color floor_color(0.97f, 0.97f, 0.97f, 1.0f);
  for (std::size_t i = 0; i < colors.size(); ++i) {
    const qv_picture_part& part = geometry.parts[i];
    if (part.lines.count == 0) {
      colors[i] = colors_rooms(options) ? qv_lighter(colors[i], floor_lightening) : floor_color;
    } else if (colors_rooms(options)) {
      colors[i] = part.item->has_type("opening") ? glass_color : wall_color;
    }
  }
  for (qv_picture_key::entry& entry : coloring.key.entries) {
    if (colors_rooms(options)) entry.color = qv_lighter(entry.color, floor_lightening);
    entry.color.a = 1;
  }
}

qv_paint_style style_of(const qv_picture_options& options, double text_size) {
  qv_paint_style style;
  style.edge_width = std::max(1.0, text_size * edge_width);
  style.line_width = std::max(1.5, text_size * (is_cut(options) ? cut_width : bridge_width));
  if (is_cut(options)) {
    style.shadow_share = 1;
    style.square_ends = true;
  }
  if (shows_bridges(options)) style.edge_opacity = pale_edge_opacity;
  // Shades must not pass for other values, nor grey out a pale model.
  if (options.color == qv_picture_color::u || shows_bridges(options))
    style.shadow_share = std::max(style.shadow_share, faint_shadow_share);
  return style;
}

std::string title_of(const qv_picture_options& options, double azimuth) {
  std::string title;
  const auto elevation = [azimuth](const char* quarter, double faces) {
    // Whole degrees, 0 to 359.
    const double turned = std::fmod(std::round(std::fmod(faces + azimuth, 360.0)) + 360.0, 360.0);
    return fmt::format("{} elevation{}", quarter,
                       turned == faces ? std::string() : fmt::format(", facing {:.0f}°", turned));
  };
  switch (options.view) {
    case qv_picture_view::iso:
      title = "Isometric view";
      break;
    case qv_picture_view::perspective:
      title = "Perspective";
      break;
    case qv_picture_view::north:
      title = elevation("North", 0);
      break;
    case qv_picture_view::east:
      title = elevation("East", 90);
      break;
    case qv_picture_view::south:
      title = elevation("South", 180);
      break;
    case qv_picture_view::west:
      title = elevation("West", 270);
      break;
    case qv_picture_view::plan:
      title = options.storey ? "Plan" : "View from above";
      break;
  }
  if (options.storey) title += fmt::format(", storey {}", *options.storey);
  return title;
}

bool is_highlighted(qv_scene& scene) {
  const qv_list<qv_item*>& items = scene.get_items("item");
  return std::any_of(items.begin(), items.end(), [](const qv_item* item) {
    return item->is_selected() || item->is_mouseover();
  });
}

}  // namespace

qv_picture qv_picture_maker::draw(const qv_picture_subject& subject,
                                  const qv_picture_options& options,
                                  const std::string& model_name) {
  if (options.storey) check_storey(subject, *options.storey, model_name);
  const qv_picture_geometry geometry = collect(subject, options);
  if (geometry.is_empty())
    refuse(model_name, "there is nothing to draw", "no surface of it has an area");
  qv_coloring coloring = qv_color_parts(subject, geometry, options.color);
  if (is_cut(options)) adapt_to_plan(geometry, options, coloring);

  context_.make_current();
  qv_frame_buffer frame(options.width, options.height);
  qv_canvas ruler(qv_pixels{1, 1, {0}});
  qv_camera camera(options.view, subject.azimuth);
  const qv_picture_layout layout = qv_lay_out_picture(
      ruler, options.width, options.height, options.with_key ? &coloring.key : nullptr, camera);
  qv_paint_style style = style_of(options, layout.text_size);
  std::vector<qv_double3> points = geometry.get_points();
  if (options.view != qv_picture_view::plan) {
    style.ground = qv_ground_outline(points);
    points.insert(points.end(), style.ground.begin(), style.ground.end());
  }
  camera.fit(points, options.width, options.height, layout.model);
  qv_paint(geometry, coloring.colors, camera, style);
  if (is_highlighted(*subject.scene))
    qv_paint_highlights(*subject.scene, geometry.origin, camera, style.line_width);

  qv_canvas canvas(frame.read());
  if (is_cut(options)) qv_write_labels(canvas, layout, geometry.labels, camera);
  if (options.with_key) {
    qv_write_title(canvas, layout, title_of(options, subject.azimuth));
    qv_write_key(canvas, layout, coloring.key);
  }
  qv_draw_scale(canvas, layout, camera);
  qv_draw_north(canvas, layout, camera);

  qv_picture picture;
  picture.pixels = canvas.get_pixels();
  if (geometry.lost > 0)
    picture.notes.push_back(
        fmt::format("{} {} left out, since a coordinate is no number", geometry.lost,
                    geometry.lost == 1 ? "triangle or line is" : "triangles or lines are"));
  return picture;
}

}  // namespace qv
