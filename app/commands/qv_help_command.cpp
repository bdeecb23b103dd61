#include <CLI/CLI.hpp>
#include <memory>

#include "app/commands/qv_commands.h"

namespace qv {

void qv_add_help_command(CLI::App& program, qv_command_action& action) {
  const auto topic = std::make_shared<std::string>();
  CLI::App* command = program.add_subcommand("help", "Explain the program or one of its commands");
  command->add_option("COMMAND", *topic, "The command to explain")->option_text(" ");
  command->footer("Examples:\n  qv help\n  qv help study");
  command->callback([&program, &action, topic] {
    const CLI::App* explained = &program;
    if (!topic->empty()) {
      const auto named = program.get_subcommands(
          [&topic](const CLI::App* known) { return known->get_name() == *topic; });
      if (named.empty()) throw CLI::ValidationError("there is no command \"" + *topic + "\"");
      explained = named.front();
    }
    action = [explained] {
      qv_print(qv_help_text(*explained));
      return qv_exit_success;
    };
  });
}

}  // namespace qv
