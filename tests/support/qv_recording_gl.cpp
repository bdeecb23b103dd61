#include "tests/support/qv_recording_gl.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <map>

namespace qv_test {

namespace {

gl_recorder* current = nullptr;

std::string to_text(float number) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", static_cast<double>(number));
  return text;
}

std::string capability_name(unsigned int capability) {
  if (capability == GL_LIGHTING) return "lighting";
  if (capability == GL_DEPTH_TEST) return "depth_test";
  if (capability == GL_CULL_FACE) return "cull_face";
  if (capability == GL_BLEND) return "blend";
  return std::to_string(capability);
}

std::string mode_name(unsigned int mode) {
  static const std::map<unsigned int, std::string> names = {
      {GL_POINTS, "points"},         {GL_LINES, "lines"},
      {GL_LINE_LOOP, "line_loop"},   {GL_LINE_STRIP, "line_strip"},
      {GL_TRIANGLES, "triangles"},   {GL_TRIANGLE_STRIP, "triangle_strip"},
      {GL_QUADS, "quads"},           {GL_TRIANGLE_FAN, "triangle_fan"},
      {GL_QUAD_STRIP, "quad_strip"}, {GL_POLYGON, "polygon"}};
  const auto found = names.find(mode);
  return found == names.end() ? std::to_string(mode) : found->second;
}

}  // namespace

gl_recorder::gl_recorder() : previous_(current) {
  current = this;
}
gl_recorder::~gl_recorder() {
  current = previous_;
}

std::vector<gl_primitive> gl_recorder::get_contours() const {
  std::vector<gl_primitive> found;
  for (const gl_primitive& p : primitives)
    if (p.is_contour()) found.push_back(p);
  return found;
}

std::vector<gl_primitive> gl_recorder::get_surfaces() const {
  std::vector<gl_primitive> found;
  for (const gl_primitive& p : primitives)
    if (p.is_surface()) found.push_back(p);
  return found;
}

void gl_recorder::switch_capability(unsigned int capability, bool on) {
  EXPECT_FALSE(is_open_) << "state changed between glBegin and glEnd";
  calls.push_back((on ? "enable " : "disable ") + capability_name(capability));
  if (capability == GL_LIGHTING) lighting = on;
  if (capability == GL_DEPTH_TEST) depth_test = on;
}

void gl_recorder::set_color(const qv::qv_color& color) {
  color_ = color;
  if (is_open_) open_.color = color;
  calls.push_back("color " + to_text(color.r) + ' ' + to_text(color.g) + ' ' + to_text(color.b) +
                  ' ' + to_text(color.a));
}

void gl_recorder::set_line_width(float width) {
  EXPECT_FALSE(is_open_) << "line width changed between glBegin and glEnd";
  line_width_ = width;
  calls.push_back("line_width " + to_text(width));
}

void gl_recorder::begin(unsigned int mode) {
  EXPECT_FALSE(is_open_) << "glBegin within glBegin";
  is_open_ = true;
  open_ = {mode_name(mode), {}, color_, line_width_, lighting, depth_test, {}};
}

void gl_recorder::add_vertex(const qv::qv_3dvector& vertex) {
  EXPECT_TRUE(is_open_) << "vertex outside glBegin and glEnd";
  open_.vertices.push_back(matrices_.back().transform_point(vertex));
  open_.normals.push_back(matrices_.back().transform_direction(normal_));
}

void gl_recorder::end() {
  EXPECT_TRUE(is_open_) << "glEnd without glBegin";
  is_open_ = false;
  calls.push_back(open_.mode + ' ' + std::to_string(open_.vertices.size()));
  primitives.push_back(open_);
}

void gl_recorder::pop_matrix() {
  EXPECT_GT(get_matrix_depth(), 0) << "glPopMatrix without glPushMatrix";
  if (get_matrix_depth() > 0) matrices_.pop_back();
}

}  // namespace qv_test

using qv_test::current;

extern "C" {

void glEnable(GLenum capability) {
  if (current != nullptr) current->switch_capability(capability, true);
}
void glDisable(GLenum capability) {
  if (current != nullptr) current->switch_capability(capability, false);
}
void glLineWidth(GLfloat width) {
  if (current != nullptr) current->set_line_width(width);
}
void glColor4f(GLfloat r, GLfloat g, GLfloat b, GLfloat a) {
  if (current != nullptr) current->set_color({r, g, b, a});
}
void glColor4fv(const GLfloat* v) {
  glColor4f(v[0], v[1], v[2], v[3]);
}
void glColor3f(GLfloat r, GLfloat g, GLfloat b) {
  glColor4f(r, g, b, 1);
}
void glColor3fv(const GLfloat* v) {
  glColor4f(v[0], v[1], v[2], 1);
}
void glBegin(GLenum mode) {
  if (current != nullptr) current->begin(mode);
}
void glEnd() {
  if (current != nullptr) current->end();
}
void glVertex3f(GLfloat x, GLfloat y, GLfloat z) {
  if (current != nullptr) current->add_vertex({x, y, z});
}
void glVertex3fv(const GLfloat* v) {
  glVertex3f(v[0], v[1], v[2]);
}
void glVertex3d(GLdouble x, GLdouble y, GLdouble z) {
  glVertex3f(static_cast<GLfloat>(x), static_cast<GLfloat>(y), static_cast<GLfloat>(z));
}
void glVertex3dv(const GLdouble* v) {
  glVertex3d(v[0], v[1], v[2]);
}
void glNormal3f(GLfloat x, GLfloat y, GLfloat z) {
  if (current != nullptr) current->set_normal({x, y, z});
}
void glNormal3fv(const GLfloat* v) {
  glNormal3f(v[0], v[1], v[2]);
}
void glPushMatrix() {
  if (current != nullptr) current->push_matrix();
}
void glPopMatrix() {
  if (current != nullptr) current->pop_matrix();
}
void glMultMatrixf(const GLfloat* columns) {
  qv::qv_matrix matrix;
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column) matrix.set(row, column, columns[4 * column + row]);
  if (current != nullptr) current->multiply_matrix(matrix);
}

}  // extern "C"
