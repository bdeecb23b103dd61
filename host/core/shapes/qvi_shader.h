#pragma once

#include "core/items/qv_accessors.h"
#include "core/shapes/qv_spectrum.h"

namespace qv {

class qv_ray;

/// What a surface looks like and does to radiation. Item type "shader".
///
/// For each of the three spectra a surface has four coefficients between 0 and 1: reflexion and
/// transmission, each direct (as a mirror or a clear pane does) and diffuse (as matt paint or
/// frosted glass does). What they leave of 1 is absorbed. Values are kept as they are given;
/// nothing forces their sum to 1 or less.
class qvi_shader : public qv_item {
  QV_ITEM_CLASS(qvi_shader, qv_item, "shader")

  /// A light grey.
  static constexpr qv_color get_default_color() { return {0.8f, 0.8f, 0.8f, 1.0f}; }

  /// Colour of the surface; an alpha below 1 shows what lies behind.
  QV_PARAM(qv_color, diffuse_color, get_default_color())
  /// Colour of its highlights.
  QV_PARAM(qv_color, specular_color, qv_color(0.0f, 0.0f, 0.0f, 1.0f))
  /// Sharpness of its highlights, the exponent of OpenGL's GL_SHININESS, 0 … 128.
  QV_PARAM(float, shininess, 0.0f)

  // One value per spectrum, index as in qv_spectrum. An empty list, or one that is too short,
  // stands for the defaults: diffuse reflexion 0.4, the others 0.
  QV_PARAM_LIST(float, direct_reflexion)
  QV_PARAM_LIST(float, direct_transmission)
  QV_PARAM_LIST(float, diffuse_reflexion)
  QV_PARAM_LIST(float, diffuse_transmission)

  static constexpr float default_diffuse_reflexion = 0.4f;

  // The same value by value. An index outside the spectra reads 0 and sets nothing. Setting an
  // equal value stamps nothing; where all three are the defaults again, the list is empty again, so
  // that shaders that do the same to radiation compare as similar.
  float get_direct_reflexion(qv_spectrum spectrum) const;
  float get_direct_transmission(qv_spectrum spectrum) const;
  float get_diffuse_reflexion(qv_spectrum spectrum) const;
  float get_diffuse_transmission(qv_spectrum spectrum) const;
  void set_direct_reflexion(float value, qv_spectrum spectrum);
  void set_direct_transmission(float value, qv_spectrum spectrum);
  void set_diffuse_reflexion(float value, qv_spectrum spectrum);
  void set_diffuse_transmission(float value, qv_spectrum spectrum);

  /// Colour that a ray sees on this surface after its hit: the diffuse colour, its red, green and
  /// blue weighted by the cosine between the ray and the surface normal, on either side; unweighted
  /// for a null ray.
  virtual qv_color compute_color(qv_ray* ray);

 private:
  void set_coefficient(qv_param* param, float value, qv_spectrum spectrum, float default_value);
};

}  // namespace qv
