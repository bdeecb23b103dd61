#pragma once

#include <string>
#include <vector>

#include "app/commands/qv_commands.h"
#include "app/readers/qv_context.h"

namespace qv {

/// `--context FILE`, as often as wanted, and `--context-up y|z`.
void qv_add_context_options(qv_command& command, qv_context_options& options);

/// Every file that a run over this model reads: no file that it writes may be one of them.
std::vector<std::string> qv_read_files(const std::string& model, const qv_context_options& context);

/// Tells what the user should know of what was read, on standard error, a line each.
void qv_print_notes(const std::vector<std::string>& notes);

}  // namespace qv
