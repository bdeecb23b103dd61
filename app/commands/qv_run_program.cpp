#include <fmt/format.h>

#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "app/commands/qv_command_line.h"
#include "app/commands/qv_commands.h"
#include "app/commands/qv_solar_options.h"
#include "app/readers/qv_input_error.h"
#include "bim/qv_load_bim_items.h"

namespace qv {
namespace {

void complain(const std::string& message) {
  fmt::print(stderr, "qv: {}\n", qv_one_line(message, 4000));
}

int understand_and_run(int argument_count, const char* const* arguments) {
  qv_command_line line("qv",
                       "Reads a building model and works out its rooms, areas, volumes, storeys,\n"
                       "walls and U values.",
                       std::string("qv ") + QV_VERSION);
  qv_command& program = line.get_program();
  program.set_footer(
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
  qv_add_study_command(program);
  qv_add_check_command(program);
  qv_add_solar_command(program);
  qv_add_info_command(program);
  qv_add_export_command(program);
  qv_add_picture_command(program);
  qv_add_glazing_command(program);
  qv_add_configure_command(program);
  qv_add_help_command(program);
  return line.understand(argument_count, arguments)();
}

}  // namespace

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
  } catch (const qv_usage_error& error) {
    complain(error.what());
    return qv_exit_usage;
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
