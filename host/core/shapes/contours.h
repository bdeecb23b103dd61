#pragma once

#include <algorithm>

#include "utilities/qv_3dvector.h"
#include "utilities/qv_list.h"
#include "utilities/qv_matrix.h"

namespace qv {

// What polygons and solids share: contours kept as one flat list of vertices beside a list of
// sizes. Sizes that promise more vertices than there are count only those that are there.

/// Calls `visit(first, count)` for each contour: the index of its first vertex and their number.
template <class Visit>
void for_each_contour(const qv_list<qv_3dvector>& vertices, const qv_list<unsigned int>& sizes,
                      const Visit& visit) {
  int first = 0;
  for (const unsigned int size : sizes) {
    const auto left = static_cast<unsigned int>(vertices.get_count() - first);
    const auto count = static_cast<int>(std::min(size, left));
    visit(first, count);
    first += count;
  }
}

/// `count` vertices from index `first` on.
qv_list<qv_3dvector> get_slice(const qv_list<qv_3dvector>& vertices, int first, int count);

/// The same contours, each in reverse order.
qv_list<qv_3dvector> get_reversed_contours(const qv_list<qv_3dvector>& vertices,
                                           const qv_list<unsigned int>& sizes);

qv_list<qv_3dvector> get_transformed(const qv_list<qv_3dvector>& points, const qv_matrix& matrix);

/// The contours transformed, reversed by a mirror image, so that they run the same way about
/// `get_transformed_normal` as before about the normal.
qv_list<qv_3dvector> get_transformed_contours(const qv_list<qv_3dvector>& vertices,
                                              const qv_list<unsigned int>& sizes,
                                              const qv_matrix& matrix);

/// The unit normal of a transformed plane, on the side to which the transformation takes the
/// normal's side, mirror image or not. The zero vector for a singular matrix.
qv_3dvector get_transformed_normal(const qv_3dvector& normal, const qv_matrix& matrix);

/// The opposite vector, whose zeros are positive.
inline qv_3dvector get_opposite(const qv_3dvector& v) {
  return {0 - v.x, 0 - v.y, 0 - v.z};
}

}  // namespace qv
