#pragma once

#include <chrono>
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

  /// Step `step` of `count` (from 1) begins.
  void begin_step(int step, int count, const std::string& what);

  /// The bar before step `step` of `count`: "[##########----------] 3/4 measuring the spaces".
  static std::string bar_text(int step, int count, const std::string& what);

 private:
  std::chrono::steady_clock::time_point start_;
  bool terminal_;
  bool shown_ = false;
};

}  // namespace qv
