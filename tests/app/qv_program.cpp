#include "tests/app/qv_program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "tests/app/qv_temporary_folder.h"

namespace {

qv_program_run run(std::vector<std::string> words) {
  const qv_temporary_folder place;
  const std::string output = place.path() / "output";
  const std::string errors = place.path() / "errors";
  ::setenv("QV", QV_PROGRAM, 1);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, errors.c_str(), O_WRONLY | O_CREAT, 0600);
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
  int status = 0;
  ::waitpid(child, &status, 0);
  if (WIFEXITED(status)) result.exit_code = WEXITSTATUS(status);
  result.output = qv_file_content(output);
  result.errors = qv_file_content(errors);
  return result;
}

}  // namespace

qv_program_run qv_run(const std::vector<std::string>& arguments) {
  std::vector<std::string> words = {QV_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return run(words);
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
