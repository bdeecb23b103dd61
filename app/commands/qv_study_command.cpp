#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <set>

#include "app/commands/qv_command_line.h"
#include "app/commands/qv_commands.h"
#include "app/commands/qv_context_option.h"
#include "app/commands/qv_interrupt.h"
#include "app/commands/qv_progress.h"
#include "app/commands/qv_solar_options.h"
#include "app/pictures/qv_study_pictures.h"
#include "app/readers/qv_file.h"
#include "app/report/qv_output_folder.h"
#include "app/report/qv_study_csv.h"
#include "app/report/qv_study_json.h"
#include "app/report/qv_study_summary.h"
#include "app/report/qv_sun_report.h"
#include "app/study/qv_project_configuration.h"
#include "app/study/qv_study.h"

namespace qv {
namespace {

namespace fs = std::filesystem;

constexpr const char* sun_file = "solar.csv";

struct study_arguments {
  qv_study_options study;
  std::string psi;  // file of ψ values; empty without one
  std::string configuration;
  std::string folder;
  bool no_solar = false;
  bool no_pictures = false;
  std::string hourly;
};

qv_study_results study_with_progress(qv_study_options options) {
  qv_progress progress;
  options.solar_progress = qv_show_solar_progress(progress);
  return qv_run_study(options, progress.get_announcer());
}

// The end of the line that lists what was written, and the notes.
std::string told_of(const qv_study_pictures& pictures) {
  std::string text;
  if (!pictures.files.empty())
    text = " and " + std::to_string(pictures.files.size()) + " pictures in pictures/";
  text += '\n';
  for (const std::string& note : pictures.notes) text += "Note: " + note + '\n';
  return text;
}

// The files of a study, but for pictures and hours, in the order in which the user is told of them.
std::vector<std::string> list_files(bool with_sun) {
  std::vector<std::string> names = {"study.json", "model.json",   "spaces.csv",
                                    "walls.csv",  "openings.csv", "thermal_bridges.csv"};
  if (with_sun) names.emplace_back(sun_file);
  return names;
}

// Every file that the study reads.
std::vector<std::string> list_read_files(const study_arguments& arguments) {
  std::vector<std::string> files = qv_read_files(arguments.study.model, arguments.study.context);
  for (const std::string& file :
       {arguments.psi, arguments.configuration, arguments.study.solar.weather})
    if (!file.empty()) files.push_back(file);
  return files;
}

// One file cannot be two.
void refuse_own_file(const fs::path& folder, const std::string& hourly) {
  std::error_code unknown;  // such a place is refused when it is to be written
  const fs::path place = fs::weakly_canonical(hourly, unknown);
  for (const std::string& name : list_files(true))
    if (!unknown && fs::weakly_canonical(folder / name, unknown) == place)
      throw qv_usage_error("--hourly: \"" + hourly + "\" is a file that the study writes itself; " +
                           "`qv help study` explains");
}

// Puts the pictures beside the study, in place of all that an earlier study drew.
void write_pictures(const fs::path& folder, const qv_study_pictures& pictures) {
  std::error_code ignored;
  if (pictures.files.empty() && !fs::is_directory(folder, ignored)) return;
  qv_output_folder place(folder);
  std::set<std::string> drawn;
  for (const auto& [name, png] : pictures.files) {
    place.stage(name, png);
    drawn.insert(name);
  }
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored)) {
    const std::string name = entry.path().filename().string();
    if (qv_names_study_picture(name) && !drawn.contains(name)) place.discard(name);
  }
  place.commit();
}

