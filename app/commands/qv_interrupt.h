#pragma once

namespace qv {

/// While it lives, Ctrl-C and a request to terminate do not end the program at once: they are
/// noted, so that long work can end by itself and leave nothing half done. A second one ends the
/// program. One at a time.
class qv_interrupt {
 public:
  qv_interrupt();
  qv_interrupt(const qv_interrupt&) = delete;
  qv_interrupt& operator=(const qv_interrupt&) = delete;
  ~qv_interrupt();

  /// Whether the user has asked to stop.
  static bool is_requested();
};

}  // namespace qv
