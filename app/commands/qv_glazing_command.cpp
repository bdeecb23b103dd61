#include <memory>

#include "app/commands/qv_command_line.h"
#include "app/commands/qv_commands.h"
#include "app/readers/qv_glazing_json.h"
#include "app/readers/qv_glazing_notation.h"
#include "app/report/qv_glazing_note.h"

namespace qv {
namespace {

int run_glazing(const std::string& layers) {
  const bool is_file = layers.ends_with(".json");
  const qv_owned_glazing glazing =
      is_file ? qv_read_glazing_json(layers) : qv_read_glazing_notation(layers);
  qv_print(qv_glazing_note(*glazing));
  return qv_exit_success;
}

}  // namespace

void qv_add_glazing_command(qv_command& program) {
  const auto layers = std::make_shared<std::string>();
  qv_command& command = program.add_command(
      "glazing", "Work out a glazing: U, solar factor, light, and every step to them");
  command.add_argument("LAYERS", "Layers from outside to inside, or a .json file of them", *layers);
  command.set_footer(
      "Layers are separated by \"/\", each a thickness in mm and what it is:\n"
      "  4   6 clear   4 low-e   6 sun-control   a pane; a coating may say front, back or both\n"
      "  16 air   16 argon 90%   10 krypton      a gap of air, argon, krypton, xenon or sf6\n"
      "  0.76 interlayer   1 pv                  a film\n\n"
      "Examples:\n"
      "  qv glazing \"4 low-e / 16 argon / 4\"\n"
      "  qv glazing \"6 sun-control / 14 argon 90% / 4 / 14 argon 90% / 4 low-e\"\n"
      "  qv glazing window.json");
  command.set_action([layers] { return run_glazing(*layers); });
}

}  // namespace qv
