#pragma once

#include "utilities/qv_3dvector.h"

namespace qv {

/// An affine placement in space: a 4 × 4 matrix in single precision that acts on column vectors.
///
/// A product applies its right-hand factor first: `(a * b).transform_point(p)` is
/// `a.transform_point(b.transform_point(p))`.
class qv_matrix {
 public:
  /// Identity.
  qv_matrix();

  /// Turns by `degrees` about the axis with index `axis` (0 x, 1 y, 2 z), counter-clockwise seen
  /// from the tip of the axis. Another index, or an angle that is not finite, gives the identity.
  /// Multiples of 90° are exact.
  static qv_matrix rotation(int axis, float degrees);
  /// Moves by `v`.
  static qv_matrix translation(const qv_3dvector& v);
  /// Scales along the axes.
  static qv_matrix scaling(const qv_3dvector& factors);

  qv_matrix& operator*=(const qv_matrix& right);
  friend qv_matrix operator*(qv_matrix left, const qv_matrix& right) { return left *= right; }
  friend bool operator==(const qv_matrix& a, const qv_matrix& b);

  /// Element in row `row` and column `column`, both 0 … 3.
  float get(int row, int column) const { return elements_[row][column]; }
  void set(int row, int column, float value) { elements_[row][column] = value; }

  /// The point moved, turned and scaled.
  qv_3dvector transform_point(const qv_3dvector& point) const;
  /// The direction turned and scaled, without translation.
  qv_3dvector transform_direction(const qv_3dvector& direction) const;
  /// The unit normal of a surface after the transformation: the direction of the vector product of
  /// two edges, once they are transformed (cofactor matrix). Correct under non-uniform scaling; a
  /// mirror image turns it over against the inverse transpose, so that contours that ran
  /// counter-clockwise about it still do. A singular matrix gives the zero vector.
  qv_3dvector transform_normal(const qv_3dvector& normal) const;

  /// Determinant of the upper-left 3 × 3 part; negative for a mirror image.
  float get_determinant() const;
  /// The inverse placement (the last row counts as 0 0 0 1); the identity when the matrix is
  /// singular.
  qv_matrix get_inverse() const;

 private:
  float elements_[4][4];
};

}  // namespace qv
