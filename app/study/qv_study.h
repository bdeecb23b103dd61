#pragma once

#include <functional>
#include <string>

#include "app/junctions/qv_psi_catalogue.h"
#include "app/readers/qv_context.h"
#include "app/study/qv_generated_openings.h"
#include "app/study/qv_study_gather.h"
#include "app/study/qv_study_results.h"
#include "app/study/qv_study_sun.h"

namespace qv {

struct qv_gbxml_model;

struct qv_study_options {
  /// The model file.
  std::string model;
  /// Group the spaces into buildings by the walls that they share even when the file has buildings.
  bool regroup = false;
  /// Give the spaces new names where they are grouped: building number and rank in it.
  bool rename_spaces = false;
  /// Openings to generate on outer walls without any; none unless asked for.
  qv_glazing_ratios glazing_ratios = {};
  /// ψ of the thermal bridges; the indicative catalogue without.
  std::optional<qv_psi_catalogue> psi = std::nullopt;
  /// Degrees clockwise from north of the model's +Y, instead of what the file says.
  std::optional<double> north = std::nullopt;
  /// Text of a configuration file whose choices replace those of the model, and its name in
  /// messages; none without a name.
  std::string configuration_name = {};
  std::string configuration = {};
  /// What stands around the model.
  qv_context_options context = {};
  /// The sun on walls and openings; not computed unless asked for.
  qv_solar_options solar = {};
  qv_solar_progress solar_progress = {};
  /// Called at the end with the model, as long as it stands, and all that was found of it.
  std::function<void(const qv_gbxml_model&, const qv_study_results&)> visit = {};
};

/// Told at the beginning of each step: its rank from 1, how many there are, and what it does
/// ("reading the model").
using qv_study_progress = std::function<void(int step, int count, const char* what)>;

/// Reads a model, computes it and gathers the results. Throws `qv_input_error`, and
/// `qv_interrupted` when `solar_progress` says so.
qv_study_results qv_run_study(const qv_study_options& options,
                              const qv_study_progress& progress = {});

/// The steps between reading and gathering: turns the model to true north, groups the spaces into
/// buildings where the file has none or where that is asked for, measures everything, lays the
/// lowest floors on the ground, generates the openings asked for, finds the thermal bridges and
/// gives them their ψ. `progress` hears of these steps as of 2 to 4 of 5, of 6 where the sun is
/// wanted.
qv_model_findings qv_compute_model(const qv_gbxml_model& model, const qv_study_options& options,
                                   const qv_study_progress& progress = {});

/// The text of the computed model (`to_json()` of its root). Buildings that were grouped under the
/// scene move below the root, whose text speaks of them.
std::string qv_model_text(const qv_gbxml_model& model);

}  // namespace qv
