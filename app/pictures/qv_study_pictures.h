#pragma once

#include <string>
#include <vector>

namespace qv {

struct qv_gbxml_model;
struct qv_study_results;

/// The pictures that go with a study.
struct qv_study_pictures {
  struct file {
    std::string name;  // "iso-contact-type.png"
    std::string png;
  };
  std::vector<file> files;
  /// What the user should know of them, a sentence each.
  std::vector<std::string> notes;
};

/// Draws the isometric view by contact type and by U, the plan of each storey by zone, and the
/// thermal bridges. A machine that cannot draw, and a model without anything to draw, yield no
/// picture and a note. `study` must be the one gathered from `model`.
qv_study_pictures qv_draw_study_pictures(const qv_gbxml_model& model,
                                         const qv_study_results& study);

/// Whether a study gives such a name to one of its pictures.
bool qv_names_study_picture(const std::string& file_name);

}  // namespace qv
