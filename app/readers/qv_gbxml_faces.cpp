#include "app/readers/qv_gbxml_faces.h"

#include <array>
#include <string>

namespace qv {
namespace {

qv_3dvector to_single(const qv_double3& v) {
  return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

// Air lets light through, and what bounds no space takes no part in measuring.
const qv_list<std::string>& get_raytracing_layers(bool is_solid, bool bounds) {
  static const auto make = [](bool solid, bool bounding) {
    qv_list<std::string> layers;
    if (solid) layers.append("simulation");
    layers.append("picking");
    if (bounding) layers.append("bim");
    return layers;
  };
  static const std::array<qv_list<std::string>, 4> layers = {make(false, false), make(false, true),
                                                             make(true, false), make(true, true)};
  return layers[(is_solid ? 2U : 0U) + (bounds ? 1U : 0U)];
}

}  // namespace

qvi_polygon* qv_make_face(const qv_plane_part& part, bool is_solid, bool bounds) {
  auto* face = new qvi_polygon;
  qv_list<qv_3dvector> vertices;
  qv_list<unsigned int> sizes;
  for (const qv_loop& contour : part.contours) {
    sizes.append(static_cast<unsigned int>(contour.size()));
    vertices.reserve(vertices.get_count() + static_cast<int>(contour.size()));
    for (const qv_double3& p : contour) vertices.append(to_single(p));
  }
  face->set_vertices(vertices);
  face->set_contour_sizes(sizes);
  face->set_normal(to_single(part.normal));
  face->set_raytracing_layers(get_raytracing_layers(is_solid, bounds));
  static const qv_list<std::string> main_layer = {"main"};
  face->set_rendering_layers(main_layer);
  return face;
}

double qv_measure_face(const qvi_polygon& face, const qv_double3& normal) {
  const auto& vertices = face.get_vertices();
  const auto at = [&vertices](int i) {
    return qv_double3{vertices[i].x, vertices[i].y, vertices[i].z};
  };
  qv_double3 sum;
  int first = 0;
  for (const unsigned int size : face.get_contour_sizes()) {
    const qv_double3 start = at(first);
    for (int i = first + 2; i < first + static_cast<int>(size); ++i)
      sum = sum + (at(i - 1) - start).cross(at(i) - start) * 0.5;
    first += static_cast<int>(size);
  }
  return sum.dot(normal);
}

}  // namespace qv
