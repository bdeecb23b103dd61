#include "app/commands/qv_context_option.h"

#include <CLI/CLI.hpp>
#include <cstdio>

namespace qv {

void qv_add_context_options(CLI::App& command, qv_context_options& options) {
  command
      .add_option("--context", options.files,
                  "What stands around, a mesh of triangles: OBJ, glTF or\n"
                  "GLB, metres, in the coordinates of the model; may be\n"
                  "given several times")
      ->option_text("FILE")
      ->allow_extra_args(false)
      ->check([](const std::string& file) {
        return file.empty() ? std::string("is an empty name") : std::string();
      });
  command
      .add_option_function<std::string>(
          "--context-up",
          [&options](const std::string& axis) {
            options.up = axis == "y" ? qv_up_axis::y : qv_up_axis::z;
          },
          "The axis that points upwards in the files of --context:\n"
          "y or z; without, z in OBJ and y in glTF")
      ->option_text("y|z")
      ->check([](const std::string& axis) {
        return axis == "y" || axis == "z" ? std::string() : "\"" + axis + "\" is not y or z";
      });
}

void qv_print_notes(const std::vector<std::string>& notes) {
  for (const std::string& note : notes) std::fprintf(stderr, "qv: note: %s\n", note.c_str());
}

}  // namespace qv
