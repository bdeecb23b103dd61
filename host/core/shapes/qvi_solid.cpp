#include "core/shapes/qvi_solid.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/shapes/contours.h"
#include "core/shapes/point_weld.h"
#include "core/shapes/surface_topology.h"
#include "core/shapes/triangles.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_solid)

namespace {

// Sine of the angle below which two faces at a corner count as one plane: a corner between flatter
// faces would shoot far away.
constexpr double smallest_corner_sine = 0.01;

void free_polygons(const qv_list<qv_polygon*>& polygons) {
  for (qv_polygon* polygon : polygons) delete polygon;
}

/// Where a corner goes when the faces at it move: the shortest displacement that has the wanted
/// height above each of up to three independent faces.
class corner_shift {
 public:
  void add_face(const qv_3dvector& normal, double distance) {
    if (count_ == 3 || !normal.is_finite()) return;
    const double n[3] = {normal.x, normal.y, normal.z};
    double rest[3] = {n[0], n[1], n[2]};
    for (int i = 0; i < count_; ++i) {
      const double along = dot(axes_[i], n);
      for (int k = 0; k < 3; ++k) rest[k] -= along * axes_[i][k];
    }
    const double length = std::sqrt(dot(rest, rest));
    if (length < smallest_corner_sine) return;
    const double missing = (distance - dot(shift_, n)) / length;
    for (int k = 0; k < 3; ++k) {
      axes_[count_][k] = rest[k] / length;
      shift_[k] += missing * axes_[count_][k];
    }
    ++count_;
  }

  qv_3dvector get_moved(const qv_3dvector& p) const {
    return {static_cast<float>(p.x + shift_[0]), static_cast<float>(p.y + shift_[1]),
            static_cast<float>(p.z + shift_[2])};
  }

 private:
  static double dot(const double* a, const double* b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
  }

  int count_ = 0;
  double axes_[3][3] = {};
  double shift_[3] = {};
};

/// Calls `visit(normal, contours)` for each face, `contours` as a list of (first, count).
template <class Visit>
void for_each_face(const qvi_solid& solid, const Visit& visit) {
  struct contour {
    int first;
    int count;
  };
  std::vector<contour> contours;
  for_each_contour(solid.get_vertices(), solid.get_contour_sizes(), [&](int first, int count) {
    contours.push_back({first, count});
  });
  const qv_list<qv_3dvector>& normals = solid.get_face_normals();
  std::size_t first = 0;
  for (int face = 0; face < solid.get_face_sizes().get_count(); ++face) {
    const std::size_t left = contours.size() - first;
    const std::size_t count = std::min<std::size_t>(solid.get_face_sizes()[face], left);
    visit(face < normals.get_count() ? normals[face] : qv_3dvector(),
          std::vector<contour>(contours.begin() + first, contours.begin() + first + count));
    first += count;
  }
}

}  // namespace

// --- loading ---

void qvi_solid::store_faces(const qv_list<qv_polygon*>& faces) {
  qv_list<qv_3dvector> vertices;
  qv_list<unsigned int> contour_sizes;
  qv_list<unsigned int> face_sizes;
  qv_list<qv_3dvector> normals;
  for (const qv_polygon* face : faces) {
    for (const qv_3dvector& vertex : face->get_contour_vertices()) vertices.append(vertex);
    for (unsigned int size : face->get_contour_sizes()) contour_sizes.append(size);
    face_sizes.append(static_cast<unsigned int>(face->get_contour_count()));
    normals.append(face->get_normal());
  }
  set_face_normals(normals);
  set_face_sizes(face_sizes);
  set_contour_sizes(contour_sizes);
  set_vertices(vertices);
}

void qvi_solid::load_from_solid(const qv_solid* solid) {
  store_faces(solid != nullptr ? solid->get_faces() : qv_list<qv_polygon*>());
}

void qvi_solid::load_from_polygon(const qv_polygon* polygon) {
  qv_list<qv_polygon*> faces;
  qv_polygon face;
  if (polygon != nullptr) {
    face = *polygon;
    faces.append(&face);
  }
  store_faces(faces);
}

