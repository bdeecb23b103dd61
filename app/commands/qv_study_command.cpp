#include <CLI/CLI.hpp>
#include <cmath>
#include <filesystem>
#include <memory>
#include <optional>

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
  return qv_run_study(options, [&progress](int step, int count, const char* what) {
    if (qv_interrupt::is_requested()) throw qv_interrupted();
    progress.begin_step(step, count, what);
  });
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

int run_study(const study_arguments& arguments) {
  const qv_interrupt interrupt;
  qv_study_options options = arguments.study;
  if (!arguments.psi.empty()) options.psi = qv_read_psi_catalogue(arguments.psi);
  if (!arguments.configuration.empty()) {
    options.configuration_name = arguments.configuration;
    options.configuration = qv_read_file(arguments.configuration, "a configuration");
    qv_project_configuration(options.configuration_name, options.configuration);  // complains now
  }
  // Before the work, so that a wrong folder is told at once.
  qv_output_folder folder(arguments.folder);
  const std::filesystem::path hourly_file = arguments.hourly;
  std::optional<qv_output_folder> hourly_folder;
  if (!arguments.hourly.empty()) {
    const auto parent = hourly_file.parent_path();
    hourly_folder.emplace(parent.empty() ? std::filesystem::path(".") : parent);
  }
  options.solar.wanted = !arguments.no_solar;
  options.solar.keep_hours = hourly_folder.has_value();
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
  if (options.solar.wanted) folder.stage("solar.csv", qv_solar_csv(study));
  std::optional<qv_output_folder> picture_folder;
  if (!pictures.files.empty()) {
    picture_folder.emplace(folder.get_path() / "pictures");
    for (const auto& [name, png] : pictures.files) picture_folder->stage(name, png);
    picture_folder->commit();
  }
  if (hourly_folder) {
    hourly_folder->stage(hourly_file.filename().string(), qv_hourly_csv(study));
    hourly_folder->commit();
  }
  folder.commit();
  qv_print(qv_study_summary(study) + "\nWritten to " + arguments.folder +
           ": study.json, model.json, spaces.csv, walls.csv, openings.csv, thermal_bridges.csv" +
           (options.solar.wanted ? ", solar.csv" : "") + told_of(pictures) +
           (hourly_folder ? "Hours of every surface in " + arguments.hourly + '\n' : ""));
  return qv_exit_success;
}

// --glazing-ratio, and one option for each orientation.
void add_glazing_ratios(CLI::App& command, qv_glazing_ratios& ratios) {
  const auto add = [&](const std::string& name, std::optional<double>& ratio,
                       const std::string& words) {
    command.add_option(name, ratio, words)->option_text("R")->check([](const std::string& text) {
      constexpr double largest = 0.99;
      double value = 0;
      const bool fits = CLI::detail::lexical_cast(text, value) && value >= 0 && value <= largest;
      return fits ? std::string() : "\"" + text + "\" is no share between 0 and 0.99";
    });
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

void qv_add_study_command(CLI::App& program, qv_command_action& action) {
  const auto arguments = std::make_shared<study_arguments>();
  CLI::App* command = program.add_subcommand(
      "study", "Study a gbXML model: areas, volumes, storeys, walls, U values");
  command->add_option("MODEL", arguments->study.model, "The model, a gbXML file")
      ->required()
      ->option_text(" ");
  command->add_option("--out", arguments->folder, "Folder for the results; made when missing")
      ->required()
      ->option_text("DIR");
  command->add_flag("--regroup", arguments->study.regroup,
                    "Group the spaces into buildings by the walls they share,\n"
                    "also when the file has buildings of its own");
  command->add_flag("--rename-spaces", arguments->study.rename_spaces,
                    "Name the spaces by building and rank where they are grouped");
  add_glazing_ratios(*command, arguments->study.glazing_ratios);
  command
      ->add_option("--configuration", arguments->configuration,
                   "Compositions and ψ of another model, as `qv configure save`\n"
                   "keeps them, in place of this one's")
      ->option_text("FILE");
  command
      ->add_option("--north", arguments->study.north,
                   "Degrees clockwise from true north of the model's +Y,\n"
                   "instead of what the file says")
      ->option_text("ANGLE");
  command
      ->add_option("--psi", arguments->psi,
                   "Catalogue of ψ values for the thermal bridges,\n"
                   "JSON or CSV; indicative values without")
      ->option_text("FILE");
  qv_add_context_options(*command, arguments->study.context);
  qv_add_solar_options(*command, arguments->study.solar);
  command->add_flag("--no-solar", arguments->no_solar, "Leave out the sun");
  command->add_flag("--no-pictures", arguments->no_pictures, "Leave out the pictures");
  command
      ->add_option("--hourly", arguments->hourly,
                   "Every hour of every surface into this file (CSV)")
      ->option_text("FILE");
  command->footer(
      "Writes study.json, model.json, spaces.csv, walls.csv, openings.csv, thermal_bridges.csv\n"
      "and solar.csv into DIR, all or none, pictures into DIR/pictures, and prints a summary.\n\n"
      "Examples:\n"
      "  qv study house.xml --out results\n"
      "  qv study house.xml --out results --context street.obj\n"
      "  qv study house.xml --out results --weather lyon.epw --quality fine\n"
      "  qv study campus.xml --out results --regroup --rename-spaces\n"
      "  qv study block.xml --out results --glazing-ratio 0.25 --glazing-ratio-south 0.4");
  command->callback([&action, arguments] {
    if (arguments->study.north && !std::isfinite(*arguments->study.north))
      throw CLI::ValidationError("--north is no angle");
    if (arguments->study.model.empty()) throw CLI::ValidationError("MODEL is an empty name");
    if (arguments->folder.empty()) throw CLI::ValidationError("--out is an empty name");
    if (arguments->no_solar && !arguments->hourly.empty())
      throw CLI::ValidationError("--hourly has nothing to write with --no-solar");
    action = [arguments] { return run_study(*arguments); };
  });
}

}  // namespace qv
