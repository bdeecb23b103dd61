#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "core/light/sun_facing.h"
#include "core/light/sun_plan.h"
#include "core/shapes/qv_spectrum.h"
#include "utilities/qv_3dvector.h"

namespace qv {
class qv_raytracer;
class qv_scene;
class qvi_sun;
}  // namespace qv

namespace qv::light {

/// What one side of a surface does to the light that strikes it: shares between 0 and 1 whose sum
/// is 1 or less.
struct side_optics {
  float diffuse_reflexion = 0;
  float direct_reflexion = 0;
  float diffuse_transmission = 0;
  float direct_transmission = 0;
};

/// Front side, back side.
using surface_optics = std::array<side_optics, 2>;

/// Everything in a scene that has to do with light in one spectrum, as plain values, found once for
/// all receivers. Nothing that it says changes any more; any number of threads may read it.
///
/// Coefficients below 0 or not finite count as 0, those of a side whose sum is above 1 are scaled
/// down to 1. A side without a shader has a shader's default coefficients.
struct light_scene {
  const qv_raytracer* tracer = nullptr;
  sun_plan sun;
  /// Made as they are asked for.
  std::unique_ptr<sun_facings> facings;
  /// By the index of the mesh among the tracer's.
  std::vector<surface_optics> optics;
  /// Direct transmissions by mesh and side, as `qv_raytracer::find_light` takes them.
  std::vector<float> transmission;
  /// The different directions into which mirrors face (the unit normal of each side that reflects
  /// directly).
  std::vector<qv_3dvector> mirror_normals;

  /// What to give `find_light`: null when no surface lets light straight through.
  const float* get_transmission() const {
    return transmission.empty() ? nullptr : transmission.data();
  }
};

/// The present state of a scene's light: meshes of ray-tracing layer `layer_name`, shaders' values
/// for `spectrum`, and `sun` (null for none). The scene keeps the last one asked for, and gives it
/// again until anything at all was changed. May be called from several threads at once, as long as
/// none changes the scene.
std::shared_ptr<const light_scene> get_light_scene(qv_scene* scene, const qvi_sun* sun,
                                                   const std::string& layer_name,
                                                   qv_spectrum spectrum);

/// True for normals of one plane: they differ by their rounding only.
bool is_same_normal(const qv_3dvector& a, const qv_3dvector& b);

/// `point` of a surface moved a millimetre along the unit normal `normal`, so that a ray from there
/// does not meet the surface itself; more where coordinates are so large that a millimetre is
/// within their rounding.
qv_3dvector lift_off(const qv_3dvector& point, const qv_3dvector& normal);

}  // namespace qv::light
