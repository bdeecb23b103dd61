#include "core/shapes/qvi_mesh.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <vector>

#include "core/light/qv_ray.h"
#include "core/shapes/contours.h"
#include "core/shapes/coplanar_polygons.h"
#include "core/shapes/point_weld.h"
#include "core/shapes/triangles.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_mesh)

namespace {

constexpr int unused_vertex = -1;

}  // namespace

// --- dates and triangles ---

unsigned int qvi_mesh::get_shape_date() const {
  const derived_geometry* derived = derived_.find();
  return std::max({get_vertices_date(), get_triangles_date(), derived ? derived->quiet_date : 0});
}

unsigned int qvi_mesh::get_geometry_date() const {
  return std::max(get_shape_date(), get_front_shader_date());
}

qv_triangulation qvi_mesh::build_triangulation() {
  return {};
}

namespace {

// Keeps a triangulation, without room to spare. Most surfaces are quadrangles, whose triangles are
// numbered in one of a few ways once their vertices are kept elsewhere: those made last are shared.
std::shared_ptr<const qv_triangulation> keep(const qv_triangulation& made) {
  static auto& recent = *new std::array<std::shared_ptr<const qv_triangulation>, 4>;
  constexpr int most_indices = 12;
  if (!made.vertices.is_empty() || made.triangles.get_count() > most_indices)
    return std::make_shared<const qv_triangulation>(made);
  for (const auto& known : recent)
    if (known != nullptr && known->triangles == made.triangles) return known;
  std::rotate(recent.begin(), recent.end() - 1, recent.end());
  return recent[0] = std::make_shared<const qv_triangulation>(made);
}

}  // namespace

const qvi_mesh::derived_geometry& qvi_mesh::get_derived() {
  derived_geometry& derived = derived_.get();
  const unsigned int date = get_shape_date();
  if (derived.triangulation == nullptr || derived.built_date != date) {
    qv_triangulation made = build_triangulation();
    derived.has_own_vertices = made.vertices == get_vertices();
    if (derived.has_own_vertices) made.vertices.clear();
    derived.triangulation = keep(made);
    derived.built_date = date;
  }
  return derived;
}

const qv_list<qv_3dvector>& qvi_mesh::get_triangle_vertices() {
  if (has_own_triangles()) return get_vertices();
  const derived_geometry& derived = get_derived();
  return derived.has_own_vertices ? get_vertices() : derived.triangulation->vertices;
}

const qv_list<int>& qvi_mesh::get_triangle_indices() {
  return has_own_triangles() ? get_param(triangles_param_)->get_int_list()
                             : get_derived().triangulation->triangles;
}

qv_triangulation qvi_mesh::copy_triangles() {
  const derived_geometry* const derived = derived_.find();
  const bool kept = derived != nullptr && derived->triangulation != nullptr &&
                    derived->built_date == get_shape_date();
  if (!has_own_triangles() && !kept) return build_triangulation();
  return {get_triangle_vertices(), get_triangle_indices()};
}

int qvi_mesh::get_nb_triangles() {
  return get_triangle_indices().get_count() / 3;
}

int qvi_mesh::get_nb_vertices() {
  return get_triangle_vertices().get_count();
}

bool qvi_mesh::read_triangle(int index, qv_3dvector& a, qv_3dvector& b, qv_3dvector& c,
                             qv_3dvector* normal) {
  const qv_list<qv_3dvector>& vertices = get_triangle_vertices();
  const qv_list<int>& triangles = get_triangle_indices();
  triangle_corners corners;
  if (index < 0 || index >= triangles.get_count() / 3 ||
      !read_corners(triangles, index, vertices.get_count(), corners))
    return false;
  a = vertices[corners[0]];
  b = vertices[corners[1]];
  c = vertices[corners[2]];
  if (normal != nullptr) *normal = area_vector(a, b, c).get_normal();
  return true;
}

float qvi_mesh::get_area() {
  const qv_list<qv_3dvector>& vertices = get_triangle_vertices();
  double area = 0;
  for_each_triangle(
      get_triangle_indices(), vertices.get_count(), [&](const triangle_corners& corners) {
        const double part =
            area_vector(vertices[corners[0]], vertices[corners[1]], vertices[corners[2]]).length();
        if (std::isfinite(part)) area += part / 2;
      });
  return static_cast<float>(area);
}

qv_box qvi_mesh::get_local_bounding_box() {
  qv_box box;
  for (const qv_3dvector& vertex : get_vertices()) box.enlarge(vertex);
  return box;
}

// --- loading and changing ---

void qvi_mesh::load_from_polygon(const qv_polygon* polygon) {
  const qv_triangulation triangulation =
      polygon == nullptr ? qv_triangulation() : qv_triangulate(*polygon);
  load_from_triangles(triangulation.vertices, triangulation.triangles);
}

void qvi_mesh::load_from_triangles(const qv_list<qv_3dvector>& vertices,
                                   const qv_list<int>& triangles) {
  if (!has_own_triangles()) return;
  qv_triangulation sound;
  append_triangles(sound, vertices, triangles);
  set_vertices(sound.vertices);
  set_triangles(sound.triangles);
}

