#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

namespace qv {

/// Shows on standard error how far a piece of work is: a bar on a terminal, which disappears at the
/// end, and elsewhere a plain line for each step that begins when the work has taken a while
/// already, so that short work leaves no lines behind.
class qv_progress {
 public:
  qv_progress();
  qv_progress(const qv_progress&) = delete;
  qv_progress& operator=(const qv_progress&) = delete;
  ~qv_progress();

  /// Step `step` of `count` (from 1) begins; throws `qv_interrupted` instead when the user has
  /// asked to stop (while a `qv_interrupt` lives).
  void begin_step(int step, int count, const std::string& what);

  /// A function that begins a step, for work that tells its steps.
  std::function<void(int step, int count, const char* what)> get_announcer();

  /// Of the step that began last, `done` of `count` equal parts are done: the bar moves on and says
  /// how much time is left, by the time of the parts so far. Elsewhere than on a terminal a line
  /// comes every ten seconds. Calls must not overlap.
  void advance(std::size_t done, std::size_t count);

  /// The bar before step `step` of `count`: "[##########----------] 3/4 measuring the spaces".
  static std::string bar_text(int step, int count, const std::string& what);
  /// "37 %, 12 s left".
  static std::string share_text(std::size_t done, std::size_t count, double elapsed_seconds);

 private:
  std::chrono::steady_clock::time_point start_;
  std::chrono::steady_clock::time_point step_start_;
  std::chrono::steady_clock::time_point last_shown_;
  std::string bar_;   // of the present step
  std::string what_;  // the present step does
  bool terminal_;
  bool shown_ = false;
};

}  // namespace qv
