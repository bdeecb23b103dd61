#pragma once

#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "core/items/qv_scene.h"
#include "core/light/qv_receiver.h"
#include "core/light/qvi_sun.h"
#include "core/shapes/qvi_mesh.h"
#include "light_meshes.h"
#include "utilities/qv_polygon.h"

namespace qv_test {

/// Coefficients of a surface for solar radiation.
struct finish {
  float diffuse_reflexion = 0;
  float direct_reflexion = 0;
  float diffuse_transmission = 0;
  float direct_transmission = 0;
};

inline qv::qvi_shader* add_shader(qv::qv_scene& scene, const finish& coefficients) {
  auto* shader = new qv::qvi_shader;
  scene.add_child(shader, -1);
  shader->set_diffuse_reflexion(coefficients.diffuse_reflexion, qv::qv_spectrum::solar);
  shader->set_direct_reflexion(coefficients.direct_reflexion, qv::qv_spectrum::solar);
  shader->set_diffuse_transmission(coefficients.diffuse_transmission, qv::qv_spectrum::solar);
  shader->set_direct_transmission(coefficients.direct_transmission, qv::qv_spectrum::solar);
  return shader;
}

/// Triangles in layer "simulation", both sides of the same finish.
inline qv::qvi_mesh* add_surface(qv::qv_scene& scene, const std::vector<corners>& triangles,
                                 const finish& coefficients = {}) {
  auto* mesh = new qv::qvi_mesh;
  scene.add_child(mesh, -1);
  load(*mesh, triangles);
  mesh->set_raytracing_layers({"simulation"});
  qv::qvi_shader* shader = add_shader(scene, coefficients);
  mesh->set_front_shader(shader);
  mesh->set_back_shader(shader);
  return mesh;
}

/// A parallelogram from `a` along `u` and `v`, its front towards u × v.
inline std::vector<corners> parallelogram(const qv::qv_3dvector& a, const qv::qv_3dvector& u,
                                          const qv::qv_3dvector& v) {
  return {{a, a + u, a + u + v}, {a, a + u + v, a + v}};
}

inline qv::qv_polygon to_polygon(const qv::qv_3dvector& a, const qv::qv_3dvector& u,
                                 const qv::qv_3dvector& v) {
  qv::qv_polygon polygon(a, u.cross(v).normalized());
  polygon.add_contour({a, a + u, a + u + v, a + v});
  return polygon;
}

/// Unit direction at an elevation above the horizon and an azimuth counter-clockwise from +x,
/// degrees.
inline qv::qv_3dvector direction_at(double elevation, double azimuth) {
  const double e = elevation * std::numbers::pi / 180, a = azimuth * std::numbers::pi / 180;
  return {static_cast<float>(std::cos(e) * std::cos(a)),
          static_cast<float>(std::cos(e) * std::sin(a)), static_cast<float>(std::sin(e))};
}

/// A sun of 800 W/m² and a sky of 100 W/m² at every step.
inline qv::qvi_sun* add_sun(qv::qv_scene& scene, const std::vector<qv::qv_3dvector>& directions) {
  auto* sun = new qv::qvi_sun;
  scene.add_child(sun, -1);
  qv::qv_list<qv::qv_3dvector> towards;
  qv::qv_list<float> direct, diffuse;
  for (const qv::qv_3dvector& direction : directions) {
    towards.append(direction);
    direct.append(800);
    diffuse.append(100);
  }
  sun->set_directions(towards);
  sun->set_direct_irradiation(direct);
  sun->set_diffuse_irradiation(diffuse);
  return sun;
}

/// Suns of a year at 45° north, every hour of every `stride`-th day: simple formulas, good enough
/// for shapes of paths. South is −y.
inline std::vector<qv::qv_3dvector> year_of_suns(int stride = 1) {
  constexpr double radians = std::numbers::pi / 180;
  const double latitude = 45 * radians;
  std::vector<qv::qv_3dvector> directions;
  for (int day = 0; day < 365; day += stride) {
    const double declination = -23.44 * radians * std::cos(2 * std::numbers::pi * (day + 10) / 365);
    for (int hour = 0; hour < 24; ++hour) {
      const double angle = 15 * radians * (hour + 0.5 - 12);
      const double east = -std::cos(declination) * std::sin(angle);
      const double north = std::cos(latitude) * std::sin(declination) -
                           std::sin(latitude) * std::cos(declination) * std::cos(angle);
      const double up = std::sin(latitude) * std::sin(declination) +
                        std::cos(latitude) * std::cos(declination) * std::cos(angle);
      directions.emplace_back(static_cast<float>(east), static_cast<float>(north),
                              static_cast<float>(up));
    }
  }
  return directions;
}

struct receiver_settings {
  int direct_rays = 100000;
  int montecarlo_rays = 10000;
  int ray_depth = 3;
  float direct_error = 0;
  float diffuse_error = 0;
};

/// A receiver in `scene`'s first sun that faces `polygon`'s normal, as walls and openings set it.
class test_receiver : public qv::qv_receiver {
 public:
  test_receiver(qv::qv_scene& scene, const qv::qv_polygon& polygon,
                const receiver_settings& settings = {})
      : qv_receiver(&scene, nullptr, "simulation") {
    set_normal(polygon.get_normal());
    set_polygon(polygon);
    set_offset(0.01f);
    set_direct_rays(settings.direct_rays);
    set_montecarlo_rays(settings.montecarlo_rays);
    set_ray_depth(settings.ray_depth);
    set_direct_error(settings.direct_error);
    set_diffuse_error(settings.diffuse_error);
  }
};

}  // namespace qv_test
