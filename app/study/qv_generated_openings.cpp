#include "app/study/qv_generated_openings.h"

#include <algorithm>
#include <cmath>

#include "app/readers/qv_gbxml_reader.h"
#include "app/study/qv_study_gather.h"
#include "app/study/qv_study_gather_openings.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"
#include "core/shapes/qvi_polygon.h"

namespace qv {
namespace {

// Less counts as none.
constexpr double smallest_ratio = 0.001;
// Of a face's area; what the opening and the rest may miss it by.
constexpr double area_tolerance = 1e-4;

void count_refusal(qv_study_generation& generation, const char* reason) {
  for (qv_study_refusal& refusal : generation.refusals) {
    if (refusal.reason == reason) {
      ++refusal.walls;
      return;
    }
  }
  generation.refusals.push_back({reason, 1});
}

// Why no opening can be asked for; null when one can.
const char* find_obstacle(const qv_gbxml_model& model, const qvi_wall& wall) {
  const auto& buried = model.underground_walls;
  if (std::find(buried.begin(), buried.end(), &wall) != buried.end()) return "it is in the ground";
  const qvi_polygon* face = wall.get_face_0();
  if (face == nullptr) return "it has no face";
  if (!face->get_raytracing_layers().contains("simulation")) return "it is a surface of air";
  if (face->get_contour_sizes().get_count() != 1) return "its face has a hole or falls apart";
  return nullptr;
}

// Whether the opening that was made lies within the face.
bool lies_within(qv_scene& scene, qvi_wall& wall) {
  double area = wall.get_pierced_face_0()->get_area();
  for (qv_item* opening : scene.get_referrers("opening", "wall", &wall)) {
    for (qvi_polygon* outline : qv_collect<qvi_polygon>(opening, "polygon")) {
      area += outline->get_area();
    }
  }
  const double face = wall.get_face_0()->get_area();
  return std::abs(area - face) <= area_tolerance * face;
}

void give_opening(qv_scene& scene, qvi_wall& wall, double ratio, qv_study_generation& generation) {
  if (!wall.create_opening(static_cast<float>(ratio), true)) {
    count_refusal(generation, "it does not qualify");
    return;
  }
  if (lies_within(scene, wall)) {
    ++generation.made;
    return;
  }
  wall.create_opening(0.0f, true);
  count_refusal(generation, "its face is too irregular to hold an opening of its shape");
}

}  // namespace

bool qv_glazing_ratios::any() const {
  return all.has_value() || std::any_of(by_orientation.begin(), by_orientation.end(),
                                        [](const auto& ratio) { return ratio.has_value(); });
}

std::optional<double> qv_glazing_ratios::get(std::optional<qv_orientation> orientation) const {
  if (!orientation) return all;
  const auto& own = by_orientation[static_cast<std::size_t>(*orientation)];
  return own ? own : all;
}

qv_study_generation qv_generate_openings(const qv_gbxml_model& model,
                                         const qv_glazing_ratios& ratios) {
  qv_study_generation generation;
  generation.asked = true;
  qv_scene& scene = *model.scene;
  constexpr double north = 0.0;  // azimuth of +Y in a model that stands on its site
  const qv_list<qv_item*> walls = scene.get_items("wall");
  for (qv_item* item : walls) {
    auto& wall = static_cast<qvi_wall&>(*item);
    if (wall.get_contact_type() != qvi_wall::contact_type::outer_wall) continue;
    const double ratio = ratios.get(qv_facing_of(wall, north)).value_or(0.0);
    if (ratio < smallest_ratio) continue;
    if (!wall.get_openings().is_empty()) {
      ++generation.walls_with_openings;
    } else if (const char* obstacle = find_obstacle(model, wall)) {
      count_refusal(generation, obstacle);
    } else {
      give_opening(scene, wall, ratio, generation);
    }
  }
  return generation;
}

}  // namespace qv
