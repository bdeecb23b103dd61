#pragma once

#include "utilities/qv_3dvector.h"
#include "utilities/qv_list.h"
#include "utilities/qv_matrix.h"

namespace qv {

// Drawing in OpenGL's immediate mode, in the current colour.

/// Which side of triangles is drawn.
struct drawn_side {
  bool winding_turned = false;
  bool normals_turned = false;
};

/// GL_TRIANGLES, each with its normal. Triangles that are not finite or have no area are left out.
void draw_triangles(const qv_list<qv_3dvector>& vertices, const qv_list<int>& triangles,
                    const drawn_side& side);

/// A GL_LINE_LOOP along each contour. Points that are not finite are left out.
void draw_contours(const qv_list<qv_3dvector>& vertices, const qv_list<unsigned int>& sizes);

/// As long as it lives, drawing is placed by a matrix.
class placed_drawing {
 public:
  explicit placed_drawing(const qv_matrix& matrix);
  placed_drawing(const placed_drawing&) = delete;
  placed_drawing& operator=(const placed_drawing&) = delete;
  ~placed_drawing();
};

}  // namespace qv
