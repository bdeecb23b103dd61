#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>

#include "app/commands/qv_commands.h"
#include "app/commands/qv_progress.h"
#include "app/readers/qv_gbxml_reader.h"
#include "app/report/qv_output_folder.h"
#include "app/study/qv_project_configuration.h"
#include "app/study/qv_study.h"

namespace qv {
namespace {

struct save_arguments {
  std::string model;
  std::string file;
  std::string psi;
};

int run_save(const save_arguments& arguments) {
  qv_study_options options;
  if (!arguments.psi.empty()) options.psi = qv_read_psi_catalogue(arguments.psi);
  const std::filesystem::path file = arguments.file;
  qv_output_folder folder(file.has_parent_path() ? file.parent_path() : ".");
  std::string text;
  {
    qv_progress progress;
    progress.begin_step(1, 2, "reading the model");
    const qv_gbxml_model model = qv_read_gbxml(arguments.model);
    progress.begin_step(2, 2, "computing the model");
    qv_compute_model(model, options);
    text = qv_save_configuration(*model.scene, arguments.model);
  }
  folder.stage(file.filename().string(), text);
  folder.commit();
  qv_print(fmt::format("Written to {}\n", arguments.file));
  return qv_exit_success;
}

}  // namespace

void qv_add_configure_command(CLI::App& program, qv_command_action& action) {
  CLI::App* command =
      program.add_subcommand("configure", "Keep the construction choices of a model for others");
  command->require_subcommand(1);
  const auto arguments = std::make_shared<save_arguments>();
  CLI::App* save = command->add_subcommand(
      "save", "Save the compositions by contact type and opening type, and ψ by bridge type");
  save->add_option("MODEL", arguments->model, "The model, a gbXML file")
      ->required()
      ->option_text(" ");
  save->add_option("CONFIG", arguments->file, "The file to write, JSON")
      ->required()
      ->option_text(" ");
  save->add_option("--psi", arguments->psi, "Catalogue of ψ values; indicative values without")
      ->option_text("FILE");
  command->footer(
      "Types on whose composition or ψ the model does not agree are left out.\n\n"
      "Example:\n"
      "  qv configure save house.xml choices.json\n"
      "  qv study other.xml --out results --configuration choices.json");
  save->callback([&action, arguments] {
    if (arguments->model.empty()) throw CLI::ValidationError("MODEL is an empty name");
    if (std::filesystem::path(arguments->file).filename().empty())
      throw CLI::ValidationError("CONFIG is no name of a file");
    action = [arguments] { return run_save(*arguments); };
  });
}

}  // namespace qv
