#include "utilities/qv_log.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using qv::qv_log_handler;
using qv::qv_set_log_handler;

namespace {

// Collects the lines for as long as it lives.
class collected_log {
 public:
  collected_log()
      : former_(qv_set_log_handler([this](const std::string& line) { lines.push_back(line); })) {}
  ~collected_log() { qv_set_log_handler(former_); }

  std::vector<std::string> lines;

 private:
  qv_log_handler former_;
};

}  // namespace

TEST(qv_log, formats_like_printf) {
  collected_log log;
  qv_log("%d walls of %s, %.2f m2", 3, "Bâtiment 1", 12.345);
  qv_log_thread_safe("plain");
  EXPECT_EQ(log.lines, (std::vector<std::string>{"3 walls of Bâtiment 1, 12.35 m2", "plain"}));
}

TEST(qv_log, writes_one_line_without_its_end) {
  collected_log log;
  qv_log("line\n");
  qv_log("other\r\n");
  qv_log("%s", "");
  EXPECT_EQ(log.lines, (std::vector<std::string>{"line", "other", ""}));
}

TEST(qv_log, takes_lines_of_any_length) {
  collected_log log;
  const std::string text(100'000, 'x');
  qv_log("%s", text.c_str());
  ASSERT_EQ(log.lines.size(), 1u);
  EXPECT_EQ(log.lines[0], text);
}

TEST(qv_log, ignores_a_missing_format) {
  collected_log log;
  const char* const none = nullptr;
  qv_log(none);
  qv_log_thread_safe(none);
  EXPECT_TRUE(log.lines.empty());
}

TEST(qv_log, setting_a_handler_returns_the_one_before) {
  collected_log log;
  int calls = 0;
  const qv_log_handler before = qv_set_log_handler([&calls](const std::string&) { ++calls; });
  qv_log("to the new one");
  qv_set_log_handler(before);
  qv_log("to the old one");
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(log.lines, std::vector<std::string>{"to the old one"});
}

TEST(qv_log, an_empty_handler_restores_standard_error) {
  const qv_log_handler before = qv_set_log_handler({});
  testing::internal::CaptureStderr();
  qv_log("to %s", "stderr");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "to stderr\n");
  qv_set_log_handler(before);
}

TEST(qv_log, lines_of_many_threads_never_overlap) {
  std::atomic<int> inside{0};
  bool overlapped = false;
  std::vector<std::string> lines;
  const qv_log_handler before = qv_set_log_handler([&](const std::string& line) {
    overlapped |= inside.fetch_add(1) != 0;
    lines.push_back(line);
    inside.fetch_sub(1);
  });
  {
    std::vector<std::jthread> workers;
    workers.reserve(8);
    for (int t = 0; t < 8; ++t)
      workers.emplace_back([] {
        for (int i = 0; i < 500; ++i) qv_log_thread_safe("line %d", i);
      });
  }
  qv_set_log_handler(before);
  EXPECT_FALSE(overlapped);
  EXPECT_EQ(lines.size(), 8u * 500u);
}

TEST(qv_log, a_handler_may_log_throw_and_put_another_in_its_place) {
  testing::internal::CaptureStderr();
  const qv_log_handler before = qv_set_log_handler([](const std::string& line) {
    if (line == "nested") qv_log("from the handler");
    if (line == "throws") throw std::runtime_error("disk full");
    if (line == "odd") throw 1;
    if (line == "last") qv_set_log_handler([](const std::string&) {});
  });
  for (const char* line : {"nested", "throws", "odd", "last", "to nobody"}) qv_log("%s", line);
  qv_set_log_handler(before);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "from the handler\nthrows\nlog handler failed: disk full\nodd\nlog handler failed\n");
}
