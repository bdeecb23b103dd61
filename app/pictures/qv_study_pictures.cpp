#include "app/pictures/qv_study_pictures.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "app/pictures/qv_canvas.h"
#include "app/pictures/qv_picture.h"
#include "app/readers/qv_gbxml_reader.h"
#include "app/study/qv_study_results.h"

namespace qv {
namespace {

constexpr const char* contact_type_name = "iso-contact-type.png";
constexpr const char* u_name = "iso-u.png";
constexpr const char* bridges_name = "thermal-bridges.png";

std::string plan_name(int storey) {
  return fmt::format("plan-storey-{}.png", storey);
}

// A tower has many storeys that look alike; who wants more asks for them one by one.
constexpr std::size_t most_plans = 40;

class album {
 public:
  album(const qv_gbxml_model& model, const qv_study_results& study)
      : subject_(qv_make_picture_subject(model, study)), model_name_(study.source) {}

  qv_study_pictures draw() {
    add(contact_type_name, qv_picture_view::iso, qv_picture_color::contact_type);
    add(u_name, qv_picture_view::iso, qv_picture_color::u);
    std::vector<int> storeys = qv_list_storeys(*subject_.scene);
    if (storeys.size() > most_plans) {
      pictures_.notes.push_back(fmt::format(
          "plans of the {} lowest of {} storeys; `qv picture --view plan --storey N` draws others",
          most_plans, storeys.size()));
      storeys.resize(most_plans);
    }
    for (const int storey : storeys)
      add(plan_name(storey), qv_picture_view::plan, qv_picture_color::zone, storey);
    add(bridges_name, qv_picture_view::iso, qv_picture_color::thermal_bridges);
    return std::move(pictures_);
  }

 private:
  void add(const std::string& name, qv_picture_view view, qv_picture_color color,
           std::optional<int> storey = std::nullopt) {
    qv_picture_options options;
    options.view = view;
    options.color = color;
    options.storey = storey;
    try {
      const qv_picture picture = maker_.draw(subject_, options, model_name_);
      pictures_.files.push_back({name, qv_encode_png(picture.pixels)});
      for (const std::string& note : picture.notes) take_note(note);
    } catch (const qv_no_drawing&) {
      throw;
    } catch (const qv_input_error& error) {  // a storey, or a model, without anything to draw
      take_note(fmt::format("no picture {}: {}", name, error.what()));
    }
  }

  // Each sentence once, though it be true of every picture.
  void take_note(const std::string& note) {
    std::vector<std::string>& notes = pictures_.notes;
    if (std::find(notes.begin(), notes.end(), note) == notes.end()) notes.push_back(note);
  }

  qv_picture_maker maker_;
  qv_picture_subject subject_;
  std::string model_name_;
  qv_study_pictures pictures_;
};

}  // namespace

qv_study_pictures qv_draw_study_pictures(const qv_gbxml_model& model,
                                         const qv_study_results& study) {
  try {
    return album(model, study).draw();
  } catch (const qv_no_drawing& reason) {
    return {{}, {fmt::format("no pictures: {}", reason.what())}};
  }
}

bool qv_names_study_picture(const std::string& file_name) {
  for (const char* name : {contact_type_name, u_name, bridges_name})
    if (file_name == name) return true;
  // Storeys may leave numbers out, so that those of forty plans have no highest one.
  const std::size_t digit = std::min(file_name.find_first_of("0123456789"), file_name.size());
  int storey = -1;
  std::from_chars(file_name.data() + digit, file_name.data() + file_name.size(), storey);
  return storey >= 0 && file_name == plan_name(storey);
}

}  // namespace qv
