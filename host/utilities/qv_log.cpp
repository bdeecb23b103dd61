#include "utilities/qv_log.h"

#include <cstdarg>
#include <cstdio>
#include <exception>
#include <memory>
#include <mutex>
#include <utility>

namespace {

void write_to_standard_error(const std::string& line) {
  std::fprintf(stderr, "%s\n", line.c_str());
}

struct log_state {
  // Recursive, for a handler that puts another one in its place.
  std::recursive_mutex mutex;
  std::shared_ptr<const qv::qv_log_handler> handler =
      std::make_shared<const qv::qv_log_handler>(write_to_standard_error);
  bool in_handler = false;
};

// Lives for as long as the process, so that the destructors of static objects may still log.
log_state& state() {
  static log_state& instance = *new log_state;
  return instance;
}

std::string formatted(const char* format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  std::string line;
  if (length < 0) {
    line = format;
  } else {
    line.resize(static_cast<std::size_t>(length) + 1);
    std::vsnprintf(line.data(), line.size(), format, again);
    line.pop_back();
  }
  va_end(again);
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
  return line;
}

void deliver(const std::string& line) {
  log_state& log = state();
  const std::lock_guard lock(log.mutex);
  if (log.in_handler) {
    write_to_standard_error(line);
    return;
  }
  const auto handler = log.handler;
  log.in_handler = true;
  try {
    (*handler)(line);
  } catch (const std::exception& fault) {
    write_to_standard_error(line);
    write_to_standard_error(std::string("log handler failed: ") + fault.what());
  } catch (...) {
    write_to_standard_error(line);
    write_to_standard_error("log handler failed");
  }
  log.in_handler = false;
}

}  // namespace

namespace qv {

qv_log_handler qv_set_log_handler(qv_log_handler handler) {
  if (!handler) handler = write_to_standard_error;
  auto replacement = std::make_shared<const qv_log_handler>(std::move(handler));
  log_state& log = state();
  const std::lock_guard lock(log.mutex);
  log.handler.swap(replacement);
  return *replacement;
}

}  // namespace qv

void qv_log(const char* format, ...) {
  if (format == nullptr) return;
  std::va_list arguments;
  va_start(arguments, format);
  const std::string line = formatted(format, arguments);
  va_end(arguments);
  deliver(line);
}

void qv_log_thread_safe(const char* format, ...) {
  if (format == nullptr) return;
  std::va_list arguments;
  va_start(arguments, format);
  const std::string line = formatted(format, arguments);
  va_end(arguments);
  deliver(line);
}
