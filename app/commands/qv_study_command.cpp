#include <CLI/CLI.hpp>
#include <memory>

#include "app/commands/qv_commands.h"
#include "app/commands/qv_progress.h"
#include "app/report/qv_output_folder.h"
#include "app/report/qv_study_csv.h"
#include "app/report/qv_study_json.h"
#include "app/report/qv_study_summary.h"
#include "app/study/qv_study.h"

namespace qv {
namespace {

struct study_arguments {
  qv_study_options study;
  std::string folder;
};

qv_study_results study_with_progress(const qv_study_options& options) {
  qv_progress progress;
  return qv_run_study(options, [&progress](int step, int count, const char* what) {
    progress.begin_step(step, count, what);
  });
}

int run_study(const study_arguments& arguments) {
  // Before the work, so that a wrong folder is told at once.
  qv_output_folder folder(arguments.folder);
  const qv_study_results study = study_with_progress(arguments.study);
  folder.stage("study.json", qv_study_json(study));
  folder.stage("model.json", study.model_json);
  folder.stage("spaces.csv", qv_spaces_csv(study));
  folder.stage("walls.csv", qv_walls_csv(study));
  folder.commit();
  qv_print(qv_study_summary(study) + "\nWritten to " + arguments.folder +
           ": study.json, model.json, spaces.csv, walls.csv\n");
  return qv_exit_success;
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
  command->footer(
      "Writes study.json, model.json, spaces.csv and walls.csv into DIR, all or none, "
      "and\nprints a summary.\n\n"
      "Examples:\n"
      "  qv study house.xml --out results\n"
      "  qv study campus.xml --out results --regroup --rename-spaces");
  command->callback([&action, arguments] {
    if (arguments->study.model.empty()) throw CLI::ValidationError("MODEL is an empty name");
    if (arguments->folder.empty()) throw CLI::ValidationError("--out is an empty name");
    action = [arguments] { return run_study(*arguments); };
  });
}

}  // namespace qv
