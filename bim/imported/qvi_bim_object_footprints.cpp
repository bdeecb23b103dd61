#include <algorithm>
#include <cmath>
#include <memory>

#include "bim/imported/qvi_bim_object.h"
#include "core/shapes/qvi_polygon.h"
#include "utilities/qv_solid.h"

namespace qv {

namespace {

constexpr float side_face_cosine =
    0.01f;  // faces nearer to parallel with the main normal are sides
constexpr float gap_closing_growth = 0.01f;  // m, closes the joints between neighbouring faces
constexpr int mitre_join = 2;
constexpr float smallest_area = 0.1f;        // m²
constexpr float prism_margin = 0.001f;       // m, at either end
constexpr float slice_distance = 0.1f;       // m, at most
constexpr float beyond_every_height = 1e8f;  // m

/// What is seen of an object along its main normal: the outline, how far it reaches, its material.
struct silhouette {
  qv_polygon outline;
  float low = beyond_every_height;
  float high = -beyond_every_height;
  qvi_shader* shader = nullptr;
};

silhouette look_along(const qv_3dvector& center, const qv_3dvector& normal,
                      const qv_list<qvi_mesh*>& meshes) {
  silhouette seen;
  seen.outline = qv_polygon(center, normal);
  for (qvi_mesh* mesh : meshes) {
    if (seen.shader == nullptr) seen.shader = mesh->get_front_shader();
    for (qv_polygon* raw : mesh->build_raw_polygons()) {
      const std::unique_ptr<qv_polygon> owned(raw);
      if (std::fabs(raw->get_normal().dot(normal)) < side_face_cosine) continue;
      raw->offset(gap_closing_growth, mitre_join);
      seen.outline.unites(*raw);
      for (const qv_3dvector& vertex : raw->get_contour_vertices()) {
        const float height = (vertex - center).dot(normal);
        seen.low = std::min(seen.low, height);
        seen.high = std::max(seen.high, height);
      }
    }
  }
  seen.outline.offset(-gap_closing_growth, mitre_join);
  return seen;
}

/// `polygon` moved by `distance` metres along its normal.
qv_polygon lifted(const qv_polygon& polygon, float distance) {
  const qv_3dvector step = polygon.get_normal() * distance;
  qv_polygon moved(polygon.get_point() + step, polygon.get_normal());
  for (int contour = 0; contour < polygon.get_contour_count(); ++contour) {
    qv_list<qv_3dvector> vertices = polygon.get_contour(contour);
    for (qv_3dvector& vertex : vertices) vertex += step;
    moved.add_contour(vertices);
  }
  return moved;
}

}  // namespace

qv_list<qvi_polygon*> qvi_bim_object::get_footprints() {
  qv_list<qvi_polygon*> present;
  const qv_list<qvi_mesh*> meshes = qv_collect<qvi_mesh>(this, "mesh");
  for (qvi_mesh* mesh : meshes) {
    if (mesh->has_type("polygon") && mesh->get_raytracing_layers().contains("footprint")) {
      present.append(static_cast<qvi_polygon*>(mesh));
    }
  }
  return present.is_empty() ? build_footprints(meshes) : present;
}

qv_list<qvi_polygon*> qvi_bim_object::build_footprints(const qv_list<qvi_mesh*>& meshes) {
  qv_list<qvi_polygon*> footprints;
  const qv_3dvector normal = find_main_normal();
  const silhouette seen = look_along(get_bounding_box().get_center(), normal, meshes);
  if (!(seen.outline.get_area() >= smallest_area)) return footprints;

  const auto add_footprint = [&](const qv_polygon& polygon) {
    auto* const footprint = new qvi_polygon;
    footprint->load_from_polygon(&polygon);
    footprint->set_front_shader(seen.shader);
    footprint->set_raytracing_layers({"footprint"});
    footprint->set_rendering_visibility(false);
    add_child(footprint, -1);
    footprints.append(footprint);
  };

  const float extent = seen.high - seen.low;
  qv_solid prism;
  prism.extrusion(lifted(seen.outline, seen.low - prism_margin),
                  normal * (extent + 2.0f * prism_margin));
  for (const qv_polygon* face : prism.get_faces()) add_footprint(*face);

  const int slice_count = static_cast<int>(extent / slice_distance);
  if (slice_count >= 1 && seen.high > seen.low) {
    const float step = extent / static_cast<float>(slice_count + 1);
    // Adding steps in single precision may leave room for one slice more just under the top, and no
    // more than that.
    float height = seen.low;
    for (int slice = 0; slice <= slice_count + 1 && height < seen.high; ++slice) {
      add_footprint(lifted(seen.outline, height));
      height += step;
    }
  }
  return footprints;
}

}  // namespace qv
