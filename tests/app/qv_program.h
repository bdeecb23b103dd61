#pragma once

#include <string>
#include <vector>

/// What a run of the program `qv` left behind.
struct qv_program_run {
  int exit_code = -1;  // −1 when it ended by a signal
  std::string output;  // standard output
  std::string errors;  // standard error
};

/// Runs the program that was built beside the tests, as a user does, with no terminal.
qv_program_run qv_run(const std::vector<std::string>& arguments);

/// The same with a terminal as standard error; `errors` is what was written to it.
qv_program_run qv_run_on_terminal(const std::vector<std::string>& arguments);

/// The same with a terminal as standard error; `errors` is what came to the terminal.
qv_program_run qv_run_on_terminal(const std::vector<std::string>& arguments);

/// Runs a shell command in which "$QV" is the program.
qv_program_run qv_run_shell(const std::string& command);

/// The whole of a file; a failure of the running test when it cannot be read.
std::string qv_file_content(const std::string& path);
