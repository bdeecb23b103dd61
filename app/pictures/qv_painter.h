#pragma once

#include <span>
#include <vector>

#include "app/pictures/qv_camera.h"
#include "app/pictures/qv_picture_geometry.h"
#include "utilities/qv_color.h"

namespace qv {

/// How a geometry is drawn.
struct qv_paint_style {
  /// Faces are darker the more they turn away from a light over the viewer's left shoulder; this
  /// share of their colour is left where none falls. 1: colours are flat.
  double shadow_share = 0.78;
  /// Lines are seen through what lies before them.
  bool lines_in_front = true;
  /// Of the parts' lines, and of edges, pixels.
  double line_width = 3;
  double edge_width = 1;
  /// Lines end square, half their width beyond their ends, so that walls of a plan close corners.
  bool square_ends = false;
  /// Opacity of edges, 0 … 1.
  double edge_opacity = 0.8;
  /// An outline on the ground (`qv_ground_outline`); none when empty.
  std::vector<qv_double3> ground;
};

/// Draws into the current frame buffer: white ground, the outline of the site, opaque parts with
/// their edges, what one sees through from back to front, lines. `colors` are those of the parts.
void qv_paint(const qv_picture_geometry& geometry, const std::vector<qv_color>& colors,
              const qv_camera& camera, const qv_paint_style& style);

/// Draws the highlights of the scene's selected and hovered items over it, by the items' own
/// `render_opengl(true)`; connexions, which leave that to the view, as lines. `origin` is that of
/// the geometry.
void qv_paint_highlights(qv_scene& scene, const qv_double3& origin, const qv_camera& camera,
                         double line_width);

/// Corners of an outline on the ground around the model: its convex hull seen from above, a little
/// larger, at its lowest level. The hull is that of the outermost points in 32 directions. None
/// without points; those that are not finite do not count.
std::vector<qv_double3> qv_ground_outline(std::span<const qv_double3> points);

}  // namespace qv
