#pragma once

#include <string>

namespace qv {

class qv_command;

/// Exit codes of the program; what the user's input or its files lack is told by
/// `qv_input_error::get_exit_code` (3: wrong content, 4: cannot be read or written).
inline constexpr int qv_exit_success = 0;
inline constexpr int qv_exit_own_fault = 1;
inline constexpr int qv_exit_usage = 2;
/// `check` found something.
inline constexpr int qv_exit_findings = 1;

// Each adds one command to the program.

/// `study MODEL --out DIR [--rename-spaces] [--regroup]`
void qv_add_study_command(qv_command& program);
/// `check MODEL [--fix --out MODEL2] [--format text|json]`
void qv_add_check_command(qv_command& program);
/// `info MODEL`
void qv_add_info_command(qv_command& program);
/// `glazing LAYERS`
void qv_add_glazing_command(qv_command& program);
/// `export MODEL --format json|obj|gltf|gbxml --out FILE`
void qv_add_export_command(qv_command& program);
/// `picture MODEL --out FILE.png [--view …] [--color …] …`
void qv_add_picture_command(qv_command& program);
/// `configure save MODEL CONFIG.json`
void qv_add_configure_command(qv_command& program);
/// `help [COMMAND]`
void qv_add_help_command(qv_command& program);

/// Writes to standard output at once; throws `qv_input_error` when it cannot be written.
void qv_print(const std::string& text);

/// The whole program: understands the command line, runs the sub-command, turns every exception
/// into one line on standard error and an exit code.
int qv_run_program(int argument_count, const char* const* arguments);

}  // namespace qv
