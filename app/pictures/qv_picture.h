#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/pictures/qv_camera.h"
#include "app/pictures/qv_coloring.h"
#include "app/pictures/qv_frame_buffer.h"
#include "app/pictures/qv_gl_context.h"
#include "app/pictures/qv_picture_subject.h"

namespace qv {

/// What a picture of a model shows.
struct qv_picture_options {
  qv_picture_view view = qv_picture_view::iso;
  qv_picture_color color = qv_picture_color::contact_type;
  /// Only the rooms of this storey, without what lies over them; a plan is cut through them.
  std::optional<int> storey;
  bool with_key = true;
  int width = 1280;
  int height = 800;

  static constexpr int smallest_side = 32;
};

/// A picture, and what had to be left out of it.
struct qv_picture {
  qv_pixels pixels;
  /// A sentence each.
  std::vector<std::string> notes;
};

/// Draws pictures of models; makes its OpenGL context once and keeps it. There may be several, each
/// belongs to the thread that made it.
///
/// A picture is the same on every machine that draws by the processor with the same libraries,
/// whatever the number of its threads.
class qv_picture_maker {
 public:
  /// Throws `qv_no_drawing`.
  qv_picture_maker() = default;

  /// Throws `qv_input_error` when nothing is there to draw (`model_name` stands for the model in
  /// the message) or the storey does not exist. The scene's selected and hovered items are
  /// highlighted as they draw themselves.
  qv_picture draw(const qv_picture_subject& subject, const qv_picture_options& options,
                  const std::string& model_name);

 private:
  qv_gl_context context_;
};

}  // namespace qv
