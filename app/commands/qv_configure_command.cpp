#include <fmt/format.h>

#include <memory>

#include "app/commands/qv_command_line.h"
#include "app/commands/qv_commands.h"
#include "app/commands/qv_interrupt.h"
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
  const qv_interrupt interrupt;
  qv_study_options options;
  if (!arguments.psi.empty()) options.psi = qv_read_psi_catalogue(arguments.psi);
  qv_output_file file(arguments.file, {arguments.model, arguments.psi});
  std::string text;
  {
    qv_progress progress;
    progress.begin_step(1, 2, "reading the model");
    const qv_gbxml_model model = qv_read_gbxml(arguments.model);
    progress.begin_step(2, 2, "computing the model");
    qv_compute_model(model, options);
    text = qv_save_configuration(*model.scene, arguments.model);
  }
  file.stage(text);
  file.commit();
  qv_print(fmt::format("Written to {}\n", arguments.file));
  return qv_exit_success;
}

}  // namespace

void qv_add_configure_command(qv_command& program) {
  qv_command& command =
      program.add_command("configure", "Keep the construction choices of a model for others");
  const auto arguments = std::make_shared<save_arguments>();
  qv_command& save = command.add_command(
      "save", "Save the compositions by contact type and opening type, and ψ by bridge type");
  save.add_model(arguments->model);
  save.add_written_file("CONFIG", "The file to write, JSON", arguments->file);
  save.add_option({"--psi", "FILE", "Catalogue of ψ values; indicative values without"},
                  arguments->psi);
  command.set_footer(
      "Types on whose composition or ψ the model does not agree are left out.\n\n"
      "Example:\n"
      "  qv configure save house.xml choices.json\n"
      "  qv study other.xml --out results --configuration choices.json");
  save.set_action([arguments] { return run_save(*arguments); });
}

}  // namespace qv
