#include "app/commands/qv_progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "app/commands/qv_interrupt.h"
#include "app/study/qv_study_sun.h"

namespace qv {
namespace {

constexpr int bar_width = 20;
constexpr std::chrono::seconds quiet_time(2);  // work shorter than this says nothing
constexpr std::chrono::milliseconds redraw_pause(100);
constexpr std::chrono::milliseconds line_pause(10000);
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
  if (qv_interrupt::is_requested()) throw qv_interrupted();
  step_start_ = last_shown_ = std::chrono::steady_clock::now();
  bar_ = bar_text(step, count, what);
  what_ = what;
  const auto elapsed = step_start_ - start_;
  if (terminal_) {
    fmt::print(stderr, "{}{}", erase_line, bar_text(step, count, what));
    std::fflush(stderr);
    shown_ = true;
  } else if (elapsed >= quiet_time) {
    fmt::print(stderr, "qv: {} (step {} of {}, after {} s)\n", what, step, count,
               std::chrono::duration_cast<std::chrono::seconds>(elapsed).count());
  }
}

std::function<void(int, int, const char*)> qv_progress::get_announcer() {
  return [this](int step, int count, const char* what) { begin_step(step, count, what); };
}

void qv_progress::advance(std::size_t done, std::size_t count) {
  const auto now = std::chrono::steady_clock::now();
  const auto pause = terminal_ ? redraw_pause : line_pause;
  if (now - last_shown_ < pause) return;
  last_shown_ = now;
  const std::string share =
      share_text(done, count, std::chrono::duration<double>(now - step_start_).count());
  if (terminal_) {
    fmt::print(stderr, "{}{}, {}", erase_line, bar_, share);
    std::fflush(stderr);
    shown_ = true;
  } else {
    fmt::print(stderr, "qv: {}: {}\n", what_, share);
  }
}

std::string qv_progress::share_text(std::size_t done, std::size_t count, double elapsed_seconds) {
  if (done == 0 || count == 0) return "0 %";
  const double share = static_cast<double>(done) / static_cast<double>(count);
  return fmt::format("{:.0f} %, {:.0f} s left", 100 * share,
                     elapsed_seconds / share - elapsed_seconds);
}

std::string qv_progress::bar_text(int step, int count, const std::string& what) {
  const int done = count > 0 ? bar_width * (step - 1) / count : 0;
  return fmt::format("[{:#<{}}{:-<{}}] {}/{} {}", "", done, "", bar_width - done, step, count,
                     what);
}

}  // namespace qv
