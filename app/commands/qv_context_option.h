#pragma once

#include <string>
#include <vector>

#include "app/commands/qv_commands.h"
#include "app/readers/qv_context.h"

namespace qv {

/// `--context FILE`, as often as wanted, and `--context-up y|z`.
void qv_add_context_options(qv_command& command, qv_context_options& options);

/// Tells what of the context was left out, on standard error, a line each.
void qv_print_notes(const std::vector<std::string>& notes);

}  // namespace qv
