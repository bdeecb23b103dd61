#include "app/study/qv_study.h"

#include "app/readers/qv_gbxml_reader.h"
#include "app/study/qv_study_gather.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/materials/qvi_limit_condition.h"
#include "bim/project/qvi_bim_root.h"

namespace qv {
namespace {

constexpr int step_count = 4;
constexpr int solar_step_count = 5;

bool is_grouped(const qv_gbxml_model& model, const qv_study_options& options) {
  return model.building_count == 0 || options.regroup;
}

std::vector<std::string> notes_on(const qv_gbxml_model& model, const qv_study_options& options) {
  std::vector<std::string> notes = model.warnings;
  if (options.rename_spaces && !is_grouped(model, options)) {
    notes.emplace_back(
        "spaces keep their names, since the file has buildings of its own; --regroup makes new "
        "buildings and names");
  }
  return notes;
}

void announce(const qv_study_progress& progress, int step, const char* what) {
  if (progress) progress(step, step_count, what);
}

}  // namespace

qv_study_generation qv_compute_model(const qv_gbxml_model& model, const qv_study_options& options,
                                     const qv_study_progress& progress) {
  qv_scene& scene = *model.scene;
  announce(progress, 2, "measuring the spaces");
  if (is_grouped(model, options)) {
    qvi_building::build_buildings(&scene, options.rename_spaces);
  } else {
    scene.precompute();
  }
  announce(progress, 3, "computing the walls");
  qvi_limit_condition::default_limit_conditions(&scene);
  scene.precompute();
  if (!options.glazing_ratios.any()) return {};
  qv_study_generation generation = qv_generate_openings(model, options.glazing_ratios);
  scene.precompute();
  return generation;
}

std::string qv_model_text(const qv_gbxml_model& model) {
  const qv_list<qv_item*> buildings = model.scene->get_items("building");
  for (qv_item* building : buildings) {
    if (building->get_parent() == model.scene.get()) model.root->add_child(building, -1);
  }
  return model.root->to_json();
}

qv_study_results qv_run_study(const qv_study_options& options, const qv_study_progress& progress) {
  announce(progress, 1, "reading the model");
  const qv_gbxml_model model = qv_read_gbxml(options.model);
  const qv_study_generation generation = qv_compute_model(model, options, progress);
  announce(progress, 4, "gathering the results");
  qv_study_results study = qv_gather_study(model);
  study.generation = generation;
  study.source = options.model;
  study.notes = notes_on(model, options);
  study.model_json = qv_model_text(model);
  if (options.solar.wanted) {
    if (progress) progress(solar_step_count, solar_step_count, "tracing the sun");
    qv_compute_sun(model, options.solar, options.solar_progress, study);
  }
  return study;
}

}  // namespace qv
