#pragma once

#include <string>

#include "app/pictures/qv_camera.h"
#include "app/pictures/qv_canvas.h"
#include "app/pictures/qv_picture_geometry.h"
#include "app/pictures/qv_picture_key.h"

namespace qv {

// What is written over a picture: its title, the key of its colours, a scale, the north, the names
// of rooms. Sizes follow that of the picture.

/// Where things stand in a picture of a given size.
struct qv_picture_layout {
  double text_size = 12;  // px
  double margin = 12;     // px
  qv_pixel_box model;     // for the model itself
  qv_pixel_box key;       // no width without a key
  qv_pixel_box compass;   // no width where none is drawn
};

/// Divides a picture: the key, where there is one, takes the width that it needs on the right, a
/// third of the picture at most, with the compass under it. `camera` need not be fitted yet.
qv_picture_layout qv_lay_out_picture(qv_canvas& canvas, int width, int height,
                                     const qv_picture_key* key, const qv_camera& camera);

/// The key under its own title; where there is no room for all entries it says how many are left
/// out.
void qv_write_key(qv_canvas& canvas, const qv_picture_layout& layout, const qv_picture_key& key);

/// The picture's title in the upper left corner.
void qv_write_title(qv_canvas& canvas, const qv_picture_layout& layout, const std::string& title);

/// A bar of 1, 2 or 5 times a power of ten metres in the lower left corner; nothing in perspective,
/// where lengths have no scale.
void qv_draw_scale(qv_canvas& canvas, const qv_picture_layout& layout, const qv_camera& camera);

/// A compass lying on the ground; nothing in the elevations, from which it would be a line. North
/// is the frame's +Y.
void qv_draw_north(qv_canvas& canvas, const qv_picture_layout& layout, const qv_camera& camera);

/// The names of rooms, each where the floor is widest; shortened to fit, left out where even some
/// letters do not.
void qv_write_labels(qv_canvas& canvas, const qv_picture_layout& layout,
                     const std::vector<qv_picture_label>& labels, const qv_camera& camera);

}  // namespace qv
