#pragma once

#include <memory>

#include "app/readers/qv_input_error.h"

namespace qv {

/// This machine cannot draw: a library is missing, or it offers no OpenGL that suffices. The
/// message says what to do about it.
class qv_no_drawing : public qv_input_error {
 public:
  explicit qv_no_drawing(
      const std::string& problem,
      const std::string& advice = "install the packages libegl1 and libgl1-mesa-dri");
};

/// An OpenGL context that needs no display, no graphics card and no rights: version 4.5 with the
/// compatibility profile, drawn by the processor where the machine has a software renderer. Drawing
/// goes into frame buffers (`qv_frame_buffer`), since it has no window.
///
/// The library that makes contexts (libEGL) is loaded when the first one is made, so that a program
/// which draws nothing runs without it; it stays loaded until the program ends.
class qv_gl_context {
 public:
  /// Makes it current. Throws `qv_no_drawing`.
  qv_gl_context();
  qv_gl_context(const qv_gl_context&) = delete;
  qv_gl_context& operator=(const qv_gl_context&) = delete;
  ~qv_gl_context();

  /// From now on the calling thread draws with this context, until another becomes current there or
  /// one is destroyed. Throws `qv_no_drawing`, also while it is current in another thread.
  void make_current();

 private:
  struct handles;
  std::unique_ptr<handles> handles_;
};

}  // namespace qv
