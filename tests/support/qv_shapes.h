#pragma once

#include <memory>

#include "core/items/qv_item.h"
#include "utilities/qv_3dvector.h"
#include "utilities/qv_list.h"
#include "utilities/qv_polygon.h"

namespace qv_test {

/// Frees an item with its subtree when it goes out of scope.
struct item_destroyer {
  void operator()(qv::qv_item* item) const { qv::qv_item::destroy(item); }
};
template <class T>
using owned_item = std::unique_ptr<T, item_destroyer>;

/// A new item of class T, freed when it goes out of scope.
template <class T>
owned_item<T> make_item() {
  return owned_item<T>(new T);
}

/// Polygons that their maker hands over, freed when they go out of scope.
class owned_polygons {
 public:
  explicit owned_polygons(const qv::qv_list<qv::qv_polygon*>& polygons) : polygons_(polygons) {}
  owned_polygons(const owned_polygons&) = delete;
  owned_polygons& operator=(const owned_polygons&) = delete;
  ~owned_polygons() {
    for (qv::qv_polygon* polygon : polygons_) delete polygon;
  }
  int get_count() const { return polygons_.get_count(); }
  qv::qv_polygon& operator[](int index) const { return *polygons_[index]; }
  double get_area() const {
    double sum = 0;
    for (const qv::qv_polygon* polygon : polygons_) sum += polygon->get_area();
    return sum;
  }

 private:
  qv::qv_list<qv::qv_polygon*> polygons_;
};

/// A horizontal rectangle at height `z`, facing up.
inline qv::qv_polygon make_rectangle(float x0, float y0, float x1, float y1, float z = 0) {
  qv::qv_polygon polygon({x0, y0, z}, {0, 0, 1});
  polygon.add_contour({{x0, y0, z}, {x1, y0, z}, {x1, y1, z}, {x0, y1, z}});
  return polygon;
}

/// The same with a rectangular hole one metre inside its sides.
inline qv::qv_polygon make_frame(float x0, float y0, float x1, float y1, float z = 0) {
  qv::qv_polygon polygon = make_rectangle(x0, y0, x1, y1, z);
  polygon.add_contour(
      {{x0 + 1, y0 + 1, z}, {x0 + 1, y1 - 1, z}, {x1 - 1, y1 - 1, z}, {x1 - 1, y0 + 1, z}});
  return polygon;
}

/// The twelve triangles of a cube's faces, outwards, as corner points: three for each.
inline qv::qv_list<qv::qv_3dvector> make_cube_corners(float size) {
  const float s = size;
  const qv::qv_3dvector p[8] = {{0, 0, 0}, {s, 0, 0}, {s, s, 0}, {0, s, 0},
                                {0, 0, s}, {s, 0, s}, {s, s, s}, {0, s, s}};
  const int quads[6][4] = {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4},
                           {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}};
  qv::qv_list<qv::qv_3dvector> corners;
  for (const auto& q : quads)
    for (int i : {q[0], q[1], q[2], q[0], q[2], q[3]}) corners.append(p[i]);
  return corners;
}

/// 0, 1, 2, … : each corner a vertex of its own.
inline qv::qv_list<int> make_loose_triangles(const qv::qv_list<qv::qv_3dvector>& corners) {
  qv::qv_list<int> triangles;
  for (int i = 0; i < corners.get_count(); ++i) triangles.append(i);
  return triangles;
}

}  // namespace qv_test