void qvi_mesh::merge(qvi_mesh* other) {
  merge(qv_list<qvi_mesh*>{other});
}

void qvi_mesh::merge(const qv_list<qvi_mesh*>& others) {
  if (!has_own_triangles()) return;
  qv_triangulation added;
  for (qvi_mesh* other : others)
    if (other != nullptr && other != this)
      append_triangles(added, other->get_triangle_vertices(), other->get_triangle_indices());
  if (added.vertices.is_empty()) return;
  qv_triangulation sum;
  append_triangles(sum, get_triangle_vertices(), get_triangle_indices());
  append_triangles(sum, added.vertices, added.triangles);
  load_from_triangles(sum.vertices, sum.triangles);
}

void qvi_mesh::matrix_transform(const qv_matrix& matrix, bool notify) {
  if (!has_own_triangles()) return;
  store_vertices(get_transformed(get_vertices(), matrix), notify);
  if (matrix.get_determinant() < 0)
    store_geometry<qv_list<int>>(get_param(triangles_param_), get_turned_triangles(get_triangles()),
                                 notify);
}

void qvi_mesh::push_offset(float distance) {
  if (!has_own_triangles() || !std::isfinite(distance)) return;
  const qv_list<qv_3dvector>& vertices = get_vertices();
  const std::vector<int> place = weld_points(vertices, 0);
  std::vector<area_vector> sums(place.size());
  for_each_triangle(
      get_triangle_indices(), vertices.get_count(), [&](const triangle_corners& corners) {
        const area_vector area(vertices[corners[0]], vertices[corners[1]], vertices[corners[2]]);
        if (!std::isfinite(area.length())) return;
        for (int corner : corners) sums[place[corner]] += area;
      });
  qv_list<qv_3dvector> moved = vertices;
  for (int i = 0; i < moved.get_count(); ++i) moved[i] += sums[place[i]].get_normal() * distance;
  set_vertices(moved);
}

void qvi_mesh::reverse() {
  if (!has_own_triangles()) return;
  set_triangles(get_turned_triangles(get_triangles()));
  exchange_shaders();
}

void qvi_mesh::exchange_shaders() {
  qvi_shader* front = get_front_shader();
  set_front_shader(get_back_shader());
  set_back_shader(front);
}

void qvi_mesh::optimize_vertices(float distance) {
  if (!has_own_triangles()) return;
  const qv_list<qv_3dvector>& vertices = get_vertices();
  const std::vector<int> kept = weld_points(vertices, distance);
  qv_list<int> triangles;
  std::vector<int> new_index(kept.size(), unused_vertex);
  for_each_triangle(get_triangle_indices(), vertices.get_count(), [&](triangle_corners corners) {
    for (int& corner : corners) corner = kept[corner];
    const area_vector area(vertices[corners[0]], vertices[corners[1]], vertices[corners[2]]);
    if (!(area.length() > 0)) return;
    for (int corner : corners) {
      triangles.append(corner);
      new_index[corner] = corner;
    }
  });
  qv_list<qv_3dvector> used;
  for (int i = 0; i < vertices.get_count(); ++i) {
    if (new_index[i] == unused_vertex) continue;
    new_index[i] = used.get_count();
    used.append(vertices[i]);
  }
  for (int& corner : triangles) corner = new_index[corner];
  load_from_triangles(used, triangles);
}

qv_list<qv_polygon*> qvi_mesh::build_raw_polygons() {
  return build_coplanar_polygons(get_triangle_vertices(), get_triangle_indices());
}

// --- shading and text ---

qvi_shader* qvi_mesh::get_side_shader(bool front) {
  return front ? get_front_shader() : get_back_shader();
}

bool qvi_mesh::shade_ray(qv_ray* ray, qv_color& color) {
  if (ray == nullptr || ray->hit_mesh != this || !(ray->hit_distance >= 0)) return false;
  const bool from_behind = ray->direction.dot(ray->hit_normal) > 0;
  qvi_shader* shader = get_side_shader(!from_behind);
  if (shader == nullptr) return false;
  color = shader->compute_color(ray);
  return true;
}

namespace {

template <class T>
void append_number(std::string& text, T value) {
  // Room for the longest float or int in its shortest form.
  char buffer[32];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  if (text.back() != '[') text += ',';
  text.append(buffer, end);
}

void append_coordinate(std::string& text, float value) {
  if (std::isfinite(value)) {
    append_number(text, value);
  } else {
    text += text.back() == '[' ? "null" : ",null";
  }
}

}  // namespace

std::string qvi_mesh::to_json() {
  const qv_list<qv_3dvector>& vertices = get_triangle_vertices();
  std::string text = "{\"vertices\":[";
  for (const qv_3dvector& vertex : vertices)
    for (float coordinate : {vertex.x, vertex.y, vertex.z}) append_coordinate(text, coordinate);
  text += "],\"triangles\":[";
  for_each_triangle(get_triangle_indices(), vertices.get_count(),
                    [&](const triangle_corners& corners) {
                      for (int corner : corners) append_number(text, corner);
                    });
  text += "]}";
  return text;
}

}  // namespace qv