void qvi_solid::merge(const qv_list<qvi_mesh*>& others) {
  qv_list<qv_polygon*> faces = build_raw_polygons();
  const int own = faces.get_count();
  for (qvi_mesh* other : others) {
    if (other == nullptr || other == this) continue;
    for (qv_polygon* face : other->build_raw_polygons()) faces.append(face);
  }
  if (faces.get_count() > own) store_faces(faces);
  free_polygons(faces);
}

// --- faces and triangles ---

qv_list<qv_polygon*> qvi_solid::build_raw_polygons() {
  qv_list<qv_polygon*> polygons;
  const qv_list<qv_3dvector>& vertices = get_vertices();
  for_each_face(*this, [&](const qv_3dvector& normal, const auto& contours) {
    const qv_3dvector point =
        contours.empty() || contours[0].count == 0 ? qv_3dvector() : vertices[contours[0].first];
    polygons.append(new qv_polygon(point, normal));
    for (const auto& [first, count] : contours)
      polygons[polygons.get_count() - 1]->add_contour(get_slice(vertices, first, count));
  });
  return polygons;
}

qv_list<qvi_polygon*> qvi_solid::build_polygons() {
  qv_list<qvi_polygon*> items;
  const qv_list<qv_polygon*> faces = build_raw_polygons();
  for (const qv_polygon* face : faces) {
    auto* item = new qvi_polygon;
    item->load_from_polygon(face);
    item->set_front_shader(get_front_shader());
    item->set_back_shader(get_back_shader());
    items.append(item);
  }
  free_polygons(faces);
  return items;
}

unsigned int qvi_solid::get_shape_date() const {
  return std::max({qvi_mesh::get_shape_date(), get_contour_sizes_date(), get_face_sizes_date(),
                   get_face_normals_date()});
}

float qvi_solid::get_area() {
  const qv_list<qv_polygon*> faces = build_raw_polygons();
  double area = 0;
  for (const qv_polygon* face : faces) area += face->get_area();
  free_polygons(faces);
  return static_cast<float>(area);
}

qv_triangulation qvi_solid::build_triangulation() {
  qv_triangulation result;
  const qv_list<qv_polygon*> faces = build_raw_polygons();
  for (const qv_polygon* face : faces) {
    const qv_triangulation part = qv_triangulate(*face);
    append_triangles(result, part.vertices, part.triangles);
  }
  free_polygons(faces);
  return result;
}

// --- moving ---

void qvi_solid::matrix_transform(const qv_matrix& matrix, bool notify) {
  qv_list<qv_3dvector> normals = get_face_normals();
  for (qv_3dvector& normal : normals) normal = get_transformed_normal(normal, matrix);
  store_geometry<qv_list<qv_3dvector>>(get_param(face_normals_param_), normals, notify);
  store_vertices(get_transformed_contours(get_vertices(), get_contour_sizes(), matrix), notify);
}

void qvi_solid::push_offset(float distance) {
  if (!std::isfinite(distance)) return;
  const qv_list<qv_3dvector>& vertices = get_vertices();
  const std::vector<int> place = weld_points(vertices, surface_topology::corner_distance);
  std::vector<corner_shift> shifts(place.size());
  for_each_face(*this, [&](const qv_3dvector& normal, const auto& contours) {
    for (const auto& [first, count] : contours)
      for (int i = first; i < first + count; ++i) shifts[place[i]].add_face(normal, distance);
  });
  qv_list<qv_3dvector> moved = vertices;
  for (int i = 0; i < moved.get_count(); ++i) moved[i] = shifts[place[i]].get_moved(moved[i]);
  set_vertices(moved);
}

void qvi_solid::reverse() {
  qv_list<qv_3dvector> normals = get_face_normals();
  for (qv_3dvector& normal : normals) normal = get_opposite(normal);
  set_face_normals(normals);
  set_vertices(get_reversed_contours(get_vertices(), get_contour_sizes()));
  exchange_shaders();
}

}  // namespace qv
