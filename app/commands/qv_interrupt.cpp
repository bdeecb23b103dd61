#include "app/commands/qv_interrupt.h"

#include <atomic>
#include <csignal>

namespace qv {
namespace {

std::atomic<bool> requested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may wait for nothing");

void note(int signal) {
  requested = true;
  std::signal(signal, SIG_DFL);
}

}  // namespace

qv_interrupt::qv_interrupt() {
  requested = false;
  std::signal(SIGINT, note);
  std::signal(SIGTERM, note);
}

qv_interrupt::~qv_interrupt() {
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
}

bool qv_interrupt::is_requested() {
  return requested;
}

}  // namespace qv
