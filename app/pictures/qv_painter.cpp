#include "app/pictures/qv_painter.h"

#include <GL/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "bim/envelope/qvi_connexion.h"

namespace qv {
namespace {

// Light over the viewer's left shoulder, in the picture's axes (right, up, towards the viewer).
const qv_double3 light_direction = normalized(qv_double3(-0.45, 0.70, 0.55));

constexpr qv_color edge_color(0.15f, 0.15f, 0.15f, 1.0f);
constexpr qv_color ground_color(0.62f, 0.62f, 0.62f, 1.0f);
// Of the model's extent.
constexpr double ground_margin = 0.06;

// Edges much shorter than this, px, would cover the faces between them: they fade.
constexpr double full_edge_length = 14;
constexpr double least_edge_share = 0.12;

struct color_bytes {
  std::array<GLubyte, 4> rgba;
};

color_bytes to_bytes(const qv_color& color, double share = 1) {
  const auto byte = [](double value) {
    return static_cast<GLubyte>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
  };
  return {{byte(color.r * share), byte(color.g * share), byte(color.b * share), byte(color.a)}};
}

// The state in which everything is drawn, whatever was drawn before.
void reset_state() {
  glDisable(GL_LIGHTING);
  glDisable(GL_CULL_FACE);
  glDisable(GL_TEXTURE_2D);
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LEQUAL);
  glDepthMask(GL_TRUE);
  glEnable(GL_MULTISAMPLE);
  glEnable(GL_BLEND);
  glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
  glDisable(GL_POLYGON_OFFSET_FILL);
}

void load_camera(const qv_camera& camera) {
  glMatrixMode(GL_PROJECTION);
  glLoadMatrixd(camera.get_projection().data());
  glMatrixMode(GL_MODELVIEW);
  glLoadMatrixd(camera.get_placing().data());
}

class painter {
 public:
  painter(const qv_picture_geometry& geometry, const std::vector<qv_color>& colors,
          const qv_camera& camera, const qv_paint_style& style)
      : geometry_(geometry), colors_(colors), camera_(camera), style_(style) {}

  void run() {
    glClearColor(1, 1, 1, 1);
    glClearDepth(1);
    reset_state();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    load_camera(camera_);
    glEnableClientState(GL_VERTEX_ARRAY);
    draw_ground();
    draw_opaque_faces();
    draw_edges();
    draw_transparent_faces();
    draw_lines();
    glDisableClientState(GL_VERTEX_ARRAY);
  }

 private:
  bool is_transparent(std::size_t part) const { return colors_[part].a < 1; }

  void draw_ground() const {
    glColor4f(ground_color.r, ground_color.g, ground_color.b, ground_color.a);
    glLineWidth(static_cast<GLfloat>(style_.edge_width));
    glBegin(GL_LINE_LOOP);
    for (const qv_double3& corner : style_.ground) glVertex3d(corner.x, corner.y, corner.z);
    glEnd();
  }

  // How much of its colour a face shows, seen from the viewer's side.
  double share_of(const qv_double3& a, const qv_double3& b, const qv_double3& c) const {
    const qv_double3 normal = normalized((b - a).cross(c - a));
    const qv_double3 seen(camera_.get_right().dot(normal), camera_.get_up().dot(normal),
                          camera_.get_toward().dot(normal));
    const double side = seen.z < 0 ? -1 : 1;
    const double light = std::max(0.0, side * light_direction.dot(seen));
    return style_.shadow_share + (1 - style_.shadow_share) * light;
  }

  void add_face_colors(std::size_t part, std::vector<color_bytes>& bytes) const {
    const qv_picture_run& run = geometry_.parts[part].triangles;
    for (std::size_t i = run.first; i < run.first + run.count; i += 3) {
      const double share =
          share_of(qv_double3(geometry_.corners[i]), qv_double3(geometry_.corners[i + 1]),
                   qv_double3(geometry_.corners[i + 2]));
      bytes.insert(bytes.end(), 3, to_bytes(colors_[part], share));
    }
  }

