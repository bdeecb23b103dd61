#pragma once

#include <string>
#include <vector>

#include "utilities/qv_3dvector.h"
#include "utilities/qv_color.h"
#include "utilities/qv_matrix.h"

namespace qv_test {

/// What one glBegin … glEnd drew, and in which state.
struct gl_primitive {
  /// "lines", "line_loop", "triangles", …
  std::string mode;
  std::vector<qv::qv_3dvector> vertices;
  qv::qv_color color;
  float line_width = 0;
  bool lighting = true;
  bool depth_test = true;
  /// The normal that held at each vertex; the zero vector before the first one was given.
  std::vector<qv::qv_3dvector> normals;

  bool is_contour() const { return mode.starts_with("line"); }
  bool is_surface() const { return !is_contour() && mode != "points"; }
};

/// Takes the OpenGL calls of the process for as long as it lives. The functions it stands in for
/// are defined in this test program, in front of the real library's; no context is needed, and
/// without a recorder they do nothing.
///
/// Vertices and normals come as glMultMatrixf places them.
///
/// Lighting and depth test start switched on, the colour is transparent black and the line width 0
/// until they are set.
class gl_recorder {
 public:
  gl_recorder();
  gl_recorder(const gl_recorder&) = delete;
  gl_recorder& operator=(const gl_recorder&) = delete;
  ~gl_recorder();

  /// Every change of state and every primitive in order, as text: "disable lighting", "color 1 0 0
  /// 0.5", "line_width 1", "line_loop 4" (mode and number of vertices).
  std::vector<std::string> calls;
  std::vector<gl_primitive> primitives;
  bool lighting = true;
  bool depth_test = true;

  /// The primitives whose mode is a kind of line, or the others.
  std::vector<gl_primitive> get_contours() const;
  std::vector<gl_primitive> get_surfaces() const;

  // Called by the functions that stand in for the library's.
  void switch_capability(unsigned int capability, bool on);
  void set_color(const qv::qv_color& color);
  void set_line_width(float width);
  void begin(unsigned int mode);
  void add_vertex(const qv::qv_3dvector& vertex);
  void end();
  void set_normal(const qv::qv_3dvector& normal) { normal_ = normal; }
  void push_matrix() { matrices_.push_back(matrices_.back()); }
  void multiply_matrix(const qv::qv_matrix& matrix) { matrices_.back() *= matrix; }
  void pop_matrix();
  /// Number of glPushMatrix still without their glPopMatrix.
  int get_matrix_depth() const { return static_cast<int>(matrices_.size()) - 1; }

 private:
  gl_recorder* previous_;
  qv::qv_color color_{0, 0, 0, 0};
  qv::qv_3dvector normal_;
  std::vector<qv::qv_matrix> matrices_{qv::qv_matrix()};
  float line_width_ = 0;
  gl_primitive open_;
  bool is_open_ = false;
};

}  // namespace qv_test
