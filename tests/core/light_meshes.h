#pragma once

#include <array>
#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

#include "core/shapes/qvi_mesh.h"
#include "utilities/qv_random.h"

namespace qv_test {

struct item_destroyer {
  void operator()(qv::qv_item* item) const { qv::qv_item::destroy(item); }
};
/// An item that belongs to the test.
template <class T>
using owned = std::unique_ptr<T, item_destroyer>;

using corners = std::array<qv::qv_3dvector, 3>;

/// Gives `mesh` these triangles, no vertex shared.
inline void load(qv::qvi_mesh& mesh, const std::vector<corners>& triangles) {
  qv::qv_list<qv::qv_3dvector> vertices;
  qv::qv_list<int> indices;
  for (const corners& t : triangles) {
    for (const qv::qv_3dvector& p : t) {
      indices.append(vertices.get_count());
      vertices.append(p);
    }
  }
  mesh.load_from_triangles(vertices, indices);
}

inline owned<qv::qvi_mesh> make_mesh(const std::vector<corners>& triangles) {
  owned<qv::qvi_mesh> mesh(new qv::qvi_mesh);
  load(*mesh, triangles);
  return mesh;
}

/// The square of edge 2 `half` about the point (0, 0, z), facing up.
inline std::vector<corners> square(float half, float z) {
  const qv::qv_3dvector a{-half, -half, z}, b{half, -half, z}, c{half, half, z}, d{-half, half, z};
  return {{a, b, c}, {a, c, d}};
}

/// A box, facing outwards.
inline std::vector<corners> box(const qv::qv_3dvector& low, const qv::qv_3dvector& high) {
  const auto corner = [&](int i) {
    return qv::qv_3dvector((i & 1) != 0 ? high.x : low.x, (i & 2) != 0 ? high.y : low.y,
                           (i & 4) != 0 ? high.z : low.z);
  };
  constexpr int quads[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                               {1, 3, 7, 5}, {3, 2, 6, 7}, {2, 0, 4, 6}};
  std::vector<corners> triangles;
  for (const auto& q : quads) {
    triangles.push_back({corner(q[0]), corner(q[1]), corner(q[2])});
    triangles.push_back({corner(q[0]), corner(q[2]), corner(q[3])});
  }
  return triangles;
}

/// A sphere of `rows` × 2 `rows` patches, facing outwards; shared corners are the same floats.
inline std::vector<corners> sphere(const qv::qv_3dvector& centre, float radius, int rows) {
  const auto point = [&](int row, int column) {
    const double tilt = std::numbers::pi * row / rows;
    const double turn = std::numbers::pi * (column % (2 * rows)) / rows;
    if (row == 0 || row == rows) return centre + qv::qv_3dvector(0, 0, row == 0 ? radius : -radius);
    return centre + qv::qv_3dvector(static_cast<float>(radius * std::sin(tilt) * std::cos(turn)),
                                    static_cast<float>(radius * std::sin(tilt) * std::sin(turn)),
                                    static_cast<float>(radius * std::cos(tilt)));
  };
  std::vector<corners> triangles;
  for (int r = 0; r < rows; ++r) {
    for (int c = 0; c < 2 * rows; ++c) {
      if (r + 1 < rows) triangles.push_back({point(r, c), point(r + 1, c), point(r + 1, c + 1)});
      if (r > 0) triangles.push_back({point(r, c), point(r + 1, c + 1), point(r, c + 1)});
    }
  }
  return triangles;
}

/// Triangles about a metre in size, scattered over a cube of edge `extent` at the origin.
inline std::vector<corners> scatter(int count, float extent, int seed) {
  qv::qv_random random(seed);
  const auto point = [&](float size) {
    const float x = random.dice_float(), y = random.dice_float(), z = random.dice_float();
    return qv::qv_3dvector(x, y, z) * size;
  };
  std::vector<corners> triangles;
  for (int i = 0; i < count; ++i) {
    const qv::qv_3dvector at = point(extent);
    triangles.push_back({at + point(2), at + point(2), at + point(2)});
  }
  return triangles;
}

}  // namespace qv_test
