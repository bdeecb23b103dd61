#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "app/commands/qv_commands.h"
#include "app/commands/qv_solar_options.h"
#include "app/readers/qv_input_error.h"
#include "bim/qv_load_bim_items.h"

namespace qv {
namespace {

void complain(const std::string& message) {
  fmt::print(stderr, "qv: {}\n", qv_one_line(message, 4000));
}

// The sub-command that the user chose, or null.
const CLI::App* chosen_command(const CLI::App& program) {
  const auto chosen = program.get_subcommands();
  return chosen.empty() ? nullptr : chosen.front();
}

// What a message of the library says after its colon: the words of the user that it is about.
std::string words_of(const CLI::ParseError& error) {
  const std::string text = error.what();
  const auto colon = text.find(": ");
  return colon == std::string::npos ? text : text.substr(colon + 2);
}

// A mistake of the user in our own words.
std::string describe_problem(const CLI::ParseError& error) {
  const std::string words = words_of(error);
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
    const char* kind = words.starts_with('-') ? "option" : "argument";
    return fmt::format("unexpected {} \"{}\"", kind, words);
  }
  if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr) {
    return fmt::format("cannot make sense of \"{}\"", words);
  }
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    const std::string text = error.what();
    const std::string option = text.substr(0, text.find(':'));
    return option + (words.find("missing") != std::string::npos ? " needs a value"
                                                                : " is given more than once");
  }
  return error.what();
}

std::string describe_mistake(const CLI::App* command, const std::string& first_word,
                             const CLI::ParseError& error) {
  if (command != nullptr) {
    return fmt::format("{}; `qv help {}` explains", describe_problem(error), command->get_name());
  }
  std::string problem = "a command is missing";
  if (first_word.starts_with('-')) {
    problem = fmt::format("unexpected option \"{}\"", first_word);
  } else if (!first_word.empty()) {
    problem = fmt::format("there is no command \"{}\"", first_word);
  }
  return problem + "; `qv help` explains";
}

int understand_and_run(int argument_count, const char* const* arguments) {
  CLI::App program(
      "Reads a building model and works out its rooms, areas, volumes, storeys,\n"
      "walls and U values.",
      "qv");
  program.set_version_flag("--version", std::string("qv ") + QV_VERSION, "Print the version");
  program.set_help_flag("-h,--help", "Print this help");
  program.require_subcommand(1);
  program.footer(
      "Examples:\n"
      "  qv study house.xml --out results\n"
      "  qv check house.xml\n"
      "  qv info house.xml\n"
      "  qv export house.xml --format gltf --out house.gltf\n"
      "  qv picture house.xml --out house.png\n"
      "  qv glazing \"4 low-e / 16 argon / 4\"\n"
      "  qv help study\n\n"
      "Exit codes: 0 done, 1 fault of the program or findings of `check`,\n"
      "            2 mistake in the command line,\n"
      "            3 mistake in the model, 4 a file cannot be read or written");
  qv_command_action action;
  qv_add_study_command(program, action);
  qv_add_check_command(program, action);
  qv_add_solar_command(program, action);
  qv_add_info_command(program, action);
  qv_add_export_command(program, action);
  qv_add_picture_command(program, action);
  qv_add_glazing_command(program, action);
  qv_add_configure_command(program, action);
  qv_add_help_command(program, action);
  try {
    program.parse(argument_count, arguments);
  } catch (const CLI::CallForHelp&) {
    const CLI::App* command = chosen_command(program);
    qv_print(qv_help_text(command != nullptr ? *command : program));
    return qv_exit_success;
  } catch (const CLI::CallForVersion& version) {
    qv_print(std::string(version.what()) + "\n");
    return qv_exit_success;
  } catch (const CLI::ParseError& error) {
    const std::string first_word = argument_count > 1 ? arguments[1] : "";
    complain(describe_mistake(chosen_command(program), first_word, error));
    return qv_exit_usage;
  }
  return action();
}

}  // namespace

std::string qv_help_text(const CLI::App& command) {
  const CLI::App* parent = command.get_parent();
  const std::string name =
      (parent != nullptr ? parent->get_name() + " " : std::string()) + command.get_name();
  return command.get_formatter()->make_help(&command, name, CLI::AppFormatMode::Normal);
}

void qv_print(const std::string& text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
    throw qv_input_error(qv_input_error::kind::no_access, {"standard output", 0, {}, {}},
                         "cannot be written", "look where it leads to");
  }
}

int qv_run_program(int argument_count, const char* const* arguments) {
  try {
    qv_load_bim_items();
    return understand_and_run(argument_count, arguments);
  } catch (const qv_input_error& error) {
    complain(error.what());
    return error.get_exit_code();
  } catch (const qv_interrupted& interrupted) {
    complain(interrupted.what());
    return qv_exit_interrupted;
  } catch (const std::bad_alloc&) {
    complain("the memory of this machine does not suffice");
  } catch (const std::exception& error) {
    complain(std::string("a fault of the program, please report it: ") + error.what());
  }
  return qv_exit_own_fault;
}

}  // namespace qv
