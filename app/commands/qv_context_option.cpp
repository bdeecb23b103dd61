#include "app/commands/qv_context_option.h"

#include <array>
#include <cstdio>

#include "app/commands/qv_command_line.h"

namespace qv {

void qv_add_context_options(qv_command& command, qv_context_options& options) {
  static constexpr std::array<qv_choice<qv_up_axis>, 2> axes = {
      {{"y", qv_up_axis::y}, {"z", qv_up_axis::z}}};
  command.add_repeated_option({"--context", "FILE",
                               "What stands around, a mesh of triangles: OBJ, glTF or\n"
                               "GLB, metres, in the coordinates of the model; may be\n"
                               "given several times"},
                              options.files);
  command.add_choice("--context-up",
                     "The axis that points upwards in the files of --context:\n"
                     "y or z; without, z in OBJ and y in glTF",
                     axes, options.up);
}

std::vector<std::string> qv_read_files(const std::string& model,
                                       const qv_context_options& context) {
  std::vector<std::string> files = {model};
  files.insert(files.end(), context.files.begin(), context.files.end());
  return files;
}

void qv_print_notes(const std::vector<std::string>& notes) {
  for (const std::string& note : notes) std::fprintf(stderr, "qv: note: %s\n", note.c_str());
}

}  // namespace qv
