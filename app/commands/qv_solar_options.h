#pragma once

#include "app/commands/qv_commands.h"
#include "app/study/qv_study.h"

namespace qv {

class qv_progress;

/// Exit code of a command that the user stopped; as shells have it, 128 and the signal's number.
inline constexpr int qv_exit_interrupted = 130;

/// `solar MODEL --surface ID [--weather FILE] [--hourly]`
void qv_add_solar_command(qv_command& program);

/// `--weather FILE`, `--quality draft|normal|fine`, `--reflexions N`.
void qv_add_solar_options(qv_command& command, qv_solar_options& options);

/// Shows how far the sun is, and stops it when the user asks to (while a `qv_interrupt` lives).
qv_solar_progress qv_show_solar_progress(qv_progress& progress);

}  // namespace qv
