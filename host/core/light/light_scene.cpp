#include "core/light/light_scene.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <utility>

#include "core/items/qv_scene.h"
#include "core/light/qv_raytracer.h"
#include "core/shapes/qvi_mesh.h"
#include "utilities/qv_date.h"

namespace qv::light {

namespace {

/// Normals whose difference is shorter than this (0.003°) are those of one plane.
constexpr float same_normal = 5e-5f;
/// m.
constexpr float least_lift = 1e-3f;
/// Share of the largest coordinate; neighbouring floats are 1.2e-7 of it apart.
constexpr float relative_lift = 2e-6f;

float to_share(float value) {
  return std::isfinite(value) ? std::clamp(value, 0.0f, 1.0f) : 0.0f;
}

side_optics read_side(qvi_mesh* mesh, bool front, qv_spectrum spectrum) {
  side_optics side;
  const qvi_shader* shader = mesh->get_side_shader(front);
  if (shader == nullptr) {
    side.diffuse_reflexion = qvi_shader::default_diffuse_reflexion;
    return side;
  }
  side.diffuse_reflexion = to_share(shader->get_diffuse_reflexion(spectrum));
  side.direct_reflexion = to_share(shader->get_direct_reflexion(spectrum));
  side.diffuse_transmission = to_share(shader->get_diffuse_transmission(spectrum));
  side.direct_transmission = to_share(shader->get_direct_transmission(spectrum));
  const float sum = side.diffuse_reflexion + side.direct_reflexion + side.diffuse_transmission +
                    side.direct_transmission;
  if (sum > 1) {
    side.diffuse_reflexion /= sum;
    side.direct_reflexion /= sum;
    side.diffuse_transmission /= sum;
    side.direct_transmission /= sum;
  }
  return side;
}

void add_normal(std::vector<qv_3dvector>& normals, const qv_3dvector& normal) {
  const auto same = [&](const qv_3dvector& n) { return is_same_normal(n, normal); };
  if (std::none_of(normals.begin(), normals.end(), same)) normals.push_back(normal);
}

void add_mirror(std::vector<qv_3dvector>& normals, qvi_mesh* mesh, const surface_optics& optics) {
  qv_3dvector a, b, c, normal;
  for (int i = 0; i < mesh->get_nb_triangles(); ++i) {
    if (!mesh->read_triangle(i, a, b, c, &normal) || !normal.is_finite()) continue;
    if (normal == qv_3dvector()) continue;
    if (optics[0].direct_reflexion > 0) add_normal(normals, normal);
    if (optics[1].direct_reflexion > 0) add_normal(normals, -normal);
  }
}

void fill_light_scene(light_scene& made, qv_scene* scene, const qvi_sun* sun,
                      const std::string& layer_name, qv_spectrum spectrum) {
  qv_raytracer* tracer = scene->get_raytracer(layer_name);
  tracer->update();
  made.tracer = tracer;
  made.sun = make_sun_plan(sun);
  made.facings = std::make_unique<sun_facings>(made.sun);
  bool lets_through = false;
  for (qvi_mesh* mesh : tracer->get_meshes()) {
    const surface_optics optics = {read_side(mesh, true, spectrum),
                                   read_side(mesh, false, spectrum)};
    made.optics.push_back(optics);
    for (const side_optics& side : optics) {
      made.transmission.push_back(side.direct_transmission);
      lets_through = lets_through || side.direct_transmission > 0;
    }
    if (optics[0].direct_reflexion > 0 || optics[1].direct_reflexion > 0)
      add_mirror(made.mirror_normals, mesh, optics);
  }
  if (!lets_through) made.transmission.clear();
}

/// Keeps the last light of a scene as long as the scene.
class light_keeper : public qv_scene_observer {
 public:
  void item_arrived(qv_item*) override {}
  void item_left(qv_item*) override {}
  void item_changed(qv_item*, const std::string&) override {}

  std::shared_ptr<const light_scene> light;
  const qvi_sun* sun = nullptr;
  std::string layer_name;
  qv_spectrum spectrum = qv_spectrum::solar;
  unsigned int date = 0;
};

}  // namespace

bool is_same_normal(const qv_3dvector& a, const qv_3dvector& b) {
  return (a - b).length() < same_normal;
}

qv_3dvector lift_off(const qv_3dvector& point, const qv_3dvector& normal) {
  const float largest = std::max({std::fabs(point.x), std::fabs(point.y), std::fabs(point.z)});
  return point + normal * std::max(least_lift, relative_lift * largest);
}

std::shared_ptr<const light_scene> get_light_scene(qv_scene* scene, const qvi_sun* sun,
                                                   const std::string& layer_name,
                                                   qv_spectrum spectrum) {
  // Receivers of several threads come here first; the ray tracer too is brought up to date by one
  // of them only.
  static std::mutex mutex;
  const std::lock_guard guard(mutex);
  auto* keeper = scene->get_observer<light_keeper>();
  // Whatever changes takes a new date.
  if (keeper->light == nullptr || keeper->date != qv_get_date() || keeper->sun != sun ||
      keeper->layer_name != layer_name || keeper->spectrum != spectrum) {
    auto light = std::make_shared<light_scene>();
    fill_light_scene(*light, scene, sun, layer_name, spectrum);
    keeper->light = std::move(light);
    keeper->sun = sun;
    keeper->layer_name = layer_name;
    keeper->spectrum = spectrum;
    keeper->date = qv_get_date();
  }
  return keeper->light;
}

}  // namespace qv::light
