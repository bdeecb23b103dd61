#include <memory>

#include "app/commands/qv_command_line.h"
#include "app/commands/qv_commands.h"

namespace qv {

void qv_add_help_command(qv_command& program) {
  const auto topic = std::make_shared<std::string>();
  qv_command& command = program.add_command("help", "Explain the program or one of its commands");
  command.add_further_argument("COMMAND", "The command to explain", *topic);
  command.set_footer("Examples:\n  qv help\n  qv help study");
  command.set_check([&program, topic]() -> std::string {
    if (topic->empty() || program.find_command(*topic) != nullptr) return {};
    return "there is no command \"" + *topic + "\"";
  });
  command.set_action([&program, topic] {
    qv_print((topic->empty() ? program : *program.find_command(*topic)).get_help());
    return qv_exit_success;
  });
}

}  // namespace qv
