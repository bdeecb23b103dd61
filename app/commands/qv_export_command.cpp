#include <CLI/CLI.hpp>
#include <memory>

#include "app/commands/qv_commands.h"
#include "app/commands/qv_context_option.h"
#include "app/commands/qv_progress.h"
#include "app/export/qv_export_gbxml.h"
#include "app/export/qv_export_gltf.h"
#include "app/export/qv_export_obj.h"
#include "app/report/qv_output_folder.h"
#include "app/study/qv_study.h"

namespace qv {
namespace {

struct export_arguments {
  std::string model;
  std::string format;
  std::string file;
  qv_context_options context;
};

std::string export_text(const std::string& format, const qv_gbxml_model& model) {
  const qv_double3 origin(model.origin[0], model.origin[1], model.origin[2]);
  if (format == "obj") return qv_export_obj(*model.scene, origin);
  if (format == "gltf") return qv_export_gltf(*model.scene, origin);
  if (format == "gbxml") return qv_export_gbxml(model);
  return qv_model_text(model);
}

int run_export(const export_arguments& arguments) {
  const std::filesystem::path file = arguments.file;
  // Before the work, so that a wrong place is told at once.
  qv_output_folder folder(file.has_parent_path() ? file.parent_path() : ".");
  std::vector<std::string> notes;
  {
    qv_progress progress;
    const auto announce = [&progress](int step, int count, const char* what) {
      progress.begin_step(step, count, what);
    };
    announce(1, 4, "reading the model");
    qv_gbxml_model model = qv_read_gbxml(arguments.model);
    notes = qv_add_context(model, arguments.context);
    // Geometry keeps the axes of its file, which says how they lie to north; the text of the model
    // is that of a study.
    qv_study_options options;
    if (arguments.format != "json") options.north = 0.0;
    qv_compute_model(model, options, announce);
    announce(4, 4, "writing the model");
    folder.stage(file.filename().string(), export_text(arguments.format, model));
  }
  folder.commit();
  qv_print_notes(notes);
  qv_print("Written to " + arguments.file + "\n");
  return qv_exit_success;
}

}  // namespace

void qv_add_export_command(CLI::App& program, qv_command_action& action) {
  const auto arguments = std::make_shared<export_arguments>();
  CLI::App* command =
      program.add_subcommand("export", "Write a gbXML model in another format, or mended");
  command->add_option("MODEL", arguments->model, "The model, a gbXML file")
      ->required()
      ->option_text(" ");
  command
      ->add_option("--format", arguments->format,
                   "json: the text of the model; obj, gltf: its surfaces for\n"
                   "other programs; gbxml: as it was understood and mended")
      ->required()
      ->check(CLI::IsMember({"json", "obj", "gltf", "gbxml"}))
      ->option_text("json|obj|gltf|gbxml");
  command->add_option("--out", arguments->file, "The file to write")
      ->required()
      ->option_text("FILE");
  qv_add_context_options(*command, arguments->context);
  command->footer(
      "Examples:\n"
      "  qv export house.xml --format gltf --out house.gltf\n"
      "  qv export house.xml --format gbxml --out mended.xml");
  command->callback([&action, arguments] {
    if (arguments->model.empty()) throw CLI::ValidationError("MODEL is an empty name");
    if (std::filesystem::path(arguments->file).filename().empty())
      throw CLI::ValidationError("--out is no name of a file");
    action = [arguments] { return run_export(*arguments); };
  });
}

}  // namespace qv