  // Draws parts in the given order, in one go.
  void draw_faces(const std::vector<std::size_t>& parts) const {
    std::vector<qv_3dvector> corners;
    std::vector<color_bytes> bytes;
    for (const std::size_t part : parts) {
      const qv_picture_run& run = geometry_.parts[part].triangles;
      const auto first = geometry_.corners.begin() + static_cast<std::ptrdiff_t>(run.first);
      corners.insert(corners.end(), first, first + static_cast<std::ptrdiff_t>(run.count));
      add_face_colors(part, bytes);
    }
    if (corners.empty()) return;
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(qv_3dvector), corners.data());
    glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(color_bytes), bytes.data());
    glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(corners.size()));
    glDisableClientState(GL_COLOR_ARRAY);
  }

  // Faces lie a hair behind their edges, and surfaces that bound no room behind those that do:
  // shades are often drawn on the very plane of a façade.
  void draw_opaque_faces() const {
    std::vector<std::size_t> of_rooms;
    std::vector<std::size_t> others;
    for (std::size_t part = 0; part < geometry_.parts.size(); ++part)
      if (!is_transparent(part))
        (geometry_.parts[part].space != nullptr ? of_rooms : others).push_back(part);
    // The nearest first, so that what they hide is not coloured in vain.
    for (std::vector<std::size_t>* parts : {&of_rooms, &others}) {
      *parts = sorted_by_nearness(*parts);
      std::reverse(parts->begin(), parts->end());
    }
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(2, 4);
    draw_faces(others);
    glPolygonOffset(1, 2);
    draw_faces(of_rooms);
    glDisable(GL_POLYGON_OFFSET_FILL);
  }

  void draw_edges() const {
    if (geometry_.edge_ends.empty()) return;
    const double opacity = style_.edge_opacity * edge_share();
    glColor4f(edge_color.r, edge_color.g, edge_color.b, static_cast<GLfloat>(opacity));
    glLineWidth(static_cast<GLfloat>(style_.edge_width));
    glVertexPointer(3, GL_FLOAT, sizeof(qv_3dvector), geometry_.edge_ends.data());
    glDepthMask(GL_FALSE);
    glDrawArrays(GL_LINES, 0, static_cast<GLsizei>(geometry_.edge_ends.size()));
    glDepthMask(GL_TRUE);
  }

  // 1 where the edges are long enough in the picture to leave room between them, less in a town
  // seen from afar; by the median.
  double edge_share() const {
    std::vector<double> lengths;
    for (std::size_t i = 0; i + 1 < geometry_.edge_ends.size(); i += 2) {
      const qv_double3 edge(geometry_.edge_ends[i + 1] - geometry_.edge_ends[i]);
      lengths.push_back(length(edge) * camera_.get_scale());
    }
    const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
    std::nth_element(lengths.begin(), middle, lengths.end());
    return std::clamp(*middle / full_edge_length, least_edge_share, 1.0);
  }

  void draw_transparent_faces() const {
    std::vector<std::size_t> parts;
    for (std::size_t part = 0; part < geometry_.parts.size(); ++part)
      if (is_transparent(part)) parts.push_back(part);
    glDepthMask(GL_FALSE);
    draw_faces(sorted_by_nearness(parts));
    glDepthMask(GL_TRUE);
  }

  // The same parts, the nearest to the viewer last.
  std::vector<std::size_t> sorted_by_nearness(const std::vector<std::size_t>& parts) const {
    std::vector<std::pair<double, std::size_t>> by_nearness;
    by_nearness.reserve(parts.size());
    for (const std::size_t part : parts) by_nearness.emplace_back(nearness_of(part), part);
    std::sort(by_nearness.begin(), by_nearness.end());
    std::vector<std::size_t> sorted;
    sorted.reserve(parts.size());
    for (const auto& [nearness, part] : by_nearness) sorted.push_back(part);
    return sorted;
  }

  double nearness_of(std::size_t part) const {
    const qv_picture_run& run = geometry_.parts[part].triangles;
    double sum = 0;
    for (std::size_t i = run.first; i < run.first + run.count; ++i)
      sum += camera_.get_nearness(qv_double3(geometry_.corners[i]));
    return run.count > 0 ? sum / static_cast<double>(run.count) : 0;
  }

  // Lines as rectangles that face the viewer, since not every OpenGL draws wide lines. Those of
  // walls first, so that windows lie on them.
  void draw_lines() const {
    if (style_.lines_in_front) glDisable(GL_DEPTH_TEST);
    for (const bool openings : {false, true}) {
      glBegin(GL_TRIANGLES);
      for (std::size_t part = 0; part < geometry_.parts.size(); ++part) {
        const qv_picture_part& drawn = geometry_.parts[part];
        if (drawn.lines.count == 0 || drawn.item->has_type("opening") != openings) continue;
        const qv_color& color = colors_[part];
        glColor4f(color.r, color.g, color.b, 1);
        for (std::size_t i = 0; i < drawn.lines.count; i += 2)
          draw_line(qv_double3(geometry_.line_ends[drawn.lines.first + i]),
                    qv_double3(geometry_.line_ends[drawn.lines.first + i + 1]));
      }
      glEnd();
    }
    glEnable(GL_DEPTH_TEST);
  }

  void draw_line(const qv_double3& from, const qv_double3& to) const {
    const double half_width = style_.line_width / 2 / camera_.get_scale();
    const qv_double3 along = normalized(to - from);
    qv_double3 aside = along.cross(camera_.get_toward());
    // A line towards the viewer is a point.
    if (length(aside) < 1e-6) aside = camera_.get_right();
    aside = normalized(aside) * half_width;
    const qv_double3 beyond = style_.square_ends ? along * half_width : qv_double3();
    const std::array<qv_double3, 4> corners = {from - beyond - aside, to + beyond - aside,
                                               to + beyond + aside, from - beyond + aside};
    for (const std::size_t corner : {0U, 1U, 2U, 0U, 2U, 3U})
      glVertex3d(corners[corner].x, corners[corner].y, corners[corner].z);
  }

  const qv_picture_geometry& geometry_;
  const std::vector<qv_color>& colors_;
  const qv_camera& camera_;
  const qv_paint_style& style_;
};

}  // namespace

