#pragma once

#include <unordered_set>

#include "app/readers/qv_gbxml_reader.h"
#include "app/study/qv_study_results.h"

namespace qv {

/// What computing a model found out beside what its items say.
struct qv_model_findings {
  /// Connexions for which no ψ is known.
  std::unordered_set<const qv_item*> bridges_without_psi;
  /// What the configuration changed.
  std::vector<qv_study_change> changes;
  /// What became of the openings to generate.
  qv_study_generation generation;
};

/// The values of a computed model as plain structs: buildings, spaces, walls, objects and
/// compositions in scene order, and the ledger. "source", "notes" and "model_json" are the
/// caller's.
///
/// An id is that of the source element; the second element of the same id becomes "ID#2", and one
/// without an id gets its kind and rank ("wall-12").
qv_study_results qv_gather_study(const qv_gbxml_model& model,
                                 const qv_model_findings& findings = {});

/// What became of the elements of the file, without computing anything.
qv_study_ledger qv_gather_ledger(const qv_import_ledger& ledger);

/// The first site of the file.
qv_study_location qv_gather_location(const qv_gbxml_model& model);

/// Direction of an outward normal: azimuth in degrees clockwise from +Y, in [0, 360), absent when
/// the wall is level; tilt in degrees from the upward vertical, 0 to 180. Both are absent for a
/// normal that is no direction.
struct qv_wall_direction {
  std::optional<float> azimuth;
  std::optional<float> tilt;
};
qv_wall_direction qv_direction_of(const qv_3dvector& normal);

}  // namespace qv
