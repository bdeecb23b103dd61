#include "app/study/qv_study_results.h"

namespace qv {

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
  return sum;
}

}  // namespace qv
