// Running the command-line host as a person does: a separate process under
// a time limit, its standard output, standard error and exit status.
#pragma once
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
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

// The whole content of a file ("" when it cannot be read).
inline std::string read_file(std::string const& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// A directory of its own below /tmp for one test, removed with all it holds
// (unreadable parts included) when the test ends.
struct ScratchDir {
  ScratchDir() {
    char templ[] = "/tmp/qbfs-test-XXXXXX";
    dir = mkdtemp(templ) ? templ : "";
  }
  ~ScratchDir() { remove(dir); }
  ScratchDir(ScratchDir const&) = delete;
  ScratchDir& operator=(ScratchDir const&) = delete;
  static bool remove(std::string const& path) {
    return std::system(("chmod -R u+rwx '" + path + "' 2>/dev/null; rm -rf '" + path + "'").c_str()) == 0;
  }
  // `name` below the directory, made anew and empty; "" when that fails.
  std::string fresh(std::string const& name) const {
    std::string const path = dir + "/" + name;
    return remove(path) && mkdir(path.c_str(), 0755) == 0 ? path : "";
  }
  std::string dir;
};

}  // namespace qbtest
