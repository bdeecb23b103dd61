#pragma once

#include <string>

#include "core/shapes/qv_spectrum.h"
#include "utilities/qv_3dvector.h"
#include "utilities/qv_list.h"
#include "utilities/qv_polygon.h"

namespace qv {

class qv_scene;
class qvi_sun;

/// A surface that receives the sun in a scene: what is to be computed, and with which effort.
///
/// Results are per unit and per time step of the sun: direct ones per W/m² of direct normal
/// irradiation, diffuse ones per W/m² of diffuse horizontal irradiation.
class qv_receiver {
 public:
  /// Receives in `scene`, through the meshes of ray-tracing layer `layer_name`. A null `sun` takes
  /// the scene's first.
  qv_receiver(qv_scene* scene, qvi_sun* sun, const std::string& layer_name);
  qv_receiver(const qv_receiver&) = delete;
  qv_receiver& operator=(const qv_receiver&) = delete;
  virtual ~qv_receiver();

  qv_scene* get_scene() const { return scene_; }
  qvi_sun* get_sun() const { return sun_; }
  const std::string& get_layer_name() const { return layer_name_; }

  /// The surface that receives.
  void set_polygon(const qv_polygon& polygon) { polygon_ = polygon; }
  const qv_polygon& get_polygon() const { return polygon_; }
  /// The side of the surface that receives, a unit vector.
  void set_normal(const qv_3dvector& normal) { normal_ = normal; }
  const qv_3dvector& get_normal() const { return normal_; }
  /// How far sample points are lifted off the surface along the normal, m.
  void set_offset(float offset) { offset_ = offset; }
  float get_offset() const { return offset_; }
  /// The band in which surfaces reflect and transmit.
  void set_spectrum(qv_spectrum spectrum) { spectrum_ = spectrum; }
  qv_spectrum get_spectrum() const { return spectrum_; }
  /// Largest number of reflexions and transmissions that are followed.
  void set_ray_depth(int depth) { ray_depth_ = depth; }
  int get_ray_depth() const { return ray_depth_; }
  /// Rays over the sky and the surroundings; 0 casts none.
  void set_montecarlo_rays(int count) { montecarlo_rays_ = count; }
  int get_montecarlo_rays() const { return montecarlo_rays_; }
  /// Rays towards the sun per time step.
  void set_direct_rays(int count) { direct_rays_ = count; }
  int get_direct_rays() const { return direct_rays_; }
  /// True gives results per square metre, false for the whole surface.
  void set_per_square_metter(bool per_square_metre) { per_square_metre_ = per_square_metre; }
  bool get_per_square_metter() const { return per_square_metre_; }
  /// Spread below which direct sampling stops early; 0 never stops early.
  void set_direct_error(float error) { direct_error_ = error; }
  float get_direct_error() const { return direct_error_; }
  /// Spread below which diffuse sampling stops early; 0 never stops early.
  void set_diffuse_error(float error) { diffuse_error_ = error; }
  float get_diffuse_error() const { return diffuse_error_; }

 private:
  qv_scene* scene_;
  qvi_sun* sun_;
  std::string layer_name_;
  qv_polygon polygon_;
  qv_3dvector normal_{0, 0, 1};
  float offset_ = 0;
  qv_spectrum spectrum_ = qv_spectrum::solar;
  int ray_depth_ = 0;
  int montecarlo_rays_ = 0;
  int direct_rays_ = 0;
  bool per_square_metre_ = true;
  float direct_error_ = 0;
  float diffuse_error_ = 0;
};

}  // namespace qv
