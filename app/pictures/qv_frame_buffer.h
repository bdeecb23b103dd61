#pragma once

#include "app/pictures/qv_pixels.h"

namespace qv {

/// Where OpenGL draws without a window: colour and depth with four samples to the pixel. Needs a
/// current context (`qv_gl_context`) as long as it lives, and is what that draws into.
class qv_frame_buffer {
 public:
  /// Largest number of pixels to a side, and of all: 512 MB of samples.
  static constexpr int largest_side = 8192;
  static constexpr int largest_count = 4096 * 4096;

  /// Throws `qv_no_drawing` when the machine refuses that size, which may be 1 to `largest_side`.
  qv_frame_buffer(int width, int height);
  qv_frame_buffer(const qv_frame_buffer&) = delete;
  qv_frame_buffer& operator=(const qv_frame_buffer&) = delete;
  ~qv_frame_buffer();

  /// What was drawn so far, the samples of each pixel averaged.
  qv_pixels read() const;

 private:
  // The samples, and what they are averaged into.
  struct buffers {
    unsigned int frame = 0;
    unsigned int color = 0;
    unsigned int depth = 0;
  };
  void make(buffers& made, int samples) const;
  static void free(const buffers& made);

  int width_;
  int height_;
  buffers samples_;
  buffers pixels_;
};

}  // namespace qv
