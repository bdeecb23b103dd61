#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "app/export/qv_export_groups.h"
#include "core/items/qv_scene.h"

namespace qv {

struct qv_gbxml_model;
struct qv_study_results;

/// A computed model, as pictures need it: its scene, and what a study found of its items.
struct qv_picture_subject {
  qv_scene* scene = nullptr;
  /// What is seen of it; where this is empty, each picture finds it anew.
  std::vector<qv_export_group> groups;
  /// Azimuth of the model's own +Y axis, in degrees clockwise from the scene's, which is north.
  double azimuth = 0;
  /// W/(m²·K), of walls with their surface resistances; items whose U is not known are left out.
  std::unordered_map<const qv_item*, double> u_values;
  /// By what a study calls them, by the ids of their source elements, and last by name; of several
  /// the first in scene order.
  std::unordered_map<std::string, qv_item*> items_by_id;
};

/// `study` must be the one gathered from `model`.
qv_picture_subject qv_make_picture_subject(const qv_gbxml_model& model,
                                           const qv_study_results& study);

}  // namespace qv
