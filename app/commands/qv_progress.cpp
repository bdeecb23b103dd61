#include "app/commands/qv_progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace qv {
namespace {

constexpr int bar_width = 20;
constexpr std::chrono::seconds quiet_time(2);  // work shorter than this says nothing
// Back to the beginning of the line, which is then erased (ECMA-48).
constexpr const char* erase_line = "\r\x1b[K";

bool is_terminal() {
  const char* kind = std::getenv("TERM");
  return ::isatty(STDERR_FILENO) == 1 && kind != nullptr && std::string_view(kind) != "dumb";
}

}  // namespace

qv_progress::qv_progress() : start_(std::chrono::steady_clock::now()), terminal_(is_terminal()) {}

qv_progress::~qv_progress() {
  if (shown_ && terminal_) std::fputs(erase_line, stderr);
}

void qv_progress::begin_step(int step, int count, const std::string& what) {
  const auto elapsed = std::chrono::steady_clock::now() - start_;
  if (terminal_) {
    fmt::print(stderr, "{}{}", erase_line, bar_text(step, count, what));
    std::fflush(stderr);
    shown_ = true;
  } else if (elapsed >= quiet_time) {
    fmt::print(stderr, "qv: {} (step {} of {}, after {} s)\n", what, step, count,
               std::chrono::duration_cast<std::chrono::seconds>(elapsed).count());
  }
}

std::string qv_progress::bar_text(int step, int count, const std::string& what) {
  const int done = count > 0 ? bar_width * (step - 1) / count : 0;
  return fmt::format("[{:#<{}}{:-<{}}] {}/{} {}", "", done, "", bar_width - done, step, count,
                     what);
}

}  // namespace qv
