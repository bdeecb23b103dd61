#include "core/shapes/qvi_shader.h"

#include <cmath>

#include "core/light/qv_ray.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_shader)

namespace {

bool is_spectrum(int index) {
  return index >= 0 && index < qv_spectrum_count;
}

float get_coefficient(const qv_list<float>& values, int index, float default_value) {
  if (!is_spectrum(index)) return 0;
  return index < values.get_count() ? values[index] : default_value;
}

}  // namespace

float qvi_shader::get_direct_reflexion(qv_spectrum spectrum) const {
  return get_coefficient(get_direct_reflexion(), static_cast<int>(spectrum), 0);
}

float qvi_shader::get_direct_transmission(qv_spectrum spectrum) const {
  return get_coefficient(get_direct_transmission(), static_cast<int>(spectrum), 0);
}

float qvi_shader::get_diffuse_reflexion(qv_spectrum spectrum) const {
  return get_coefficient(get_diffuse_reflexion(), static_cast<int>(spectrum),
                         default_diffuse_reflexion);
}

float qvi_shader::get_diffuse_transmission(qv_spectrum spectrum) const {
  return get_coefficient(get_diffuse_transmission(), static_cast<int>(spectrum), 0);
}

void qvi_shader::set_direct_reflexion(float value, qv_spectrum spectrum) {
  set_coefficient(get_param(direct_reflexion_param_), value, spectrum, 0);
}

void qvi_shader::set_direct_transmission(float value, qv_spectrum spectrum) {
  set_coefficient(get_param(direct_transmission_param_), value, spectrum, 0);
}

void qvi_shader::set_diffuse_reflexion(float value, qv_spectrum spectrum) {
  set_coefficient(get_param(diffuse_reflexion_param_), value, spectrum, default_diffuse_reflexion);
}

void qvi_shader::set_diffuse_transmission(float value, qv_spectrum spectrum) {
  set_coefficient(get_param(diffuse_transmission_param_), value, spectrum, 0);
}

void qvi_shader::set_coefficient(qv_param* param, float value, qv_spectrum spectrum,
                                 float default_value) {
  const int changed = static_cast<int>(spectrum);
  const qv_list<float>& stored = param->get_float_list();
  if (!is_spectrum(changed) || get_coefficient(stored, changed, default_value) == value) return;
  qv_list<float> values;
  values.reserve(qv_spectrum_count);
  bool all_default = true;
  for (int i = 0; i < qv_spectrum_count; ++i) {
    values.append(i == changed ? value : get_coefficient(stored, i, default_value));
    all_default = all_default && values[i] == default_value;
  }
  if (all_default) values.clear();
  set_param_value<qv_list<float>>(param, values);
}

qv_color qvi_shader::compute_color(qv_ray* ray) {
  const qv_color color = get_diffuse_color();
  if (ray == nullptr) return color;
  const float cosine = std::fmin(1.0f, std::fabs(ray->direction.dot(ray->hit_normal)));
  return {color.r * cosine, color.g * cosine, color.b * cosine, color.a};
}

}  // namespace qv
