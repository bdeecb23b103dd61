#pragma once

#include <functional>
#include <string>

namespace qv {

/// Receives each line of the application's log, without a line end.
using qv_log_handler = std::function<void(const std::string& line)>;

/// Puts another handler in the place of the present one and returns that one. An empty handler
/// restores the default, which writes the line to standard error. Calls of the handler never
/// overlap, whatever threads log. What a handler logs itself goes to standard error, and so does a
/// line whose handler throws.
qv_log_handler qv_set_log_handler(qv_log_handler handler);

}  // namespace qv

/// Writes one formatted line (printf conventions) to the application's log. Line ends at the end of
/// the text are cut off; a null format writes nothing.
void qv_log(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// As `qv_log`, callable from worker threads.
void qv_log_thread_safe(const char* format, ...) __attribute__((format(printf, 1, 2)));
