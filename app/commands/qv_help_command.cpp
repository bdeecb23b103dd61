#include <fmt/ranges.h>

#include <memory>

#include "app/commands/qv_command_line.h"
#include "app/commands/qv_commands.h"

namespace qv {

void qv_add_help_command(qv_command& program) {
  const auto topic = std::make_shared<std::vector<std::string>>();
  qv_command& command = program.add_command("help", "Explain the program or one of its commands");
  command.add_further_arguments("COMMAND", "The command to explain", *topic);
  command.set_footer("Examples:\n  qv help\n  qv help study\n  qv help configure save");
  // Null when there is no such command.
  const auto find = [&program, topic] {
    const qv_command* found = &program;
    for (const std::string& name : *topic)
      if (found != nullptr) found = found->find_command(name);
    return found;
  };
  command.set_check([find, topic]() -> std::string {
    if (find() != nullptr) return {};
    return fmt::format("there is no command \"{}\"", fmt::join(*topic, " "));
  });
  command.set_action([find] {
    qv_print(find()->get_help());
    return qv_exit_success;
  });
}

}  // namespace qv
