#include "app/pictures/qv_frame_buffer.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

#include "app/pictures/qv_gl_context.h"

namespace qv {
namespace {

constexpr int sample_count = 4;

}  // namespace

qv_frame_buffer::qv_frame_buffer(int width, int height) : width_(width), height_(height) {
  make(pixels_, 0);
  make(samples_, sample_count);
  const bool complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
  const bool fault = glGetError() != GL_NO_ERROR;  // which is forgotten with that
  if (!complete || fault) {
    free(samples_);
    free(pixels_);
    throw qv_no_drawing("a picture of that size is refused", "ask for a smaller one");
  }
  glViewport(0, 0, width_, height_);
}

qv_frame_buffer::~qv_frame_buffer() {
  free(samples_);
  free(pixels_);
}

void qv_frame_buffer::make(buffers& made, int samples) const {
  glGenFramebuffers(1, &made.frame);
  glBindFramebuffer(GL_FRAMEBUFFER, made.frame);
  glGenRenderbuffers(1, &made.color);
  glBindRenderbuffer(GL_RENDERBUFFER, made.color);
  glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, GL_RGBA8, width_, height_);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, made.color);
  if (samples == 0) return;
  glGenRenderbuffers(1, &made.depth);
  glBindRenderbuffer(GL_RENDERBUFFER, made.depth);
  glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, GL_DEPTH_COMPONENT24, width_, height_);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, made.depth);
}

void qv_frame_buffer::free(const buffers& made) {
  glDeleteFramebuffers(1, &made.frame);
  glDeleteRenderbuffers(1, &made.color);
  glDeleteRenderbuffers(1, &made.depth);  // ignores 0
}

qv_pixels qv_frame_buffer::read() const {
  glBindFramebuffer(GL_READ_FRAMEBUFFER, samples_.frame);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, pixels_.frame);
  glBlitFramebuffer(0, 0, width_, height_, 0, 0, width_, height_, GL_COLOR_BUFFER_BIT, GL_NEAREST);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, pixels_.frame);

  const auto row_length = static_cast<std::size_t>(width_);
  qv_pixels bottom_up{width_, height_, {}};
  bottom_up.rows.resize(row_length * static_cast<std::size_t>(height_));
  glPixelStorei(GL_PACK_ALIGNMENT, 4);
  glReadPixels(0, 0, width_, height_, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, bottom_up.rows.data());
  glBindFramebuffer(GL_FRAMEBUFFER, samples_.frame);

  constexpr std::uint32_t without_alpha = 0x00ffffffU;
  qv_pixels result{width_, height_, {}};
  result.rows.reserve(bottom_up.rows.size());
  for (int row = height_ - 1; row >= 0; --row)
    for (int column = 0; column < width_; ++column)
      result.rows.push_back(bottom_up.at(column, row) & without_alpha);
  return result;
}

}  // namespace qv