void qv_paint(const qv_picture_geometry& geometry, const std::vector<qv_color>& colors,
              const qv_camera& camera, const qv_paint_style& style) {
  painter(geometry, colors, camera, style).run();
}

void qv_paint_highlights(qv_scene& scene, const qv_double3& origin, const qv_camera& camera,
                         double line_width) {
  reset_state();
  load_camera(camera);
  glTranslated(-origin.x, -origin.y, -origin.z);
  scene.render_opengl(true);

  reset_state();  // outer spaces leave lighting and depth test off
  glDisable(GL_DEPTH_TEST);
  glLineWidth(static_cast<GLfloat>(line_width));
  for (qv_item* connexion : scene.get_items("connexion")) {
    if (!connexion->is_mouseover() && !connexion->is_selected()) continue;
    glColor4f(1, connexion->is_mouseover() ? 1.0f : 0.0f, 0, 1);
    connexion->render_opengl_raw();
  }
}

std::vector<qv_double3> qv_ground_outline(std::span<const qv_double3> points) {
  constexpr std::size_t direction_count = 32;
  constexpr double far = std::numeric_limits<double>::infinity();
  struct direction {
    double x = 0;
    double y = 0;
    double farthest = -far;
    qv_double3 corner;
  };
  std::array<direction, direction_count> directions;
  for (std::size_t i = 0; i < direction_count; ++i) {
    const double angle = 2 * std::numbers::pi * static_cast<double>(i) / direction_count;
    directions[i].x = std::cos(angle);
    directions[i].y = std::sin(angle);
  }
  double lowest = far;
  for (const qv_double3& point : points) {
    if (!std::isfinite(point.x + point.y + point.z)) continue;
    lowest = std::min(lowest, point.z);
    for (direction& one : directions) {
      const double reach = one.x * point.x + one.y * point.y;
      if (reach <= one.farthest) continue;
      one.farthest = reach;
      one.corner = point;
    }
  }
  std::vector<qv_double3> outline;
  if (lowest == far) return outline;

  qv_double3 middle;
  for (const direction& one : directions) middle = middle + one.corner * (1.0 / direction_count);
  middle.z = lowest;
  double size = 0;
  for (std::size_t i = 0; i < direction_count / 2; ++i)
    size = std::max(size, directions[i].farthest + directions[i + direction_count / 2].farthest);
  for (const direction& one : directions) {
    const qv_double3 corner(one.corner.x, one.corner.y, lowest);
    const qv_double3 moved = corner + normalized(corner - middle) * (ground_margin * size);
    if (outline.empty() || !(outline.back() == moved)) outline.push_back(moved);
  }
  return outline;
}

}  // namespace qv
