// Running the command-line host as a person does: a separate process under
// a time limit, its standard output, standard error and exit status.
#pragma once
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

namespace qbtest {

struct ToolRun {
  int status;  // the exit status (124 when the time limit ended it), or 128 + a signal
  std::string out, err;
};

// Runs a shell command; standard error goes through a file of its own, as
// ctest runs the tests of one binary side by side.
inline ToolRun shell(std::string const& command) {
  static int count = 0;
  std::string const err_file = ::testing::TempDir() + "qbfs_tool_err." + std::to_string(getpid()) +
                               "." + std::to_string(++count);
  ToolRun run{-1, {}, {}};
  FILE* pipe = popen(("(" + command + ") 2>'" + err_file + "'").c_str(), "r");
  if (pipe == nullptr) return run;
  char buffer[4096];
  for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) run.out.append(buffer, n);
  int const status = pclose(pipe);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  std::ifstream err(err_file);
  run.err.assign(std::istreambuf_iterator<char>(err), std::istreambuf_iterator<char>());
  std::remove(err_file.c_str());
  return run;
}

// The shell words that start the tool, given at most `seconds`.
inline std::string qbfs_command(int seconds = 120) {
  return "timeout " + std::to_string(seconds) + " '" + QBFS_PATH + "' ";
}

// The tool with `args`.
inline ToolRun qbfs(std::string const& args, int seconds = 120) { return shell(qbfs_command(seconds) + args); }

inline bool has(std::string const& text, std::string const& part) {
  return text.find(part) != std::string::npos;
}

// A run that ended by itself with a documented status and no sanitizer report.
inline ::testing::AssertionResult clean(ToolRun const& run) {
  if (run.status >= 0 && run.status <= 2 && !has(run.err, "Sanitizer") && !has(run.err, "runtime error:"))
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "status " << run.status << "\n" << run.err;
}

}  // namespace qbtest
