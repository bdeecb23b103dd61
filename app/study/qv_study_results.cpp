#include "app/study/qv_study_results.h"

namespace qv {

std::optional<double> qv_study_facade::get_window_to_wall_ratio() const {
  if (wall_area <= 0.0) return std::nullopt;
  return window_area / wall_area;
}

double qv_study_results::get_area() const {
  double sum = 0.0;
  for (const auto& space : spaces) sum += space.area;
  return sum;
}

double qv_study_results::get_volume() const {
  double sum = 0.0;
  for (const auto& space : spaces) sum += space.volume;
  return sum;
}

double qv_study_results::get_loss_area() const {
  double sum = 0.0;
  for (const auto& wall : walls) {
    if (wall.is_loss()) sum += wall.area;
  }
  return sum + get_loss_opening_area();
}

double qv_study_results::get_loss_opening_area() const {
  double sum = 0.0;
  for (const auto& opening : openings) {
    if (opening.loses_heat) sum += opening.full_area;
  }
  return sum;
}

}  // namespace qv
