#include "tests/app/qv_program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <sstream>

#include "tests/app/qv_temporary_folder.h"

namespace {

// Runs a program whose standard error is the file or terminal of a path. `read_errors` is called
// when the program has started, and gives what it wrote there to its end.
template <typename reader_t>
qv_program_run run(std::vector<std::string> words, const std::string& errors,
                   const reader_t& read_errors) {
  const qv_temporary_folder place;
  const std::string output = place.path() / "output";
  ::setenv("QV", QV_PROGRAM, 1);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, errors.c_str(),
                                   O_WRONLY | O_CREAT | O_NOCTTY, 0600);
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  qv_program_run result;
  pid_t child = 0;
  const int failure =
      ::posix_spawn(&child, arguments[0], &files, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&files);
  if (failure != 0) {
    ADD_FAILURE() << "cannot start " << words[0];
    return result;
  }
  result.errors = read_errors(child);
  int status = 0;
  ::waitpid(child, &status, 0);
  if (WIFEXITED(status)) result.exit_code = WEXITSTATUS(status);
  result.output = qv_file_content(output);
  return result;
}

qv_program_run run(const std::vector<std::string>& words) {
  const qv_temporary_folder place;
  const std::string errors = place.path() / "errors";
  return run(words, errors, [&errors](pid_t child) {
    siginfo_t end;
    ::waitid(P_PID, static_cast<id_t>(child), &end, WEXITED | WNOWAIT);
    return qv_file_content(errors);
  });
}

// To the end of what is written to a terminal: reading fails when nobody has it open any more.
std::string read_terminal(int master) {
  std::string text;
  char block[4096];
  for (;;) {
    const ssize_t size = ::read(master, block, sizeof block);
    if (size > 0) {
      text.append(block, static_cast<std::size_t>(size));
    } else if (size == 0 || errno != EINTR) {
      return text;
    }
  }
}

}  // namespace

qv_program_run qv_run(const std::vector<std::string>& arguments) {
  std::vector<std::string> words = {QV_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return run(words);
}

qv_program_run qv_run_on_terminal(const std::vector<std::string>& arguments) {
  const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0) {
    ADD_FAILURE() << "no terminal can be made";
    return {};
  }
  const std::string slave = ::ptsname(master);
  // Open until the program has it too, so that no reading fails before.
  const int open_slave = ::open(slave.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  std::vector<std::string> words = {"/usr/bin/env", "TERM=xterm", QV_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  qv_program_run result = run(words, slave, [&](pid_t) {
    ::close(open_slave);
    return read_terminal(master);
  });
  ::close(master);
  return result;
}

qv_program_run qv_run_shell(const std::string& command) {
  return run({"/bin/bash", "-c", command});
}

std::string qv_file_content(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) ADD_FAILURE() << "cannot read " << path;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}
