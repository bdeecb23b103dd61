#include <array>
#include <memory>

#include "app/commands/qv_command_line.h"
#include "app/commands/qv_commands.h"
#include "app/commands/qv_context_option.h"
#include "app/commands/qv_interrupt.h"
#include "app/commands/qv_progress.h"
#include "app/export/qv_export_gbxml.h"
#include "app/export/qv_export_gltf.h"
#include "app/export/qv_export_obj.h"
#include "app/report/qv_output_folder.h"
#include "app/study/qv_study.h"

namespace qv {
namespace {

enum class export_format : int { json, obj, gltf, gbxml };

struct export_arguments {
  std::string model;
  export_format format = export_format::json;
  std::string file;
  qv_context_options context;
};

std::string export_text(export_format format, const qv_gbxml_model& model) {
  const qv_double3 origin(model.origin[0], model.origin[1], model.origin[2]);
  switch (format) {
    case export_format::json:
      return qv_model_text(model);
    case export_format::obj:
      return qv_export_obj(*model.scene, origin);
    case export_format::gltf:
      return qv_export_gltf(*model.scene, origin);
    case export_format::gbxml:
      return qv_export_gbxml(model);
  }
  return {};
}

int run_export(const export_arguments& arguments) {
  const qv_interrupt interrupt;
  // Before the work, so that a wrong place is told at once.
  qv_output_file file(arguments.file, qv_read_files(arguments.model, arguments.context));
  std::vector<std::string> notes;
  {
    qv_progress progress;
    const auto announce = progress.get_announcer();
    announce(1, 5, "reading the model");
    qv_gbxml_model model = qv_read_gbxml(arguments.model);
    notes = qv_add_context(model, arguments.context);
    // Geometry keeps the axes of its file, which says how they lie to north; the text of the model
    // is that of a study.
    qv_study_options options;
    if (arguments.format != export_format::json) options.north = 0.0;
    qv_compute_model(model, options, announce);
    announce(5, 5, "writing the model");
    file.stage(export_text(arguments.format, model));
  }
  file.commit();
  qv_print_notes(notes);
  qv_print("Written to " + arguments.file + "\n");
  return qv_exit_success;
}

}  // namespace

void qv_add_export_command(qv_command& program) {
  static constexpr std::array<qv_choice<export_format>, 4> formats = {
      {{"json", export_format::json},
       {"obj", export_format::obj},
       {"gltf", export_format::gltf},
       {"gbxml", export_format::gbxml}}};
  const auto arguments = std::make_shared<export_arguments>();
  qv_command& command =
      program.add_command("export", "Write a gbXML model in another format, or mended");
  command.add_model(arguments->model);
  command.add_required_choice("--format",
                              "json: the text of the model; obj, gltf: its surfaces for\n"
                              "other programs; gbxml: as it was understood and mended",
                              formats, arguments->format);
  command.add_out_file("The file to write", arguments->file);
  qv_add_context_options(command, arguments->context);
  command.set_footer(
      "Examples:\n"
      "  qv export house.xml --format gltf --out house.gltf\n"
      "  qv export house.xml --format gbxml --out mended.xml");
  command.set_action([arguments] { return run_export(*arguments); });
}

}  // namespace qv
