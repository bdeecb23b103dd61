#include "bim/materials/qvi_glazing.h"

namespace qv {

namespace {

// Degrees from the horizontal; half way between the slopes for which U is stated: 0, 45 and 90.
constexpr float steepest_flat_slope = 22.5f;
constexpr float steepest_inclined_slope = 67.5f;

}  // namespace

QV_ITEM_CLASS_COPYING(qvi_glazing)

qvi_glazing::qvi_glazing() {
  set_diffuse_color(qv_color(1.0f, 1.0f, 1.0f, 0.2f));
  set_specular_color(qv_color(1.0f, 1.0f, 1.0f, 1.0f));
  set_shininess(20.0f);
}

float qvi_glazing::get_U(float slope_degrees) {
  if (slope_degrees < steepest_flat_slope) return results_->U_horizontal;
  if (slope_degrees < steepest_inclined_slope) return results_->U_inclined;
  return results_->U_vertical;
}

float qvi_glazing::get_solar_factor() {
  return results_->solar_factor;
}

float qvi_glazing::get_visible_transmittance() {
  return results_->visible_transmittance;
}

float qvi_glazing::get_thickness() {
  return results_->thickness;
}

}  // namespace qv
