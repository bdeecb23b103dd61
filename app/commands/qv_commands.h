#pragma once

#include <functional>
#include <string>

namespace CLI {
class App;
}

namespace qv {

/// Exit codes of the program; what the user's input or its files lack is told by
/// `qv_input_error::get_exit_code` (3: wrong content, 4: cannot be read or written).
inline constexpr int qv_exit_success = 0;
inline constexpr int qv_exit_own_fault = 1;
inline constexpr int qv_exit_usage = 2;
/// `check` found something.
inline constexpr int qv_exit_findings = 1;

/// What a chosen sub-command does once the whole command line is understood; returns the exit code.
using qv_command_action = std::function<int()>;

// Each adds one sub-command to the command line; choosing it sets `action`.

/// `study MODEL --out DIR [--rename-spaces] [--regroup]`
void qv_add_study_command(CLI::App& program, qv_command_action& action);
/// `check MODEL [--fix --out MODEL2] [--format text|json]`
void qv_add_check_command(CLI::App& program, qv_command_action& action);
/// `info MODEL`
void qv_add_info_command(CLI::App& program, qv_command_action& action);
/// `glazing LAYERS`
void qv_add_glazing_command(CLI::App& program, qv_command_action& action);
/// `export MODEL --format json|obj|gltf|gbxml --out FILE`
void qv_add_export_command(CLI::App& program, qv_command_action& action);
/// `picture MODEL --out FILE.png [--view …] [--color …] …`
void qv_add_picture_command(CLI::App& program, qv_command_action& action);
/// `configure save MODEL CONFIG.json`
void qv_add_configure_command(CLI::App& program, qv_command_action& action);
/// `help [COMMAND]`
void qv_add_help_command(CLI::App& program, qv_command_action& action);

/// The help of the program or of one of its sub-commands.
std::string qv_help_text(const CLI::App& command);

/// Writes to standard output at once; throws `qv_input_error` when it cannot be written.
void qv_print(const std::string& text);

/// The whole program: understands the command line, runs the sub-command, turns every exception
/// into one line on standard error and an exit code.
int qv_run_program(int argument_count, const char* const* arguments);

}  // namespace qv
