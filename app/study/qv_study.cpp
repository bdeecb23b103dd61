#include "app/study/qv_study.h"

#include <cmath>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

#include "app/check/qv_check.h"
#include "app/junctions/qv_bridge_values.h"
#include "app/junctions/qv_connexions.h"
#include "app/readers/qv_gbxml_reader.h"
#include "app/study/qv_project_configuration.h"
#include "app/study/qv_study_gather.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/materials/qvi_limit_condition.h"
#include "bim/project/qvi_bim_root.h"

namespace qv {
namespace {

constexpr int usual_step_count = 5;

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

const qv_psi_catalogue& psi_of(const qv_study_options& options) {
  return options.psi.has_value() ? *options.psi : qv_indicative_psi_catalogue();
}

// Turns each campus so that the scene's +Y is true north.
void stand_on_site(const qv_gbxml_model& model, const qv_study_options& options) {
  std::unordered_map<std::string, double> azimuths;
  for (const qv_site_location& site : model.locations) {
    if (site.model_azimuth.has_value()) azimuths.try_emplace(site.campus_id, *site.model_azimuth);
  }
  for (qv_item* item : model.scene->get_items("campus")) {
    auto& campus = static_cast<qvi_campus&>(*item);
    const auto stated =
        azimuths.find(campus.has_unique_id() ? campus.get_unique_id() : std::string());
    const double azimuth = options.north.value_or(stated == azimuths.end() ? 0.0 : stated->second);
    // Clockwise from north here, counter-clockwise there.
    campus.transform(campus.get_translation(), static_cast<float>(-std::fmod(azimuth, 360.0)));
  }
}

// What the check of the model found, and which spaces leak.
void add_findings(qv_study_results& study, const qv_gbxml_model& model) {
  qv_check_report report = qv_check_model(model);
  study.findings = std::move(report.findings);
  const qv_list<qv_item*>& spaces = model.scene->get_items("space");  // in the order of the study
  for (std::size_t i = 0; i < study.spaces.size(); ++i) {
    const auto share =
        report.leaking_shares.find(static_cast<qvi_space*>(spaces[static_cast<int>(i)]));
    if (share != report.leaking_shares.end()) study.spaces[i].leaking_share = share->second;
  }
}

int count_steps(const qv_study_options& options) {
  return usual_step_count + (options.solar.wanted ? 1 : 0);
}

auto make_announcer(const qv_study_options& options, const qv_study_progress& progress) {
  return [&progress, count = count_steps(options)](int step, const char* what) {
    if (progress) progress(step, count, what);
  };
}

}  // namespace

qv_model_findings qv_compute_model(const qv_gbxml_model& model, const qv_study_options& options,
                                   const qv_study_progress& progress) {
  qv_scene& scene = *model.scene;
  const auto announce = make_announcer(options, progress);
  announce(2, "measuring the spaces");
  stand_on_site(model, options);
  if (is_grouped(model, options)) {
    qvi_building::build_buildings(&scene, options.rename_spaces);
  } else {
    scene.precompute();
  }
  announce(3, "computing the walls");
  qvi_limit_condition::default_limit_conditions(&scene);
  scene.precompute();
  qv_model_findings findings;
  if (options.glazing_ratios.any()) {
    findings.generation = qv_generate_openings(model, options.glazing_ratios);
    scene.precompute();
  }
  qv_place_insulation(scene);
  std::unique_ptr<qv_project_configuration> configuration;
  if (!options.configuration_name.empty()) {
    configuration = std::make_unique<qv_project_configuration>(options.configuration_name,
                                                               options.configuration);
    findings.changes = configuration->apply_constructions(scene);
    qv_place_insulation(scene);
  }
  announce(4, "finding the thermal bridges");
  qv_add_connexions(scene);
  scene.precompute();
  findings.bridges_without_psi = qv_assign_psi(scene, psi_of(options));
  if (configuration != nullptr) {
    for (qv_study_change& change : configuration->apply_psi(scene, findings.bridges_without_psi))
      findings.changes.push_back(std::move(change));
  }
  return findings;
}

std::string qv_model_text(const qv_gbxml_model& model) {
  const qv_list<qv_item*> buildings = model.scene->get_items("building");
  for (qv_item* building : buildings) {
    if (building->get_parent() == model.scene.get()) model.root->add_child(building, -1);
  }
  return model.root->to_json();
}

qv_study_results qv_run_study(const qv_study_options& options, const qv_study_progress& progress) {
  const auto announce = make_announcer(options, progress);
  announce(1, "reading the model");
  qv_gbxml_model model = qv_read_gbxml(options.model);
  const std::vector<std::string> context_notes = qv_add_context(model, options.context);
  const qv_model_findings findings = qv_compute_model(model, options, progress);
  announce(5, "gathering the results");
  qv_study_results study = qv_gather_study(model, findings);
  study.psi_catalogue = psi_of(options).name;
  if (options.north.has_value()) study.location.azimuth = options.north;
  add_findings(study, model);
  study.source = options.model;
  study.context_notes = context_notes;
  study.notes = notes_on(model, options);
  study.model_json = qv_model_text(model);
  if (options.solar.wanted) {
    announce(count_steps(options), "tracing the sun");
    qv_compute_sun(model, options.solar, options.solar_progress, study);
  }
  if (options.visit) options.visit(model, study);
  return study;
}

}  // namespace qv