int run_study(const study_arguments& arguments) {
  const qv_interrupt interrupt;
  qv_study_options options = arguments.study;
  if (!arguments.psi.empty()) options.psi = qv_read_psi_catalogue(arguments.psi);
  if (!arguments.configuration.empty()) {
    options.configuration_name = arguments.configuration;
    options.configuration = qv_read_file(arguments.configuration, "a configuration");
    qv_project_configuration(options.configuration_name, options.configuration);  // complains now
  }
  // Before the work, so that a wrong place is told at once.
  const std::vector<std::string> read = list_read_files(arguments);
  qv_output_folder folder(arguments.folder, read);
  for (const std::string& name : list_files(!arguments.no_solar)) folder.check_place(name);
  std::optional<qv_output_file> hourly_file;
  if (!arguments.hourly.empty()) {
    refuse_own_file(folder.get_path(), arguments.hourly);
    hourly_file.emplace(arguments.hourly, read);
  }
  options.solar.wanted = !arguments.no_solar;
  options.solar.keep_hours = hourly_file.has_value();
  qv_study_pictures pictures;
  if (!arguments.no_pictures) {
    options.visit = [&pictures](const qv_gbxml_model& model, const qv_study_results& found) {
      pictures = qv_draw_study_pictures(model, found);
    };
  }
  const qv_study_results study = study_with_progress(options);
  folder.stage("study.json", qv_study_json(study));
  folder.stage("model.json", study.model_json);
  folder.stage("spaces.csv", qv_spaces_csv(study));
  folder.stage("walls.csv", qv_walls_csv(study));
  folder.stage("openings.csv", qv_openings_csv(study));
  folder.stage("thermal_bridges.csv", qv_thermal_bridges_csv(study));
  if (options.solar.wanted) {
    folder.stage(sun_file, qv_solar_csv(study));
  } else {
    folder.discard(sun_file);
  }
  write_pictures(folder.get_path() / "pictures", pictures);
  if (hourly_file) {
    hourly_file->stage(qv_hourly_csv(study));
    hourly_file->commit();
  }
  folder.commit();
  qv_print(qv_study_summary(study) +
           fmt::format("\nWritten to {}: {}", arguments.folder,
                       fmt::join(list_files(options.solar.wanted), ", ")) +
           told_of(pictures) +
           (hourly_file ? "Hours of every surface in " + arguments.hourly + '\n' : ""));
  return qv_exit_success;
}

// --glazing-ratio, and one option for each orientation.
void add_glazing_ratios(qv_command& command, qv_glazing_ratios& ratios) {
  const auto add = [&](const std::string& name, std::optional<double>& ratio,
                       const std::string& words) {
    command.add_number_option({name, "R", words}, 0.0, 0.99, "share between 0 and 0.99", ratio);
  };
  add("--glazing-ratio", ratios.all,
      "Give outer walls without openings one that takes this\nshare of the wall, 0 to 0.99");
  for (const qv_orientation orientation : qv_orientations) {
    const std::string name = qv_orientation_name(orientation);
    add("--glazing-ratio-" + name, ratios.by_orientation[static_cast<std::size_t>(orientation)],
        "The same for walls that look " + name + ", in its place");
  }
}

}  // namespace

void qv_add_study_command(qv_command& program) {
  const auto arguments = std::make_shared<study_arguments>();
  qv_study_options& study = arguments->study;
  qv_command& command =
      program.add_command("study", "Study a gbXML model: areas, volumes, storeys, walls, U values");
  command.add_model(study.model);
  command.add_required_option({"--out", "DIR", "Folder for the results; made when missing"},
                              arguments->folder);
  command.add_flag("--regroup",
                   "Group the spaces into buildings by the walls they share,\n"
                   "also when the file has buildings of its own",
                   study.regroup);
  command.add_flag("--rename-spaces", "Name the spaces by building and rank where they are grouped",
                   study.rename_spaces);
  add_glazing_ratios(command, study.glazing_ratios);
  command.add_option({"--configuration", "FILE",
                      "Compositions and ψ of another model, as `qv configure save`\n"
                      "keeps them, in place of this one's"},
                     arguments->configuration);
  command.add_north(study.north);
  command.add_option({"--psi", "FILE",
                      "Catalogue of ψ values for the thermal bridges,\n"
                      "JSON or CSV; indicative values without"},
                     arguments->psi);
  qv_add_context_options(command, study.context);
  qv_add_solar_options(command, study.solar);
  command.add_flag("--no-solar", "Leave out the sun", arguments->no_solar);
  command.add_flag("--no-pictures", "Leave out the pictures", arguments->no_pictures);
  command.add_option({"--hourly", "FILE", "Every hour of every surface into this file (CSV)"},
                     arguments->hourly);
  command.set_footer(
      "Writes study.json, model.json, spaces.csv, walls.csv, openings.csv, thermal_bridges.csv\n"
      "and solar.csv into DIR, all or none, pictures into DIR/pictures, and prints a summary.\n\n"
      "Examples:\n"
      "  qv study house.xml --out results\n"
      "  qv study house.xml --out results --context street.obj\n"
      "  qv study house.xml --out results --weather lyon.epw --quality fine\n"
      "  qv study campus.xml --out results --regroup --rename-spaces\n"
      "  qv study block.xml --out results --glazing-ratio 0.25 --glazing-ratio-south 0.4");
  command.set_check([arguments]() -> std::string {
    const bool idle = arguments->no_solar && !arguments->hourly.empty();
    return idle ? "--hourly has nothing to write with --no-solar" : "";
  });
  command.set_action([arguments] { return run_study(*arguments); });
}

}  // namespace qv
