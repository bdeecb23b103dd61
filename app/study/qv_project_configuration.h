#pragma once

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "app/study/qv_study_results.h"

namespace qv {

class qv_item;
class qv_scene;
class qvi_bim_configuration;

/// The construction choices of one model, kept in a file to be put into others: a composition for
/// each contact type of walls, one for each type of openings, ψ for each type of thermal bridges.
///
/// The file is JSON: "walls", "openings" and "connexions" are the tables; "items" are the
/// compositions that they name, with their layers, glazings and panels, each by its parameters as
/// far as they differ from the defaults. Types on whose choice a model does not agree are left out.
class qv_project_configuration {
 public:
  /// Understands the text of a file; `name` stands for the file in messages. Throws
  /// `qv_input_error` (bad input) for what is no configuration.
  qv_project_configuration(const std::string& name, const std::string& text);
  qv_project_configuration(const qv_project_configuration&) = delete;
  qv_project_configuration& operator=(const qv_project_configuration&) = delete;
  ~qv_project_configuration();

  /// Gives the walls and openings of a computed scene their compositions and returns what changed.
  /// Once: the compositions move into the scene.
  std::vector<qv_study_change> apply_constructions(qv_scene& scene);
  /// Gives the thermal bridges of a scene their ψ and returns what changed; bridges that got one
  /// leave `without`.
  std::vector<qv_study_change> apply_psi(qv_scene& scene,
                                         std::unordered_set<const qv_item*>& without);

 private:
  qvi_bim_configuration* configuration_;
};

/// The text of a configuration file with the choices of a computed scene. `source` is the model's
/// name.
std::string qv_save_configuration(qv_scene& scene, const std::string& source);

}  // namespace qv
