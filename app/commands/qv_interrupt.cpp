#include "app/commands/qv_interrupt.h"

#include <signal.h>

#include <atomic>

namespace qv {
namespace {

std::atomic<bool> requested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may wait for nothing");

extern "C" void note(int) {
  requested = true;
}

// A file that is being opened or read when the user asks to stop is read on: the work ends at its
// next step. The second signal finds no handler.
void handle(int signal, void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
  ::sigemptyset(&action.sa_mask);
  ::sigaction(signal, &action, nullptr);
}

}  // namespace

qv_interrupt::qv_interrupt() {
  requested = false;
  handle(SIGINT, note);
  handle(SIGTERM, note);
}

qv_interrupt::~qv_interrupt() {
  handle(SIGINT, SIG_DFL);
  handle(SIGTERM, SIG_DFL);
}

bool qv_interrupt::is_requested() {
  return requested;
}

}  // namespace qv
