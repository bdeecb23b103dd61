#include "core/shapes/contours.h"

namespace qv {

qv_list<qv_3dvector> get_slice(const qv_list<qv_3dvector>& vertices, int first, int count) {
  qv_list<qv_3dvector> slice;
  slice.reserve(count);
  for (int i = 0; i < count; ++i) slice.append(vertices[first + i]);
  return slice;
}

qv_list<qv_3dvector> get_reversed_contours(const qv_list<qv_3dvector>& vertices,
                                           const qv_list<unsigned int>& sizes) {
  qv_list<qv_3dvector> reversed = vertices;
  for_each_contour(vertices, sizes, [&](int first, int count) {
    std::reverse(reversed.begin() + first, reversed.begin() + first + count);
  });
  return reversed;
}

qv_list<qv_3dvector> get_transformed(const qv_list<qv_3dvector>& points, const qv_matrix& matrix) {
  qv_list<qv_3dvector> transformed;
  transformed.reserve(points.get_count());
  for (const qv_3dvector& point : points) transformed.append(matrix.transform_point(point));
  return transformed;
}

qv_list<qv_3dvector> get_transformed_contours(const qv_list<qv_3dvector>& vertices,
                                              const qv_list<unsigned int>& sizes,
                                              const qv_matrix& matrix) {
  const qv_list<qv_3dvector> transformed = get_transformed(vertices, matrix);
  return matrix.get_determinant() < 0 ? get_reversed_contours(transformed, sizes) : transformed;
}

qv_3dvector get_transformed_normal(const qv_3dvector& normal, const qv_matrix& matrix) {
  const qv_3dvector transformed = matrix.transform_normal(normal);
  const bool other_side = transformed.dot(matrix.transform_direction(normal)) < 0;
  return other_side ? get_opposite(transformed) : transformed;
}

}  // namespace qv
